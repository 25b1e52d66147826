#include "model/picking.h"

#include <algorithm>

#include "toolkit/projection.h"
#include "util/arraypin.h"
#include "util/frame.h"
#include "util/peer.h"
#include "util/truncate.h"

namespace {

__m128 point(float x, float y, float z) { return _mm_setr_ps(x, y, z, 1.0f); }

// A host matrix in an aligned local; its pin is let go at once.
void copymatrix(JNIEnv* env, jfloatArray matrix, jsize length, float* out) {
    arraypin<pinkind::floatcritical> pin(env, matrix, length);
    std::copy(pin.get(), pin.get() + 16, out);
}

}  // namespace

bool hittest(model& m, renderworkspace& w, const float* matrix, int x, int y, bool boxonly) {
    if (m.facecount == 0) return false;
    if (!m.boundsvalid) computebounds(m);
    alignas(16) float mvp[16];
    multiplymatrices(matrix, currenttoolkit->viewprojection, mvp);
    float left = 100000.0f, top = 100000.0f, right = -100000.0f, bottom = -100000.0f;
    bool counted = false;
    for (int corner = 0; corner < 8; ++corner) {
        const __m128 p = point(corner & 1 ? m.maxx : m.minx, corner & 2 ? m.maxy : m.miny, corner & 4 ? m.maxz : m.minz);
        float* s = w.vertices[corner];
        _mm_store_ps(s, projectpoint(p, mvp));
        if (!(s[2] >= rasterstate.depthrange[0])) continue;
        counted = true;
        left = std::min(left, s[0]), right = std::max(right, s[0]);
        top = std::min(top, s[1]), bottom = std::max(bottom, s[1]);
    }
    const float fx = static_cast<float>(x), fy = static_cast<float>(y);
    if (!counted || !(left < fx && fx < right && top < fy && fy < bottom)) return false;
    if (boxonly) return true;

    const int count = std::min(m.vertexcount, workspacevertices);
    for (int i = 0; i < count; ++i) {
        const quad& v = m.vertices[i];
        _mm_store_ps(w.vertices[i], projectpoint(point(v.x, v.y, v.z), mvp));
    }
    // Each face by its screen rectangle; the third corner's depth is not looked at.
    for (int f = 0; f < m.facecount; ++f) {
        const float *a = w.vertices[m.facea[f]], *b = w.vertices[m.faceb[f]], *c = w.vertices[m.facec[f]];
        if (!(a[2] >= 0.0f && b[2] >= 0.0f)) continue;
        if (fy >= std::min({a[1], b[1], c[1]}) && fy <= std::max({a[1], b[1], c[1]}) &&
            fx >= std::min({a[0], b[0], c[0]}) && fx <= std::max({a[0], b[0], c[0]}))
            return true;
    }
    return false;
}

void markerpositions(const model& m, const float* matrix, int* out) {
    const int count = m.markertriangles * 3 + m.markerpoints;
    for (int k = 0; k < count; ++k) {
        const quad& v = m.vertices[m.markerlist[k]];
        alignas(16) float p[4];
        _mm_store_ps(p, transformpoint(point(v.x, v.y, v.z), matrix));
        for (int axis = 0; axis < 3; ++axis) out[3 * k + axis] = truncate(p[axis]);
    }
}

extern "C" {

JNIEXPORT jboolean JNICALL Java_a_ya(JNIEnv* env, jobject, jlong workspace, jlong peer, jint x, jint y,
                                     jfloatArray matrix, jboolean boxonly) {
    return runexport(env, [&]() -> jboolean {
        alignas(16) float m[16];
        copymatrix(env, matrix, arraylength(env, matrix), m);
        return hittest(*peerat<model>(peer), *peerat<renderworkspace>(workspace), m, x, y, boxonly);
    });
}

JNIEXPORT void JNICALL Java_a_J(JNIEnv* env, jobject, jlong, jlong peer, jintArray out, jfloatArray matrix) {
    runexport(env, [&] {
        const jsize outlength = arraylength(env, out), matrixlength = arraylength(env, matrix);
        alignas(16) float m[16];
        copymatrix(env, matrix, matrixlength, m);
        arraypin<pinkind::intcriticalwrite> positions(env, out, outlength);
        markerpositions(*peerat<model>(peer), m, positions.get());
    });
}

}  // extern "C"
