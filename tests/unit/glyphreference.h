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

// The clip steps as the drawing defines them: a rectangle of w by h at (x, y), the first byte
// `src`, and the gaps added after each row to the byte and buffer positions.
struct clipped {
    long long x, y, w, h, src, srcgap, rowgap;
};

inline clipped clipsteps(const target& t, int w, int h, int dx, int dy) {
    clipped c{dx, dy, w, h, 0, 0, t.width - static_cast<long long>(w)};
    if (c.y < t.clip[1]) {
        long long k = t.clip[1] - c.y;
        c.y = t.clip[1];
        c.h -= k;
        c.src = k * w;
    }
    if (c.y + c.h > t.clip[3]) c.h = t.clip[3] - c.y;
    if (c.x < t.clip[0]) {
        long long k = t.clip[0] - c.x;
        c.x = t.clip[0];
        c.w -= k;
        c.src += k;
        c.srcgap = k;
        c.rowgap += k;
    }
    if (c.x + c.w > t.clip[2]) {
        long long k = c.x + c.w - t.clip[2];
        c.w -= k;
        c.srcgap += k;
        c.rowgap += k;
    }
    return c;
}

using visitor = std::function<void(long long at, long long src)>;

// Visits the buffer index and byte index of each pixel that the glyph covers inside the clip.
inline void walk(const target& t, int w, int h, int dx, int dy, const visitor& visit) {
    clipped c = clipsteps(t, w, h, dx, dy);
    if (c.w < 1 || c.h < 1) return;
    long long at = c.y * t.width + c.x, src = c.src;
    for (long long j = 0; j < c.h; ++j, src += c.srcgap, at += c.rowgap)
        for (long long i = 0; i < c.w; ++i) visit(at++, src++);
}

struct mask {
    std::vector<int> offsets, widths;
    int x, y;
};

// The same walk narrowed to the mask: its rows only, and in each the run that the mask row's
// span leaves, with the span's columns counted from `origin`.
inline void maskwalk(const target& t, int w, int h, int dx, int dy, const mask& m, int origin, const visitor& visit) {
    clipped c = clipsteps(t, w, h, dx, dy);
    if (c.w < 1 || c.h < 1) return;
    long long rows = static_cast<long long>(m.offsets.size());
    long long at = c.y * t.width + c.x, src = c.src;
    for (long long y = c.y; y < c.y + c.h; ++y, at += c.w + c.rowgap, src += c.w + c.srcgap) {
        long long r = y - m.y;
        if (r < 0 || r >= rows) continue;
        long long st = static_cast<long long>(m.offsets[r]) + m.x, len = m.widths[r], px = c.x - origin;
        long long first, count;
        if (st < px) {
            if (px - st >= len) continue;
            len -= px - st;
            first = 0;
            count = c.w;
        } else {
            long long o = st - px;
            if (o >= c.w) continue;
            first = o;
            count = c.w - o;
        }
        if (count > len) count = len;
        for (long long i = first; i < first + count; ++i) visit(at + i, src + i);
    }
}

// The turned glyph from its mapping: column i and row j show glyph row i, column w - 1 - j.
inline void turnwalk(const target& t, int w, int h, int x, int y, const visitor& visit) {
    for (long long j = 0; j < w; ++j)
        for (long long i = 0; i < h; ++i) {
            long long bx = x + i, by = static_cast<long long>(y) + j;
            if (bx < t.clip[0] || bx >= t.clip[2] || by < t.clip[1] || by >= t.clip[3]) continue;
            visit(by * t.width + bx, i * w + (w - 1 - j));
        }
}

}  // namespace glyphreference
