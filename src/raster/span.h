// The span functions: one template over the axes of a span member and the lanes of its row body.
// Each row is a head, a body and a tail of four-pixel groups aligned to 16 bytes in the target;
// every interpolant starts at the row's first group and steps four pixels at a time, and only the
// depth test and the merge of a partly written group branch inside a row. With eight lanes the
// body goes two groups a pass from a 32-byte boundary of the colour buffer, each group with the
// values it has at four lanes.
#pragma once
#include <emmintrin.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <type_traits>

#include "pixel/floatlanes.h"
#include "raster/members.h"
#include "raster/texels.h"
#include "toolkit/toolkit.h"

namespace spanlanes {

[[gnu::always_inline]] inline float reciprocal(float x) { return _mm_cvtss_f32(_mm_rcp_ss(_mm_set_ss(x))); }

// Lanes `from` up to `to` of a group (0 <= from <= to <= 4), by one load.
[[gnu::always_inline]] inline __m128i lanesbetween(int from, int to) {
    alignas(64) static constexpr int32_t masks[5][5][4] = {
        {{0, 0, 0, 0}, {-1, 0, 0, 0}, {-1, -1, 0, 0}, {-1, -1, -1, 0}, {-1, -1, -1, -1}},
        {{}, {0, 0, 0, 0}, {0, -1, 0, 0}, {0, -1, -1, 0}, {0, -1, -1, -1}},
        {{}, {}, {0, 0, 0, 0}, {0, 0, -1, 0}, {0, 0, -1, -1}},
        {{}, {}, {}, {0, 0, 0, 0}, {0, 0, 0, -1}},
        {{}, {}, {}, {}, {0, 0, 0, 0}}};
    return _mm_load_si128(reinterpret_cast<const __m128i*>(masks[from][to]));
}

// z0 - b * dz in extended precision, rounded once to a float. b * dz is exact in a double, and
// so is the difference while dz is at most 2^25 times z0 (b is at most 3); a difference too small
// to reach z0's last bit leaves z0 in both precisions. Larger steps, infinities and NaN go through
// the extended type.
[[gnu::always_inline]] inline float firstz(float z0, float dz, int b) {
    const double step = static_cast<double>(b) * static_cast<double>(dz);
    if (__builtin_expect(!(std::fabs(dz) <= std::fabs(z0) * 33554432.0f), 0))
        return static_cast<float>(static_cast<long double>(z0) - static_cast<long double>(step));
    return static_cast<float>(static_cast<double>(z0) - step);
}

// A colour lane set's left and right halves as float lanes, the difference per pixel with the
// row's reciprocal width, and the start at the first pixel drawn. The start saturates to 0 to
// 65535 and the step to signed 16 bits; along the row the lanes wrap.
struct colourrow {
    __m128i start, step;  // both in each half of the 16-byte slot
    [[gnu::always_inline]] colourrow(__m128i lanes, __m128 inv, __m128 skip)
        : colourrow(_mm_cvtepi32_ps(_mm_unpacklo_epi16(lanes, _mm_setzero_si128())),
                    _mm_cvtepi32_ps(_mm_unpackhi_epi16(lanes, _mm_setzero_si128())), inv, skip) {}
    // The same from float ends, as the layer weights are held.
    [[gnu::always_inline]] colourrow(__m128 l, __m128 r, __m128 inv, __m128 skip) {
        __m128 d = _mm_mul_ps(_mm_sub_ps(r, l), inv);
        __m128i c = _mm_sub_epi32(_mm_cvttps_epi32(_mm_add_ps(l, _mm_mul_ps(skip, d))), _mm_set1_epi32(0x8000));
        __m128i dc = _mm_cvttps_epi32(d);
        start = _mm_add_epi16(_mm_packs_epi32(c, c), _mm_set1_epi16(-0x8000));
        step = _mm_packs_epi32(dc, dc);
    }
};

// Colour lanes of pixels 0 and 1 and of pixels 2 and 3 of a group.
struct colourgroup {
    __m128i low, high, step4;
    [[gnu::always_inline]] colourgroup() = default;
    // Lane j of the first group is the start at lane b, less b steps, plus j steps.
    [[gnu::always_inline]] colourgroup(const colourrow& row, int b) {
        alignas(64) static constexpr int16_t steps[4][2][8] = {
            {{0, 0, 0, 0, 1, 1, 1, 1}, {2, 2, 2, 2, 3, 3, 3, 3}},
            {{-1, -1, -1, -1, 0, 0, 0, 0}, {1, 1, 1, 1, 2, 2, 2, 2}},
            {{-2, -2, -2, -2, -1, -1, -1, -1}, {0, 0, 0, 0, 1, 1, 1, 1}},
            {{-3, -3, -3, -3, -2, -2, -2, -2}, {-1, -1, -1, -1, 0, 0, 0, 0}}};
        low = _mm_add_epi16(row.start,
                            _mm_mullo_epi16(_mm_load_si128(reinterpret_cast<const __m128i*>(steps[b][0])), row.step));
        high = _mm_add_epi16(row.start,
                             _mm_mullo_epi16(_mm_load_si128(reinterpret_cast<const __m128i*>(steps[b][1])), row.step));
        step4 = _mm_slli_epi16(row.step, 2);
    }
};

}  // namespace spanlanes

