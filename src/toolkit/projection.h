// The one way a point goes from model or world space to the screen, shared by the camera, the fog,
// particles, ground and models so that they all agree on every bit of a projected position.
// Matrices are 16 floats, four rows of four, 16-byte aligned, acting on row vectors.
#pragma once
#include <xmmintrin.h>

#include "toolkit/toolkit.h"

// p times the matrix: (w*row3 + y*row1) + (z*row2 + x*row0), in that order of addition.
inline __m128 transformpoint(__m128 p, const float* m) {
    __m128 x = _mm_shuffle_ps(p, p, _MM_SHUFFLE(0, 0, 0, 0));
    __m128 y = _mm_shuffle_ps(p, p, _MM_SHUFFLE(1, 1, 1, 1));
    __m128 z = _mm_shuffle_ps(p, p, _MM_SHUFFLE(2, 2, 2, 2));
    __m128 w = _mm_shuffle_ps(p, p, _MM_SHUFFLE(3, 3, 3, 3));
    __m128 wy = _mm_add_ps(_mm_mul_ps(w, _mm_load_ps(m + 12)), _mm_mul_ps(y, _mm_load_ps(m + 4)));
    __m128 zx = _mm_add_ps(_mm_mul_ps(z, _mm_load_ps(m + 8)), _mm_mul_ps(x, _mm_load_ps(m)));
    return _mm_add_ps(wy, zx);
}

// out := a times b, each row of a transformed as a point.
inline void multiplymatrices(const float* a, const float* b, float* out) {
    for (int r = 0; r < 4; ++r) _mm_store_ps(out + 4 * r, transformpoint(_mm_load_ps(a + 4 * r), b));
}

// Divides a clip-space point by its w in all four lanes with a true division. A negative clip z
// stays negative after the division whatever the sign of w, so points behind the eye never pass
// the near-depth test.
inline __m128 dividebyw(__m128 v) {
    __m128 n = _mm_div_ps(v, _mm_shuffle_ps(v, v, _MM_SHUFFLE(3, 3, 3, 3)));
    __m128 sign = _mm_and_ps(v, _mm_load_ps(reinterpret_cast<const float*>(rasterstate.signmask)));
    return _mm_or_ps(n, sign);
}

// Screen position of p: pixels in x and y, mapped depth in z.
inline __m128 projectpoint(__m128 p, const float* m) {
    __m128 n = dividebyw(transformpoint(p, m));
    return _mm_add_ps(_mm_mul_ps(n, _mm_load_ps(rasterstate.viewportscale)), _mm_load_ps(rasterstate.viewportoffset));
}
