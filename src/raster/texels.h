// The pixel step of the textured spans: one texel a pixel at v * 256 + u, multiplied by
// `modulate`, plus `addcolour`, written by the rule of the member's alpha mode and blending.
#pragma once
#include <emmintrin.h>

#include <cstdint>

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
[[gnu::always_inline]] inline uint64_t packedindices(__m128i pair0, __m128i pair1) {
    __m128i words = _mm_packs_epi32(pair0, pair1);
    return static_cast<uint64_t>(_mm_cvtsi128_si64(_mm_packus_epi16(words, words)));
}

// The texels of a group from the coordinates of its two pairs, wrapped or clamped to 0 to 127.
template <wrapmode W>
[[gnu::always_inline]] inline __m128i fetchtexels(const uint32_t* texels, __m128 uv0, __m128 uv1) {
    __m128i i0, i1;
    if constexpr (W == wrapmode::repeat) {
        const __m128i mask = _mm_set1_epi32(127);
        i0 = _mm_and_si128(_mm_cvttps_epi32(uv0), mask);
        i1 = _mm_and_si128(_mm_cvttps_epi32(uv1), mask);
    } else {
        const __m128 zero = _mm_setzero_ps(), last = _mm_set1_ps(127.0f);
        i0 = _mm_cvttps_epi32(_mm_min_ps(_mm_max_ps(uv0, zero), last));
        i1 = _mm_cvttps_epi32(_mm_min_ps(_mm_max_ps(uv1, zero), last));
    }
    uint64_t index = packedindices(i0, i1);
    __m128i t0 = _mm_cvtsi32_si128(static_cast<int>(texels[index & 0xFFFF]));
    __m128i t1 = _mm_cvtsi32_si128(static_cast<int>(texels[index >> 16 & 0xFFFF]));
    __m128i t2 = _mm_cvtsi32_si128(static_cast<int>(texels[index >> 32 & 0xFFFF]));
    __m128i t3 = _mm_cvtsi32_si128(static_cast<int>(texels[index >> 48]));
    return _mm_unpacklo_epi64(_mm_unpacklo_epi32(t0, t1), _mm_unpacklo_epi32(t2, t3));
}

// The texels of layer k, at the group's coordinates moved as the member's layers say. A scaled
// single layer without shadow map had its scale applied to the corners already.
template <spanmember M, int k>
[[gnu::always_inline]] inline __m128i layertexels(const texelsource& source, __m128 uv0, __m128 uv1) {
    constexpr layers L = M.template get<layers>();
    constexpr bool scaled =
        L == layers::triplescaled || (L == layers::singlescaled && M.template get<shadowed>() == shadowed::yes);
    if constexpr (scaled) {
        uv0 = _mm_mul_ps(uv0, source.uvscale[k]);
        uv1 = _mm_mul_ps(uv1, source.uvscale[k]);
    }
    if constexpr (L == layers::singlescaled || L == layers::triplescaled) {
        uv0 = _mm_add_ps(uv0, source.uvoffset[k]);
        uv1 = _mm_add_ps(uv1, source.uvoffset[k]);
    }
    return fetchtexels<M.template get<wrapmode>()>(source.texels[k], uv0, uv1);
}

// 16-bit lanes of pixels 0 and 1, and of 2 and 3, each pixel's value in all four of its channels.
struct pixellanes {
    __m128i low, high;
};

// The shadow map's byte for each pixel, from the coordinates truncated, each 16-bit half shifted,
// saturated to a byte: off the map on either side is its last row or column. The byte as 8.8 in
// the pixel's four channels.
[[gnu::always_inline]] inline pixellanes shadowfactors(const texelsource& source, __m128 uv0, __m128 uv1) {
    uint64_t index = packedindices(_mm_srl_epi16(_mm_cvttps_epi32(uv0), source.shadowshift),
                                   _mm_srl_epi16(_mm_cvttps_epi32(uv1), source.shadowshift));
    const uint8_t* map = source.shadowmap;
    __m128i bytes = _mm_setr_epi16(map[index & 0xFFFF], map[index >> 16 & 0xFFFF], map[index >> 32 & 0xFFFF],
                                   map[index >> 48], 0, 0, 0, 0);
    bytes = _mm_slli_epi16(bytes, 8);
    __m128i words = _mm_unpacklo_epi16(bytes, bytes);
    return {_mm_unpacklo_epi32(words, words), _mm_unpackhi_epi32(words, words)};
}

