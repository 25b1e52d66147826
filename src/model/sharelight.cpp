#include "model/sharelight.h"

#include <cmath>
#include <initializer_list>

#include "model/lighting.h"
#include "util/frame.h"
#include "util/peer.h"

namespace {

// The float nearest 0.01: vertices this close on every axis touch.
constexpr float touching = 0.0099999998f;

bool inside(float v, int16_t low, int16_t high) { return v >= low && v <= high; }

// The shared sum of vertex i, made on the first join from the vertex's own normal.
quad& sharedentry(model& m, int i) {
    if (m.sharednormals.empty()) {
        m.pool->allocate(m.sharednormals, m.usedvertexcount);
        for (int k = 0; k < m.usedvertexcount; ++k) m.sharednormals[k] = quad{};
    }
    quad& s = m.sharednormals[i];
    if (s.w == 0.0f) s = m.normals[i];
    return s;
}

void add(quad& sum, const quad& n) { sum.x += n.x, sum.y += n.y, sum.z += n.z, sum.w += n.w; }

}  // namespace

void sharelight(model& a, model& b, renderworkspace& w, int x, int y, int z) {
    const char* words = "Can't sharelight if functionmask does not contain FM_SHARELIGHT";
    requiremask(a, FM_SHARELIGHT, words);
    requiremask(b, FM_SHARELIGHT, words);
    for (model* m : {&a, &b}) {
        computebounds(*m);
        computenormals(*m);
    }
    const uint16_t stamp = w.stamp++;
    const float dx = static_cast<float>(x), dy = static_cast<float>(y), dz = static_cast<float>(z);
    for (int i = 0; i < a.usedvertexcount; ++i) {
        if (a.normals[i].w == 0.0f) continue;
        const quad& v = a.vertices[i];
        const float px = v.x - dx, py = v.y - dy, pz = v.z - dz;
        if (!inside(py, b.miny, b.maxy) || !inside(px, b.minx, b.maxx) || !inside(pz, b.minz, b.maxz)) continue;
        for (int j = 0; j < b.usedvertexcount; ++j) {
            const quad& q = b.vertices[j];
            if (!(std::fabs(px - q.x) < touching && std::fabs(pz - q.z) < touching && std::fabs(py - q.y) < touching &&
                  b.normals[j].w != 0.0f))
                continue;
            // Both sums are made before either grows: making one may move the other's pool.
            sharedentry(a, i);
            sharedentry(b, j);
            add(a.sharednormals[i], b.normals[j]);
            add(b.sharednormals[j], a.normals[i]);
            // Nothing reads the stamps; the host keeps these models within their length.
            if (i < workspacestamps) w.stampsone[i] = stamp;
            if (j < workspacestamps) w.stampstwo[j] = stamp;
        }
    }
}

extern "C" JNIEXPORT void JNICALL Java_a_P(JNIEnv* env, jobject, jlong workspace, jlong a, jlong b, jint x, jint y,
                                           jint z, jint) {
    runexport(env, [&] {
        if (!workspace || !a || !b) fail<NullPointerException>();
        sharelight(*peerat<model>(a), *peerat<model>(b), *peerat<renderworkspace>(workspace), x, y, z);
    });
}
