// Four pixels in a 128-bit register, seen as 16 bytes, 8 16-bit lanes or 4 32-bit lanes: the
// operations the sprite pixel rules are written in. A wider register type with the same names
// runs two groups of four at once; every operation stays inside its group of four.
#pragma once
#include <emmintrin.h>

#include <cstdint>

#define WEXEL_LANES [[gnu::always_inline]] static inline

struct lanes4 {
    using type = __m128i;
    static constexpr int pixels = 4;

    WEXEL_LANES type load(const uint32_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
    WEXEL_LANES void store(uint32_t* p, type v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
    WEXEL_LANES type widen(__m128i v) { return v; }  // a constant of one group, in every group
    WEXEL_LANES type zero() { return _mm_setzero_si128(); }
    WEXEL_LANES type set16(short v) { return _mm_set1_epi16(v); }
    WEXEL_LANES type gather(const uint32_t* src, const int* column) {
        return _mm_setr_epi32(int(src[column[0]]), int(src[column[1]]), int(src[column[2]]), int(src[column[3]]));
    }

    WEXEL_LANES type unpacklo8(type a, type b) { return _mm_unpacklo_epi8(a, b); }
    WEXEL_LANES type unpackhi8(type a, type b) { return _mm_unpackhi_epi8(a, b); }
    WEXEL_LANES type unpacklo32(type a, type b) { return _mm_unpacklo_epi32(a, b); }
    WEXEL_LANES type unpackhi32(type a, type b) { return _mm_unpackhi_epi32(a, b); }
    WEXEL_LANES type packus16(type a, type b) { return _mm_packus_epi16(a, b); }
    WEXEL_LANES type mulhi16(type a, type b) { return _mm_mulhi_epu16(a, b); }
    WEXEL_LANES type mullo16(type a, type b) { return _mm_mullo_epi16(a, b); }
    WEXEL_LANES type add16(type a, type b) { return _mm_add_epi16(a, b); }
    WEXEL_LANES type sub16(type a, type b) { return _mm_sub_epi16(a, b); }
    WEXEL_LANES type add8(type a, type b) { return _mm_add_epi8(a, b); }
    WEXEL_LANES type addsat8(type a, type b) { return _mm_adds_epu8(a, b); }
    WEXEL_LANES type subsat8(type a, type b) { return _mm_subs_epu8(a, b); }
    WEXEL_LANES type shr16(type a, int n) { return _mm_srli_epi16(a, n); }
    WEXEL_LANES type shr32(type a, int n) { return _mm_srli_epi32(a, n); }
    WEXEL_LANES type shl32(type a, int n) { return _mm_slli_epi32(a, n); }
    WEXEL_LANES type or_(type a, type b) { return _mm_or_si128(a, b); }
    WEXEL_LANES type and_(type a, type b) { return _mm_and_si128(a, b); }
    WEXEL_LANES type andnot(type a, type b) { return _mm_andnot_si128(a, b); }
    WEXEL_LANES type set32(int v) { return _mm_set1_epi32(v); }
    WEXEL_LANES type shl16(type a, int n) { return _mm_slli_epi16(a, n); }
    WEXEL_LANES type equal16(type a, type b) { return _mm_cmpeq_epi16(a, b); }
    WEXEL_LANES type equal32(type a, type b) { return _mm_cmpeq_epi32(a, b); }
    WEXEL_LANES type packs16(type a, type b) { return _mm_packs_epi16(a, b); }
    WEXEL_LANES type packs32(type a, type b) { return _mm_packs_epi32(a, b); }
    // The words at the four 16-bit indices in the low half of each group, by four scalar loads.
    WEXEL_LANES type gatherwords(const uint32_t* src, type indices) {
        const uint64_t at = static_cast<uint64_t>(_mm_cvtsi128_si64(indices));
        __m128i t0 = _mm_cvtsi32_si128(static_cast<int>(src[at & 0xFFFF]));
        __m128i t1 = _mm_cvtsi32_si128(static_cast<int>(src[at >> 16 & 0xFFFF]));
        __m128i t2 = _mm_cvtsi32_si128(static_cast<int>(src[at >> 32 & 0xFFFF]));
        __m128i t3 = _mm_cvtsi32_si128(static_cast<int>(src[at >> 48]));
        return _mm_unpacklo_epi64(_mm_unpacklo_epi32(t0, t1), _mm_unpacklo_epi32(t2, t3));
    }
    // Lane 3 of each group of four 16-bit lanes into all four.
    WEXEL_LANES type spread3(type a) { return _mm_shufflehi_epi16(_mm_shufflelo_epi16(a, 0xFF), 0xFF); }

    // All ones in the pixels where z <= depth.
    WEXEL_LANES type depthpass(const float* depth, float z) {
        return _mm_castps_si128(_mm_cmple_ps(_mm_set1_ps(z), _mm_loadu_ps(depth)));
    }
    WEXEL_LANES bool any(type mask) { return _mm_movemask_epi8(mask) != 0; }
    WEXEL_LANES type select(type mask, type yes, type no) {
        return _mm_or_si128(_mm_and_si128(mask, yes), _mm_andnot_si128(mask, no));
    }
};
