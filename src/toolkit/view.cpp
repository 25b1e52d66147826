#include "toolkit/view.h"

#include <xmmintrin.h>

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
    for (int i = 0; i < 16; i += 4) _mm_store_ps(local + i, _mm_loadu_ps(source + i));
    use(local);
}

}  // namespace

void buildplanes(const float* m, float planes[6][4]) {
    __m128 x = _mm_load_ps(m), y = _mm_load_ps(m + 4), z = _mm_load_ps(m + 8), w = _mm_load_ps(m + 12);
    _MM_TRANSPOSE4_PS(x, y, z, w);
    const __m128 sides[6] = {_mm_add_ps(w, x), _mm_sub_ps(w, x), _mm_add_ps(w, y),
                             _mm_sub_ps(w, y), _mm_add_ps(w, z), _mm_sub_ps(w, z)};
    for (int i = 0; i < 6; ++i) {
        alignas(16) float p[4];
        _mm_store_ps(p, sides[i]);
        float lengthsquared = p[0] * p[0] + p[1] * p[1] + p[2] * p[2];
        __m128 scale = _mm_rsqrt_ss(_mm_set_ss(lengthsquared));
        scale = _mm_shuffle_ps(scale, scale, _MM_SHUFFLE(0, 0, 0, 0));
        _mm_store_ps(planes[i], _mm_mul_ps(sides[i], scale));
    }
}

void setviewmatrix(toolkit& t, const float* m) {
    for (int i = 0; i < 16; i += 4) _mm_store_ps(t.viewmatrix + i, _mm_load_ps(m + i));
    updateviewprojection(t);
}

void setprojectionmatrix(toolkit& t, const float* m) {
    for (int i = 0; i < 16; i += 4) _mm_store_ps(t.projectionmatrix + i, _mm_load_ps(m + i));
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