template <spanmember M>
struct spanrules {
    static constexpr shading kind = M.get<shading>();
    static constexpr depthmode depth = M.get<depthmode>();
    static constexpr bool colour = kind != shading::colourless;
    static constexpr bool textured = kind == shading::textured;
    static constexpr bool test = depth != depthmode::none;
    static constexpr bool zwrite = depth == depthmode::testwrite;
    static constexpr bool blend = M.get<blended>() == blended::yes;
    static constexpr bool add = M.get<addterm>() == addterm::yes;
    static constexpr bool mixed = M.get<layers>() == layers::triple || M.get<layers>() == layers::triplescaled;
    static constexpr bool moved = M.get<layers>() == layers::singlescaled || M.get<layers>() == layers::triplescaled;
    static constexpr bool shadow = M.get<shadowed>() == shadowed::yes;
    static constexpr int layercount = !textured ? 0 : mixed ? 3 : 1;
    static constexpr alphamode alpha = M.get<alphamode>();
    // The old colour is read for every group: the new one depends on it.
    static constexpr bool readsold = blend || alpha == alphamode::alpha;
    // Whether the final mask can have lanes off that the depth test and the span's ends left on.
    static constexpr bool texelmask = textured && alpha != alphamode::opaque;
};

// The interpolants of one row at its current group: one group of four, or under wider lanes two
// neighbouring groups side by side.
template <spanmember M, class V, class F>
struct spangroup {
    using rules = spanrules<M>;
    using ints = typename V::type;
    using floats = typename F::type;
    floats z;
    ints modulatelow, modulatehigh;  // colour lanes of pixels 0 and 1, of pixels 2 and 3
    ints addlow, addhigh;
    floats pairs[2];  // u, v of pixels 0 and 1, of pixels 2 and 3
    ints weightlow[2], weighthigh[2];  // w0 and w1 of pixels 0 and 1, of 2 and 3, in all four lanes of each

    // The group's pixels over its old colour; `keep` gets the lanes a texel leaves as they were.
    [[gnu::always_inline]] ints pixels(const texelsource& source, ints old, uint32_t blendfactor, ints& keep) const {
        if constexpr (rules::textured)
            return texelpixels<M, V, F>(source, z, pairs, modulatelow, modulatehigh, addlow, addhigh, weightlow,
                                        weighthigh, old, blendfactor, keep);
        if constexpr (rules::blend) {
            // The new colour weighs a, the old 256 - a, both as the high half of 16-bit products.
            const ints a = V::set32(static_cast<int>(blendfactor));
            const ints rest = V::set32(static_cast<int>(0x01000100u - blendfactor));
            const ints low = V::add16(V::mulhi16(modulatelow, a), V::mulhi16(V::unpacklo8(V::zero(), old), rest));
            const ints high = V::add16(V::mulhi16(modulatehigh, a), V::mulhi16(V::unpackhi8(V::zero(), old), rest));
            return V::packus16(low, high);
        }
        return V::packus16(V::shr16(modulatelow, 8), V::shr16(modulatehigh, 8));
    }
};

// What a row's interpolants gain from one group of four to the next.
struct spansteps {
    __m128 z, pairs;
    __m128i modulate, addcolour, weights[2];
};

template <spanmember M, class V, class F>
struct spanframe {
    using rules = spanrules<M>;
    using narrow = spangroup<M, lanes4, floats4>;
    using wide = spangroup<M, V, F>;

