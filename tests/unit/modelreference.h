// Scalar references of model colour, written from the rules: normals, the base colour, and the
// sun and point light terms (through the processor's approximations where the rules use them);
// and the faces of a model drawn by the rules through the reference triangle level.
#pragma once
#include <array>
#include <climits>
#include <cmath>
#include <vector>

#include "model/lighting.h"
#include "projectionreference.h"
#include "rasterreference.h"
#include "spritereference.h"
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

// Through the camera's space to the screen: divided by w, moved by a billboard's offset, then
// projected; (x, y, z, z).
inline std::array<float, 4> throughview(const float* v, const billboardstate& s, const toolkit& t) {
    float eye[4], out[4];
    for (int j = 0; j < 4; ++j) eye[j] = j == 2 && std::signbit(v[2]) ? -std::fabs(v[j] / v[3]) : v[j] / v[3];
    eye[0] = eye[0] + s.offsetx, eye[1] = eye[1] + s.offsety;
    referenceproject(eye, t.projectionmatrix, out);
    return {out[0], out[1], out[2], out[2]};
}

// The billboards of `m` as scaled sprites at their faces' centroids; false when one lands so far
// off or so large that the sprite reference can't follow it.
inline bool billboards(const model& m, const toolkit& t, const float* M) {
    using rasterreference::round, rasterreference::saturate16;
    float mv[16];
    for (int i = 0; i < 4; ++i) referencetransform(M + 4 * i, t.viewmatrix, mv + 4 * i);
    bool known = true;
    for (int i = 0; i < m.billboards.length(); ++i) {
        const billboard& b = m.billboards[i];
        const billboardstate& s = m.billboardstates[i];
        const quad &pa = m.vertices[m.facea[b.face]], &pb = m.vertices[m.faceb[b.face]], &pc = m.vertices[m.facec[b.face]];
        const float c[4] = {(pa.x + pb.x + pc.x) * 0.33333334f, (pa.y + pb.y + pc.y) * 0.33333334f,
                            (pa.z + pb.z + pc.z) * 0.33333334f, 1};
        float eye[4], world[4];
        referencetransform(c, mv, eye), referencetransform(c, M, world);
        const std::array<float, 4> S = throughview(eye, s, t);
        bool off = !(saturate16(round(S[2] * 32767.0f)) > rasterstate.screenbounds[3]);
        for (int k = 0; k < 3; ++k) {
            const int16_t v = saturate16(round(k < 2 ? S[k] : S[k] * 32767.0f));
            off |= v > rasterstate.screenbounds[k] || v < 0;
        }
        if (off) continue;
        int size[2];
        for (int axis = 0; axis < 2; ++axis) {
            const float reach = axis ? b.height : b.width, *v = t.viewmatrix;
            const float q[4] = {world[0] + reach * v[axis], world[1] + reach * v[4 + axis], world[2] + reach * v[8 + axis],
                                world[3] + reach * 0.0f};
            float qeye[4];
            referencetransform(q, v, qeye);
            const int d = round(throughview(qeye, s, t)[size_t(axis)] - S[size_t(axis)]);
            size[axis] = d < 0 ? int(0u - unsigned(d)) : d;
        }
        const texturerecord* r = S[2] > 1.0f ? nullptr : gettexture(b.texture);
        if (!r) continue;
        const int w = rasterreference::trunc(float(size[0]) * s.scalex * 2.0f);
        const int h = rasterreference::trunc(float(size[1]) * s.scaley * 2.0f);
        const int x = round(S[0]) - w / 2, y = round(S[1]) - h / 2;
        uint32_t colour = s.colour;
        if (t.fogdistance > 0 && S[2] > rasterstate.fogstart) {
            const float start = rasterstate.fogstart;
            const uint32_t weight = uint8_t(rasterreference::trunc((S[2] - start) * 255.0f / (1.0f - start)));
            colour &= 0xFF000000u;
            for (int ch = 0; ch < 3; ++ch)
                colour |= (((rasterreference::byte(uint32_t(t.fogcolour), ch) * weight) >> 8) +
                           ((rasterreference::byte(s.colour, ch) * (255 - weight)) >> 8)) << (8 * ch);
        }
        known &= std::abs(x) < 1000 && std::abs(y) < 1000 && w >= 0 && h >= 0 && w < 1000 && h < 1000;
        if (!t.colourbuffer || b.tintmode > 4 || b.blendmode > 2) continue;
        const int pads[4] = {};
        spritereference::scaled({t.colourbuffer, t.depthbuffer, t.width, {t.cliprect[0], t.cliprect[1], t.cliprect[2], t.cliprect[3]}},
                                r->pixels, texturesize, texturesize, atlaspitch, pads, x, y, w, h, b.tintmode, colour,
                                b.blendmode, S[2]);
    }
    return known;
}

