#include "toolkit/view.h"

#include "toolkit/light.h"
#include "toolkit/projection.h"
#include "util/arraypin.h"
#include "util/frame.h"

namespace {

void updateviewprojection(toolkit& t) {
    multiplymatrices(t.viewmatrix, t.projectionmatrix, t.viewprojection);
    buildplanes(t.viewprojection, t.frustumplanes);
}

// The host's matrix, copied out of its pin so that it can be read with aligned loads.
template <class F>
void withmatrix(JNIEnv* env, jfloatArray matrix, F&& use) {
    arraypin<pinkind::floatcritical> pin(env, matrix);
    const float* source = pin.get();
    alignas(16) float local[16];
    for (int i = 0; i < 16; i += 4) floats4::store(local + i, floats4::loadu(source + i));
    use(local);
}

}  // namespace

void buildplanes(const float* m, float planes[6][4]) {
    using F = floats4;
    F::type x = F::load(m), y = F::load(m + 4), z = F::load(m + 8), w = F::load(m + 12);
    _MM_TRANSPOSE4_PS(x, y, z, w);
    const F::type sides[6] = {F::add(w, x), F::sub(w, x), F::add(w, y), F::sub(w, y), F::add(w, z), F::sub(w, z)};
    for (int i = 0; i < 6; ++i) {
        alignas(16) float p[4];
        F::store(p, sides[i]);
        float lengthsquared = p[0] * p[0] + p[1] * p[1] + p[2] * p[2];
        // The scalar approximation (rsqrtss) the planes are defined with, in all four lanes.
        F::type scale = F::spread<0>(_mm_rsqrt_ss(_mm_set_ss(lengthsquared)));
        F::store(planes[i], F::mul(sides[i], scale));
    }
}

void setviewmatrix(toolkit& t, const float* m) {
    for (int i = 0; i < 16; i += 4) floats4::store(t.viewmatrix + i, floats4::load(m + i));
    updateviewprojection(t);
}

void setprojectionmatrix(toolkit& t, const float* m) {
    for (int i = 0; i < 16; i += 4) floats4::store(t.projectionmatrix + i, floats4::load(m + i));
    updateviewprojection(t);
    alignas(16) float planes[6][4];
    buildplanes(t.projectionmatrix, planes);
    rasterstate.farplane = planes[5][3];
    rasterstate.nearplane = -planes[4][3];
    // The fog start is a screen depth, so it moves with the projection.
    updatefog(t);
}

extern "C" {

JNIEXPORT void JNICALL Java_ja_AA(JNIEnv* env, jobject, jfloatArray matrix) {
    runexport(env, [&] { withmatrix(env, matrix, [&](const float* m) { setviewmatrix(*currenttoolkit, m); }); });
}

JNIEXPORT void JNICALL Java_ja_wa(JNIEnv* env, jobject, jfloatArray matrix) {
    runexport(env, [&] { withmatrix(env, matrix, [&](const float* m) { setprojectionmatrix(*currenttoolkit, m); }); });
}

}  // extern "C"
