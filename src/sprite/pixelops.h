// The pixel operations of every sprite draw: a colour operation on the source (`tintmode`)
// followed by a write operation into the buffer (`blendmode`). Four pixels go through one pass of
// 16-bit lanes. Pixels at the end of a row that do not fill a group of four take the same road in
// lane 0 with two rules of their own: the alpha blend weighs the old pixel by 255 - a instead of
// 256 - a, and the weight tint leaves out its colour term unless it blends.
#pragma once
#include <emmintrin.h>

#include <cstdint>

#include "toolkit/blend.h"

enum class tintmode : int { multiply, plain, weight, add, subtract };

// What a draw's colour argument contributes, prepared once before the rows.
struct tintconstants {
    __m128i bytes;       // the colour in every pixel
    __m128i channels;    // its channels as 16-bit lanes, two pixels
    __m128i sourcemul;   // weight tint: multipliers of the source, high half of 16 by 16
    __m128i colourterm;  // weight tint: the colour's share, 16-bit lanes
    __m128i colourbyte;  // the same packed to bytes

    explicit tintconstants(uint32_t colour) {
        const __m128i zero = _mm_setzero_si128();
        bytes = _mm_set1_epi32(static_cast<int>(colour));
        channels = _mm_unpacklo_epi8(bytes, zero);
        // The weight is the top byte taken as signed. Low halves of the words serve blue and red,
        // high halves green and alpha; a negative weight gives multipliers that saturate most
        // channels, and that is the required result.
        int32_t w = static_cast<int32_t>(colour) >> 24;
        uint32_t m = static_cast<uint32_t>(w) | static_cast<uint32_t>(w) << 16;
        uint32_t n = (m ^ 0xFFFF00FFu) << 8;
        sourcemul = _mm_set1_epi32(static_cast<int>(m));
        colourterm = _mm_mulhi_epu16(channels, _mm_set1_epi32(static_cast<int>(n)));
        colourbyte = _mm_packus_epi16(colourterm, colourterm);
    }
};

namespace pixelops {

// out = ((s * a) >> 8) + ((d * (k - a)) >> 8) per 16-bit lane, products kept to 16 bits, packed
// with saturation; k is 256 in groups and 255 in leftovers.
template <bool group>
[[gnu::always_inline]] inline __m128i alphablend(__m128i lo, __m128i hi, __m128i d) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i full = _mm_set1_epi16(group ? 256 : 255);
    __m128i alo = _mm_shufflehi_epi16(_mm_shufflelo_epi16(lo, 0xFF), 0xFF);
    __m128i ahi = _mm_shufflehi_epi16(_mm_shufflelo_epi16(hi, 0xFF), 0xFF);
    __m128i dlo = _mm_unpacklo_epi8(d, zero), dhi = _mm_unpackhi_epi8(d, zero);
    __m128i rlo = _mm_add_epi16(_mm_srli_epi16(_mm_mullo_epi16(lo, alo), 8),
                                _mm_srli_epi16(_mm_mullo_epi16(dlo, _mm_sub_epi16(full, alo)), 8));
    __m128i rhi = _mm_add_epi16(_mm_srli_epi16(_mm_mullo_epi16(hi, ahi), 8),
                                _mm_srli_epi16(_mm_mullo_epi16(dhi, _mm_sub_epi16(full, ahi)), 8));
    return _mm_packus_epi16(rlo, rhi);
}

// Writes s2 (packed bytes) by a store or a saturating add.
template <blendmode B>
[[gnu::always_inline]] inline __m128i write(__m128i s2, __m128i d) {
    if constexpr (B == add) return _mm_adds_epu8(s2, d);
    else return s2;
}

}  // namespace pixelops

// Four pixels of source `s` over four of buffer `d`; in a leftover only lane 0 counts.
template <tintmode T, blendmode B, bool group>
[[gnu::always_inline]] inline __m128i pixelop(__m128i s, __m128i d, const tintconstants& k) {
    using namespace pixelops;
    const __m128i zero = _mm_setzero_si128();
    if constexpr (T == tintmode::weight) {
        // p = ((s << 8) * m) >> 16 per channel.
        __m128i plo = _mm_mulhi_epu16(_mm_unpacklo_epi8(zero, s), k.sourcemul);
        __m128i phi = _mm_mulhi_epu16(_mm_unpackhi_epi8(zero, s), k.sourcemul);
        if constexpr (B == blend)
            return alphablend<group>(_mm_add_epi16(plo, k.colourterm), _mm_add_epi16(phi, k.colourterm), d);
        __m128i s2 = _mm_packus_epi16(plo, phi);
        if constexpr (group) s2 = _mm_add_epi8(s2, k.colourbyte);
        return write<B>(s2, d);
    } else if constexpr (T == tintmode::multiply) {
        __m128i lo = _mm_srli_epi16(_mm_mullo_epi16(_mm_unpacklo_epi8(s, zero), k.channels), 8);
        __m128i hi = _mm_srli_epi16(_mm_mullo_epi16(_mm_unpackhi_epi8(s, zero), k.channels), 8);
        if constexpr (B == blend) return alphablend<group>(lo, hi, d);
        return write<B>(_mm_packus_epi16(lo, hi), d);
    } else {
        __m128i s2 = s;
        if constexpr (T == tintmode::add) s2 = _mm_adds_epu8(s, k.bytes);
        if constexpr (T == tintmode::subtract) s2 = _mm_subs_epu8(s, k.bytes);
        if constexpr (B == blend) return alphablend<group>(_mm_unpacklo_epi8(s2, zero), _mm_unpackhi_epi8(s2, zero), d);
        return write<B>(s2, d);
    }
}

// One pixel by the leftover rules; the transformed draws use it for every pixel.
template <tintmode T, blendmode B>
[[gnu::always_inline]] inline uint32_t leftoverpixel(uint32_t s, uint32_t d, const tintconstants& k) {
    __m128i r = pixelop<T, B, false>(_mm_cvtsi32_si128(static_cast<int>(s)), _mm_cvtsi32_si128(static_cast<int>(d)), k);
    return static_cast<uint32_t>(_mm_cvtsi128_si32(r));
}