// Whether the model under `M` is culled: its axis's ends both farther than its radius outside one
// of the view's planes.
inline bool culled(const model& m, const toolkit& t, const float* M) {
    const float lowaxis[4] = {0, float(m.miny), 0, 1}, highaxis[4] = {0, float(m.maxy), 0, 1};
    float low[4], high[4];
    referencetransform(lowaxis, M, low), referencetransform(highaxis, M, high);
    const auto distance = [](const float* plane, const float* p) {
        return plane[0] * p[0] + plane[1] * p[1] + plane[2] * p[2] + plane[3] * p[3];
    };
    for (const float* plane : t.frustumplanes)
        if (distance(plane, low) < -float(m.radius) && distance(plane, high) < -float(m.radius)) return true;
    return false;
}

// The faces of `m` under model matrix `M` as the member of the current lights, fog, shade and
// target draws them, in one pass or, with `twopasses`, opaque faces then translucent ones. Gives
// the member's light, shade and fog axes.
inline std::array<bool, 3> draw(const model& m, const toolkit& t, const float* M, bool twopasses) {
    using rasterreference::byte, rasterreference::maxss, rasterreference::minss;
    const rasterstatedata& r = rasterstate;
    float mvp[16], low[4], high[4], lowaxis[4] = {0, float(m.miny), 0, 1}, highaxis[4] = {0, float(m.maxy), 0, 1};
    for (int i = 0; i < 4; ++i) referencetransform(M + 4 * i, t.viewprojection, mvp + 4 * i);
    referenceproject(lowaxis, mvp, low), referenceproject(highaxis, mvp, high);
    const bool pointlit = (m.modelflags & MF_POINTLIT) && t.lightcount > 0 && r.targetcolour, shade = t.fogoverride;
    const bool fog = t.fogdistance > 0 && (low[2] > high[2] ? low[2] : high[2]) > r.fogstart && r.targetcolour;
    const recipe fold = shade ? (fog ? recipe::fogshade : recipe::shadeonly) : fog ? recipe::fogonly : recipe::plain;
    pointlights lights{};
    lights.count = t.lightcount;
    for (int i = 0; i < t.lightcount; ++i) {
        const float d[3] = {t.lightposition[i][0] - M[12], t.lightposition[i][1] - M[13], t.lightposition[i][2] - M[14]};
        for (int k = 0; k < 4; ++k)
            lights.position[i][k] = d[0] * M[4 * k] + d[1] * M[4 * k + 1] + d[2] * M[4 * k + 2],
            lights.colour[i][k] = float(byte(uint32_t(t.lightcolour[i]), k));
        lights.radius[i] = t.lightradius[i];
    }
    std::vector<std::array<float, 4>> screen(size_t(m.usedvertexcount));
    for (int i = 0; i < m.usedvertexcount; ++i) {
        const float p[4] = {m.vertices[i].x, m.vertices[i].y, m.vertices[i].z, 1};
        referenceproject(p, mvp, screen[size_t(i)].data()), screen[size_t(i)][3] = screen[size_t(i)][2];
    }
    for (int pass = twopasses; pass <= 2 * twopasses; ++pass)
        for (int f = 0; f < m.facecount; ++f) {
            const int type = m.facetypes.empty() ? 0 : m.facetypes[f], alpha = m.facealphas.empty() ? 0 : m.facealphas[f];
            const int v[3] = {m.facea[f], m.faceb[f], m.facec[f]};
            alignas(16) rastertriangle tri{};
            if (type == 2) continue;
            if (twopasses) {
                const texturerecord* chosen = f < m.texturedfacecount ? gettexture(m.facetextures[f]) : nullptr;
                const bool alphatexture = chosen && chosen->value == 2;
                if (pass == 1 ? alpha != 0 || alphatexture : alpha == 255 || (!alphatexture && !alpha)) continue;
            }
            if (!rasterreference::accept(screen[v[0]].data(), screen[v[1]].data(), screen[v[2]].data()))
                continue;
            for (int k = 0; k < 4; ++k) {
                for (int c = 0; c < 3; ++c) tri.position[c][k] = screen[v[c]][k];
                const float height = k < 3 ? -(M[1] * m.vertices[v[k]].x + M[5] * m.vertices[v[k]].y +
                                                M[9] * m.vertices[v[k]].z + M[13]) : 1.0f;
                tri.shadefactor[k] = minss(maxss((height - t.shadestartf) * t.shadescale, 0), 1);
                tri.shadetint[k] = r.shadecolour[k];
            }
            if (shade && r.targetcolour && (tri.shadefactor[0] == 1 || tri.shadefactor[1] == 1 || tri.shadefactor[2] == 1)) continue;
            // A depth-only target draws every face plain, without asking for its texture.
            const texturerecord* rec = r.targetcolour && f < m.texturedfacecount ? gettexture(m.facetextures[f]) : nullptr;
            faceselection face = {fold, shading::gouraud, alphamode::opaque, wrapmode::repeat,
                                  alpha ? blended::yes : blended::no, r.targetcolour != nullptr, r.targetdepth != nullptr};
            if (!r.targetcolour) face.blend = blended::no;
            const float scale = (type ? 512.0f : 768.0f) / float(m.contrast);
            for (int c = 0; c < 3 && r.targetcolour; ++c) {
                const quad& shared = m.sharednormals.empty() ? quad{} : m.sharednormals[v[c]];
                const quad& n = type ? m.facenormals[f] : shared.w != 0 ? shared : m.normals[v[c]];
                uint32_t colour = m.litcolours[f].corner[c];
                if ((pointlit || m.facenormals.length() > 0) && !(rec && rec->type == 6) && type < 2)
                    colour = sun(colour, n, scale, t);
                if (pointlit && !(rec && rec->type == 6)) colour = point(colour, &m.vertices[v[c]].x, n, lights);
                setcolourlanes(tri.colour[c], colour);
                const texel* uv = rec && rec->pixels ? &(c == 0 ? m.uva : c == 1 ? m.uvb : m.uvc)[f] : nullptr;
                for (int k = 0; uv && k < 4; ++k) tri.uv[c][k] = (k % 2 ? uv->v : uv->u) + (k % 2 ? rec->offsetv : rec->offsetu)[0];
            }
            tri.blendfactor = uint32_t(255 - alpha) * 0x10001u, tri.texels[0] = rec ? rec->pixels : nullptr;
            if (r.targetcolour && rec && rec->pixels)
                face.kind = shading::textured, face.alpha = alphamodeof(rec->value),
                face.wrap = rec->flagfive || rec->flagsix ? wrapmode::repeat : wrapmode::clamp;
            rasterreference::triangle(modeltriangle(face), tri);
        }
    return {pointlit, shade, fog};
}

}  // namespace modelreference
