// Eight floats in a 256-bit register: two groups of four side by side. Every operation works
// within each 128-bit half, so each group gets exactly the arithmetic of floats4, and the
// approximations are the same instructions' at twice the width. Only code built for processors
// with AVX2 includes this.
#pragma once
#include <immintrin.h>

#include "pixel/lanes.h"

struct floats8 {
    using type = __m256;
    static constexpr int lanes = 8;

    WEXEL_LANES type load(const float* p) { return _mm256_load_ps(p); }  // 32-byte aligned
    WEXEL_LANES type loadu(const float* p) { return _mm256_loadu_ps(p); }
    WEXEL_LANES void store(float* p, type v) { _mm256_store_ps(p, v); }
    WEXEL_LANES void storeu(float* p, type v) { _mm256_storeu_ps(p, v); }
    WEXEL_LANES type set(float v) { return _mm256_set1_ps(v); }
    WEXEL_LANES type setr(float a, float b, float c, float d, float e, float f, float g, float h) {
        return _mm256_setr_ps(a, b, c, d, e, f, g, h);
    }
    WEXEL_LANES type zero() { return _mm256_setzero_ps(); }
    WEXEL_LANES type widen(__m128 v) { return _mm256_set_m128(v, v); }  // a constant of one group, in both

    WEXEL_LANES type add(type a, type b) { return _mm256_add_ps(a, b); }
    WEXEL_LANES type sub(type a, type b) { return _mm256_sub_ps(a, b); }
    WEXEL_LANES type mul(type a, type b) { return _mm256_mul_ps(a, b); }
    WEXEL_LANES type div(type a, type b) { return _mm256_div_ps(a, b); }
    WEXEL_LANES type min(type a, type b) { return _mm256_min_ps(a, b); }
    WEXEL_LANES type max(type a, type b) { return _mm256_max_ps(a, b); }
    WEXEL_LANES type reciprocal(type a) { return _mm256_rcp_ps(a); }
    WEXEL_LANES type reciprocalroot(type a) { return _mm256_rsqrt_ps(a); }

    WEXEL_LANES type lessequal(type a, type b) { return _mm256_cmp_ps(a, b, _CMP_LE_OS); }
    WEXEL_LANES type and_(type a, type b) { return _mm256_and_ps(a, b); }
    WEXEL_LANES type or_(type a, type b) { return _mm256_or_ps(a, b); }
    WEXEL_LANES type andnot(type a, type b) { return _mm256_andnot_ps(a, b); }
    WEXEL_LANES int signs(type a) { return _mm256_movemask_ps(a); }
    WEXEL_LANES type unpacklo(type a, type b) { return _mm256_unpacklo_ps(a, b); }
    WEXEL_LANES type unpackhi(type a, type b) { return _mm256_unpackhi_ps(a, b); }
    WEXEL_LANES type pair(__m128 first, __m128 second) { return _mm256_set_m128(second, first); }

    // Lane i of each group in all four lanes of that group.
    template <int i>
    WEXEL_LANES type spread(type a) { return _mm256_shuffle_ps(a, a, _MM_SHUFFLE(i, i, i, i)); }
    WEXEL_LANES float first(type a) { return _mm256_cvtss_f32(a); }

    WEXEL_LANES __m256i truncate(type a) { return _mm256_cvttps_epi32(a); }
    WEXEL_LANES __m256i round(type a) { return _mm256_cvtps_epi32(a); }
    WEXEL_LANES type fromints(__m256i a) { return _mm256_cvtepi32_ps(a); }
    WEXEL_LANES __m256i bits(type a) { return _mm256_castps_si256(a); }
    WEXEL_LANES type ofbits(__m256i a) { return _mm256_castsi256_ps(a); }
};
