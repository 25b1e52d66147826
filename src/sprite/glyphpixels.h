// How a glyph byte becomes a pixel. A zero byte leaves the pixel alone in every form. The stores
// write a whole word, alpha included; the blends weigh the old pixel against the colour in one
// 32-bit computation whose top byte comes out 0, so they clear alpha where they touch.
#pragma once
#include <emmintrin.h>

#include <cstdint>
#include <cstring>

// The old pixel weighted by `dw` and the colour by `cw`, each channel product truncated apart.
inline uint32_t weightedpart(uint32_t p, uint32_t w) {
    return (((p & 0x00FF00FFu) * w & 0xFF00FF00u) + ((p & 0x0000FF00u) * w & 0x00FF0000u)) >> 8;
}

// Coverage: the byte is how much of the pixel the glyph covers.
struct coverageform {
    static constexpr bool store = false;
    uint32_t colour;
    uint32_t operator()(uint32_t d, uint8_t c) const { return weightedpart(d, 256 - c) + weightedpart(colour, c); }
};

// One opacity for the whole glyph, the colour's alpha `a`; the old pixel keeps 255 - a of itself.
struct fadeform {
    static constexpr bool store = false;
    uint32_t keep;  // 255 - a
    uint32_t term;  // the colour's part, the same for every pixel
    explicit fadeform(uint32_t colour) : keep(255 - (colour >> 24)), term(weightedpart(colour, colour >> 24)) {}
    uint32_t operator()(uint32_t d, uint8_t) const { return weightedpart(d, keep) + term; }
};

// Every set byte stores the colour.
struct colourform {
    static constexpr bool store = true;
    uint32_t colour;
    uint32_t operator()(uint32_t, uint8_t) const { return colour; }
    // Four pixels in one pass: the old word survives where the byte is 0.
    void four(uint32_t* d, uint32_t bytes) const {
        const __m128i zero = _mm_setzero_si128();
        __m128i wide = _mm_unpacklo_epi16(_mm_unpacklo_epi8(_mm_cvtsi32_si128(static_cast<int>(bytes)), zero), zero);
        __m128i off = _mm_cmpeq_epi32(wide, zero);
        __m128i old = _mm_loadu_si128(reinterpret_cast<const __m128i*>(d));
        __m128i fresh = _mm_set1_epi32(static_cast<int>(colour));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm_or_si128(_mm_and_si128(off, old), _mm_andnot_si128(off, fresh)));
    }
};

// The byte is an index into the font's palette; entry 0 is never read.
struct paletteform {
    static constexpr bool store = true;
    const uint32_t* palette;
    uint32_t operator()(uint32_t, uint8_t c) const { return palette[c]; }
    void four(uint32_t* d, uint32_t bytes) const {
        for (int k = 0; k < 4; ++k, bytes >>= 8)
            if (uint8_t c = bytes & 0xFF) d[k] = palette[c];
    }
};

template <class Form>
inline void paintpixel(uint32_t& d, uint8_t c, const Form& form) {
    if (c) d = form(d, c);
}

// One row of n glyph bytes onto n pixels. The stores take four bytes at a time and skip four
// empty ones at once; the blends go pixel by pixel.
template <class Form>
inline void paintrow(uint32_t* d, const uint8_t* s, int n, const Form& form) {
    int i = 0;
    if constexpr (Form::store) {
        for (; i + 4 <= n; i += 4) {
            uint32_t bytes;
            memcpy(&bytes, s + i, 4);
            if (bytes) form.four(d + i, bytes);
        }
    }
    for (; i < n; ++i) paintpixel(d[i], s[i], form);
}
