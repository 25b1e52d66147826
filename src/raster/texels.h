// The pixel step of the textured spans: one texel a pixel at v * 256 + u, multiplied by
// `modulate`, plus `addcolour`, written by the rule of the member's alpha mode and blending.
#pragma once
#include <emmintrin.h>

#include <cstdint>

#include "raster/members.h"

// The texels of a group: u and v of each pair times the pixel's z, wrapped or clamped to 0 to 127,
// packed to bytes so that each pixel's index is one 16-bit word.
template <wrapmode W>
[[gnu::always_inline]] inline __m128i fetchtexels(const uint32_t* texels, __m128 z, const __m128* pairs) {
    __m128 uv0 = _mm_mul_ps(pairs[0], _mm_unpacklo_ps(z, z)), uv1 = _mm_mul_ps(pairs[1], _mm_unpackhi_ps(z, z));
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
    __m128i words = _mm_packs_epi32(i0, i1);
    uint64_t index = static_cast<uint64_t>(_mm_cvtsi128_si64(_mm_packus_epi16(words, words)));
    __m128i t0 = _mm_cvtsi32_si128(static_cast<int>(texels[index & 0xFFFF]));
    __m128i t1 = _mm_cvtsi32_si128(static_cast<int>(texels[index >> 16 & 0xFFFF]));
    __m128i t2 = _mm_cvtsi32_si128(static_cast<int>(texels[index >> 32 & 0xFFFF]));
    __m128i t3 = _mm_cvtsi32_si128(static_cast<int>(texels[index >> 48]));
    return _mm_unpacklo_epi64(_mm_unpacklo_epi32(t0, t1), _mm_unpacklo_epi32(t2, t3));
}

// The coloured pixels of a group over its old colour; `keep` gets the lanes that the texels leave
// as they were (key: texel all zero; alpha: modulated alpha zero).
template <spanmember M>
[[gnu::always_inline]] inline __m128i texelpixels(const uint32_t* texels, __m128 z, const __m128* pairs,
                                                  __m128i modulatelow, __m128i modulatehigh, __m128i addlow,
                                                  __m128i addhigh, __m128i old, uint32_t blendfactor, __m128i& keep) {
    constexpr alphamode alpha = M.template get<alphamode>();
    const __m128i zero = _mm_setzero_si128();
    __m128i t = fetchtexels<M.template get<wrapmode>()>(texels, z, pairs);
    // p = high half of texel byte times lane, then plus the high byte of the added lane.
    __m128i low = _mm_mulhi_epu16(_mm_unpacklo_epi8(t, zero), modulatelow);
    __m128i high = _mm_mulhi_epu16(_mm_unpackhi_epi8(t, zero), modulatehigh);
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
