// Eight pixels in a 256-bit register: two groups of four side by side. Every operation here works
// within each 128-bit half, so each group gets exactly the arithmetic of lanes4. Only code built
// for processors with AVX2 includes this.
#pragma once
#include <immintrin.h>

#include "pixel/lanes.h"

struct lanes8 {
    using type = __m256i;
    static constexpr int pixels = 8;

    WEXEL_LANES type load(const uint32_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
    WEXEL_LANES void store(uint32_t* p, type v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }
    WEXEL_LANES type widen(__m128i v) { return _mm256_broadcastsi128_si256(v); }
    WEXEL_LANES type zero() { return _mm256_setzero_si256(); }
    WEXEL_LANES type set16(short v) { return _mm256_set1_epi16(v); }
    WEXEL_LANES type gather(const uint32_t* src, const int* column) {
        return _mm256_setr_epi32(int(src[column[0]]), int(src[column[1]]), int(src[column[2]]), int(src[column[3]]),
                                 int(src[column[4]]), int(src[column[5]]), int(src[column[6]]), int(src[column[7]]));
    }

    WEXEL_LANES type unpacklo8(type a, type b) { return _mm256_unpacklo_epi8(a, b); }
    WEXEL_LANES type unpackhi8(type a, type b) { return _mm256_unpackhi_epi8(a, b); }
    WEXEL_LANES type unpacklo32(type a, type b) { return _mm256_unpacklo_epi32(a, b); }
    WEXEL_LANES type unpackhi32(type a, type b) { return _mm256_unpackhi_epi32(a, b); }
    WEXEL_LANES type packus16(type a, type b) { return _mm256_packus_epi16(a, b); }
    WEXEL_LANES type mulhi16(type a, type b) { return _mm256_mulhi_epu16(a, b); }
    WEXEL_LANES type mullo16(type a, type b) { return _mm256_mullo_epi16(a, b); }
    WEXEL_LANES type add16(type a, type b) { return _mm256_add_epi16(a, b); }
    WEXEL_LANES type sub16(type a, type b) { return _mm256_sub_epi16(a, b); }
    WEXEL_LANES type add8(type a, type b) { return _mm256_add_epi8(a, b); }
    WEXEL_LANES type addsat8(type a, type b) { return _mm256_adds_epu8(a, b); }
    WEXEL_LANES type subsat8(type a, type b) { return _mm256_subs_epu8(a, b); }
    WEXEL_LANES type shr16(type a, int n) { return _mm256_srli_epi16(a, n); }
    WEXEL_LANES type shr32(type a, int n) { return _mm256_srli_epi32(a, n); }
    WEXEL_LANES type shl32(type a, int n) { return _mm256_slli_epi32(a, n); }
    WEXEL_LANES type or_(type a, type b) { return _mm256_or_si256(a, b); }
    WEXEL_LANES type and_(type a, type b) { return _mm256_and_si256(a, b); }
    WEXEL_LANES type andnot(type a, type b) { return _mm256_andnot_si256(a, b); }
    WEXEL_LANES type set32(int v) { return _mm256_set1_epi32(v); }
    WEXEL_LANES type shl16(type a, int n) { return _mm256_slli_epi16(a, n); }
    WEXEL_LANES type equal16(type a, type b) { return _mm256_cmpeq_epi16(a, b); }
    WEXEL_LANES type equal32(type a, type b) { return _mm256_cmpeq_epi32(a, b); }
    WEXEL_LANES type packs16(type a, type b) { return _mm256_packs_epi16(a, b); }
    WEXEL_LANES type packs32(type a, type b) { return _mm256_packs_epi32(a, b); }
    WEXEL_LANES type gatherwords(const uint32_t* src, type indices) {
        const uint64_t a = static_cast<uint64_t>(_mm256_extract_epi64(indices, 0));
        const uint64_t b = static_cast<uint64_t>(_mm256_extract_epi64(indices, 2));
        return _mm256_setr_epi32(int(src[a & 0xFFFF]), int(src[a >> 16 & 0xFFFF]), int(src[a >> 32 & 0xFFFF]),
                                 int(src[a >> 48]), int(src[b & 0xFFFF]), int(src[b >> 16 & 0xFFFF]),
                                 int(src[b >> 32 & 0xFFFF]), int(src[b >> 48]));
    }
    // Two groups as one register, and the first of them.
    WEXEL_LANES type pair(__m128i first, __m128i second) { return _mm256_set_m128i(second, first); }
    WEXEL_LANES __m128i low(type a) { return _mm256_castsi256_si128(a); }
    WEXEL_LANES type spread3(type a) { return _mm256_shufflehi_epi16(_mm256_shufflelo_epi16(a, 0xFF), 0xFF); }

    WEXEL_LANES type depthpass(const float* depth, float z) {
        return _mm256_castps_si256(_mm256_cmp_ps(_mm256_set1_ps(z), _mm256_loadu_ps(depth), _CMP_LE_OS));
    }
    WEXEL_LANES bool any(type mask) { return _mm256_movemask_epi8(mask) != 0; }
    WEXEL_LANES type select(type mask, type yes, type no) { return _mm256_blendv_epi8(no, yes, mask); }
};
