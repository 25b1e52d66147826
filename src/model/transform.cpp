#include "model/transform.h"

#include <cmath>

#include "model/lighting.h"
#include "util/frame.h"
#include "util/peer.h"

namespace {

// The bits a turn needs: the two axes it moves, and FM_NORMALS when the normals turn too.
constexpr uint32_t turnmask(turnaxis axis, bool withnormals) {
    uint32_t moved = axis == turnaxis::x ? FM_MOVE_Y | FM_MOVE_Z
                     : axis == turnaxis::y ? FM_MOVE_X | FM_MOVE_Z
                                           : FM_MOVE_X | FM_MOVE_Y;
    return withnormals ? moved | FM_NORMALS : moved;
}

// Turns about y; the three quarter turns move values and flip signs, so that they are exact.
void turny(quad* p, int count, int angle) {
    switch (angle) {
        case 4096:
            for (int i = 0; i < count; ++i) {
                float x = p[i].x;
                p[i].x = p[i].z, p[i].z = -x;
            }
            return;
        case 8192:
            for (int i = 0; i < count; ++i) p[i].x = -p[i].x, p[i].z = -p[i].z;
            return;
        case 12288:
            for (int i = 0; i < count; ++i) {
                float x = p[i].x;
                p[i].x = -p[i].z, p[i].z = x;
            }
            return;
        default:
            for (int i = 0; i < count; ++i) turn<turnaxis::y>(p[i], angle);
    }
}

template <turnaxis A>
void turnpoints(quad* p, int from, int to, int angle) {
    if constexpr (A == turnaxis::y) {
        turny(p + from, to - from, angle);
    } else {
        for (int i = from; i < to; ++i) turn<A>(p[i], angle);
    }
}

// The host relies on this rule for normals turned about x, which is not the vertices' rule.
void turnnormalsx(quad* n, int count, int angle) {
    const float s = sintable[angle & 0x3FFF], c = costable[angle & 0x3FFF];
    for (int i = 0; i < count; ++i) {
        float ny = n[i].z * s + n[i].y * c, nz = n[i].y * s - n[i].z * c;
        n[i].y = ny, n[i].z = nz;
    }
}

template <turnaxis A>
void turnwithnormals(model& m, int angle) {
    turnpoints<A>(m.vertices.get(), 0, m.usedvertexcount, angle);
    if constexpr (A == turnaxis::x) {
        turnnormalsx(m.normals.get(), m.usedvertexcount, angle);
    } else {
        turnpoints<A>(m.normals.get(), 0, m.usedvertexcount, angle);
    }
    if constexpr (A == turnaxis::y) {
        if (!m.facenormals.empty()) turny(m.facenormals.get(), m.facecount, angle);
    }
    turnpoints<A>(m.vertices.get(), m.usedvertexcount, m.vertexcount, angle);
    // Only the turn about y lets the colours and bounds go.
    if constexpr (A == turnaxis::y) {
        m.boundsvalid = 0;
        m.litcolours.release();
    }
}

template <turnaxis A>
void turnaxisof(model& m, int angle, bool withnormals) {
    requiremask(m, turnmask(A, withnormals));
    if (withnormals && !m.normals.empty()) return turnwithnormals<A>(m, angle);
    turnpoints<A>(m.vertices.get(), 0, m.vertexcount, angle);
    dropnormals(m);
}

// Each axis that moves needs its own bit.
void requireaxes(const model& m, bool x, bool y, bool z) {
    requiremask(m, (x ? FM_MOVE_X : 0u) | (y ? FM_MOVE_Y : 0u) | (z ? FM_MOVE_Z : 0u));
}

}  // namespace

void dropnormals(model& m) {
    m.normals.release();
    m.sharednormals.release();
    m.facenormals.release();
    m.boundsvalid = 0;
    if (m.modelflags & MF_POINTLIT) computenormals(m);
}

