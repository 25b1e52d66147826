// The row loops of the sprite draws, one member per (tintmode, blendmode) pair in each family,
// written once over the lane type: groups of four pixels, or eight at a time on processors that
// have the wider registers, give the same bits. Each width's tables are built in a file of their
// own, the eight-pixel one for AVX2 alone.
#pragma once
#include <algorithm>
#include <array>

#include "pixel/floatlanes.h"
#include "pixel/lanewidth.h"
#include "sprite/rules.h"
#include "sprite/sprite.h"
#include "toolkit/toolkit.h"

// A scaled draw after clipping: where it writes and how it samples.
struct scaledrows {
    uint32_t* target;        // first pixel written
    const float* depth;      // the same position in the depth buffer, for the depth family
    long pitch;              // of the target and depth buffer
    int n, rows;             // pixels per row, rows
    const uint32_t* source;  // column ustart of the image's first row
    long sourcepitch;
    int vstart, lastrow;     // first source row; the image's last row
    float fx, ustep, vstep;
    float lastcolumn;        // the last column right of ustart, as a float
    float z;
};

// The truncated position, kept at or below `last` (NaN counts as beyond it): float steps that
// carry an index past the image stop at its edge instead of reading outside it.
[[gnu::always_inline]] inline int sampleindex(float position, float last) {
    return _mm_cvttss_si32(_mm_min_ss(_mm_set_ss(position), _mm_set_ss(last)));
}

using ownsizedraw = void (*)(uint32_t* dst, long dstpitch, const uint32_t* src, long srcpitch, int n, int rows,
                             const tintconstants& k);
using scaleddraw = void (*)(const scaledrows& p, const tintconstants& k);

struct rowtables {
    std::array<ownsizedraw, spriterules.size()> ownsize;
    std::array<scaleddraw, spriterules.size()> scaled, scaledwithdepth;
};

// The tables of each width; the eight-pixel ones run only where widestlanes() says so.
extern const rowtables narrowrows, widerows;
inline const rowtables& rowtablesof(lanewidth lanes) { return lanes == lanewidth::eight ? widerows : narrowrows; }

// The tables of the given width for drawing this image into this target. A wide pass reads the
// source of its second group of four before it writes its first, so an image that lies in the
// target itself (a sprite drawn into itself as the off-screen target) is drawn four pixels at a
// time, as the rows are defined.
const rowtables& rowsfor(const toolkit& t, const spriteimage& image, lanewidth lanes);

template <class V>
struct spriterows {
    // n pixels from the left end: groups while they fit, then leftovers.
    template <pixelrule R>
    [[gnu::always_inline]] static inline void pixelrow(uint32_t* dst, const uint32_t* src, int n,
                                                      const tintconstants& k) {
        int i = 0;
        if constexpr (V::pixels > 4)
            for (; i + V::pixels <= n; i += V::pixels)
                V::store(dst + i, pixelop<V, R, true>(V::load(src + i), V::load(dst + i), k));
        for (; i + 4 <= n; i += 4)
            lanes4::store(dst + i, pixelop<lanes4, R, true>(lanes4::load(src + i), lanes4::load(dst + i), k));
        for (; i < n; ++i) dst[i] = leftoverpixel<R>(src[i], dst[i], k);
    }

    template <pixelrule R>
    static void ownsize(uint32_t* dst, long dstpitch, const uint32_t* src, long srcpitch, int n, int rows,
                        const tintconstants& colour) {
        const tintconstants k = colour;  // a local copy, which the stores cannot alias
        for (int j = 0; j < rows; ++j, dst += dstpitch, src += srcpitch) pixelrow<R>(dst, src, n, k);
    }

    // Every row samples the same columns, so a row of up to `stretch` pixels works them out once
    // per draw; a longer row does so a stretch at a time, row by row, so that the pixels are still
    // written in row order. Groups take their four lanes advanced by float addition, leftovers
    // each its own product.
    static constexpr int stretch = 512;

