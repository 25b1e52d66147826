// The pixel step of the textured spans: one texel a pixel at v * 256 + u, multiplied by
// `modulate`, plus `addcolour`, written by the rule of the member's alpha mode and blending. The
// lanes are one group of four or, where the processor has the wider registers, two side by side;
// every operation stays within its group.
#pragma once
#include <cstdint>

#include "pixel/lanes.h"
#include "raster/members.h"

// What a textured span reads besides its interpolants, loaded once per span: the texels of each
// layer and, for the ground, each layer's move and the shadow map.
struct texelsource {
    const uint32_t* texels[3];
    __m128 uvscale[3], uvoffset[3];  // u, v, u, v
    const uint8_t* shadowmap;
    __m128i shadowshift;
};

// The pixels' indices into a map of rows of 256: u and v of each pair packed to bytes, so that each
// pixel's index is one 16-bit word.
template <class V>
[[gnu::always_inline]] inline typename V::type packedindices(typename V::type pair0, typename V::type pair1) {
    const typename V::type words = V::packs32(pair0, pair1);
    return V::packus16(words, words);
}

// The texels of a group from the coordinates of its two pairs, wrapped or clamped to 0 to 127.
template <wrapmode W, class V, class F>
[[gnu::always_inline]] inline typename V::type fetchtexels(const uint32_t* texels, typename F::type uv0,
                                                          typename F::type uv1) {
    typename V::type i0, i1;
    if constexpr (W == wrapmode::repeat) {
        const typename V::type mask = V::set32(127);
        i0 = V::and_(F::truncate(uv0), mask);
        i1 = V::and_(F::truncate(uv1), mask);
    } else {
        const typename F::type zero = F::zero(), last = F::set(127.0f);
        i0 = F::truncate(F::min(F::max(uv0, zero), last));
        i1 = F::truncate(F::min(F::max(uv1, zero), last));
    }
    return V::gatherwords(texels, packedindices<V>(i0, i1));
}

// The texels of layer k, at the group's coordinates moved as the member's layers say. A scaled
// single layer without shadow map had its scale applied to the corners already.
template <spanmember M, int k, class V, class F>
[[gnu::always_inline]] inline typename V::type layertexels(const texelsource& source, typename F::type uv0,
                                                          typename F::type uv1) {
    constexpr layers L = M.template get<layers>();
    constexpr bool scaled =
        L == layers::triplescaled || (L == layers::singlescaled && M.template get<shadowed>() == shadowed::yes);
    if constexpr (scaled) {
        uv0 = F::mul(uv0, F::widen(source.uvscale[k]));
        uv1 = F::mul(uv1, F::widen(source.uvscale[k]));
    }
    if constexpr (L == layers::singlescaled || L == layers::triplescaled) {
        uv0 = F::add(uv0, F::widen(source.uvoffset[k]));
        uv1 = F::add(uv1, F::widen(source.uvoffset[k]));
    }
    return fetchtexels<M.template get<wrapmode>(), V, F>(source.texels[k], uv0, uv1);
}

// 16-bit lanes of pixels 0 and 1, and of 2 and 3, each pixel's value in all four of its channels.
struct pixellanes {
    __m128i low, high;
};

// The shadow map's byte for each pixel of a group of four, from the coordinates truncated, each
// 16-bit half shifted, saturated to a byte: off the map on either side is its last row or column.
// The byte as 8.8 in the pixel's four channels.
[[gnu::always_inline]] inline pixellanes shadowfactors(const texelsource& source, __m128 uv0, __m128 uv1) {
    const uint64_t index = static_cast<uint64_t>(_mm_cvtsi128_si64(
        packedindices<lanes4>(_mm_srl_epi16(_mm_cvttps_epi32(uv0), source.shadowshift),
                              _mm_srl_epi16(_mm_cvttps_epi32(uv1), source.shadowshift))));
    const uint8_t* map = source.shadowmap;
    __m128i bytes = _mm_setr_epi16(map[index & 0xFFFF], map[index >> 16 & 0xFFFF], map[index >> 32 & 0xFFFF],
                                   map[index >> 48], 0, 0, 0, 0);
    bytes = _mm_slli_epi16(bytes, 8);
    __m128i words = _mm_unpacklo_epi16(bytes, bytes);
    return {_mm_unpacklo_epi32(words, words), _mm_unpackhi_epi32(words, words)};
}

