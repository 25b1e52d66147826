// Scalar references of the rasteriser, one pixel and one lane at a time from the rules: the
// accept test, the triangle level (sort, rows, edge steps, sides, clipping, recipes) and the span
// frame with every pixel rule. They draw into the buffers of the current `rasterstate`. Values
// that go through the processor's approximate reciprocal are computed through it here too.
#pragma once
#include <xmmintrin.h>

#include <algorithm>
#include <bit>
#include <cstdint>

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
inline int wrapsum(int a, int b) { return static_cast<int>(unsigned(a) + unsigned(b)); }

inline bool accept(const float* a, const float* b, const float* c) {
    // Beyond right, bottom, far, near, then left, top, and before 0 in depth, all three vertices.
    int all = 0xFF;
    for (const float* p : {a, b, c})
        for (int i = 0; i < 4; ++i) {
            const int16_t v = saturate16(trunc(i < 2 ? p[i] : p[i] * 32767.0f));
            all &= ~((v <= rasterstate.screenbounds[i]) << i | (v >= 0) << (4 + i));
        }
    return all == 8 && (a[1] - b[1]) * (c[0] - b[0]) < (a[0] - b[0]) * (c[1] - b[1]);
}

// One row of a span, pixel by pixel in groups of four lanes.
inline void spanrow(const spanmember& m, const rasterspan& s, int y) {
    const rasterstatedata& r = rasterstate;
    const shading kind = m.get<shading>();
    const bool test = m.get<depthmode>() != depthmode::none, zwrite = m.get<depthmode>() == depthmode::testwrite;
    const bool add = m.get<addterm>() == addterm::yes, blend = m.get<blended>() == blended::yes;
    const int vx = r.viewport[0], cx = r.rasterclip[0];
    int xl = round(s.edge[0]), xr = round(s.edge[2]);
    const float inv = rcp(static_cast<float>(static_cast<int>(unsigned(xr) - unsigned(xl))));
    // The right ends are summed in 32 bits, as the clip's width was taken.
    xr = std::min({xr, wrapsum(vx, r.viewport[2]), wrapsum(cx, r.rasterclip[2])});
    float skip = 0.0f;
    if (xl < vx) skip = static_cast<float>(vx) - static_cast<float>(xl), xl = vx;
    if (xl < cx) skip += static_cast<float>(cx) - static_cast<float>(xl), xl = cx;
    if (static_cast<long long>(xr) - xl <= 0) return;
    const long first = static_cast<long>(y) * r.targetstride + xl, end = first + (xr - xl);
    const uintptr_t address = kind != shading::colourless ? uintptr_t(r.targetcolour + first)
                              : test                      ? uintptr_t(r.targetdepth + first)
                                                          : 0;
    const int h = static_cast<int>((address + 12) / 16 * 16 - address) / 4, b = h ? 4 - h : 0;

    // Lane j of the first group, then four pixels on per group.
    const float dz = (s.edge[3] - s.edge[1]) * inv, z0 = dz * skip + s.edge[1];
    const float zfirst = static_cast<float>(static_cast<long double>(z0) - b * static_cast<long double>(dz));
    const float du = (s.uv[2] - s.uv[0]) * inv, dv = (s.uv[3] - s.uv[1]) * inv;
    const float u0 = (s.uv[0] + skip * du) - b * du, v0 = (s.uv[1] + skip * dv) - b * dv;
    float z[4], u[4] = {u0, u0 + du}, v[4] = {v0, v0 + dv};
    uint16_t lane[4][8];  // modulate, then addcolour
    int16_t dc[8];
    for (int j = 0; j < 4; ++j) {
        z[j] = zfirst + static_cast<float>(j) * dz;
        if (j >= 2) u[j] = u[j - 2] + 2.0f * du, v[j] = v[j - 2] + 2.0f * dv;
        for (int c = 0; c < 8; ++c) {
            const uint16_t* set = c < 4 ? &s.modulate[0] : &s.addcolour[0];
            const float l = set[c % 4], d = (set[c % 4 + 4] - l) * inv;
            dc[c] = saturate16(trunc(d));
            lane[j][c] = static_cast<uint16_t>(startlane(l + skip * d) + (j - b) * dc[c]);
        }
    }
    const uint32_t a = s.blendfactor & 0xFFFF, rest = (0x01000100u - s.blendfactor) & 0xFFFF;
    for (long group = first - b; group < end; group += 4) {
        for (int j = 0; j < 4; ++j) {
            const long at = group + j;
            float* d = r.targetdepth + (test ? at : 0);
            if (at < first || at >= end || (test && !(z[j] <= *d))) continue;
            uint32_t* out = r.targetcolour + at;
            uint32_t texel = 0, p[4], pixel = 0;
            if (kind == shading::textured) {
                const float U = u[j] * z[j], V = v[j] * z[j];
                const bool clamp = m.get<wrapmode>() == wrapmode::clamp;
                const int tu = clamp ? trunc(minss(maxss(U, 0.0f), 127.0f)) : trunc(U) & 127;
                const int tv = clamp ? trunc(minss(maxss(V, 0.0f), 127.0f)) : trunc(V) & 127;
                texel = s.texels[0][tv * 256 + tu];
            }
            for (int ch = 0; ch < 4; ++ch)
                p[ch] = (kind == shading::gouraud ? lane[j][ch] : (byte(texel, ch) * lane[j][ch]) >> 16) +
                        (add ? lane[j][4 + ch] >> 8 : 0);
            const alphamode alpha = kind == shading::textured ? m.get<alphamode>() : alphamode::opaque;
            if (kind == shading::colourless || (alpha == alphamode::key && texel == 0) ||
                (alpha == alphamode::alpha && p[3] == 0)) {
                if (kind == shading::colourless && zwrite) *d = z[j];
                continue;
            }
            for (int ch = 0; ch < 4; ++ch) {
                const uint32_t old = byte(*out, ch), mixed = ((old << 8) * rest) >> 16;
                if (kind == shading::gouraud)
                    pixel |= (blend ? std::min(255u, ((p[ch] * a) >> 16) + mixed) : p[ch] >> 8) << (8 * ch);
                else if (alpha == alphamode::alpha)
                    pixel |= (((p[ch] * p[3] + old * ((256 - p[3]) & 0xFFFF)) & 0xFFFF) >> 8) << (8 * ch);
                else
                    pixel |= std::min(255u, blend ? ((p[ch] * (a << 8)) >> 16) + mixed : p[ch]) << (8 * ch);
            }
            *out = pixel;
            if (zwrite) *d = z[j];
        }
        for (int j = 0; j < 4; ++j) {
            z[j] += 4.0f * dz, u[j] += 4.0f * du, v[j] += 4.0f * dv;
            for (int c = 0; c < 8; ++c) lane[j][c] = static_cast<uint16_t>(lane[j][c] + (dc[c] << 2));
        }
    }
}

