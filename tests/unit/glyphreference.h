// Glyph drawing written plainly from its definition, channel by channel and step by step, for
// the fast paths to be held against.
#pragma once
#include <cstdint>
#include <functional>
#include <vector>

#include "sprite/glyphdraw.h"

namespace glyphreference {

// Each colour channel: the old value weighted by `dw`, the colour by `cw`, each product truncated
// apart; alpha 0.
inline uint32_t weighted(uint32_t d, uint32_t col, uint32_t dw, uint32_t cw) {
    uint32_t out = 0;
    for (int shift = 0; shift < 24; shift += 8)
        out |= ((((d >> shift & 0xFF) * dw) >> 8) + (((col >> shift & 0xFF) * cw) >> 8)) << shift;
    return out;
}

// What a set byte `c` makes of the pixel `d` in each form.
inline uint32_t pixel(glyphform form, uint32_t d, uint8_t c, uint32_t colour, const std::vector<uint32_t>& palette) {
    uint32_t a = colour >> 24;
    switch (form) {
    case glyphform::coverage: return weighted(d, colour, 256 - c, c);
    case glyphform::fade: return weighted(d, colour, 255 - a, a);
    case glyphform::colour: return colour;
    case glyphform::palette: return palette[c];
    }
    return d;
}

struct target {
    std::vector<uint32_t> pixels;
    int width, height;
    int clip[4];  // left, top, right, bottom
};

struct mask {
    std::vector<int> offsets, widths;
    int x, y;
};

using visitor = std::function<void(long long at, long long src)>;

inline bool inside(const target& t, long long x, long long y) {
    return x >= t.clip[0] && x < t.clip[2] && y >= t.clip[1] && y < t.clip[3];
}

// Visits the buffer index and byte index of each pixel that the glyph, w by h at (dx, dy), covers
// inside the clip: the clip steps move the first byte, the row ends and the gaps together, so
// every pixel they leave reads the byte of its own row and column. Through a mask, only the
// mask's rows are drawn, and in each the columns that, counted from `origin`, lie in the span
// [st, st + len): narrowing the run from either side comes to exactly that.
inline void walk(const target& t, int w, int h, int dx, int dy, const visitor& visit, const mask* m = nullptr,
                 int origin = 0) {
    for (long long j = 0; j < h; ++j)
        for (long long i = 0; i < w; ++i) {
            long long bx = dx + i, by = dy + j, r = m ? by - m->y : 0;
            if (!inside(t, bx, by)) continue;
            if (m && (r < 0 || r >= static_cast<long long>(m->offsets.size()))) continue;
            long long st = m ? static_cast<long long>(m->offsets[r]) + m->x : 0;
            if (m && (bx - origin < st || bx - origin >= st + m->widths[r])) continue;
            visit(by * t.width + bx, j * w + i);
        }
}

// The turned glyph from its mapping: column i and row j show glyph row i, column w - 1 - j.
inline void turnwalk(const target& t, int w, int h, int x, int y, const visitor& visit) {
    for (long long j = 0; j < w; ++j)
        for (long long i = 0; i < h; ++i) {
            long long bx = static_cast<long long>(x) + i, by = static_cast<long long>(y) + j;
            if (inside(t, bx, by)) visit(by * t.width + bx, i * w + (w - 1 - j));
        }
}

}  // namespace glyphreference
