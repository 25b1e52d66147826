#include "model/model.h"

#include <cmath>

#include "model/lighting.h"
#include "util/arraypin.h"
#include "util/exception.h"
#include "util/frame.h"
#include "util/peer.h"
#include "util/truncate.h"

void requiremask(const model& m, uint32_t bits, const char* words) {
    if ((m.functionmask & bits) != bits) fail<IllegalStateException>(words);
}

void narrowmask(model& m, uint32_t newmask) {
    if ((m.functionmask & newmask) != newmask)
        fail<IllegalArgumentException>("Can't re-enable previously disabled functions");
    if ((m.functionmask & FM_SHARELIGHT) && !(newmask & FM_SHARELIGHT)) {
        for (int f = 0; f < m.facetypes.length(); ++f)
            if (m.facetypes[f] == 2) m.facetypes[f] = 0;
        lightpass(m);
    }
    m.functionmask = newmask;
}

void computebounds(model& m) {
    float low[3] = {32767.0f, 32767.0f, 32767.0f}, high[3] = {-32768.0f, -32768.0f, -32768.0f};
    float widest = 0.0f, farthest = 0.0f;
    const quad* v = m.vertices.get();
    for (int i = 0; i < m.usedvertexcount; ++i) {
        const float p[3] = {v[i].x, v[i].y, v[i].z};
        for (int axis = 0; axis < 3; ++axis) {
            if (p[axis] < low[axis]) low[axis] = p[axis];
            if (p[axis] > high[axis]) high[axis] = p[axis];
        }
        float xz = p[0] * p[0] + p[2] * p[2];
        float xyz = p[0] * p[0] + p[2] * p[2] + p[1] * p[1];
        if (xz > widest) widest = xz;
        if (xyz > farthest) farthest = xyz;
    }
    m.minx = static_cast<int16_t>(truncate(low[0]));
    m.maxx = static_cast<int16_t>(truncate(high[0]));
    m.miny = static_cast<int16_t>(truncate(low[1]));
    m.maxy = static_cast<int16_t>(truncate(high[1]));
    m.minz = static_cast<int16_t>(truncate(low[2]));
    m.maxz = static_cast<int16_t>(truncate(high[2]));
    m.radius = static_cast<int16_t>(truncate(std::sqrt(widest) + 0.99f));
    m.sphereradius = static_cast<int16_t>(truncate(std::sqrt(farthest) + 0.99f));
    m.boundsvalid = 1;
}

model& modelpeer(JNIEnv* env, jobject self) { return *getpeer<model>(env, hostclass::h, self); }

namespace {

// The bounds as the host reads them: recomputed first when vertices moved since.
template <int16_t model::*field>
jint bound(JNIEnv* env, jobject self) {
    return runexport(env, [&]() -> jint {
        model& m = modelpeer(env, self);
        if (!m.boundsvalid) computebounds(m);
        return m.*field;
    });
}

}  // namespace

extern "C" {

// A blank model, the target and scratch of clones; it has no pool until a clone gives it one.
JNIEXPORT void JNICALL Java_h_ba(JNIEnv* env, jobject self, jobject) {
    runexport(env, [&] { setpeer(env, hostclass::h, self, new model); });
}

JNIEXPORT void JNICALL Java_h_ma(JNIEnv* env, jobject self, jobject) {
    runexport(env, [&] {
        delete getpeer<model>(env, hostclass::h, self);
        setpeer(env, hostclass::h, self, nullptr);
    });
}

JNIEXPORT jint JNICALL Java_h_m(JNIEnv* env, jobject self) {
    return runexport(env, [&] { return static_cast<jint>(modelpeer(env, self).functionmask); });
}

JNIEXPORT void JNICALL Java_h_KA(JNIEnv* env, jobject self, jint newmask) {
    runexport(env, [&] { narrowmask(modelpeer(env, self), static_cast<uint32_t>(newmask)); });
}

JNIEXPORT jint JNICALL Java_h_N(JNIEnv* env, jobject self) { return bound<&model::radius>(env, self); }
JNIEXPORT jint JNICALL Java_h_n(JNIEnv* env, jobject self) { return bound<&model::sphereradius>(env, self); }
JNIEXPORT jint JNICALL Java_h_RA(JNIEnv* env, jobject self) { return bound<&model::minx>(env, self); }
JNIEXPORT jint JNICALL Java_h_ya(JNIEnv* env, jobject self) { return bound<&model::maxx>(env, self); }
JNIEXPORT jint JNICALL Java_h_YA(JNIEnv* env, jobject self) { return bound<&model::miny>(env, self); }
JNIEXPORT jint JNICALL Java_h_o(JNIEnv* env, jobject self) { return bound<&model::maxy>(env, self); }
JNIEXPORT jint JNICALL Java_h_AA(JNIEnv* env, jobject self) { return bound<&model::minz>(env, self); }
JNIEXPORT jint JNICALL Java_h_ha(JNIEnv* env, jobject self) { return bound<&model::maxz>(env, self); }

JNIEXPORT jboolean JNICALL Java_h_i(JNIEnv* env, jobject self) {
    return runexport(env, [&]() -> jboolean {
        const model& m = modelpeer(env, self);
        return m.hastranslucency || !m.facealphas.empty();
    });
}

JNIEXPORT jboolean JNICALL Java_h_u(JNIEnv* env, jobject self) {
    return runexport(env, [&]() -> jboolean { return modelpeer(env, self).hasscroll != 0; });
}

// Kept for the host's sake: it makes and pins a six-float array beside the argument, lets both go
// and answers null.
JNIEXPORT jobject JNICALL Java_h_LA(JNIEnv* env, jobject, jfloatArray values) {
    return runexport(env, [&]() -> jobject {
        jsize length = arraylength(env, values);
        arraypin<pinkind::floatcriticalwrite> six(env, 6);
        arraypin<pinkind::floatcritical> argument(env, values, length);
        return nullptr;
    });
}

}  // extern "C"
