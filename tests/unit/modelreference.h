// Scalar references of model colour, written from the rules: normals, the base colour, and the
// sun and point light terms (through the processor's approximations where the rules use them).
#pragma once
#include <climits>
#include <cmath>
#include <vector>

#include "model/lighting.h"
#include "rasterreference.h"
#include "toolkit/tables.h"
#include "toolkit/texturestore.h"
#include "util/truncate.h"

namespace modelreference {

inline uint32_t base(int hsl, const texturedescriptor* d, int ambient) {
    int l = std::min(std::max(((hsl & 0x7F) * ambient) >> 7, 2), 126);
    uint32_t rgb = uint32_t(hsltorgb[(hsl & 0xFF80) + l]), m = d ? d->blend : 0, k = d ? d->bright : 0;
    uint32_t g = ambient < 128 ? uint32_t(ambient) * 0x20202u : 0xFFFFFFu;
    if (m) rgb = ((((rgb & 0xFF00FF) * (256 - m) + (g & 0xFF00FF) * m) & 0xFF00FF00u) +
                  (((rgb & 0xFF00) * (256 - m) + (g & 0xFF00) * m) & 0xFF0000u)) >> 8;
    uint32_t out = 0;
    for (int s = 0; s < 24; s += 8)
        out |= (k ? std::min((rgb >> s & 0xFF) * (256 + k), 0xFFFFu) >> 8 : rgb >> s & 0xFF) << s;
    return out;
}

inline uint32_t sun(uint32_t colour, const quad& n, float scale, const toolkit& t) {
    float d = (n.x * t.sundirection[0] + n.y * t.sundirection[1] + n.z * t.sundirection[2]) / n.w;
    int i = truncate(((d > 0 ? t.ambient : t.diffuse) * d * scale + t.lightfactor) * 256.0f);
    uint32_t out = 0xFF000000u;
    for (int c = 0; c < 3; ++c) {
        int lit = int32_t(uint32_t(((colour >> (16 - 8 * c) & 0xFF) * t.suncolour[c]) >> 8) * uint32_t(i)) >> 8;
        out |= uint32_t(std::min(std::max(lit, 4), 252)) << (16 - 8 * c);
    }
    return out;
}

inline uint32_t point(uint32_t colour, const float* p, const quad& n, const pointlights& lights) {
    float acc[4], base[4];
    for (int k = 0; k < 4; ++k) acc[k] = float(colour >> (8 * k) & 0xFF), base[k] = acc[k] * 1.5259022e-5f;
    for (int l = 0; l < lights.count; ++l) {
        float dx = lights.position[l][0] - p[0], dy = lights.position[l][1] - p[1], dz = lights.position[l][2] - p[2];
        float dist2 = dx * dx + dy * dy + dz * dz;
        float facing = rasterreference::maxss(dx * n.x + dy * n.y + dz * n.z, 0.0f);
        float falloff = rasterreference::rcp(dist2) * _mm_cvtss_f32(_mm_rsqrt_ss(_mm_set_ss(dist2)));
        float k = facing * lights.radius[l] * falloff;
        for (int c = 0; c < 4; ++c) acc[c] = acc[c] + lights.colour[l][c] * base[c] * k;
    }
    uint32_t out = 0;
    for (int c = 0; c < 4; ++c) {
        // Beyond the integers the conversion gives 0x80000000, which saturates to 0.
        int rounded = std::fabs(acc[c]) < 2147483648.0f ? rasterreference::round(acc[c]) : INT_MIN;
        out |= uint32_t(std::min(std::max(rounded, 0), 255)) << (8 * c);
    }
    return out;
}

// The mean of the unit normals of a vertex's smooth faces, and each flat face's own.
inline void normals(const model& m, std::vector<quad>& normal, std::vector<quad>& flat) {
    normal.assign(size_t(m.usedvertexcount), quad{}), flat.assign(m.facecount, quad{});
    for (int f = 0; f < m.facecount; ++f) {
        const quad &a = m.vertices[m.facea[f]], &b = m.vertices[m.faceb[f]], &c = m.vertices[m.facec[f]];
        float u[3] = {b.x - a.x, b.y - a.y, b.z - a.z}, v[3] = {c.x - a.x, c.y - a.y, c.z - a.z};
        float n[3] = {u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]};
        float len = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]), r = len != 0 ? 1.0f / len : 1.0f;
        flat[f] = {n[0] * r, n[1] * r, n[2] * r, 1.0f};
        for (int k : {m.facea[f], m.faceb[f], m.facec[f]})
            if (quad& s = normal[k]; m.facetypes.empty() || m.facetypes[f] == 0)
                s = {s.x + flat[f].x, s.y + flat[f].y, s.z + flat[f].z, s.w + 1};
    }
    for (quad& n : normal)
        if (n.w != 0) n = {n.x * (1.0f / n.w), n.y * (1.0f / n.w), n.z * (1.0f / n.w), 1.0f};
}

}  // namespace modelreference
