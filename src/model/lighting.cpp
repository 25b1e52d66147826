#include "model/lighting.h"

#include <algorithm>
#include <cmath>

#include "toolkit/projection.h"
#include "toolkit/tables.h"
#include "toolkit/texturestore.h"
#include "util/assertion.h"
#include "util/frame.h"
#include "util/truncate.h"

void computenormals(model& m) {
    memorymanager& pool = *m.pool;
    pool.allocate(m.normals, m.usedvertexcount);
    pool.allocate(m.facenormals, m.facecount);
    quad* normals = m.normals.get();
    std::fill(normals, normals + m.usedvertexcount, quad{});
    const quad* v = m.vertices.get();
    for (int f = 0; f < m.facecount; ++f) {
        const quad &a = v[m.facea[f]], &b = v[m.faceb[f]], &c = v[m.facec[f]];
        float bx = b.x - a.x, by = b.y - a.y, bz = b.z - a.z;
        float cx = c.x - a.x, cy = c.y - a.y, cz = c.z - a.z;
        float nx = by * cz - bz * cy, ny = bz * cx - bx * cz, nz = bx * cy - by * cx;
        float length = std::sqrt(nx * nx + ny * ny + nz * nz);
        if (length != 0.0f) {
            float r = 1.0f / length;
            nx *= r, ny *= r, nz *= r;
        }
        int type = m.facetypes.empty() ? 0 : m.facetypes[f];
        if (type == 0) {
            for (uint16_t corner : {m.facea[f], m.faceb[f], m.facec[f]}) {
                quad& n = normals[corner];
                n.x += nx, n.y += ny, n.z += nz, n.w += 1.0f;
            }
        } else if (type == 1) {
            m.facenormals[f] = {nx, ny, nz, 1.0f};
        }
    }
    // The mean of unit normals, not renormalised: shorter than unit at a crease.
    for (int i = 0; i < m.usedvertexcount; ++i) {
        quad& n = normals[i];
        if (n.w == 0.0f) continue;
        float r = 1.0f / n.w;
        n = {n.x * r, n.y * r, n.z * r, 1.0f};
    }
}

uint32_t basecolour(int hsl, int texture, int ambient) {
    int l = std::clamp(((hsl & 0x7F) * ambient) >> 7, 2, 126);
    uint32_t rgb = static_cast<uint32_t>(hsltorgb[(hsl & 0xFF80) + l]);
    const texturedescriptor* d = getdescriptor(texture);
    if (!d) return rgb;
    if (uint32_t m = d->blend) {
        // Towards a grey of the model's lightness, red and blue as one pair.
        uint32_t g = ambient < 128 ? static_cast<uint32_t>(ambient) * 0x20202u : 0xFFFFFFu;
        uint32_t redblue = ((rgb & 0xFF00FF) * (256 - m) + (g & 0xFF00FF) * m) & 0xFF00FF00u;
        uint32_t green = ((rgb & 0xFF00) * (256 - m) + (g & 0xFF00) * m) & 0xFF0000u;
        rgb = (redblue + green) >> 8;
    }
    if (uint32_t k = d->bright) {
        uint32_t out = 0;
        for (int shift = 0; shift < 24; shift += 8)
            out |= std::min((rgb >> shift & 0xFF) * (256 + k), 0xFFFFu) >> 8 << shift;
        rgb = out;
    }
    return rgb;
}

void lightpass(model& m) {
    WEXEL_ASSERT(!m.fhsl.empty(), "!fhsl.isnull()", "model", 855);
    if (m.normals.empty()) computenormals(m);
    if (m.litcolours.empty()) m.pool->allocate(m.litcolours, m.facecount);
    for (int f = 0; f < m.facecount; ++f) {
        // Faces that are never drawn keep what they had.
        if (!m.facetypes.empty() && m.facetypes[f] == 2) continue;
        int texture = f < m.texturedfacecount ? m.facetextures[f] : 0xFFFF;
        uint32_t alpha = m.facealphas.empty() ? 255u : 255u - m.facealphas[f];
        uint32_t word = alpha << 24 | basecolour(m.fhsl[f], texture, m.ambient);
        m.litcolours[f] = {{word, word, word}};
    }
    if (!(m.functionmask & FM_KEEPCOLOURS)) m.fhsl.release();
}

uint32_t sunterm(uint32_t colour, const quad& n, float scale, const toolkit& t) {
    const float* s = t.sundirection;
    float d = (n.x * s[0] + n.y * s[1] + n.z * s[2]) / n.w;
    float f = d > 0.0f ? t.ambient : t.diffuse;
    int32_t i = truncate((f * d * scale + t.lightfactor) * 256.0f);
    uint32_t out = 0xFF000000u;
    for (int channel = 0; channel < 3; ++channel) {
        int shift = 16 - 8 * channel;  // red, green, blue against the sun's R, G, B
        int32_t c = static_cast<int32_t>(colour >> shift & 0xFF);
        int32_t lit = static_cast<int32_t>(static_cast<uint32_t>((c * t.suncolour[channel]) >> 8) *
                                           static_cast<uint32_t>(i)) >> 8;
        out |= static_cast<uint32_t>(std::clamp(lit, 4, 252)) << shift;
    }
    return out;
}

void placelights(model& mdl, const toolkit& t, const float* m, pointlights& out) {
    out.count = t.lightcount;
    for (int i = 0; i < t.lightcount; ++i) {
        const float* p = t.lightposition[i];
        float d[3] = {p[0] - m[12], p[1] - m[13], p[2] - m[14]};
        for (int row = 0; row < 4; ++row)
            mdl.modellights[i][row] = d[0] * m[4 * row] + d[1] * m[4 * row + 1] + d[2] * m[4 * row + 2];
        _mm_store_ps(out.position[i], _mm_load_ps(mdl.modellights[i]));
        uint32_t c = static_cast<uint32_t>(t.lightcolour[i]);
        for (int lane = 0; lane < 4; ++lane) out.colour[i][lane] = static_cast<float>(c >> (8 * lane) & 0xFF);
        out.radius[i] = t.lightradius[i];
    }
}

namespace {

template <int32_t model::*field>
void setfield(JNIEnv* env, jobject self, jint value) {
    runexport(env, [&] { modelpeer(env, self).*field = value; });
}

template <int32_t model::*field>
jint getfield(JNIEnv* env, jobject self) {
    return runexport(env, [&] { return modelpeer(env, self).*field; });
}

}  // namespace

extern "C" {

// The new values take effect when the colours are next made, or at the next draw for `contrast`.
JNIEXPORT void JNICALL Java_h_p(JNIEnv* env, jobject self, jint value) { setfield<&model::ambient>(env, self, value); }
JNIEXPORT jint JNICALL Java_h_c(JNIEnv* env, jobject self) { return getfield<&model::ambient>(env, self); }
JNIEXPORT void JNICALL Java_h_Q(JNIEnv* env, jobject self, jint value) { setfield<&model::contrast>(env, self, value); }
JNIEXPORT jint JNICALL Java_h_Z(JNIEnv* env, jobject self) { return getfield<&model::contrast>(env, self); }

// The end of a run of animation steps: colours that the steps made stale go, and the bounds are
// recomputed at their next use.
JNIEXPORT void JNICALL Java_h_ka(JNIEnv* env, jobject self) {
    runexport(env, [&] {
        model& m = modelpeer(env, self);
        if (m.colourdirty) {
            m.litcolours.release();
            m.colourdirty = 0;
        }
        m.boundsvalid = 0;
    });
}

}  // extern "C"
