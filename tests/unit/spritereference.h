// Scalar references of the sprite pixel rules, channel by channel from their definitions, and of
// the scaled draw's sampling. The SIMD draws must match them bit for bit.
#pragma once
#include <algorithm>
#include <cstdint>

#include "sprite/spriterows.h"
#include "toolkit/spanmask.h"

namespace spritereference {

inline uint32_t channel(uint32_t v, int c) { return v >> (8 * c) & 0xFF; }

// A 16-bit value to a byte: 0x8000 and over count as negative and give 0; above 255 gives 255.
inline uint32_t packbyte(uint32_t v) {
    v &= 0xFFFF;
    return v >= 0x8000 ? 0 : std::min(v, 255u);
}

// The result of one pixel: tintmode `tint` with colour `c` on source `s`, written over `d` by
// `blend`. `group` says whether the pixel is in a group of four or a leftover.
inline uint32_t pixel(int tint, int blend, bool group, uint32_t s, uint32_t c, uint32_t d) {
    // Weight words: low half for blue and red, high half for green and alpha.
    int32_t w = static_cast<int32_t>(c) >> 24;
    uint32_t m = static_cast<uint32_t>(w) | static_cast<uint32_t>(w) << 16;
    uint32_t n = (m ^ 0xFFFF00FFu) << 8;
    uint32_t s2[4], t[4] = {0, 0, 0, 0};
    for (int ch = 0; ch < 4; ++ch) {
        uint32_t sc = channel(s, ch), cc = channel(c, ch);
        uint32_t mw = ch % 2 ? m >> 16 : m & 0xFFFF, nw = ch % 2 ? n >> 16 : n & 0xFFFF;
        switch (tint) {
            case 0: s2[ch] = (sc * cc) >> 8; break;
            case 1: s2[ch] = sc; break;
            case 2:
                s2[ch] = ((sc << 8) * mw) >> 16;
                t[ch] = (cc * nw) >> 16;
                break;
            case 3: s2[ch] = std::min(255u, sc + cc); break;
            default: s2[ch] = sc > cc ? sc - cc : 0; break;
        }
    }
    uint32_t out = 0;
    if (blend == 1) {
        // The weight tint blends the unpacked 16-bit sum; products keep 16 bits.
        uint32_t v[4];
        for (int ch = 0; ch < 4; ++ch) v[ch] = (s2[ch] + t[ch]) & 0xFFFF;
        uint32_t a = v[3];
        uint32_t keep = ((group ? 256 : 255) - a) & 0xFFFF;
        for (int ch = 0; ch < 4; ++ch) {
            uint32_t sum = ((v[ch] * a & 0xFFFF) >> 8) + ((channel(d, ch) * keep & 0xFFFF) >> 8);
            out |= packbyte(sum) << (8 * ch);
        }
        return out;
    }
    for (int ch = 0; ch < 4; ++ch) {
        uint32_t b = s2[ch];
        if (tint == 2) b = group ? (packbyte(s2[ch]) + packbyte(t[ch])) & 0xFF : packbyte(s2[ch]);
        if (blend == 2) b = std::min(255u, b + channel(d, ch));
        out |= b << (8 * ch);
    }
    return out;
}

// A target as the draws see it.
struct view {
    uint32_t* colour;
    const float* depth;  // null: no depth test
    int width;
    int clip[4];
};

// The own-size draw: the image at (x, y) moved by its pads, cut to the clip, each row in groups of
// four from its clipped left end.
inline void ownsize(const view& t, const spriteimage& image, long long x, long long y, int tint, uint32_t colour,
                    int blend) {
    long long X = x + image.padleft, Y = y + image.padtop;
    long long left = std::max<long long>(X, t.clip[0]), right = std::min<long long>(X + image.width, t.clip[2]);
    for (long long py = std::max<long long>(Y, t.clip[1]); py < std::min<long long>(Y + image.height, t.clip[3]); ++py)
        for (long long px = left; px < right; ++px) {
            uint32_t& d = t.colour[py * t.width + px];
            d = pixel(tint, blend, px - left < ((right - left) & ~3), image.pixels[(py - Y) * image.pitch + px - X],
                      colour, d);
        }
}

// The plain alpha-blended draw through a span mask: each row runs where the image, the clip
// rectangle, the mask's rectangle and the row's span overlap, in groups from the run's own start.
inline void throughmask(const view& t, const spriteimage& image, long long x, long long y, const spanmask& mask,
                        long long maskx, long long masky) {
    const long long X = x + image.padleft, Y = y + image.padtop, rows = mask.rows();
    const long long left = std::max<long long>(t.clip[0], maskx);
    const long long right = std::min<long long>(t.clip[2], maskx + mask.width);
    const long long bottom = std::min<long long>(t.clip[3], masky + mask.height);
    for (long long py = std::max<long long>(t.clip[1], masky); py < bottom; ++py) {
        long long row = py - Y, maskrow = py - masky;
        if (row < 0 || row >= image.height || maskrow >= rows) continue;
        long long span = maskx + mask.offsets[maskrow];
        long long from = std::max({left, X, span});
        long long to = std::min({right, X + image.width, span + mask.widths[maskrow]});
        for (long long px = from; px < to; ++px) {
            uint32_t& d = t.colour[py * t.width + px];
            d = pixel(1, 1, px - from < ((to - from) & ~3), image.pixels[row * image.pitch + px - X], 0, d);
        }
    }
}

// The scaled draw step by step: pads scaled in proportion, sampling restarted at the whole part
// of the clipped distance, group lanes advanced by float addition, leftovers by multiplication
// (by division for the plain tint with depth), depth passing when z <= depth. Positions that
// carry past the image's last column or row sample that column or row.
inline void scaled(const view& t, const uint32_t* pixels, int width, int height, long pitch, const int pads[4],
                   int x, int y, int w, int h, int tint, uint32_t colour, int blend, float z) {
    using int64 = long long;
    int fullwidth = pads[0] + pads[2] + width, fullheight = pads[1] + pads[3] + height;
    float ax = float(w) / float(fullwidth), ay = float(h) / float(fullheight);
    int l = int(float(pads[0]) * ax), tp = int(float(pads[1]) * ay);
    int r = int(float(pads[2]) * ax), b = int(float(pads[3]) * ay);
    int64 dw = int64{w} - (l + r), dh = int64{h} - (tp + b), X = int64{x} + l, Y = int64{y} + tp;
    float fx = float(dw) / float(width), fy = float(dh) / float(height);
    float ustep = 1 / fx, vstep = 1 / fy;
    int ustart = std::clamp(int(float(std::max<int64>(0, t.clip[0] - X)) * ustep), 0, width - 1);
    int vstart = std::clamp(int(float(std::max<int64>(0, t.clip[1] - Y)) * vstep), 0, height - 1);
    int64 sx = std::max<int64>(X, t.clip[0]), sy = std::max<int64>(Y, t.clip[1]);
    int64 n = std::min<int64>(dw - (sx - X), t.clip[2] - sx), rows = std::min<int64>(dh - (sy - Y), t.clip[3] - sy);
    float v = 0;
    for (int64 j = 0; j < rows; ++j, v += vstep) {
        const uint32_t* src = pixels + std::min(vstart + int(v), height - 1) * pitch + ustart;
        uint32_t* dst = t.colour + (sy + j) * t.width + sx;
        const float* depth = t.depth ? t.depth + (sy + j) * t.width + sx : nullptr;
        float lanes[4] = {0 * ustep, 1 * ustep, 2 * ustep, 3 * ustep};
        for (int i = 0; i < n; ++i) {
            bool group = i < (n & ~3);
            float u = group ? lanes[i % 4] : depth && tint == 1 ? float(i) / fx : float(i) * ustep;
            if (group && i % 4 == 3)
                for (float& lane : lanes) lane += 4 * ustep;
            if (depth && !(z <= depth[i])) continue;
            dst[i] = pixel(tint, blend, group, src[std::min(int(u), width - 1 - ustart)], colour, dst[i]);
        }
    }
}

}  // namespace spritereference
