// Four floats in a 128-bit register: the lane type of edge, depth and texture-coordinate
// interpolation and of the transforms. The operations are the processor's single-precision ones,
// one instruction each, so a result is the same whichever code computes it; `reciprocal` and
// `reciprocalroot` are the processor's approximations, not divisions.
#pragma once
#include <emmintrin.h>

#include "pixel/lanes.h"

struct floats4 {
    using type = __m128;
    static constexpr int lanes = 4;

    WEXEL_LANES type load(const float* p) { return _mm_load_ps(p); }  // 16-byte aligned
    WEXEL_LANES type loadu(const float* p) { return _mm_loadu_ps(p); }
    WEXEL_LANES void store(float* p, type v) { _mm_store_ps(p, v); }
    WEXEL_LANES void storeu(float* p, type v) { _mm_storeu_ps(p, v); }
    WEXEL_LANES type set(float v) { return _mm_set1_ps(v); }
    WEXEL_LANES type setr(float a, float b, float c, float d) { return _mm_setr_ps(a, b, c, d); }
    WEXEL_LANES type zero() { return _mm_setzero_ps(); }
    WEXEL_LANES type widen(__m128 v) { return v; }  // a constant of one group, in every group

    WEXEL_LANES type add(type a, type b) { return _mm_add_ps(a, b); }
    WEXEL_LANES type sub(type a, type b) { return _mm_sub_ps(a, b); }
    WEXEL_LANES type mul(type a, type b) { return _mm_mul_ps(a, b); }
    WEXEL_LANES type div(type a, type b) { return _mm_div_ps(a, b); }
    WEXEL_LANES type min(type a, type b) { return _mm_min_ps(a, b); }
    WEXEL_LANES type max(type a, type b) { return _mm_max_ps(a, b); }
    WEXEL_LANES type reciprocal(type a) { return _mm_rcp_ps(a); }
    WEXEL_LANES type reciprocalroot(type a) { return _mm_rsqrt_ps(a); }

    // All ones where a <= b; false for a NaN on either side.
    WEXEL_LANES type lessequal(type a, type b) { return _mm_cmple_ps(a, b); }
    WEXEL_LANES type and_(type a, type b) { return _mm_and_ps(a, b); }
    WEXEL_LANES type or_(type a, type b) { return _mm_or_ps(a, b); }
    WEXEL_LANES type andnot(type a, type b) { return _mm_andnot_ps(a, b); }
    WEXEL_LANES int signs(type a) { return _mm_movemask_ps(a); }
    WEXEL_LANES type unpacklo(type a, type b) { return _mm_unpacklo_ps(a, b); }
    WEXEL_LANES type unpackhi(type a, type b) { return _mm_unpackhi_ps(a, b); }

    // Lane i of a in all four lanes.
    template <int i>
    WEXEL_LANES type spread(type a) { return _mm_shuffle_ps(a, a, _MM_SHUFFLE(i, i, i, i)); }
    WEXEL_LANES float first(type a) { return _mm_cvtss_f32(a); }

    // To 32-bit integers, truncating toward zero, or by the current rounding (nearest, ties to
    // even). Out-of-range values and NaN give 0x80000000, as the instructions do.
    WEXEL_LANES __m128i truncate(type a) { return _mm_cvttps_epi32(a); }
    WEXEL_LANES __m128i round(type a) { return _mm_cvtps_epi32(a); }
    WEXEL_LANES type fromints(__m128i a) { return _mm_cvtepi32_ps(a); }
    WEXEL_LANES __m128i bits(type a) { return _mm_castps_si128(a); }
    WEXEL_LANES type ofbits(__m128i a) { return _mm_castsi128_ps(a); }
};