// The coloured pixels of a group over its old colour; `keep` gets the lanes that the texels leave
// as they were (key: texel all zero; alpha: modulated alpha zero). Layered members mix their three
// texels by the lanes of w0 and w1 in `weightlow` and `weighthigh`; shadowed ones darken `modulate`
// by the map first, and are built at four lanes only.
template <spanmember M, class V, class F>
[[gnu::always_inline]] inline typename V::type texelpixels(const texelsource& source, typename F::type z,
                                                          const typename F::type* pairs,
                                                          typename V::type modulatelow,
                                                          typename V::type modulatehigh, typename V::type addlow,
                                                          typename V::type addhigh,
                                                          const typename V::type* weightlow,
                                                          const typename V::type* weighthigh,
                                                          typename V::type old, uint32_t blendfactor,
                                                          typename V::type& keep) {
    using ints = typename V::type;
    constexpr alphamode alpha = M.template get<alphamode>();
    constexpr layers L = M.template get<layers>();
    const ints zero = V::zero();
    const typename F::type uv0 = F::mul(pairs[0], F::unpacklo(z, z)), uv1 = F::mul(pairs[1], F::unpackhi(z, z));
    if constexpr (M.template get<shadowed>() == shadowed::yes) {
        static_assert(V::pixels == 4);
        const pixellanes shade = shadowfactors(source, uv0, uv1);
        modulatelow = V::mulhi16(modulatelow, shade.low);
        modulatehigh = V::mulhi16(modulatehigh, shade.high);
    }
    const ints t = layertexels<M, 0, V, F>(source, uv0, uv1);
    ints low, high;
    if constexpr (L == layers::triple || L == layers::triplescaled) {
        // s = t0 w0 + t1 w1 + t2 (65535 - w0 - w1), each the high half, summed in 16 bits.
        const ints t1 = layertexels<M, 1, V, F>(source, uv0, uv1), t2 = layertexels<M, 2, V, F>(source, uv0, uv1);
        const ints all = V::set32(-1);
        const ints w2low = V::sub16(V::sub16(all, weightlow[0]), weightlow[1]);
        const ints w2high = V::sub16(V::sub16(all, weighthigh[0]), weighthigh[1]);
        low = V::add16(V::add16(V::mulhi16(V::unpacklo8(t, zero), weightlow[0]),
                                V::mulhi16(V::unpacklo8(t1, zero), weightlow[1])),
                       V::mulhi16(V::unpacklo8(t2, zero), w2low));
        high = V::add16(V::add16(V::mulhi16(V::unpackhi8(t, zero), weighthigh[0]),
                                 V::mulhi16(V::unpackhi8(t1, zero), weighthigh[1])),
                        V::mulhi16(V::unpackhi8(t2, zero), w2high));
    } else {
        low = V::unpacklo8(t, zero);
        high = V::unpackhi8(t, zero);
    }
    // p = high half of texel byte times lane, then plus the high byte of the added lane.
    low = V::mulhi16(low, modulatelow);
    high = V::mulhi16(high, modulatehigh);
    if constexpr (M.template get<addterm>() == addterm::yes) {
        low = V::add16(low, V::shr16(addlow, 8));
        high = V::add16(high, V::shr16(addhigh, 8));
    }
    if constexpr (alpha == alphamode::key) keep = V::equal32(t, zero);
    if constexpr (alpha == alphamode::alpha) {
        // Every channel, alpha too, weighs by the pixel's modulated alpha A in wrapping 16 bits.
        const ints alow = V::spread3(low), ahigh = V::spread3(high);
        keep = V::packs16(V::equal16(alow, zero), V::equal16(ahigh, zero));
        const ints full = V::set16(256);
        low = V::shr16(V::add16(V::mullo16(low, alow), V::mullo16(V::unpacklo8(old, zero), V::sub16(full, alow))), 8);
        high = V::shr16(V::add16(V::mullo16(high, ahigh), V::mullo16(V::unpackhi8(old, zero), V::sub16(full, ahigh))),
                        8);
    } else if constexpr (M.template get<blended>() == blended::yes) {
        // The new colour weighs a << 8, the old 256 - a against its byte << 8.
        const ints a = V::shl16(V::set32(static_cast<int>(blendfactor)), 8);
        const ints rest = V::set32(static_cast<int>(0x01000100u - blendfactor));
        low = V::add16(V::mulhi16(low, a), V::mulhi16(V::unpacklo8(zero, old), rest));
        high = V::add16(V::mulhi16(high, a), V::mulhi16(V::unpackhi8(zero, old), rest));
    }
    return V::packus16(low, high);
}
