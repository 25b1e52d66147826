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
    for (int s = 0; s < 24; s += 8) out |= (k ? std::min((rgb >> s & 0xFF) * (256 + k), 0xFFFFu) >> 8 : rgb >> s & 0xFF) << s;
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
        float dist2 = dx * dx + dy * dy + dz * dz, facing = rasterreference::maxss(dx * n.x + dy * n.y + dz * n.z, 0.0f);
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

// One draw of `m`, lit, with `translucent` the model's flag at its start, under `matrix` (model
// to world), into the buffers of `rasterstate`; faces only. False when the cull rejects it;
// `seen` turns true where a drawn face shows translucency.
inline bool draw(const model& m, const toolkit& t, const float* matrix, bool translucent, bool& seen) {
    alignas(16) float mvp[16];
    multiplymatrices(matrix, t.viewprojection, mvp);
    auto axis = [&](float y) { return _mm_setr_ps(0.0f, y, 0.0f, 1.0f); };
    alignas(16) float ends[2][4], screen[2][4];
    for (int e = 0; e < 2; ++e) {
        _mm_store_ps(ends[e], transformpoint(axis(e ? m.maxy : m.miny), matrix));
        _mm_store_ps(screen[e], projectpoint(axis(e ? m.maxy : m.miny), mvp));
    }
    for (const float* p : t.frustumplanes) {
        float d[2];
        for (int e = 0; e < 2; ++e) d[e] = p[0] * ends[e][0] + p[1] * ends[e][1] + p[2] * ends[e][2] + p[3] * ends[e][3];
        if (d[0] < -float(m.radius) && d[1] < -float(m.radius)) return false;
    }
    const bool colour = rasterstate.targetcolour, depth = rasterstate.targetdepth, shade = t.fogoverride;
    const bool fog = t.fogdistance > 0 && std::max(screen[0][2], screen[1][2]) > rasterstate.fogstart;
    const bool pointlit = (m.modelflags & MF_POINTLIT) && t.lightcount > 0;
    const recipe steps = shade ? (fog ? recipe::fogshade : recipe::shadeonly) : (fog ? recipe::fogonly : recipe::plain);
    pointlights lights{};
    lights.count = t.lightcount;
    for (int l = 0; l < t.lightcount; ++l) {
        const float* p = t.lightposition[l];
        float d[3] = {p[0] - matrix[12], p[1] - matrix[13], p[2] - matrix[14]};
        for (int k = 0; k < 4; ++k) {
            lights.position[l][k] = d[0] * matrix[4 * k] + d[1] * matrix[4 * k + 1] + d[2] * matrix[4 * k + 2];
            lights.colour[l][k] = float(uint32_t(t.lightcolour[l]) >> (8 * k) & 0xFF);
        }
        lights.radius[l] = t.lightradius[l];
    }
    std::vector<std::array<float, 4>> at(size_t(m.usedvertexcount));
    for (int i = 0; i < m.usedvertexcount; ++i) {
        alignas(16) float s[4];
        _mm_store_ps(s, projectpoint(_mm_setr_ps(m.vertices[i].x, m.vertices[i].y, m.vertices[i].z, 1.0f), mvp));
        at[size_t(i)] = {s[0], s[1], s[2], s[2]};
    }
    auto height = [&](int i) {
        const quad& v = m.vertices[i];
        return -(v.x * matrix[1] + v.y * matrix[5] + v.z * matrix[9] + matrix[13]);
    };
    for (int pass = translucent ? 1 : 0; pass < (translucent ? 3 : 1); ++pass)
        for (int f = 0; f < m.facecount; ++f) {
            int type = m.facetypes.empty() ? 0 : m.facetypes[f];
            const int c[3] = {m.facea[f], m.faceb[f], m.facec[f]};
            if (type == 2 || !rasterreference::accept(at[c[0]].data(), at[c[1]].data(), at[c[2]].data())) continue;
            alignas(16) rastertriangle tri{};
            for (int k = 0; k < 3; ++k) std::copy(at[c[k]].begin(), at[c[k]].end(), tri.position[k]);
            bool drop = false;
            for (int k = 0; k < 4 && shade && colour; ++k) {
                float s = ((k < 3 ? height(c[k]) : 1.0f) - t.shadestartf) * t.shadescale;
                tri.shadefactor[k] = rasterreference::minss(rasterreference::maxss(s, 0.0f), 1.0f);
                tri.shadetint[k] = rasterstate.shadecolour[k];
                drop = drop || (k < 3 && tri.shadefactor[k] == 1.0f);
            }
            const texturerecord* r = f < m.texturedfacecount && (colour || pass) ? gettexture(m.facetextures[f]) : nullptr;
            int alpha = m.facealphas.empty() ? 0 : m.facealphas[f];
            bool alphatexture = r && r->value == 2;
            if (drop || (pass == 1 && (alpha || alphatexture)) || (pass == 2 && (alpha == 255 || !(alphatexture || alpha))))
                continue;
            if (!colour) {
                rasterreference::triangle(modeltriangle(recipe::plain, shading::gouraud, alphamode::opaque, wrapmode::repeat, blended::no, false, depth), tri);
                continue;
            }
            uint32_t w[3] = {m.litcolours[f].corner[0], m.litcolours[f].corner[1], m.litcolours[f].corner[2]};
            if ((pointlit ? !m.normals.empty() : m.facenormals.length() > 0) && !(r && r->type == 6) && type < 2)
                for (int k = 0; k < 3; ++k) {
                    bool shared = !m.sharednormals.empty() && m.sharednormals[c[k]].w != 0;
                    const quad& n = type ? m.facenormals[f] : shared ? m.sharednormals[c[k]] : m.normals[c[k]];
                    w[k] = sun(w[k], n, (type ? 512.0f : 768.0f) / float(m.contrast), t);
                    if (pointlit) w[k] = point(w[k], &m.vertices[c[k]].x, n, lights);
                }
            for (int k = 0; k < 3; ++k)
                for (int lane = 0; lane < 8; ++lane) tri.colour[k][lane] = uint16_t((w[k] >> (8 * (lane & 3)) & 0xFF) << 8);
            tri.blendfactor = uint32_t(255 - alpha) * 0x10001u;
            blended mix = alpha ? blended::yes : blended::no;
            if (!r || !r->pixels) {
                rasterreference::triangle(modeltriangle(steps, shading::gouraud, alphamode::opaque, wrapmode::repeat, mix, true, depth), tri);
                continue;
            }
            const texel* uv[3] = {&m.uva[f], &m.uvb[f], &m.uvc[f]};
            for (int k = 0; k < 3; ++k)
                for (int lane = 0; lane < 4; ++lane) tri.uv[k][lane] = (lane & 1 ? uv[k]->v + r->offsetv[0] : uv[k]->u + r->offsetu[0]);
            tri.texels[0] = r->pixels;
            seen = seen || alpha || alphatexture;
            wrapmode wrap = r->flagfive || r->flagsix ? wrapmode::repeat : wrapmode::clamp;
            rasterreference::triangle(modeltriangle(steps, shading::textured, alphamodeof(r->value), wrap, mix, true, depth), tri);
        }
    return true;
}

}  // namespace modelreference