void turnmodel(model& m, turnaxis axis, int angle, bool withnormals) {
    switch (axis) {
        case turnaxis::x: return turnaxisof<turnaxis::x>(m, angle, withnormals);
        case turnaxis::y: return turnaxisof<turnaxis::y>(m, angle, withnormals);
        case turnaxis::z: return turnaxisof<turnaxis::z>(m, angle, withnormals);
    }
}

void translatemodel(model& m, int x, int y, int z) {
    requireaxes(m, x != 0, y != 0, z != 0);
    const float dx = static_cast<float>(x), dy = static_cast<float>(y), dz = static_cast<float>(z);
    quad* v = m.vertices.get();
    for (int i = 0; i < m.vertexcount; ++i) v[i].x += dx, v[i].y += dy, v[i].z += dz;
}

void scalemodel(model& m, int x, int y, int z) {
    requireaxes(m, x != 128, y != 128, z != 128);
    quad* v = m.vertices.get();
    int value[3] = {x, y, z};
    for (int axis = 0; axis < 3; ++axis) {
        if (value[axis] == 128) continue;
        const float k = static_cast<float>(value[axis]);
        for (int i = 0; i < m.vertexcount; ++i) {
            float& c = (&v[i].x)[axis];
            c = std::floor(c * k * 0.0078125f);
        }
    }
    m.boundsvalid = 0;
}

void mirrormodel(model& m) {
    requiremask(m, FM_MIRROR);
    auto negatez = [](const allocatedmemory<quad>& a, int count) {
        if (a.empty()) return;
        for (int i = 0; i < count; ++i) a[i].z = -a[i].z;
    };
    negatez(m.vertices, m.vertexcount);
    negatez(m.normals, m.usedvertexcount);
    negatez(m.sharednormals, m.usedvertexcount);
    negatez(m.facenormals, m.facecount);
    // Swapping two corners restores the winding that the mirror turned.
    auto swap = [](auto& a, auto& b) {
        std::remove_reference_t<decltype(a)> held;
        held.copyfrom(a), a.copyfrom(b), b.copyfrom(held);
    };
    swap(m.faceb, m.facec);
    if (!m.uva.empty()) swap(m.uvb, m.uvc);
    m.boundsvalid = 0;
    m.litcolours.release();
}

namespace {

template <turnaxis A, bool withnormals>
void turnexport(JNIEnv* env, jobject self, jint angle) {
    runexport(env, [&] { turnmodel(modelpeer(env, self), A, angle, withnormals); });
}

}  // namespace

extern "C" {

JNIEXPORT void JNICALL Java_h_f(JNIEnv* env, jobject self, jint angle) { turnexport<turnaxis::y, false>(env, self, angle); }
JNIEXPORT void JNICALL Java_h_S(JNIEnv* env, jobject self, jint angle) { turnexport<turnaxis::y, true>(env, self, angle); }
JNIEXPORT void JNICALL Java_h_t(JNIEnv* env, jobject self, jint angle) { turnexport<turnaxis::x, false>(env, self, angle); }
JNIEXPORT void JNICALL Java_h_VA(JNIEnv* env, jobject self, jint angle) { turnexport<turnaxis::x, true>(env, self, angle); }
JNIEXPORT void JNICALL Java_h_EA(JNIEnv* env, jobject self, jint angle) { turnexport<turnaxis::z, false>(env, self, angle); }
JNIEXPORT void JNICALL Java_h_K(JNIEnv* env, jobject self, jint angle) { turnexport<turnaxis::z, true>(env, self, angle); }

JNIEXPORT void JNICALL Java_h_ia(JNIEnv* env, jobject self, jint x, jint y, jint z) {
    runexport(env, [&] { translatemodel(modelpeer(env, self), x, y, z); });
}

JNIEXPORT void JNICALL Java_h_oa(JNIEnv* env, jobject self, jint x, jint y, jint z) {
    runexport(env, [&] { scalemodel(modelpeer(env, self), x, y, z); });
}

JNIEXPORT void JNICALL Java_h_wa(JNIEnv* env, jobject self) {
    runexport(env, [&] { mirrormodel(modelpeer(env, self)); });
}

}  // extern "C"