    [[gnu::always_inline]] static void advance(narrow& g, const spansteps& d) {
        g.z = _mm_add_ps(g.z, d.z);
        if constexpr (rules::colour) {
            g.modulatelow = _mm_add_epi16(g.modulatelow, d.modulate);
            g.modulatehigh = _mm_add_epi16(g.modulatehigh, d.modulate);
        }
        if constexpr (rules::add) {
            g.addlow = _mm_add_epi16(g.addlow, d.addcolour);
            g.addhigh = _mm_add_epi16(g.addhigh, d.addcolour);
        }
        if constexpr (rules::mixed)
            for (int k = 0; k < 2; ++k) {
                g.weightlow[k] = _mm_add_epi16(g.weightlow[k], d.weights[k]);
                g.weighthigh[k] = _mm_add_epi16(g.weighthigh[k], d.weights[k]);
            }
        if constexpr (rules::textured) {
            g.pairs[0] = _mm_add_ps(g.pairs[0], d.pairs);
            g.pairs[1] = _mm_add_ps(g.pairs[1], d.pairs);
        }
    }

    // Colour and depth of a group, aligned to its width in the colour buffer; the depth buffer
    // shares only the alignment of a group of four.
    template <class L>
    [[gnu::always_inline]] static typename L::type loadcolour(const uint32_t* p) {
        if constexpr (L::pixels == 4) return _mm_load_si128(reinterpret_cast<const __m128i*>(p));
        else return L::load(p);
    }
    template <class L>
    [[gnu::always_inline]] static void storecolour(uint32_t* p, typename L::type v) {
        if constexpr (L::pixels == 4) _mm_store_si128(reinterpret_cast<__m128i*>(p), v);
        else L::store(p, v);
    }
    template <class L>
    [[gnu::always_inline]] static typename L::type loaddepth(const float* q) {
        if constexpr (L::lanes == 4) return L::load(q);
        else return L::loadu(q);
    }
    template <class L>
    [[gnu::always_inline]] static void storedepth(float* q, typename L::type v) {
        if constexpr (L::lanes == 4) L::store(q, v);
        else L::storeu(q, v);
    }

    // One group, or two side by side, at colour pixel p and depth q; `lanes` is the part inside the
    // span, every lane in the body.
    template <bool whole, class G>
    [[gnu::always_inline]] static void group(const G& g, uint32_t* p, float* q, typename G::ints lanes,
                                             const texelsource& source, uint32_t blendfactor) {
        using L = std::conditional_t<std::is_same_v<G, narrow>, lanes4, V>;
        using FL = std::conditional_t<std::is_same_v<G, narrow>, floats4, F>;
        using ints = typename G::ints;
        constexpr int every = (1 << FL::lanes) - 1;
        ints pass = lanes;
        typename FL::type oldz = FL::zero();
        if constexpr (rules::test) {
            oldz = loaddepth<FL>(q);
            pass = FL::bits(FL::lessequal(g.z, oldz));
            if constexpr (!whole) pass = L::and_(pass, lanes);
            if (FL::signs(FL::ofbits(pass)) == 0) return;
        }
        if constexpr (!rules::colour) {
            if constexpr (rules::zwrite) storez<whole, FL>(q, g.z, oldz, pass);
            return;
        } else {
            ints old = rules::readsold ? loadcolour<L>(p) : L::zero();
            ints keep = L::zero();
            const ints pixels = g.pixels(source, old, blendfactor, keep);
            if constexpr (rules::texelmask) pass = L::andnot(keep, pass);
            if (whole && ((!rules::test && !rules::texelmask) || FL::signs(FL::ofbits(pass)) == every)) {
                storecolour<L>(p, pixels);
                if constexpr (rules::zwrite) storedepth<FL>(q, g.z);
                return;
            }
            if constexpr (!rules::readsold) old = loadcolour<L>(p);
            storecolour<L>(p, L::or_(L::and_(pass, pixels), L::andnot(pass, old)));
            if constexpr (rules::zwrite) storez<false, FL>(q, g.z, oldz, pass);
        }
    }

    template <bool whole, class FL>
    [[gnu::always_inline]] static void storez(float* q, typename FL::type z, typename FL::type oldz,
                                              decltype(FL::bits(z)) pass) {
        const typename FL::type on = FL::ofbits(pass);
        if (whole && FL::signs(on) == (1 << FL::lanes) - 1) return storedepth<FL>(q, z);
        storedepth<FL>(q, FL::or_(FL::and_(on, z), FL::andnot(on, oldz)));
    }

