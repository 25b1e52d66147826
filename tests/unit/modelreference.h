// Scalar references of model colour and drawing, written from the rules: the base colour, the
// sun and point light terms (through the processor's approximations where the rules use them),
// and a whole draw's face road ending in the rasteriser's own scalar reference.
#pragma once
#include <array>
#include <climits>
#include <vector>
#include <cmath>

#include "model/lighting.h"
#include "rasterreference.h"
#include "toolkit/projection.h"
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
            if (m.facetypes.empty() || m.facetypes[f] == 0)
                normal[k] = {normal[k].x + flat[f].x, normal[k].y + flat[f].y, normal[k].z + flat[f].z,
                             normal[k].w + 1};
    }
    for (quad& n : normal)
        if (n.w != 0) n = {n.x * (1.0f / n.w), n.y * (1.0f / n.w), n.z * (1.0f / n.w), 1.0f};
}

// One draw of `m` with its colour codes, with `translucent` the model's flag at its start, under
// `matrix` (model to world), into the buffers of `rasterstate`; faces only. False when the cull
// rejects it; `seen` turns true where a drawn face shows translucency.
inline bool draw(const model& m, const toolkit& t, const float* matrix, bool translucent, bool& seen) {
    alignas(16) float mvp[16], ends[2][4], screen[2][4];
    multiplymatrices(matrix, t.viewprojection, mvp);
    for (int e = 0; e < 2; ++e) {
        _mm_store_ps(ends[e], transformpoint(_mm_setr_ps(0, e ? m.maxy : m.miny, 0, 1), matrix));
        _mm_store_ps(screen[e], projectpoint(_mm_setr_ps(0, e ? m.maxy : m.miny, 0, 1), mvp));
    }
    for (const float* p : t.frustumplanes) {
        float d[2];
        for (int e = 0; e < 2; ++e)
            d[e] = p[0] * ends[e][0] + p[1] * ends[e][1] + p[2] * ends[e][2] + p[3] * ends[e][3];
        if (d[0] < -float(m.radius) && d[1] < -float(m.radius)) return false;
    }
    const bool colour = rasterstate.targetcolour, depth = rasterstate.targetdepth, shade = t.fogoverride;
    const bool fog = t.fogdistance > 0 && std::max(screen[0][2], screen[1][2]) > rasterstate.fogstart;
    const bool pointlit = (m.modelflags & MF_POINTLIT) && t.lightcount > 0;
    const recipe steps = shade ? (fog ? recipe::fogshade : recipe::shadeonly) : (fog ? recipe::fogonly : recipe::plain);
    pointlights lights{};
    lights.count = t.lightcount;
    for (int l = 0; l < t.lightcount; ++l) {
        const float *p = t.lightposition[l], d[3] = {p[0] - matrix[12], p[1] - matrix[13], p[2] - matrix[14]};
        for (int k = 0; k < 4; ++k) {
            lights.position[l][k] = d[0] * matrix[4 * k] + d[1] * matrix[4 * k + 1] + d[2] * matrix[4 * k + 2];
            lights.colour[l][k] = float(uint32_t(t.lightcolour[l]) >> (8 * k) & 0xFF);
        }
        lights.radius[l] = t.lightradius[l];
    }
    std::vector<quad> normal, flat;
    normals(m, normal, flat);
    std::vector<std::array<float, 4>> at(size_t(m.usedvertexcount));
    for (int i = 0; i < m.usedvertexcount; ++i) {
        const quad& v = m.vertices[i];
        _mm_storeu_ps(at[i].data(), projectpoint(_mm_setr_ps(v.x, v.y, v.z, 1), mvp));
        at[i][3] = at[i][2];
    }
    for (int pass = translucent ? 1 : 0; pass < (translucent ? 3 : 1); ++pass)
        for (int f = 0; f < m.facecount; ++f) {
            int type = m.facetypes.empty() ? 0 : m.facetypes[f], alpha = m.facealphas.empty() ? 0 : m.facealphas[f];
            const int c[3] = {m.facea[f], m.faceb[f], m.facec[f]};
            if (type == 2 || !rasterreference::accept(at[c[0]].data(), at[c[1]].data(), at[c[2]].data())) continue;
            alignas(16) rastertriangle tri{};
            bool drop = false;
            for (int k = 0; k < 4; ++k) {
                if (k < 3) std::copy(at[c[k]].begin(), at[c[k]].end(), tri.position[k]);
                const quad& v = m.vertices[c[k % 3]];
                float h = k < 3 ? -(v.x * matrix[1] + v.y * matrix[5] + v.z * matrix[9] + matrix[13]) : 1.0f;
                float s = rasterreference::maxss((h - t.shadestartf) * t.shadescale, 0);
                tri.shadefactor[k] = rasterreference::minss(s, 1);
                tri.shadetint[k] = rasterstate.shadecolour[k];
                drop = drop || (shade && colour && k < 3 && tri.shadefactor[k] == 1.0f);
            }
            const bool looked = f < m.texturedfacecount && (colour || pass);
            const texturerecord* r = looked ? gettexture(m.facetextures[f]) : nullptr;
            const bool alphatexture = r && r->value == 2, textured = colour && r && r->pixels;
            const bool translucentface = alphatexture || alpha;
            if (drop || (pass == 1 && translucentface) || (pass == 2 && (alpha == 255 || !translucentface))) continue;
            const texturedescriptor* d = f < m.texturedfacecount ? getdescriptor(m.facetextures[f]) : nullptr;
            const uint32_t lit = uint32_t(255 - alpha) << 24 | base(m.fhsl[f], d, m.ambient);
            uint32_t w[3] = {lit, lit, lit};
            for (int k = 0; k < 3; ++k) {
                bool shared = !m.sharednormals.empty() && m.sharednormals[c[k]].w != 0;
                const quad& n = type ? flat[f] : shared ? m.sharednormals[c[k]] : normal[c[k]];
                if (!(r && r->type == 6) && type < 2) {
                    w[k] = sun(w[k], n, (type ? 512.0f : 768.0f) / float(m.contrast), t);
                    if (pointlit) w[k] = point(w[k], &m.vertices[c[k]].x, n, lights);
                }
                setcolourlanes(tri.colour[k], w[k]);
                const texel uv = !textured ? texel{} : k == 0 ? m.uva[f] : k == 1 ? m.uvb[f] : m.uvc[f];
                for (int lane = 0; lane < 4 && textured; ++lane)
                    tri.uv[k][lane] = lane & 1 ? uv.v + r->offsetv[0] : uv.u + r->offsetu[0];
            }
            tri.blendfactor = uint32_t(255 - alpha) * 0x10001u;
            tri.texels[0] = textured ? r->pixels : nullptr;
            seen = seen || (textured && (alpha || alphatexture));
            const wrapmode wrap = textured && !(r->flagfive || r->flagsix) ? wrapmode::clamp : wrapmode::repeat;
            rasterreference::triangle(modeltriangle(steps, textured ? shading::textured : shading::gouraud,
                                                    textured ? alphamodeof(r->value) : alphamode::opaque, wrap,
                                                    alpha ? blended::yes : blended::no, colour, depth), tri);
        }
    return true;
}

}  // namespace modelreference
