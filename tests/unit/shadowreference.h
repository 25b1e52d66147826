// Scalar references of the shadow map from the rules: the small triangle fill of masks, footprints
// added to and taken off the map with the tiles they mark, and the tiles' softened slices.
#pragma once
#include <bit>
#include <vector>

#include "ground/ground.h"
#include "raster/cornerorder.h"
#include "rasterreference.h"
#include "toolkit/shadowmask.h"
#include "toolkit/toolkit.h"

namespace shadowreference {

// Corners sorted by the one chain of comparisons, edges stepped by the approximate reciprocal of each
// height from the top corner, rows clipped above and below, cells set from the truncated left edge.
inline void fillreference(std::vector<uint8_t>& cells, int pitch, const int c[3][2]) {
    using namespace rasterreference;
    int o[3];
    cornerorder(c[0][1], c[1][1], c[2][1], o);
    const float x[3] = {float(c[o[0]][0]), float(c[o[1]][0]), float(c[o[2]][0])};
    const int row[3] = {c[o[0]][1], c[o[1]][1], c[o[2]][1]};
    auto step = [&](int a, int b) { return (x[b] - x[a]) * rcp(maxss(float(row[b] - row[a]), std::bit_cast<float>(0x358637BDu))); };
    const float tm = step(0, 1), tb = step(0, 2), mb = step(1, 2);
    const rasterstatedata& r = rasterstate;
    const long long bottom = std::min(r.viewport[1] + r.viewport[3], r.rasterclip[1] + r.rasterclip[3]);
    long long y = std::max<long long>(std::max(row[0], r.viewport[1]), r.rasterclip[1]), skip = y - row[0];
    float ls = tm > tb ? tb : tm, rs = tm > tb ? tm : tb, l = x[0] + float(skip) * ls, rt = x[0] + float(skip) * rs;
    auto fill = [&](long long rows) {
        for (; rows > 0; --rows, ++y, l += ls, rt += rs)
            for (int k = trunc(l); k < trunc(rt); ++k) cells[size_t(y * pitch + k)] = 1;
    };
    const long long upper = std::min<long long>(row[1], bottom) - y, skip2 = std::max(-upper, 0ll);
    fill(upper);
    (tb > mb ? rt : l) = x[1] + float(skip2) * mb, (tb > mb ? rs : ls) = mb;
    fill(std::min(row[2] - row[1] - skip2, bottom - y));
}

// The footprint standing at (x, y, z) added cell by cell to a copy of the map, or taken off it,
// and the marks of the tiles its clipped rectangle touches.
inline void changereference(const ground& g, std::vector<uint8_t>& cells, std::vector<uint8_t>& dirty,
                     const shadowmask& m, int x, int y, int z, bool take) {
    const toolkit& t = *g.owner;
    const int width = g.shadows->width, height = g.shadows->height;
    const int left = ((x - ((t.shadowslopex * y) >> 8)) >> t.shadowshift) + 1 + m.x;
    const int top = ((z - ((t.shadowslopez * y) >> 8)) >> t.shadowshift) + 1 + m.y;
    for (int r = 0; r < m.usedheight; ++r)
        for (int c = 0; c < m.usedwidth; ++c) {
            const int col = left + c, row = top + r;
            const long at = long(r) * m.width + c;
            if (col >= 1 && col <= width - 2 && row >= 1 && row <= height - 2 && at >= 0 && at < m.cells.length())
                cells[size_t(row * width + col)] += uint8_t(take ? -m.cells[at] : m.cells[at]);
        }
    auto clip = [](int& first, int& length, int cells) {
        if (first < 1) length -= 1 - first, first = 1;
        if (first + length - 1 > cells - 2) length = cells - 1 - first;
    };
    int l = left, w = m.usedwidth, tp = top, h = m.usedheight;
    clip(l, w, width), clip(tp, h, height);
    for (int a = (l - 1) >> 4; a <= (l + w - 2) >> 4; ++a)
        for (int b = (tp - 1) >> 4; b <= (tp + h - 2) >> 4; ++b)
            if (a * g.sizex + b >= 0 && a * g.sizex + b < int(dirty.size())) dirty[size_t(a * g.sizex + b)] = 1;
}

// The slice of tile (x, z), `cellspertile` rows of as many bytes: 255 less 9 for each shaded one of
// the cell and its four neighbours in the map.
inline std::vector<uint8_t> slicereference(const groundshadows& s, int x, int z) {
    const int n = s.cellspertile;
    std::vector<uint8_t> out;
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i) {
            const int col = 1 + x * n + i, row = 1 + z * n + j;
            int k = 0;
            for (auto [dc, dr] : {std::pair{0, 0}, {-1, 0}, {1, 0}, {0, -1}, {0, 1}})
                k += s.cells[(row + dr) * s.width + col + dc] != 0;
            out.push_back(uint8_t(255 - 9 * k));
        }
    return out;
}

}  // namespace shadowreference