    [[gnu::always_inline]] static void next(uint32_t*& p, float*& q, int pixels) {
        if constexpr (rules::colour) p += pixels;
        if constexpr (rules::test) q += pixels;
    }

    // `pairs` pairs of body groups from the group that g holds, its colour 32-byte aligned, two
    // at a time; g is left at the group after them. Float interpolants still take one step a
    // group, so that every lane has the value a group at a time gives it.
    [[gnu::always_inline]] static void widebody(narrow& g, const spansteps& d, uint32_t*& p, float*& q, int pairs,
                                                const texelsource& source, uint32_t blendfactor) {
        // The ground's layered members are built at four lanes only.
        static_assert(!rules::mixed);
        if (pairs <= 0) return;
        wide w;
        const __m128i modulate2 = _mm_slli_epi16(d.modulate, 1), add2 = _mm_slli_epi16(d.addcolour, 1);
        if constexpr (rules::colour) {
            w.modulatelow = V::pair(g.modulatelow, _mm_add_epi16(g.modulatelow, d.modulate));
            w.modulatehigh = V::pair(g.modulatehigh, _mm_add_epi16(g.modulatehigh, d.modulate));
        }
        if constexpr (rules::add) {
            w.addlow = V::pair(g.addlow, _mm_add_epi16(g.addlow, d.addcolour));
            w.addhigh = V::pair(g.addhigh, _mm_add_epi16(g.addhigh, d.addcolour));
        }
        for (int k = 0; k < pairs; ++k) {
            const __m128 z = _mm_add_ps(g.z, d.z);
            w.z = F::pair(g.z, z);
            g.z = _mm_add_ps(z, d.z);
            if constexpr (rules::textured)
                for (int i = 0; i < 2; ++i) {
                    const __m128 uv = _mm_add_ps(g.pairs[i], d.pairs);
                    w.pairs[i] = F::pair(g.pairs[i], uv);
                    g.pairs[i] = _mm_add_ps(uv, d.pairs);
                }
            group<true>(w, p, q, V::set32(-1), source, blendfactor);
            next(p, q, 8);
            if constexpr (rules::colour) {
                w.modulatelow = V::add16(w.modulatelow, V::widen(modulate2));
                w.modulatehigh = V::add16(w.modulatehigh, V::widen(modulate2));
            }
            if constexpr (rules::add) {
                w.addlow = V::add16(w.addlow, V::widen(add2));
                w.addhigh = V::add16(w.addhigh, V::widen(add2));
            }
        }
        if constexpr (rules::colour) g.modulatelow = V::low(w.modulatelow), g.modulatehigh = V::low(w.modulatehigh);
        if constexpr (rules::add) g.addlow = V::low(w.addlow), g.addhigh = V::low(w.addhigh);
    }

