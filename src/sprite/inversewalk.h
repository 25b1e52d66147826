// The row walk of a sprite drawn onto a parallelogram. Each row of the bounding box is narrowed
// once, by integer division, to the pixels whose source position lies inside the image (and, with
// a span mask, inside the mask's span of that row); the run left over samples the image by
// stepping the 20.12 position and hands each pixel to the draw's pixel operation. There is one
// loop per sign case of the column steps, so no pixel tests anything.
#pragma once
#include <emmintrin.h>

#include <algorithm>
#include <cstdint>

#include "sprite/parallelogram.h"

namespace inversewalk {

using int64 = long long;

// What is left of a row: the current pixel's source position and buffer index, and minus the
// count of pixels still to draw. Narrowing is done in 64 bits so that no skip can wrap around
// into the image.
struct run {
    int64 u, v, pos, n;
    int du, dv;

    // Skips k pixels; false when that leaves nothing of the run.
    bool skip(int64 k) {
        if (k >= -n) return false;
        u += k * du;
        v += k * dv;
        pos += k;
        n += k;
        return true;
    }
};

// Keeps the pixels whose position a, stepping by d of sign S, satisfies 0 <= a < size; false when
// none are left.
template <int S>
[[gnu::always_inline]] inline bool narrow(run& r, int64 run::*a, int d, int64 size) {
    if constexpr (S > 0) {
        if (r.*a < 0 && !r.skip((d - r.*a - 1) / d)) return false;
        r.n = std::max(r.n, (r.*a - size - d + 1) / d);
    } else if constexpr (S < 0) {
        if (r.*a - size >= 0 && !r.skip((d - (r.*a - size)) / d)) return false;
        r.n = std::max(r.n, (r.*a - d) / d);
    } else {
        if (r.*a < 0 || r.*a >= size) return false;
    }
    return r.n < 0;
}

// The image the walk samples: pixel (u >> 12, v >> 12), rows `pitch` apart.
struct source {
    const uint32_t* pixels;
    long pitch;
    int64 usize, vsize;  // width and height in 20.12, kept within the reach of a 32-bit position
    bool intarget;       // the image lies in the target itself
};

// Draws count pixels from dst on, four at a time through op.four and the rest through op.one.
// Four at a time reads four samples before it writes, so an image that lies in the target (a
// sprite drawn into itself) goes one pixel at a time, each written before the next is read.
// The positions stay inside the image for every pixel drawn, so 32 bits hold them.
template <int SU, int SV, class Op>
[[gnu::always_inline]] inline void span(uint32_t* dst, int count, int u, int v, int du, int dv, const source& src,
                                        Op& op) {
    auto next = [&] {
        uint32_t s = src.pixels[long(v >> 12) * src.pitch + (u >> 12)];
        if constexpr (SU != 0) u += du;
        if constexpr (SV != 0) v += dv;
        return s;
    };
    const int groups = src.intarget ? 0 : count & ~3;
    int i = 0;
    for (; i < groups; i += 4) {
        int s0 = int(next()), s1 = int(next()), s2 = int(next()), s3 = int(next());
        op.four(dst + i, _mm_setr_epi32(s0, s1, s2, s3));
    }
    for (; i < count; ++i) op.one(dst + i, next());
}

enum class maskrow { draw, skip, end };

// No mask: every row of the box is walked.
struct nomask {
    maskrow row(int) const { return maskrow::draw; }
    bool narrow(run&, int, int64) const { return true; }
};

// The target and what the rows need of it.
struct target {
    uint32_t* buffer;
    int width;
    int64 size;  // pixels in the buffer
};

template <int SU, int SV, class Mask, class Op>
void walkrows(const parallelogram& p, const source& src, const target& t, const Mask& mask, Op& op) {
    int urow = p.urow, vrow = p.vrow;  // wrap in 32 bits from row to row
    int64 rowstart = p.rowstart;
    for (int j = 0; j < p.rows; ++j, urow += p.duy, vrow += p.dvy, rowstart += t.width) {
        maskrow state = mask.row(j);
        if (state == maskrow::end) break;
        if (state == maskrow::skip) continue;
        run r{urow, vrow, rowstart, -int64{p.columns}, p.du, p.dv};
        if (!narrow<SU>(r, &run::u, p.du, src.usize) || !narrow<SV>(r, &run::v, p.dv, src.vsize)) continue;
        if (!mask.narrow(r, j, r.pos - rowstart)) continue;
        // The first index is a float sum, which on targets past 2^24 pixels may land a pixel to
        // the right; the last row then must not reach past the buffer.
        r.n = std::max(r.n, r.pos - t.size);
        if (r.n < 0) span<SU, SV>(t.buffer + r.pos, int(-r.n), int(r.u), int(r.v), p.du, p.dv, src, op);
    }
}

constexpr int sign(int v) { return (v > 0) - (v < 0); }

template <int SU, class Mask, class Op>
void walkacross(const parallelogram& p, const source& src, const target& t, const Mask& mask, Op& op) {
    switch (sign(p.dv)) {
        case 1: walkrows<SU, 1>(p, src, t, mask, op); break;
        case 0: walkrows<SU, 0>(p, src, t, mask, op); break;
        default: walkrows<SU, -1>(p, src, t, mask, op); break;
    }
}

}  // namespace inversewalk

// Walks the parallelogram p over a target of `bufferheight` rows of `bufferwidth` pixels, handing
// the pixels inside the image (and the mask) to op. The loop is chosen by the signs of the steps.
template <class Mask, class Op>
void walkparallelogram(const parallelogram& p, const spriteimage& image, uint32_t* buffer, int bufferwidth,
                       int bufferheight, const Mask& mask, Op& op) {
    using namespace inversewalk;
    constexpr int64 reach = int64{1} << 31;
    const target t{buffer, bufferwidth, int64{bufferwidth} * bufferheight};
    auto address = [](const uint32_t* p) { return reinterpret_cast<uintptr_t>(p); };
    const bool intarget = address(image.pixels) < address(buffer + t.size) &&
                          address(buffer) < address(image.pixels + int64{image.height} * image.pitch);
    const source src{image.pixels, image.pitch, std::min(int64{image.width} << 12, reach),
                     std::min(int64{image.height} << 12, reach), intarget};
    switch (sign(p.du)) {
        case 1: walkacross<1>(p, src, t, mask, op); break;
        case 0: walkacross<0>(p, src, t, mask, op); break;
        default: walkacross<-1>(p, src, t, mask, op); break;
    }
}
