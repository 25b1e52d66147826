// Test buffers fenced by sentinels and inaccessible pages, so that a write one element too far
// shows in the sentinels and a read or write past them faults at once. Data that sits flush
// against the page before or after it faults at the first element read too far.
#pragma once
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>

enum class placement { aligned, atstart, atend };

template <class T>
class guarded {
public:
    static constexpr uint8_t sentinel = 0xA5;
    static constexpr size_t fence = 256;  // sentinel bytes on each side, a multiple of 64

    explicit guarded(size_t count, placement at = placement::aligned) : count(count) {
        page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        size_t inner = fence * 2 + ((count * sizeof(T) + 63) & ~size_t{63});
        innerpages = (inner + page - 1) / page * page;
        total = innerpages + 2 * page;
        if (auto kept = spares().find(total); kept != spares().end()) {
            region = kept->second;
            spares().erase(kept);
        } else {
            void* mapped = mmap(nullptr, total, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
            region = static_cast<uint8_t*>(mapped);
            mprotect(region, page, PROT_NONE);
            mprotect(region + page + innerpages, page, PROT_NONE);
        }
        // Aligned, the data ends as close to the upper guard page as 64-byte alignment allows.
        uint8_t* end = region + page + innerpages;
        data = reinterpret_cast<T*>(at == placement::atstart ? region + page
                                    : at == placement::atend ? end - count * sizeof(T)
                                                             : end - fence - ((count * sizeof(T) + 63) & ~size_t{63}));
        memset(region + page, sentinel, innerpages);
    }
    ~guarded() { spares().emplace(total, region); }
    guarded(const guarded&) = delete;
    guarded& operator=(const guarded&) = delete;

    T* get() const { return data; }
    T& operator[](size_t i) const { return data[i]; }
    size_t size() const { return count; }

    // True when no byte outside the data has changed.
    bool intact() const {
        auto unchanged = [](const uint8_t* p, const uint8_t* end) {
            static uint8_t sentinels[4096];
            if (!sentinels[0]) memset(sentinels, sentinel, sizeof sentinels);
            for (size_t n; p < end; p += n)
                if (memcmp(p, sentinels, n = std::min<size_t>(end - p, sizeof sentinels))) return false;
            return true;
        };
        const uint8_t* begin = reinterpret_cast<const uint8_t*>(data);
        return unchanged(region + page, begin) && unchanged(begin + count * sizeof(T), region + page + innerpages);
    }

private:
    // Mappings are kept for the next buffer of the same size: a fuzz test makes hundreds of
    // thousands, and mapping them would cost more than the drawing.
    static std::multimap<size_t, uint8_t*>& spares() {
        static std::multimap<size_t, uint8_t*> kept;
        return kept;
    }

    size_t count, page, innerpages, total;
    uint8_t* region;
    T* data;
};
