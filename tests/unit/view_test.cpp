// The camera's matrix product, frustum planes and point projection against scalar references
// written lane by lane from their definitions.
#include "toolkit/view.h"

#include "projectionreference.h"
#include "statetest.h"
#include "toolkit/projection.h"

namespace {

// Plane i is column W plus (i even) or minus (i odd) column i/2, scaled by the approximate
// reciprocal length of its first three elements.
void referenceplanes(const float* m, float planes[6][4]) {
    for (int i = 0; i < 6; ++i) {
        float p[4];
        for (int k = 0; k < 4; ++k) p[k] = i % 2 == 0 ? m[4 * k + 3] + m[4 * k + i / 2] : m[4 * k + 3] - m[4 * k + i / 2];
        float r = rsqrt(p[0] * p[0] + p[1] * p[1] + p[2] * p[2]);
        for (int k = 0; k < 4; ++k) planes[i][k] = p[k] * r;
    }
}

void expectsamebits(const float* expected, const float* actual, int n) {
    for (int i = 0; i < n; ++i) EXPECT_EQ(bitsof(expected[i]), bitsof(actual[i])) << "element " << i;
}

class view : public statetest {};

// Either matrix may come first; near and far come from the projection's own planes.
TEST_F(view, productplanesnearandfarfollowbothmatrices) {
    alignas(16) float v[16], p[16], product[16];
    float planes[6][4], projectionplanes[6][4];
    for (int round = 0; round < 100 && !HasFailure(); ++round) {
        randommatrix(v);
        randommatrix(p);
        if (round % 2) setviewmatrix(t, v);
        setprojectionmatrix(t, p);
        if (round % 2 == 0) setviewmatrix(t, v);
        for (int r = 0; r < 4; ++r) referencetransform(v + 4 * r, p, product + 4 * r);
        expectsamebits(product, t.viewprojection, 16);
        referenceplanes(product, planes);
        expectsamebits(planes[0], t.frustumplanes[0], 24);
        referenceplanes(p, projectionplanes);
        EXPECT_EQ(bitsof(projectionplanes[5][3]), bitsof(rasterstate.farplane));
        EXPECT_EQ(bitsof(-projectionplanes[4][3]), bitsof(rasterstate.nearplane));
    }
}

TEST_F(view, projectionmatchesreferenceinfrontandbehindtheeye) {
    setviewport(5, 7, 320, 200, 0.0f, 1.0f);
    alignas(16) float m[16], out[4];
    float expected[4];
    for (int round = 0; round < 1000 && !HasFailure(); ++round) {
        randommatrix(m);
        float p[4] = {randomfloat(), randomfloat(), randomfloat(), 1.0f};
        _mm_store_ps(out, projectpoint(_mm_loadu_ps(p), m));
        referenceproject(p, m, expected);
        expectsamebits(expected, out, 4);
    }
    // Clip z and w both negative: the quotient is positive, but the point is behind the eye.
    _mm_store_ps(out, dividebyw(_mm_setr_ps(1.0f, 2.0f, -2.0f, -4.0f)));
    EXPECT_EQ(out[0], -0.25f);
    EXPECT_EQ(out[2], -0.5f);
}

}  // namespace
