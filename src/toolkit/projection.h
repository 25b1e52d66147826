// The one way a point goes from model or world space to the screen, shared by the camera, the fog,
// particles, ground and models so that they all agree on every bit of a projected position.
// Matrices are 16 floats, four rows of four, 16-byte aligned, acting on row vectors.
#pragma once
#include "pixel/floatlanes.h"
#include "toolkit/toolkit.h"

// p times the matrix: (w*row3 + y*row1) + (z*row2 + x*row0), in that order of addition.
inline __m128 transformpoint(__m128 p, const float* m) {
    using F = floats4;
    F::type x = F::spread<0>(p), y = F::spread<1>(p), z = F::spread<2>(p), w = F::spread<3>(p);
    F::type wy = F::add(F::mul(w, F::load(m + 12)), F::mul(y, F::load(m + 4)));
    F::type zx = F::add(F::mul(z, F::load(m + 8)), F::mul(x, F::load(m)));
    return F::add(wy, zx);
}

// out := a times b, each row of a transformed as a point.
inline void multiplymatrices(const float* a, const float* b, float* out) {
    for (int r = 0; r < 4; ++r) floats4::store(out + 4 * r, transformpoint(floats4::load(a + 4 * r), b));
}

// Divides a clip-space point by its w in all four lanes with a true division. A negative clip z
// stays negative after the division whatever the sign of w, so points behind the eye never pass
// the near-depth test.
inline __m128 dividebyw(__m128 v) {
    using F = floats4;
    F::type n = F::div(v, F::spread<3>(v));
    F::type sign = F::and_(v, F::load(reinterpret_cast<const float*>(rasterstate.signmask)));
    return F::or_(n, sign);
}

// Screen position of p: pixels in x and y, mapped depth in z.
inline __m128 projectpoint(__m128 p, const float* m) {
    using F = floats4;
    F::type n = dividebyw(transformpoint(p, m));
    return F::add(F::mul(n, F::load(rasterstate.viewportscale)), F::load(rasterstate.viewportoffset));
}