    template <bool depthtest>
    struct scaled {
        template <pixelrule R>
        static void draw(const scaledrows& p, const tintconstants& colour) {
            using F = floats4;
            const tintconstants k = colour;
            const int groupend = p.n & ~3;
            const F::type first = F::mul(F::setr(0.0f, 1.0f, 2.0f, 3.0f), F::set(p.ustep));
            alignas(16) int column[stretch];
            F::type lanes = first;
            bool once = p.n <= stretch;
            if (once) columns<R>(column, 0, std::min(stretch, p.n), groupend, lanes, p);
            uint32_t* dst = p.target;
            const float* depth = p.depth;
            float v = 0.0f;
            for (int j = 0; j < p.rows; ++j, dst += p.pitch, depth += depthtest ? p.pitch : 0, v += p.vstep) {
                int row = p.vstart + sampleindex(v, static_cast<float>(p.lastrow - p.vstart));
                const uint32_t* src = p.source + row * p.sourcepitch;
                lanes = first;
                for (int from = 0; from < p.n; from += stretch) {
                    int count = std::min(stretch, p.n - from), groups = std::clamp(groupend - from, 0, count);
                    if (!once) columns<R>(column, from, count, groupend, lanes, p);
                    int i = 0;
                    if constexpr (V::pixels > 4)
                        for (; i + V::pixels <= groups; i += V::pixels)
                            group<V, R>(dst + from, depth, from, src, column, i, p.z, k);
                    for (; i < groups; i += 4) group<lanes4, R>(dst + from, depth, from, src, column, i, p.z, k);
                    for (; i < count; ++i)
                        if (!depthtest || p.z <= depth[from + i])
                            dst[from + i] = leftoverpixel<R>(src[column[i]], dst[from + i], k);
                }
            }
        }

        // The columns of pixels from .. from + count of a row.
        template <pixelrule R>
        [[gnu::always_inline]] static inline void columns(int* column, int from, int count, int groupend,
                                                         floats4::type& lanes, const scaledrows& p) {
            using F = floats4;
            const F::type limit = F::set(p.lastcolumn);
            const F::type step = F::set(4.0f * p.ustep);
            int groups = std::clamp(groupend - from, 0, count), i = 0;
            for (; i < groups; i += 4, lanes = F::add(lanes, step))
                _mm_store_si128(reinterpret_cast<__m128i*>(column + i), F::truncate(F::min(lanes, limit)));
            for (; i < count; ++i) {
                // The plain members with depth divide by the scale where the others multiply by
                // its reciprocal; the two differ at some integer boundaries.
                float at = static_cast<float>(from + i);
                float u = depthtest && R.get<tintmode>() == tintmode::plain ? at / p.fx : at * p.ustep;
                column[i] = sampleindex(u, p.lastcolumn);
            }
        }

        // Pixels from + i onward of a row; `column` starts at pixel `from`.
        template <class W, pixelrule R>
        [[gnu::always_inline]] static inline void group(uint32_t* dst, const float* depth, int from,
                                                       const uint32_t* src, const int* column, int i, float z,
                                                       const tintconstants& k) {
            auto d = W::load(dst + i);
            if constexpr (depthtest) {
                // Groups with no passing pixel read nothing of the source; the others keep the
                // buffer where they fail.
                auto pass = W::depthpass(depth + from + i, z);
                if (!W::any(pass)) return;
                W::store(dst + i, W::select(pass, pixelop<W, R, true>(W::gather(src, column + i), d, k), d));
            } else {
                W::store(dst + i, pixelop<W, R, true>(W::gather(src, column + i), d, k));
            }
        }
    };

    static constexpr rowtables tables() {
        return {dispatchtable<spriterules>([]<pixelrule R>() { return &spriterows::ownsize<R>; }),
                dispatchtable<spriterules>([]<pixelrule R>() { return &scaled<false>::template draw<R>; }),
                dispatchtable<spriterules>([]<pixelrule R>() { return &scaled<true>::template draw<R>; })};
    }
};
