// Scalar references of the ground from the rules: a tile's upload (shared vertices, face groups,
// shaded and lit colours, texture ids and moves) and its draws, face by face through the
// rasteriser's reference.
#pragma once
#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <vector>

#include "ground/tile.h"
#include "ground/upload.h"
#include "rasterreference.h"
#include "toolkit/projection.h"
#include "toolkit/tables.h"
#include "toolkit/texturestore.h"

namespace groundreference {

using rasterreference::trunc;

// The corners' normal at offsets (xo, zo): a corner's own, or mixed along x, then along z.
inline groundpoint normalat(const ground& g, int x, int z, int xo, int zo) {
    auto n = [&](int i, int j, int c) { return (&g.normals[g.point(x + i, z + j)].x)[c]; };
    const int s = g.tilesize;
    if ((xo == 0 || xo == s) && (zo == 0 || zo == s)) return g.normals[g.point(x + (xo == s), z + (zo == s))];
    const float a = float(xo) / float(s), b = float(zo) / float(s);
    float out[3];
    for (int c = 0; c < 3; ++c) {
        const float l = n(0, 0, c) + (n(1, 0, c) - n(0, 0, c)) * a, h = n(0, 1, c) + (n(1, 1, c) - n(0, 1, c)) * a;
        out[c] = l + (h - l) * b;
    }
    return {out[0], out[1], out[2], 1.0f};
}

inline int levelat(const ground& g, int x, int z, int xo, int zo) {
    const int b00 = g.shade(x, z), b10 = g.shade(x + 1, z), b01 = g.shade(x, z + 1), b11 = g.shade(x + 1, z + 1);
    const int lo = (((b10 - b00) * xo) >> g.tileshift) + b00, hi = (((b11 - b01) * xo) >> g.tileshift) + b01;
    return 74 - ((((zo * (hi - lo)) >> g.tileshift) + lo) & 0xFF);
}

inline uint32_t sun(const toolkit& t, const groundpoint& n, uint32_t c) {
    const float d = (t.sundirection[0] * n.x + t.sundirection[1] * n.y + t.sundirection[2] * n.z) / n.w;
    const int i = trunc(((d > 0 ? t.ambient : t.diffuse) * d + t.lightfactor) * 256.0f);
    uint32_t out = 0xFF000000u;
    for (int ch = 0; ch < 3; ++ch) {
        const int v = ((int(c >> (16 - 8 * ch) & 0xFF) * t.suncolour[ch] >> 8) * i) >> 8;
        out |= uint32_t(std::clamp(v >= 253 ? 252 : v, 4, 252)) << (16 - 8 * ch);
    }
    return out;
}

inline uint32_t hslcolour(int code, int level) {
    const int hsl = code == -1 ? 0 : code & 0xFFFF, l = (level * (hsl & 127)) >> 7;
    return uint32_t(hsltorgb[(hsl & 0xFF80) | (l < 0 || l > 126 ? 126 : l < 2 ? 2 : l)]);
}

// A face corner's colour before the sun: the HSL colour at the level, mixed channel by channel
// with the grey of the level by the texture's blend weight, then brightened.
inline uint32_t basecolour(int code, int level, int id) {
    uint32_t rgb = hslcolour(code, level), out = 0;
    const texturedescriptor* d = getdescriptor(id);
    const bool mix = d && d->blend && d->type != 4, grey = level >= 0 && level < 128;
    if (!mix && !(d && d->bright)) return rgb;
    for (int c = 0; c < 24; c += 8) {
        uint32_t v = rgb >> c & 0xFF;
        if (mix) v = (v * (256u - d->blend) + (grey ? 2u * uint32_t(level) : 255u) * d->blend) >> 8;
        if (d->bright) v = std::min(v * (d->bright + 256u), 65535u) >> 8;
        out |= v << c;
    }
    return out;
}

// What an upload stores, block by block.
struct tile {
    std::vector<groundpoint> vertices;
    std::vector<uint16_t> depths, textures;
    std::vector<uint8_t> faces;
    std::vector<uint32_t> colours, mapcolours;
    std::vector<float> uvs;
    std::vector<texscale> scales;
    uint8_t counts[6] = {}, flags = 0;
};

inline tile upload(const toolkit& t, const ground& g, int x, int z, const tilesource& s) {
    tile out;
    const int n = s.count, ts = g.tilesize, wx = x * ts, wz = z * ts;
    for (int c = 0; c < 4; ++c) out.vertices.push_back({float(wx + (c % 3 ? ts : 0)), 0, float(wz + c / 2 * ts), 1});
    std::vector<int> depth(4, 0), index, group;
    std::map<std::pair<float, float>, int> seen;  // free vertices by x and z
    for (int i = 0; i < n; ++i) {
        const int xo = s.xs[i], zo = s.zs[i], d = s.depths ? s.depths[i] : 0;
        const groundpoint p{float(wx + xo), float(groundheight(g, wx + xo, wz + zo) + (s.ys ? s.ys[i] : 0)),
                            float(wz + zo), 1.0f};
        if ((xo == 0 || xo == ts) && (zo == 0 || zo == ts)) {
            const int corner = "0312"[(xo == ts) * 2 + (zo == ts)] - '0';
            out.vertices[size_t(corner)] = p, depth[size_t(corner)] = d, index.push_back(corner);
            continue;
        }
        auto [at, added] = seen.try_emplace({p.x, p.z}, int(out.vertices.size()));
        if (added) out.vertices.push_back(p), depth.push_back(d);
        index.push_back(at->second);
    }
    auto plain = [&](const int* tx) {
        for (int j = 0; j < 3; ++j)
            if (tx[j] == -1 || ((g.flags & GF_PLAIN) && getdescriptor(tx[j]) && getdescriptor(tx[j])->hidden))
                return true;
        return false;
    };
    bool drawable = false;
    for (int f = 0; f < n / 3; ++f) {
        const int *c = s.colours + 3 * f, *tx = s.textures + 3 * f, *sc = s.scales ? s.scales + 3 * f : nullptr;
        const texturedescriptor* d = getdescriptor(tx[0]);
        const bool one = tx[0] == tx[1] && tx[1] == tx[2], hidden = c[0] == -1 && c[1] == -1 && c[2] == -1;
        drawable |= !hidden;
        const bool scaled = sc && std::count(sc, sc + 3, ts) != 3;
        group.push_back(hidden     ? 5
                        : plain(tx) ? 4
                        : scaled    ? (one && sc[0] == sc[1] && sc[1] == sc[2] ? 2 : 0)
                                    : (one ? 3 : 1));
        if (group.back() < 4 && (g.flags & GF_BLENDMARK) && d && (d->type == 4 || d->type == 8 || d->type == 9))
            out.flags |= 8;
        ++out.counts[group.back()];
    }
    if (s.usedepths && s.depths && std::any_of(s.depths, s.depths + n, [](int v) { return v > 0; }))
        out.depths.assign(depth.begin(), depth.end());
    // Faces in the order of their groups, each group in the order of the host's arrays.
    for (int k = 0; k < 6; ++k)
        for (int f = 0; f < n / 3; ++f) {
            if (group[size_t(f)] != k) continue;
            const int* tx = s.textures + 3 * f;
            for (int i = 3 * f; i < 3 * f + 3; ++i) {
                const int level = levelat(g, x, z, s.xs[i], s.zs[i]);
                out.faces.push_back(uint8_t(index[size_t(i)]));
                if (drawable) out.colours.push_back(basecolour(s.colours[i], level, plain(tx) ? -1 : tx[i - 3 * f]));
                if (s.mapcolours)
                    out.mapcolours.push_back(
                        sun(t, normalat(g, x, z, s.xs[i], s.zs[i]), hslcolour(s.mapcolours[i], level)));
            }
            if (k >= 4) continue;
            for (const int32_t* axis : {s.xs, s.zs})
                for (int j = 2; j >= 0; --j) out.uvs.push_back(float(axis[3 * f + j]) * (127.0f / float(ts)));
            for (int j = 0; j < (k < 2 ? 3 : 1); ++j) {
                const int sc = s.scales ? s.scales[3 * f + j] : ts;
                const float q = sc == 0 ? 1.0f : float(ts) / float(sc);
                out.textures.push_back(uint16_t(tx[j]));
                if (k == 0 || k == 2) out.scales.push_back({q, float(x * 128) * q, float(z * 128) * q});
            }
        }
    out.flags |= (s.caster ? 1 : 0) | (drawable ? 0 : 2);
    return out;
}

// A light's strength at grid point (a, b), by distance over r and angle to the normal.
inline uint16_t strength(const ground& g, int a, int b, int x, int y, int z, int r) {
    const groundpoint& n = g.normals[g.point(a, b)];
    const float dx = float(x - a * g.tilesize), dy = float(y - g.heights[g.point(a, b)]), dz = float(z - b * g.tilesize);
    const float len = std::sqrt(dx * dx + dy * dy + dz * dz), t = len / float(r), fall = 1 - t * t;
    const float c = (n.x * dx + n.y * dy + n.z * dz) * (1 / len);
    return uint16_t(trunc(std::min((c > 0 ? c : 0) * (fall > 0 ? fall : 0) * 2, 1.0f) * 256));
}

// A tile's lights at (ox, oz) of a face of class `side`: strengths along x, then z, by intensity.
inline uint32_t pointlights(const tilelight& l, uint32_t base, int ox, int oz, int n, int side) {
    uint32_t out = base & 0xFF000000u;
    for (int c = 0; c < 24; c += 8) {
        int sum = int(base >> c & 0xFF);
        for (int e = 0; e < l.count; ++e) {
            auto along = [&](int a, int b, int o) { return int(int16_t((((b - a) * o) >> n) + a)); };
            const int v = along(along(l.near[e], l.left[e], ox), along(l.right[e], l.far[e], ox), oz) * l.nodes[e]->intensity >> 8;
            if (l.nodes[e]->intensity && (l.modes[e] == 1 || l.modes[e] == side))
                sum += int32_t(int64_t(l.nodes[e]->colour >> c & 0xFF) * v * int(base >> c & 0xFF)) >> 16;
        }
        out |= uint32_t(std::clamp(sum >= 253 ? 252 : sum, 4, 252)) << c;
    }
    return out;
}

// The faces of groups 0 to 4 cut along x = z or (`anti`) x + z = 128 from the corner (ox, oz): x, z
// of each corner and the class. A face with a corner on the line goes in two at the far edge's
// crossing, one across it in three at the edges of the corner alone on its side.
inline std::vector<std::array<float, 7>> cut(const complexground& u, float ox, float oz, bool anti) {
    std::vector<std::array<float, 7>> out;
    auto sides = [&](const float* q) {
        const float ax = q[0] - ox, az = q[1] - oz;
        return anti ? (ax + az <= 128.001f) + 2 * (ax + az >= 127.99f) : (az >= ax) + 2 * (ax >= az);
    };
    auto add = [&](const float* a, const float* b, const float* c) {
        const int all = sides(a) & sides(b) & sides(c);
        out.push_back({a[0], a[1], b[0], b[1], c[0], c[1], float(all & 1 ? 4 - anti : all & 2 ? 2 + 3 * anti : 1)});
    };
    for (int f = 0; f < std::accumulate(u.facecounts, u.facecounts + 5, 0); ++f) {
        float q[3][2], m[2], w[2];
        int s[3];
        for (int j = 0; j < 3; ++j) q[j][0] = u.vertices[u.faces[3 * f + j]].x, q[j][1] = u.vertices[u.faces[3 * f + j]].z, s[j] = sides(q[j]);
        auto cross = [&](int i, int j, float* at) {
            const float px = q[i][0] - ox, pz = q[i][1] - oz, qx = q[j][0] - ox, qz = q[j][1] - oz;
            const float t = anti ? (128 - px - pz) / ((qz - pz) + (qx - px)) : (px - pz) / ((qz - pz) - (qx - px));
            at[0] = q[i][0] + (q[j][0] - q[i][0]) * t, at[1] = q[i][1] + (q[j][1] - q[i][1]) * t;
        };
        const int on = int(std::find(s, s + 3, 3) - s), v = on < 3 ? on : s[0] != s[1] && s[0] != s[2] ? 0 : s[1] != s[2] ? 1 : 2;
        const int a = (v + 1) % 3, b = (v + 2) % 3;
        if (s[0] & s[1] & s[2]) add(q[0], q[1], q[2]);
        else if (on < 3) cross(a, b, m), add(q[v], q[a], m), add(m, q[b], q[v]);
        else cross(v, a, m), cross(v, b, w), add(q[v], m, w), add(m, q[a], q[b]), add(q[b], w, m);
    }
    return out;
}

// The draw of an uploaded tile into the current target; false where the library throws, at a
// face past the count of grid points.
inline bool draw(toolkit& t, const ground& g, const complexground& tile, int x, int z) {
    if (!rasterstate.targetdepth) return true;
    float screen[256][4];
    for (int i = 0; i < std::min(256, tile.vertices.length()); ++i) {
        groundpoint v = tile.vertices[i];
        const float *m = t.viewmatrix, eye = (v.w * m[14] + v.y * m[6]) + (v.z * m[10] + v.x * m[2]);
        const float k = std::clamp((eye - (rasterstate.farplane - 2048.0f)) * 0.0009541985f, 0.0f, 1.0f);
        if (t.fogoverride && !tile.depths.empty()) v.y = v.y + (((v.y - float(tile.depths[i])) + 10.0f) - v.y) * k;
        _mm_storeu_ps(screen[i], projectpoint(_mm_setr_ps(v.x, v.y, v.z, v.w), t.viewprojection));
        screen[i][3] = screen[i][2];
    }
    const bool colour = rasterstate.targetcolour, shade = t.fogoverride;
    for (int c = 0; c < 4 && colour && shade; ++c)
        rasterstate.shadecolour[c] = float(tile.tilecolour >> (8 * c) & 0xFF) * 256.0f;
    for (int k = 0, f = 0, texture = 0, scale = 0; k < 5; ++k)
        for (int n = 0; n < tile.facecounts[k]; ++n, ++f) {
            const int ids = k < 2 ? 3 : k < 4 ? 1 : 0, records = k == 0 ? 3 : k == 2 ? 1 : 0;
            texture += ids, scale += records;
            rastertriangle face{};
            const uint8_t* v = tile.faces.get() + 3 * f;
            for (int j = 0; j < 3; ++j) std::copy_n(screen[v[j]], 4, face.position[j]);
            if (!rasterreference::accept(face.position[0], face.position[1], face.position[2])) continue;
            if (!colour) {
                rasterreference::triangle(withrecipe(recipe::plain, colourlessspan(depthmode::testwrite)), face);
                continue;
            }
            if (3 * f >= (g.sizex + 1) * (g.sizez + 1)) return false;
            bool fog = false;
            for (int j = 0; j < 3; ++j) {
                const groundpoint& p = tile.vertices[v[j]];
                const int ox = uint16_t(trunc(p.x) - x * g.tilesize), oz = uint16_t(trunc(p.z) - z * g.tilesize);
                const uint32_t lit = sun(t, normalat(g, x, z, ox, oz), tile.colours[3 * f + j]), side = tile.faceclass.empty() ? 1 : tile.faceclass[f];
                setcolourlanes(face.colour[j], shade || tile.lightblock.empty() ? lit : pointlights(tile.lightblock[tile.lightindex], lit, ox, oz, g.tileshift, side));
                face.shadefactor[j] = std::clamp(p.y * 0.00048828125f, 0.0f, 1.0f);
                fog |= t.fogdistance > 0 && face.position[j][2] > rasterstate.fogstart;
            }
            const recipe fold = recipe(2 * !fog + !shade);  // fogshade, fogonly, shadeonly, plain
            if (shade) {
                t.shadestartf = 0, t.shadescale = 0.00048828125f;
                const float tint[4] = {1, 0, 0, 1};
                std::copy_n(tint, 4, rasterstate.shadecolour), std::copy_n(tint, 4, face.shadetint);
            }
            trianglemember m =
                modeltriangle({fold, shading::gouraud, alphamode::opaque, wrapmode::repeat, blended::no, true, true});
            const texturerecord* r[3] = {};
            bool all = ids > 0;
            for (int i = 0; i < ids; ++i) all = (r[i] = gettexture(tile.textures[texture - ids + i])) && r[i]->pixels && all;
            if (all) {
                const float* uv = tile.uvs.get() + 6 * f;
                for (int j = 0; j < 3; ++j) face.uv[j][0] = face.uv[j][2] = uv[2 - j], face.uv[j][1] = face.uv[j][3] = uv[5 - j];
                for (int i = 0; i < ids; ++i) face.texels[i] = r[i]->pixels;
                for (int i = 0; i < records * 4; ++i) {
                    const texscale& ms = tile.texscales[scale - records + i / 4];
                    face.uvscale[i / 4][i % 4] = ms.q, face.uvoffset[i / 4][i % 4] = i % 2 ? ms.v : ms.u;
                }
                face.blendfactor = 0x009B009B;
                const bool blend = !shade && k >= 2 && (g.flags & GF_BLENDMARK) && (r[0]->type == 4 || r[0]->type == 8 || r[0]->type == 9);
                face.shadowmap = tile.shadowmap, face.shadowshift[0] = uint64_t(tile.shadowshift);
                m = groundtriangle({fold, layers(3 - k), blend ? blended::yes : blended::no,
                                    tile.shadowmap ? shadowed::yes : shadowed::no});
            }
            rasterreference::triangle(m, face);
        }
    return true;
}

// The map of one tile: every face flat, in its texture's average colour or its own colours.
inline void drawmap(const ground& g, const complexground& tile, int x, int z, float mx, float fy, float step) {
    int total = 0;
    for (int count : tile.facecounts) total += count;
    for (int f = 0; f < total && rasterstate.targetcolour; ++f) {
        const texturedescriptor* d = f < tile.textures.length() ? getdescriptor(tile.textures[f]) : nullptr;
        const allocatedmemory<uint32_t>& own = tile.mapcolours.empty() ? tile.colours : tile.mapcolours;
        if ((!d || d->hidden) && own.empty()) continue;
        rastertriangle face{};
        for (int j = 0; j < 3; ++j) {
            const groundpoint& v = tile.vertices[tile.faces[3 * f + j]];
            face.position[j][0] = float(trunc((v.x - float(x * g.tilesize)) * step / float(g.tilesize) + mx));
            face.position[j][1] = float(trunc(fy - (v.z - float(z * g.tilesize)) * step / float(g.tilesize)));
            face.position[j][2] = face.position[j][3] = 0.5f;
            setcolourlanes(face.colour[j], d && !d->hidden ? uint32_t(hsltorgb[d->averagecolour]) : own[3 * f + j]);
        }
        rasterreference::triangle(rawmember(true, rasterstate.targetdepth), face);
    }
}

}  // namespace groundreference