// The rows of a span; the record ends at the first row not drawn.
inline void span(const spanmember& m, rasterspan& s) {
    for (int row = 0; row < s.rows; ++row, ++s.y) {
        spanrow(m, s, s.y);
        for (int i = 0; i < 4; ++i) s.edge[i] += s.edgestep[i], s.uv[i] += s.uvstep[i];
        for (int i = 0; i < 8; ++i) s.modulate[i] += s.modulatestep[i], s.addcolour[i] += s.addcolourstep[i];
    }
}

inline void triangle(const trianglemember& m, const rastertriangle& t) {
    const rasterstatedata& r = rasterstate;
    const recipe fold = m.get<recipe>();
    const float y0 = t.position[0][1], y1 = t.position[1][1], y2 = t.position[2][1];
    // Top, middle, bottom by the table of comparisons, in its order.
    const int orders[6][3] = {{0, 1, 2}, {0, 2, 1}, {2, 0, 1}, {1, 0, 2}, {1, 2, 0}, {2, 1, 0}};
    const int* o = orders[y1 > y0 ? (y2 > y1 ? 0 : y2 > y0 ? 1 : 2) : (y2 > y0 ? 3 : y2 > y1 ? 4 : 5)];
    int row[3];
    // Per sorted vertex what interpolates: x, z, u and v over z, four modulate and four add lanes.
    float value[3][12];
    for (int i = 0; i < 3; ++i) {
        const int v = o[i];
        const float z = t.position[v][2], s = t.shadefactor[v];
        const float f = minss(maxss((z - r.fogstart) * r.fogscale, 0.0f), 1.0f);
        row[i] = trunc(t.position[v][1]);
        value[i][0] = t.position[v][0], value[i][1] = z;
        value[i][2] = t.uv[v][0] * rcp(z), value[i][3] = t.uv[v][1] * rcp(z);
        for (int ch = 0; ch < 4; ++ch) {
            const float C = t.colour[v][ch], F = r.fogcolour[ch], T = t.shadetint[ch];
            float mc = C, ac = 0.0f;
            if (fold == recipe::fogshade) mc = ((1 - s) * C) * (1 - f), ac = f * F + (s * T) * (1 - f);
            if (fold == recipe::fogonly) mc = (1 - f) * C, ac = f * F;
            if (fold == recipe::shadeonly) mc = (1 - s) * C, ac = s * T;
            value[i][4 + ch] = m.get<shading>() == shading::textured || fold == recipe::plain ? mc : ac + mc;
            value[i][8 + ch] = ac;
        }
    }
    // Steps along top-middle, top-bottom, middle-bottom, by the reciprocal of each height.
    float step[3][12];
    const int ends[3][2] = {{0, 1}, {0, 2}, {1, 2}};
    for (int e = 0; e < 3; ++e) {
        const int from = ends[e][0], to = ends[e][1];
        const float height = static_cast<float>(static_cast<int>(unsigned(row[to]) - unsigned(row[from])));
        const float rc = rcp(maxss(height, std::bit_cast<float>(0x358637BDu)));
        for (int k = 0; k < 12; ++k) step[e][k] = (value[to][k] - value[from][k]) * rc;
    }

    rasterspan s{};
    s.texels[0] = t.texels[0];
    s.blendfactor = t.blendfactor;
    // Side 0 (left) or 1 (right) from vertex `from` along edge `e`, `skip` rows on.
    auto setside = [&](int side, int from, int e, long long skip) {
        for (int i = 0; i < 2; ++i) {
            s.edge[2 * side + i] = value[from][i] + static_cast<float>(skip) * step[e][i];
            s.uv[2 * side + i] = value[from][2 + i] + static_cast<float>(skip) * step[e][2 + i];
            s.edgestep[2 * side + i] = step[e][i], s.uvstep[2 * side + i] = step[e][2 + i];
        }
        for (int ch = 0; ch < 4; ++ch) {
            const int16_t dm = saturate16(trunc(step[e][4 + ch])), da = saturate16(trunc(step[e][8 + ch]));
            s.modulatestep[4 * side + ch] = dm, s.addcolourstep[4 * side + ch] = da;
            s.modulate[4 * side + ch] = static_cast<uint16_t>(startlane(value[from][4 + ch]) + int16_t(skip) * dm);
            s.addcolour[4 * side + ch] = static_cast<uint16_t>(startlane(value[from][8 + ch]) + int16_t(skip) * da);
        }
    };
    const long long bottom = std::min(wrapsum(r.viewport[1], r.viewport[3]), wrapsum(r.rasterclip[1], r.rasterclip[3]));
    long long y = row[0], skip = 0;
    if (y < r.viewport[1]) skip = r.viewport[1] - y, y = r.viewport[1];
    if (y < r.rasterclip[1]) skip += r.rasterclip[1] - y, y = r.rasterclip[1];
    long long rows = std::min<long long>(row[1], bottom) - y;
    const bool tbleft = step[0][0] > step[1][0];
    setside(0, 0, tbleft ? 1 : 0, skip), setside(1, 0, tbleft ? 0 : 1, skip);
    s.y = static_cast<int>(y);
    long long skip2 = 0, lower = static_cast<long long>(row[2]) - row[1];
    if (rows > 0)
        s.rows = static_cast<int>(rows), span(spanof(m), s);
    else
        skip2 = -rows, lower += rows;
    rows = std::min(lower, bottom - s.y);
    if (rows <= 0) return;
    setside(step[1][0] > step[2][0] ? 1 : 0, 1, 2, skip2);
    s.rows = static_cast<int>(rows);
    span(spanof(m), s);
}

}  // namespace rasterreference
