// The row loops of the sprite draws, one member per (tintmode, blendmode) pair in each family,
// written once over the lane type: groups of four pixels, or eight at a time on processors that
// have the wider registers, give the same bits.
#pragma once
#include <algorithm>
#include <array>

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
    std::array<ownsizedraw, pixelrules.size()> ownsize;
    std::array<scaleddraw, pixelrules.size()> scaled, scaledwithdepth;
};

// The tables the draws use: the widest this processor runs. Tests may point it at another.
extern const rowtables* spriterowtables;
extern const rowtables narrowrows;
const rowtables* widerows();  // null where the processor lacks the wider registers

// The tables for drawing this image into this target. A wide pass reads the source of its second
// group of four before it writes its first, so an image that lies in the target itself (a sprite
// drawn into itself as the off-screen target) is drawn four pixels at a time, as the rows are
// defined.
const rowtables& rowsfor(const toolkit& t, const spriteimage& image);

template <class V>
struct spriterows {
    // n pixels from the left end: groups while they fit, then leftovers.
    template <tintmode T, blendmode B>
    [[gnu::always_inline]] static inline void pixelrow(uint32_t* dst, const uint32_t* src, int n,
                                                      const tintconstants& k) {
        int i = 0;
        if constexpr (V::pixels > 4)
            for (; i + V::pixels <= n; i += V::pixels)
                V::store(dst + i, pixelop<V, T, B, true>(V::load(src + i), V::load(dst + i), k));
        for (; i + 4 <= n; i += 4)
            lanes4::store(dst + i, pixelop<lanes4, T, B, true>(lanes4::load(src + i), lanes4::load(dst + i), k));
        for (; i < n; ++i) dst[i] = leftoverpixel<T, B>(src[i], dst[i], k);
    }

    template <tintmode T, blendmode B>
    struct ownsize {
        static void draw(uint32_t* dst, long dstpitch, const uint32_t* src, long srcpitch, int n, int rows,
                         const tintconstants& colour) {
            const tintconstants k = colour;  // a local copy, which the stores cannot alias
            for (int j = 0; j < rows; ++j, dst += dstpitch, src += srcpitch) pixelrow<T, B>(dst, src, n, k);
        }
    };

    // Every row samples the same columns, so a row of up to `stretch` pixels works them out once
    // per draw; a longer row does so a stretch at a time, row by row, so that the pixels are still
    // written in row order. Groups take their four lanes advanced by float addition, leftovers
    // each its own product.
    static constexpr int stretch = 512;

    template <bool depthtest>
    struct scaled {
        template <tintmode T, blendmode B>
        struct member {
            static void draw(const scaledrows& p, const tintconstants& colour) {
                const tintconstants k = colour;
                const int groupend = p.n & ~3;
                const __m128 first = _mm_mul_ps(_mm_setr_ps(0.0f, 1.0f, 2.0f, 3.0f), _mm_set1_ps(p.ustep));
                alignas(16) int column[stretch];
                __m128 lanes = first;
                bool once = p.n <= stretch;
                if (once) columns<T>(column, 0, std::min(stretch, p.n), groupend, lanes, p);
                uint32_t* dst = p.target;
                const float* depth = p.depth;
                float v = 0.0f;
                for (int j = 0; j < p.rows; ++j, dst += p.pitch, depth += depthtest ? p.pitch : 0, v += p.vstep) {
                    int row = p.vstart + sampleindex(v, static_cast<float>(p.lastrow - p.vstart));
                    const uint32_t* src = p.source + row * p.sourcepitch;
                    lanes = first;
                    for (int from = 0; from < p.n; from += stretch) {
                        int count = std::min(stretch, p.n - from), groups = std::clamp(groupend - from, 0, count);
                        if (!once) columns<T>(column, from, count, groupend, lanes, p);
                        int i = 0;
                        if constexpr (V::pixels > 4)
                            for (; i + V::pixels <= groups; i += V::pixels)
                                group<V, T, B>(dst + from, depth, from, src, column, i, p.z, k);
                        for (; i < groups; i += 4) group<lanes4, T, B>(dst + from, depth, from, src, column, i, p.z, k);
                        for (; i < count; ++i)
                            if (!depthtest || p.z <= depth[from + i])
                                dst[from + i] = leftoverpixel<T, B>(src[column[i]], dst[from + i], k);
                    }
                }
            }
        };

        // The columns of pixels from .. from + count of a row.
        template <tintmode T>
        [[gnu::always_inline]] static inline void columns(int* column, int from, int count, int groupend,
                                                         __m128& lanes, const scaledrows& p) {
            const __m128 limit = _mm_set1_ps(p.lastcolumn);
            const __m128 step = _mm_set1_ps(4.0f * p.ustep);
            int groups = std::clamp(groupend - from, 0, count), i = 0;
            for (; i < groups; i += 4, lanes = _mm_add_ps(lanes, step))
                _mm_store_si128(reinterpret_cast<__m128i*>(column + i), _mm_cvttps_epi32(_mm_min_ps(lanes, limit)));
            for (; i < count; ++i) {
                // The plain members with depth divide by the scale where the others multiply by
                // its reciprocal; the two differ at some integer boundaries.
                float at = static_cast<float>(from + i);
                float u = depthtest && T == tintmode::plain ? at / p.fx : at * p.ustep;
                column[i] = sampleindex(u, p.lastcolumn);
            }
        }

        // Pixels from + i onward of a row; `column` starts at pixel `from`.
        template <class W, tintmode T, blendmode B>
        [[gnu::always_inline]] static inline void group(uint32_t* dst, const float* depth, int from,
                                                       const uint32_t* src, const int* column, int i, float z,
                                                       const tintconstants& k) {
            auto d = W::load(dst + i);
            if constexpr (depthtest) {
                // Groups with no passing pixel read nothing of the source; the others keep the
                // buffer where they fail.
                auto pass = W::depthpass(depth + from + i, z);
                if (!W::any(pass)) return;
                W::store(dst + i, W::select(pass, pixelop<W, T, B, true>(W::gather(src, column + i), d, k), d));
            } else {
                W::store(dst + i, pixelop<W, T, B, true>(W::gather(src, column + i), d, k));
            }
        }
    };

    static constexpr rowtables tables() {
        return {ruletable<spriterows::template ownsize>(), ruletable<spriterows::template scaled<false>::template member>(),
                ruletable<spriterows::template scaled<true>::template member>()};
    }
};
