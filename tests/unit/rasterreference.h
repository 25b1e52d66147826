// Scalar references of the rasteriser, one pixel and one lane at a time from the rules: the
// accept test, the triangle level (sort, rows, edge steps, sides, clipping, recipes) and the span
// frame with every pixel rule. They draw into the buffers of the current `rasterstate`. Values
// that go through the processor's approximate reciprocal are computed through it here too.
#pragma once
#include <xmmintrin.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "raster/members.h"

namespace rasterreference {

inline float rcp(float x) { return _mm_cvtss_f32(_mm_rcp_ss(_mm_set_ss(x))); }
inline int trunc(float x) { return _mm_cvttss_si32(_mm_set_ss(x)); }
inline int round(float x) { return _mm_cvtss_si32(_mm_set_ss(x)); }
// The processor's max and min: the second operand when either is NaN.
inline float maxss(float a, float b) { return a > b ? a : b; }
inline float minss(float a, float b) { return a < b ? a : b; }
inline int16_t saturate16(int v) { return static_cast<int16_t>(std::clamp(v, -32768, 32767)); }
// Truncated, less 0x8000, saturated, plus 0x8000: 0 to 65535.
inline uint16_t startlane(float v) {
    return static_cast<uint16_t>(saturate16(static_cast<int>(static_cast<unsigned>(trunc(v)) - 0x8000u)) + 0x8000);
}
inline uint32_t byte(uint32_t v, int c) { return v >> (8 * c) & 0xFF; }

inline bool accept(const float* a, const float* b, const float* c) {
    const int16_t* bounds = rasterstate.screenbounds;
    bool all[8] = {true, true, true, true, true, true, true, true};
    for (const float* p : {a, b, c}) {
        int16_t v[4] = {saturate16(trunc(p[0])), saturate16(trunc(p[1])), saturate16(trunc(p[2] * 32767.0f)),
                        saturate16(trunc(p[3] * 32767.0f))};
        for (int i = 0; i < 4; ++i) {
            all[i] = all[i] && v[i] > bounds[i];
            all[4 + i] = all[4 + i] && 0 > v[i];
        }
    }
    for (int i = 0; i < 8; ++i)
        if (all[i] != (i == 3)) return false;
    return (a[1] - b[1]) * (c[0] - b[0]) < (a[0] - b[0]) * (c[1] - b[1]);
}

// One row of a span, pixel by pixel in groups of four lanes.
inline void spanrow(const spanmember& m, const rasterspan& s, int y) {
    const rasterstatedata& r = rasterstate;
    const shading kind = m.get<shading>();
    const depthmode depth = m.get<depthmode>();
    const alphamode alpha = m.get<alphamode>();
    const bool add = m.get<addterm>() == addterm::yes, blend = m.get<blended>() == blended::yes;
    int xl = round(s.edge[0]), xr = round(s.edge[2]);
    const float inv = rcp(static_cast<float>(static_cast<int>(static_cast<unsigned>(xr) - static_cast<unsigned>(xl))));
    xr = static_cast<int>(std::min({static_cast<long long>(xr), static_cast<long long>(r.viewport[0]) + r.viewport[2],
                                    static_cast<long long>(r.rasterclip[0]) + r.rasterclip[2]}));
    float skip = 0.0f;
    if (xl < r.viewport[0]) skip = static_cast<float>(r.viewport[0]) - static_cast<float>(xl), xl = r.viewport[0];
    if (xl < r.rasterclip[0]) skip += static_cast<float>(r.rasterclip[0]) - static_cast<float>(xl), xl = r.rasterclip[0];
    if (static_cast<long long>(xr) - xl <= 0) return;
    const long first = static_cast<long>(y) * r.targetstride + xl;
    uintptr_t address = kind != shading::colourless ? reinterpret_cast<uintptr_t>(r.targetcolour + first)
                        : depth != depthmode::none  ? reinterpret_cast<uintptr_t>(r.targetdepth + first)
                                                    : 0;
    const int h = static_cast<int>((address + 12) / 16 * 16 - address) / 4, b = h ? 4 - h : 0;

    const float dz = (s.edge[3] - s.edge[1]) * inv, z0 = dz * skip + s.edge[1];
    const float zfirst = static_cast<float>(static_cast<long double>(z0) - b * static_cast<long double>(dz));
    // Colour lanes of the first pixel and their steps, for modulate (0) and addcolour (1).
    uint16_t c[2][4];
    int16_t dc[2][4];
    const uint16_t* lanes[2] = {s.modulate, s.addcolour};
    for (int k = 0; k < 2; ++k)
        for (int ch = 0; ch < 4; ++ch) {
            float l = lanes[k][ch], d = (static_cast<float>(lanes[k][4 + ch]) - l) * inv;
            dc[k][ch] = saturate16(trunc(d));
            c[k][ch] = startlane(l + skip * d);
        }
    const float du = (s.uv[2] - s.uv[0]) * inv, dv = (s.uv[3] - s.uv[1]) * inv;
    const float ustart = s.uv[0] + skip * du, vstart = s.uv[1] + skip * dv;

    float z[4], u[4], v[4];
    uint16_t lane[2][4][4];
    for (int j = 0; j < 4; ++j) {
        z[j] = zfirst + static_cast<float>(j) * dz;
        u[j] = j & 1 ? (ustart - b * du) + du : ustart - b * du;
        v[j] = j & 1 ? (vstart - b * dv) + dv : vstart - b * dv;
        if (j >= 2) u[j] = u[j - 2] + 2.0f * du, v[j] = v[j - 2] + 2.0f * dv;
        for (int k = 0; k < 2; ++k)
            for (int ch = 0; ch < 4; ++ch) lane[k][j][ch] = static_cast<uint16_t>(c[k][ch] - b * dc[k][ch] + j * dc[k][ch]);
    }
    const uint32_t a = s.blendfactor & 0xFFFF, rest = (0x01000100u - s.blendfactor) & 0xFFFF;
    for (long group = first - b; group < first + (xr - xl); group += 4) {
        for (int j = 0; j < 4; ++j) {
            const long at = group + j;
            if (at < first || at >= first + (xr - xl)) continue;
            float* d = r.targetdepth + (depth != depthmode::none ? at : 0);
            if (depth != depthmode::none && !(z[j] <= *d)) continue;
            if (kind == shading::colourless) {
                if (depth == depthmode::testwrite) *d = z[j];
                continue;
            }
            uint32_t* out = r.targetcolour + at;
            uint32_t texel = 0, p[4];
            if (kind == shading::textured) {
                float U = u[j] * z[j], V = v[j] * z[j];
                int tu = trunc(U) & 127, tv = trunc(V) & 127;
                if (m.get<wrapmode>() == wrapmode::clamp)
                    tu = trunc(minss(maxss(U, 0.0f), 127.0f)), tv = trunc(minss(maxss(V, 0.0f), 127.0f));
                texel = s.texels[0][tv * 256 + tu];
                if (alpha == alphamode::key && texel == 0) continue;
            }
            for (int ch = 0; ch < 4; ++ch) {
                uint32_t mod = lane[0][j][ch];
                p[ch] = kind == shading::gouraud ? mod : (byte(texel, ch) * mod) >> 16;
                if (add) p[ch] += lane[1][j][ch] >> 8;
            }
            if (kind == shading::textured && alpha == alphamode::alpha && p[3] == 0) continue;
            uint32_t pixel = 0;
            for (int ch = 0; ch < 4; ++ch) {
                uint32_t old = byte(*out, ch), q;
                if (kind == shading::gouraud)
                    q = blend ? std::min(255u, ((p[ch] * a) >> 16) + (((old << 8) * rest) >> 16)) : p[ch] >> 8;
                else if (alpha == alphamode::alpha)
                    q = ((p[ch] * p[3] + old * ((256 - p[3]) & 0xFFFF)) & 0xFFFF) >> 8;
                else if (blend)
                    q = std::min(255u, ((p[ch] * (a << 8)) >> 16) + (((old << 8) * rest) >> 16));
                else
                    q = std::min(255u, p[ch]);
                pixel |= q << (8 * ch);
            }
            *out = pixel;
            if (depth == depthmode::testwrite) *d = z[j];
        }
        for (int j = 0; j < 4; ++j) {
            z[j] += 4.0f * dz, u[j] += 4.0f * du, v[j] += 4.0f * dv;
            for (int k = 0; k < 2; ++k)
                for (int ch = 0; ch < 4; ++ch) lane[k][j][ch] = static_cast<uint16_t>(lane[k][j][ch] + (dc[k][ch] << 2));
        }
    }
}

// The rows of a span; the record ends at the first row not drawn.
inline void span(const spanmember& m, rasterspan& s) {
    for (int row = 0; row < s.rows; ++row, ++s.y) {
        spanrow(m, s, s.y);
        for (int i = 0; i < 4; ++i) s.edge[i] += s.edgestep[i], s.uv[i] += s.uvstep[i];
        for (int i = 0; i < 8; ++i) {
            s.modulate[i] = static_cast<uint16_t>(s.modulate[i] + s.modulatestep[i]);
            s.addcolour[i] = static_cast<uint16_t>(s.addcolour[i] + s.addcolourstep[i]);
        }
    }
}

// Everything that interpolates along an edge of a triangle, for one vertex or one step.
struct interpolants {
    float xz[2], uv[2];
    int16_t modulate[4], addcolour[4];
};

inline void triangle(const trianglemember& m, const rastertriangle& t) {
    const rasterstatedata& r = rasterstate;
    const recipe fold = m.get<recipe>();
    const bool textured = m.get<shading>() == shading::textured;
    const float y0 = t.position[0][1], y1 = t.position[1][1], y2 = t.position[2][1];
    int o[3] = {2, 1, 0};  // top, middle, bottom by the table of comparisons
    if (y1 > y0 && y2 > y1) o[0] = 0, o[1] = 1, o[2] = 2;
    else if (y1 > y0 && y2 > y0) o[0] = 0, o[1] = 2, o[2] = 1;
    else if (y1 > y0) o[0] = 2, o[1] = 0, o[2] = 1;
    else if (y2 > y0) o[0] = 1, o[1] = 0, o[2] = 2;
    else if (y2 > y1) o[0] = 1, o[1] = 2, o[2] = 0;
    int row[3];
    for (int i = 0; i < 3; ++i) row[i] = trunc(t.position[o[i]][1]);

    // Per sorted vertex: x, z, u over z, v over z, and the folded colours as floats.
    float x[3], z[3], uz[3][2], mod[3][4], addc[3][4];
    for (int i = 0; i < 3; ++i) {
        const int v = o[i];
        x[i] = t.position[v][0], z[i] = t.position[v][2];
        const float rz = rcp(z[i]);
        uz[i][0] = t.uv[v][0] * rz, uz[i][1] = t.uv[v][1] * rz;
        const float f = minss(maxss((z[i] - r.fogstart) * r.fogscale, 0.0f), 1.0f), s = t.shadefactor[v];
        for (int ch = 0; ch < 4; ++ch) {
            const float C = t.colour[v][ch], F = r.fogcolour[ch], T = t.shadetint[ch];
            float mc = C, ac = 0.0f;
            if (fold == recipe::fogshade) mc = ((1 - s) * C) * (1 - f), ac = f * F + (s * T) * (1 - f);
            if (fold == recipe::fogonly) mc = (1 - f) * C, ac = f * F;
            if (fold == recipe::shadeonly) mc = (1 - s) * C, ac = s * T;
            mod[i][ch] = textured || fold == recipe::plain ? mc : ac + mc;
            addc[i][ch] = ac;
        }
    }
    // Steps along top-middle (0), top-bottom (1), middle-bottom (2).
    const int ends[3][2] = {{0, 1}, {0, 2}, {1, 2}};
    interpolants step[3], start[3];
    for (int e = 0; e < 3; ++e) {
        const int from = ends[e][0], to = ends[e][1];
        const float height = static_cast<float>(static_cast<int>(static_cast<unsigned>(row[to]) - row[from]));
        uint32_t least = 0x358637BD;
        float floor;
        std::memcpy(&floor, &least, 4);
        const float rc = rcp(maxss(height, floor));
        step[e].xz[0] = (x[to] - x[from]) * rc, step[e].xz[1] = (z[to] - z[from]) * rc;
        for (int k = 0; k < 2; ++k) step[e].uv[k] = (uz[to][k] - uz[from][k]) * rc;
        for (int ch = 0; ch < 4; ++ch) {
            step[e].modulate[ch] = saturate16(trunc((mod[to][ch] - mod[from][ch]) * rc));
            step[e].addcolour[ch] = saturate16(trunc((addc[to][ch] - addc[from][ch]) * rc));
        }
    }
    for (int i = 0; i < 3; ++i) {
        start[i] = {{x[i], z[i]}, {uz[i][0], uz[i][1]}, {}, {}};
        for (int ch = 0; ch < 4; ++ch)
            start[i].modulate[ch] = static_cast<int16_t>(startlane(mod[i][ch])),
            start[i].addcolour[ch] = static_cast<int16_t>(startlane(addc[i][ch]));
    }

    rasterspan s{};
    s.texels[0] = t.texels[0];
    s.blendfactor = t.blendfactor;
    // Sets side 0 (left) or 1 (right) of the span to an edge from vertex `from` with `skip` steps.
    auto setside = [&](int side, int from, const interpolants& d, long long skip) {
        const float k = static_cast<float>(skip);
        for (int i = 0; i < 2; ++i) {
            s.edge[2 * side + i] = start[from].xz[i] + k * d.xz[i], s.edgestep[2 * side + i] = d.xz[i];
            s.uv[2 * side + i] = start[from].uv[i] + k * d.uv[i], s.uvstep[2 * side + i] = d.uv[i];
        }
        for (int ch = 0; ch < 4; ++ch) {
            s.modulatestep[4 * side + ch] = d.modulate[ch], s.addcolourstep[4 * side + ch] = d.addcolour[ch];
            s.modulate[4 * side + ch] = static_cast<uint16_t>(start[from].modulate[ch] + static_cast<int16_t>(skip) * d.modulate[ch]);
            s.addcolour[4 * side + ch] =
                static_cast<uint16_t>(start[from].addcolour[ch] + static_cast<int16_t>(skip) * d.addcolour[ch]);
        }
    };
    const long long bottom = std::min(static_cast<long long>(r.viewport[1]) + r.viewport[3],
                                      static_cast<long long>(r.rasterclip[1]) + r.rasterclip[3]);
    long long y = row[0], skip = 0;
    if (y < r.viewport[1]) skip = r.viewport[1] - y, y = r.viewport[1];
    if (y < r.rasterclip[1]) skip += r.rasterclip[1] - y, y = r.rasterclip[1];
    long long rows = std::min<long long>(row[1], bottom) - y;
    const bool tbleft = step[0].xz[0] > step[1].xz[0];
    setside(0, 0, step[tbleft ? 1 : 0], skip);
    setside(1, 0, step[tbleft ? 0 : 1], skip);
    s.y = static_cast<int>(y);
    long long skip2 = 0, lower = static_cast<long long>(row[2]) - row[1];
    if (rows > 0) s.rows = static_cast<int>(rows), span(spanof(m), s);
    else skip2 = -rows, lower += rows;
    rows = std::min(lower, bottom - s.y);
    if (rows <= 0) return;
    setside(step[1].xz[0] > step[2].xz[0] ? 1 : 0, 1, step[2], skip2);
    s.rows = static_cast<int>(rows);
    span(spanof(m), s);
}

}  // namespace rasterreference