// The coloured pixels of a group over its old colour; `keep` gets the lanes that the texels leave
// as they were (key: texel all zero; alpha: modulated alpha zero). Layered members mix their three
// texels by `weights`, lanes of w0 and w1; shadowed ones darken `modulate` by the map first.
template <spanmember M>
[[gnu::always_inline]] inline __m128i texelpixels(const texelsource& source, __m128 z, const __m128* pairs,
                                                  __m128i modulatelow, __m128i modulatehigh, __m128i addlow,
                                                  __m128i addhigh, const pixellanes* weights, __m128i old,
                                                  uint32_t blendfactor, __m128i& keep) {
    constexpr alphamode alpha = M.template get<alphamode>();
    constexpr layers L = M.template get<layers>();
    const __m128i zero = _mm_setzero_si128();
    const __m128 uv0 = _mm_mul_ps(pairs[0], _mm_unpacklo_ps(z, z)), uv1 = _mm_mul_ps(pairs[1], _mm_unpackhi_ps(z, z));
    if constexpr (M.template get<shadowed>() == shadowed::yes) {
        const pixellanes shade = shadowfactors(source, uv0, uv1);
        modulatelow = _mm_mulhi_epu16(modulatelow, shade.low);
        modulatehigh = _mm_mulhi_epu16(modulatehigh, shade.high);
    }
    __m128i t = layertexels<M, 0>(source, uv0, uv1), low, high;
    if constexpr (L == layers::triple || L == layers::triplescaled) {
        // s = t0 w0 + t1 w1 + t2 (65535 - w0 - w1), each the high half, summed in 16 bits.
        const __m128i t1 = layertexels<M, 1>(source, uv0, uv1), t2 = layertexels<M, 2>(source, uv0, uv1);
        const __m128i all = _mm_set1_epi32(-1);
        const __m128i w2low = _mm_sub_epi16(_mm_sub_epi16(all, weights[0].low), weights[1].low);
        const __m128i w2high = _mm_sub_epi16(_mm_sub_epi16(all, weights[0].high), weights[1].high);
        low = _mm_add_epi16(_mm_add_epi16(_mm_mulhi_epu16(_mm_unpacklo_epi8(t, zero), weights[0].low),
                                          _mm_mulhi_epu16(_mm_unpacklo_epi8(t1, zero), weights[1].low)),
                            _mm_mulhi_epu16(_mm_unpacklo_epi8(t2, zero), w2low));
        high = _mm_add_epi16(_mm_add_epi16(_mm_mulhi_epu16(_mm_unpackhi_epi8(t, zero), weights[0].high),
                                           _mm_mulhi_epu16(_mm_unpackhi_epi8(t1, zero), weights[1].high)),
                             _mm_mulhi_epu16(_mm_unpackhi_epi8(t2, zero), w2high));
    } else {
        low = _mm_unpacklo_epi8(t, zero);
        high = _mm_unpackhi_epi8(t, zero);
    }
    // p = high half of texel byte times lane, then plus the high byte of the added lane.
    low = _mm_mulhi_epu16(low, modulatelow);
    high = _mm_mulhi_epu16(high, modulatehigh);
    if constexpr (M.template get<addterm>() == addterm::yes) {
        low = _mm_add_epi16(low, _mm_srli_epi16(addlow, 8));
        high = _mm_add_epi16(high, _mm_srli_epi16(addhigh, 8));
    }
    if constexpr (alpha == alphamode::key) keep = _mm_cmpeq_epi32(t, zero);
    if constexpr (alpha == alphamode::alpha) {
        // Every channel, alpha too, weighs by the pixel's modulated alpha A in wrapping 16 bits.
        __m128i alow = _mm_shufflehi_epi16(_mm_shufflelo_epi16(low, 0xFF), 0xFF);
        __m128i ahigh = _mm_shufflehi_epi16(_mm_shufflelo_epi16(high, 0xFF), 0xFF);
        keep = _mm_packs_epi16(_mm_cmpeq_epi16(alow, zero), _mm_cmpeq_epi16(ahigh, zero));
        const __m128i full = _mm_set1_epi16(256);
        low = _mm_srli_epi16(_mm_add_epi16(_mm_mullo_epi16(low, alow),
                                           _mm_mullo_epi16(_mm_unpacklo_epi8(old, zero), _mm_sub_epi16(full, alow))),
                             8);
        high = _mm_srli_epi16(_mm_add_epi16(_mm_mullo_epi16(high, ahigh),
                                            _mm_mullo_epi16(_mm_unpackhi_epi8(old, zero), _mm_sub_epi16(full, ahigh))),
                              8);
    } else if constexpr (M.template get<blended>() == blended::yes) {
        // The new colour weighs a << 8, the old 256 - a against its byte << 8.
        __m128i a = _mm_slli_epi16(_mm_set1_epi32(static_cast<int>(blendfactor)), 8);
        __m128i rest = _mm_set1_epi32(static_cast<int>(0x01000100u - blendfactor));
        low = _mm_add_epi16(_mm_mulhi_epu16(low, a), _mm_mulhi_epu16(_mm_unpacklo_epi8(zero, old), rest));
        high = _mm_add_epi16(_mm_mulhi_epu16(high, a), _mm_mulhi_epu16(_mm_unpackhi_epi8(zero, old), rest));
    }
    return _mm_packus_epi16(low, high);
}
