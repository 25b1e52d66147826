// The arithmetic of `blendmode` for solid colours, which all 2D drawing of the toolkit shares.
#pragma once
#include <emmintrin.h>

#include <cstdint>

#include "pixel/blendmode.h"

// Mode 1 with an opaque colour and mode 0 both store the colour as it stands.
inline bool isstore(int mode, uint32_t colour) { return mode == replace || (mode == blend && colour >> 24 == 255); }

// The colour's half of a blend; it is the same for every pixel of a shape, so made once.
struct blendsource {
    uint32_t term;     // colour channels times alpha, with alpha in the top byte
    uint32_t inverse;  // 256 - alpha, the weight of the old pixel
    explicit blendsource(uint32_t c) {
        uint32_t a = c >> 24;
        term = ((c & 0xFF00FF) * a >> 8 & 0xFF00FF) + ((c & 0xFF00) * a >> 8 & 0xFF00) + (a << 24);
        inverse = 256 - a;
    }
    // The old pixel's alpha is dropped.
    uint32_t operator()(uint32_t d) const {
        return ((d & 0xFF00FF) * inverse >> 8 & 0xFF00FF) + ((d & 0xFF00) * inverse >> 8 & 0xFF00) + term;
    }
};

// Red, green and blue saturate at 255; alpha adds with wrap.
inline uint32_t addsaturate(uint32_t d, uint32_t c) {
    uint32_t s = d + c;
    uint32_t rb = (c & 0xFF00FF) + (d & 0xFF00FF);
    uint32_t k = ((s - rb) & 0x10000) + (rb & 0x1000100);
    return (k - (k >> 8)) | (s - k);
}

// The rules as functions of the old pixel, for the per-pixel paths of shapes.
struct storerule {
    uint32_t colour;
    uint32_t operator()(uint32_t) const { return colour; }
};
struct addrule {
    uint32_t colour;
    uint32_t operator()(uint32_t d) const { return addsaturate(d, colour); }
};

// The rules on four pixels at once, bit for bit as one at a time. In a blend no channel's
// product (at most 255 * 256) leaves its 16-bit lane, and the two weighted halves of a channel
// add up to at most 255, so lanes never carry into each other.
inline __m128i rule4(storerule rule, __m128i) { return _mm_set1_epi32(static_cast<int>(rule.colour)); }
inline __m128i rule4(const blendsource& rule, __m128i d) {
    const auto w = static_cast<short>(rule.inverse);
    const __m128i weight = _mm_set_epi16(0, w, w, w, 0, w, w, w);  // the old alpha is dropped
    const __m128i zero = _mm_setzero_si128();
    __m128i lo = _mm_srli_epi16(_mm_mullo_epi16(_mm_unpacklo_epi8(d, zero), weight), 8);
    __m128i hi = _mm_srli_epi16(_mm_mullo_epi16(_mm_unpackhi_epi8(d, zero), weight), 8);
    return _mm_add_epi32(_mm_packus_epi16(lo, hi), _mm_set1_epi32(static_cast<int>(rule.term)));
}
inline __m128i rule4(addrule rule, __m128i d) {
    const __m128i c = _mm_set1_epi32(static_cast<int>(rule.colour));
    const __m128i alpha = _mm_set1_epi32(static_cast<int>(0xFF000000u));
    return _mm_or_si128(_mm_and_si128(alpha, _mm_add_epi8(d, c)), _mm_andnot_si128(alpha, _mm_adds_epu8(d, c)));
}

// Calls draw with the rule of a valid mode; an opaque blend is a store.
template <class Draw>
void withblendrule(int mode, uint32_t colour, Draw&& draw) {
    if (isstore(mode, colour))
        draw(storerule{colour});
    else if (mode == blend)
        draw(blendsource(colour));
    else
        draw(addrule{colour});
}