    [[gnu::noinline]] static void draw(rasterspan* s) {
        if (s->rows <= 0) return;
        const rasterstatedata& state = rasterstate;
        uint32_t* const colourbase = state.targetcolour;
        float* const depthbase = state.targetdepth;
        const long stride = state.targetstride;
        // The right end of both rectangles, summed in 32 bits as the clip's width was taken: a
        // clip whose width wrapped then ends at its own right side, never past the target.
        const int viewx = state.viewport[0], clipx = state.rasterclip[0];
        const int right = std::min(viewx + state.viewport[2], clipx + state.rasterclip[2]);
        texelsource source{};
        // Only the layers and moves of the member are read.
        for (int k = 0; k < rules::layercount; ++k) {
            source.texels[k] = s->texels[k];
            if constexpr (rules::moved) {
                source.uvscale[k] = _mm_load_ps(s->uvscale[k]);
                source.uvoffset[k] = _mm_load_ps(s->uvoffset[k]);
            }
        }
        if constexpr (rules::shadow) {
            source.shadowmap = s->shadowmap;
            source.shadowshift = _mm_load_si128(reinterpret_cast<const __m128i*>(s->shadowshift));
        }
        const uint32_t blendfactor = rules::blend ? s->blendfactor : 0;

        __m128 edge = _mm_load_ps(s->edge);
        const __m128 edgestep = _mm_load_ps(s->edgestep);
        // Only the fields of the member are read.
        auto lanes = [](const auto* field, bool used) {
            return used ? _mm_load_si128(reinterpret_cast<const __m128i*>(field)) : _mm_setzero_si128();
        };
        __m128i modulate = lanes(s->modulate, rules::colour);
        const __m128i modulatestep = lanes(s->modulatestep, rules::colour);
        __m128i addcolour = lanes(s->addcolour, rules::add);
        const __m128i addcolourstep = lanes(s->addcolourstep, rules::add);
        __m128 uv = rules::textured ? _mm_load_ps(s->uv) : _mm_setzero_ps();
        const __m128 uvstep = rules::textured ? _mm_load_ps(s->uvstep) : _mm_setzero_ps();
        __m128 weights = rules::mixed ? _mm_load_ps(s->weights) : _mm_setzero_ps();
        const __m128 weightstep = rules::mixed ? _mm_load_ps(s->weightstep) : _mm_setzero_ps();
        int y = s->y;
        // The first pixel of the current row in each buffer; the clip's left end is tested once a
        // row, since a row rarely starts left of it.
        uint32_t* colourrow = rules::colour ? colourbase + y * stride : nullptr;
        float* depthrow = rules::test ? depthbase + y * stride : nullptr;
        const int left = std::max(viewx, clipx);
        const uintptr_t rowbytes = static_cast<uintptr_t>(stride) * 4;

        for (int row = 0; row < s->rows; ++row, ++y) {
            // Both ends by the current rounding; the right end is exclusive. The reciprocal is of the
            // unclipped width, so that a clipped row's values are the whole row's at the same columns,
            // reached from its left end by `skip` float steps.
            __m128i ends = _mm_cvtps_epi32(edge);
            int xl = _mm_cvtsi128_si32(ends), xr = _mm_cvtsi128_si32(_mm_unpackhi_epi64(ends, ends));
            const float inv = spanlanes::reciprocal(static_cast<float>(static_cast<int>(unsigned(xr) - unsigned(xl))));
            xr = std::min(xr, right);
            float skip = 0.0f;
            if (__builtin_expect(xl < left, 0)) {
                if (xl < viewx) {
                    skip = static_cast<float>(viewx) - static_cast<float>(xl);
                    xl = viewx;
                }
                if (xl < clipx) {
                    skip += static_cast<float>(clipx) - static_cast<float>(xl);
                    xl = clipx;
                }
            }
            if ((rules::colour || rules::test) && xr > xl) {
                const int n = xr - xl;
                uint32_t* p = rules::colour ? colourrow + xl : nullptr;
                float* q = rules::test ? depthrow + xl : nullptr;
                // The next row lies about here; its lines load while this row is drawn. The address
                // is reckoned as a number, as below the last row there is no buffer.
                auto below = [&](const void* at) {
                    _mm_prefetch(reinterpret_cast<const char*>(reinterpret_cast<uintptr_t>(at) + rowbytes), _MM_HINT_T0);
                };
                if constexpr (rules::colour) below(p);
                if constexpr (rules::test) below(q);
                // Both buffers have the same alignment, so one address gives the lane of the first
                // pixel in its group.
                const int b = static_cast<int>(
                    (reinterpret_cast<uintptr_t>(rules::colour ? static_cast<void*>(p) : static_cast<void*>(q)) >> 2) & 3);
                const int h = (4 - b) & 3;  // pixels up to the next group
                const int hc = std::min(h, n), m = (n - hc) >> 2, t = n - 4 * m - hc;
                if constexpr (rules::colour) p -= b;
                if constexpr (rules::test) q -= b;

                narrow g;
                spansteps d;
                const float zl = _mm_cvtss_f32(_mm_shuffle_ps(edge, edge, 1));
                const float dz = (_mm_cvtss_f32(_mm_shuffle_ps(edge, edge, 3)) - zl) * inv;
                const float z0 = dz * skip + zl;
                const float zfirst = spanlanes::firstz(z0, dz, b);
                g.z = _mm_add_ps(_mm_set1_ps(zfirst), _mm_mul_ps(_mm_setr_ps(0.0f, 1.0f, 2.0f, 3.0f), _mm_set1_ps(dz)));
                d.z = _mm_mul_ps(_mm_set1_ps(4.0f), _mm_set1_ps(dz));
                const __m128 invs = _mm_set1_ps(inv), skips = _mm_set1_ps(skip);
                if constexpr (rules::colour) {
                    const spanlanes::colourgroup c(spanlanes::colourrow(modulate, invs, skips), b);
                    g.modulatelow = c.low, g.modulatehigh = c.high, d.modulate = c.step4;
                }
                if constexpr (rules::add) {
                    const spanlanes::colourgroup c(spanlanes::colourrow(addcolour, invs, skips), b);
                    g.addlow = c.low, g.addhigh = c.high, d.addcolour = c.step4;
                }
                if constexpr (rules::mixed)
                    for (int k = 0; k < 2; ++k) {
                        // Weight k of the left end and of the right end, in every lane.
                        const __m128 l = _mm_shuffle_ps(weights, weights, k * 0x55);
                        const __m128 r = _mm_shuffle_ps(weights, weights, (k + 2) * 0x55);
                        const spanlanes::colourgroup c(spanlanes::colourrow(l, r, invs, skips), b);
                        g.weightlow[k] = c.low, g.weighthigh[k] = c.high, d.weights[k] = c.step4;
                    }
                if constexpr (rules::textured) {
                    // u and v at the first pixel, then per pixel of a pair and per pair.
                    __m128 du = _mm_mul_ps(_mm_sub_ps(_mm_movehl_ps(uv, uv), uv), invs);
                    du = _mm_movelh_ps(du, du);
                    __m128 start = _mm_add_ps(uv, _mm_mul_ps(skips, du));
                    start = _mm_sub_ps(_mm_movelh_ps(start, start), _mm_mul_ps(_mm_set1_ps(static_cast<float>(b)), du));
                    g.pairs[0] = _mm_movelh_ps(start, _mm_add_ps(start, du));
                    g.pairs[1] = _mm_add_ps(g.pairs[0], _mm_mul_ps(_mm_set1_ps(2.0f), du));
                    d.pairs = _mm_mul_ps(_mm_set1_ps(4.0f), du);
                }

                if (h) {
                    group<false>(g, p, q, spanlanes::lanesbetween(b, b + hc),
                                 source, blendfactor);
                    advance(g, d);
                    next(p, q, 4);
                }
                int i = 0;
                if constexpr (V::pixels > 4) {
                    // Two groups at a time from a 32-byte boundary of the colour buffer.
                    const void* at = rules::colour ? static_cast<void*>(p) : static_cast<void*>(q);
                    if (m >= 2 && (reinterpret_cast<uintptr_t>(at) & 16)) {
                        group<true>(g, p, q, _mm_set1_epi32(-1), source, blendfactor);
                        advance(g, d);
                        next(p, q, 4);
                        i = 1;
                    }
                    const int pairs = (m - i) >> 1;
                    widebody(g, d, p, q, pairs, source, blendfactor);
                    i += 2 * pairs;
                }
                for (; i < m; ++i, next(p, q, 4)) {
                    group<true>(g, p, q, _mm_set1_epi32(-1), source, blendfactor);
                    advance(g, d);
                }
                if (t)
                    group<false>(g, p, q, spanlanes::lanesbetween(0, t), source,
                                 blendfactor);
            }
            if constexpr (rules::colour) colourrow += stride;
            if constexpr (rules::test) depthrow += stride;
            edge = _mm_add_ps(edge, edgestep);
            if constexpr (rules::colour) modulate = _mm_add_epi16(modulate, modulatestep);
            if constexpr (rules::add) addcolour = _mm_add_epi16(addcolour, addcolourstep);
            if constexpr (rules::textured) uv = _mm_add_ps(uv, uvstep);
            if constexpr (rules::mixed) weights = _mm_add_ps(weights, weightstep);
        }
        s->y = y;
        _mm_store_ps(s->edge, edge);
        if constexpr (rules::colour) _mm_store_si128(reinterpret_cast<__m128i*>(s->modulate), modulate);
        if constexpr (rules::add) _mm_store_si128(reinterpret_cast<__m128i*>(s->addcolour), addcolour);
        if constexpr (rules::textured) _mm_store_ps(s->uv, uv);
        if constexpr (rules::mixed) _mm_store_ps(s->weights, weights);
    }
};

template <spanmember M, class V, class F>
inline constexpr spanfunction drawspan = &spanframe<M, V, F>::draw;
