// What a sprite draw does to each source pixel with its colour argument before writing it
// (`tintmode`), and the constants of that colour, prepared once before the rows.
#pragma once
#include <emmintrin.h>

#include <array>
#include <cstdint>
#include <string_view>

enum class tintmode : int { multiply, plain, weight, add, subtract };
constexpr std::array<std::string_view, 5> axisnames(tintmode) {
    return {"multiply", "plain", "weight", "add", "subtract"};
}

// What a draw's colour argument contributes.
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
