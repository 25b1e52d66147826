// Span masks for tests, their tables in a pool of their own.
#pragma once
#include <algorithm>
#include <vector>

#include "target.h"
#include "toolkit/spanmask.h"
#include "util/memory/memorypool.h"

struct testmask {
    memorypool pool{1 << 12, nullptr};
    spanmask mask{};

    // Replaces the tables; they may differ in length.
    void set(const std::vector<int>& offsets, const std::vector<int>& widths) {
        pool.allocate(mask.offsets, static_cast<int>(offsets.size()));
        pool.allocate(mask.widths, static_cast<int>(widths.size()));
        std::copy(offsets.begin(), offsets.end(), mask.offsets.get());
        std::copy(widths.begin(), widths.end(), mask.widths.get());
        mask.offsetcount = static_cast<int>(offsets.size());
        mask.widthcount = static_cast<int>(widths.size());
    }

    // Up to `rows` rows of spans around the mask's corner, some empty or of negative width, now
    // and then one far off, and now and then a widths table a row short.
    void randomise(testrng& r, int rows, int reach) {
        std::vector<int> offsets(r.below(rows + 1)), widths(offsets.size());
        for (size_t i = 0; i < offsets.size(); ++i) {
            offsets[i] = r.onein(8) ? r.coordinate(reach) : r.between(-10, reach);
            widths[i] = r.onein(8) ? r.coordinate(reach) : r.between(-5, reach);
        }
        if (!widths.empty() && r.onein(8)) widths.pop_back();
        set(offsets, widths);
    }

    bool admits(long long x, long long y, int maskx, int masky) const {
        long long r = y - masky;
        if (r < 0 || r >= std::min(mask.offsetcount, mask.widthcount)) return false;
        long long start = static_cast<long long>(mask.offsets[r]) + maskx;
        return x >= start && x < start + mask.widths[r];
    }
};
