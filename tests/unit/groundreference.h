// Scalar references of the ground from the rules: a tile's upload (shared vertices, face groups,
// shaded and lit colours, texture ids and moves) and its draw, face by face through the
// rasteriser's reference.
#pragma once
#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "ground/tile.h"
#include "ground/upload.h"
#include "rasterreference.h"
#include "toolkit/projection.h"
#include "toolkit/tables.h"
#include "toolkit/texturestore.h"

namespace groundreference {

using rasterreference::trunc;

inline groundpoint normalat(const ground& g, int x, int z, int xo, int zo) {
    auto n = [&](int i, int j) { return g.normals[g.point(x + i, z + j)]; };
    const int s = g.tilesize;
    if ((xo == 0 || xo == s) && (zo == 0 || zo == s)) return n(xo == s, zo == s);
    const float a = float(xo) / float(s), b = float(zo) / float(s);
    groundpoint low = n(0, 0), high = n(0, 1), out{0, 0, 0, 1.0f};
    float* parts[] = {&out.x, &out.y, &out.z};
    const float lows[] = {low.x, low.y, low.z}, highs[] = {high.x, high.y, high.z};
    const float right[] = {n(1, 0).x, n(1, 0).y, n(1, 0).z}, far[] = {n(1, 1).x, n(1, 1).y, n(1, 1).z};
    for (int c = 0; c < 3; ++c) {
        const float l = lows[c] + (right[c] - lows[c]) * a, h = highs[c] + (far[c] - highs[c]) * a;
        *parts[c] = l + (h - l) * b;
    }
    return out;
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

inline uint32_t hslcolour(int hsl, int level) {
    const int l = (level * (hsl & 127)) >> 7;
    return uint32_t(hsltorgb[(hsl & 0xFF80) | (l < 0 || l > 126 ? 126 : l < 2 ? 2 : l)]);
}

// The colour of a face corner before the sun: the HSL colour at the level, then the texture's grey
// mix and brightening, channel by channel.
inline uint32_t basecolour(int hsl, int level, int id) {
    uint32_t rgb = hslcolour(hsl, level);
    const texturedescriptor* d = getdescriptor(id);
    if (!d || ((!d->blend || d->type == 4) && !d->bright)) return rgb;
    const uint32_t grey = level >= 0 && level < 128 ? uint32_t(level) * 0x020202u : 0xFFFFFFu;
    uint32_t out = 0;
    for (int c = 0; c < 24; c += 8) {
        uint32_t v = rgb >> c & 0xFF;
        if (d->blend && d->type != 4) v = (v * (256u - d->blend) + (grey >> c & 0xFF) * d->blend) >> 8 & 0xFF;
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
    bool usedepth = false;
    for (int i = 0; s.usedepths && s.depths && i < n; ++i) usedepth |= s.depths[i] > 0;
    for (int c = 0; c < 4; ++c) out.vertices.push_back({float(wx + (c % 3 ? ts : 0)), 0, float(wz + (c / 2) * ts), 1});
    std::vector<int> depth(4, 0), index(static_cast<size_t>(n)), group(static_cast<size_t>(n / 3));
    std::map<std::pair<float, float>, int> seen;
    bool drawable = false;
    for (int i = 0; i < n; ++i) {
        const int xo = s.xs[i], zo = s.zs[i];
        const groundpoint p{float(wx + xo), float(groundheight(g, wx + xo, wz + zo) + (s.ys ? s.ys[i] : 0)),
                            float(wz + zo), 1.0f};
        const int corner = xo == 0    ? (zo == 0    ? 0
                                         : zo == ts ? 3
                                                    : -1)
                           : xo == ts ? (zo == 0    ? 1
                                         : zo == ts ? 2
                                                    : -1)
                                      : -1;
        const int d = s.depths ? s.depths[i] : 0;
        if (corner >= 0) {
            out.vertices[size_t(corner)] = p, depth[size_t(corner)] = d, index[size_t(i)] = corner;
            continue;
        }
        auto [at, added] = seen.try_emplace({p.x, p.z}, int(out.vertices.size()));
        if (added) out.vertices.push_back(p), depth.push_back(d);
        index[size_t(i)] = at->second;
    }
    auto hiddenid = [&](int id) { return (g.flags & GF_PLAIN) && getdescriptor(id) && getdescriptor(id)->hidden; };
    for (int f = 0; f < n / 3; ++f) {
        const int *c = s.colours + 3 * f, *tx = s.textures + 3 * f, *sc = s.scales ? s.scales + 3 * f : nullptr;
        int& k = group[size_t(f)];
        if (c[0] == -1 && c[1] == -1 && c[2] == -1)
            k = 5;
        else if (drawable = true; std::count(tx, tx + 3, -1) || hiddenid(tx[0]) || hiddenid(tx[1]) || hiddenid(tx[2]))
            k = 4;
        else {
            const texturedescriptor* d = getdescriptor(tx[0]);
            if ((g.flags & GF_BLENDMARK) && d && (d->type == 4 || d->type == 8 || d->type == 9)) out.flags |= 8;
            const bool one = tx[0] == tx[1] && tx[1] == tx[2];
            if (sc && std::count(sc, sc + 3, ts) != 3)
                k = one && sc[0] == sc[1] && sc[1] == sc[2] ? 2 : 0;
            else
                k = one ? 3 : 1;
        }
        ++out.counts[k];
    }
    if (usedepth)
        for (int d : depth) out.depths.push_back(uint16_t(d));
    // Faces in the order of their groups, each group in the order of the host's arrays.
    for (int k = 0; k < 6; ++k)
        for (int f = 0; f < n / 3; ++f) {
            if (group[size_t(f)] != k) continue;
            const int* tx = s.textures + 3 * f;
            const bool plain = std::count(tx, tx + 3, -1) || hiddenid(tx[0]) || hiddenid(tx[1]) || hiddenid(tx[2]);
            for (int j = 0; j < 3; ++j) {
                const int i = 3 * f + j, level = levelat(g, x, z, s.xs[i], s.zs[i]);
                out.faces.push_back(uint8_t(index[size_t(i)]));
                if (drawable)
                    out.colours.push_back(
                        basecolour(s.colours[i] == -1 ? 0 : s.colours[i] & 0xFFFF, level, plain ? -1 : tx[j]));
                if (s.mapcolours)
                    out.mapcolours.push_back(
                        sun(t, normalat(g, x, z, s.xs[i], s.zs[i]),
                            hslcolour(s.mapcolours[i] == -1 ? 0 : s.mapcolours[i] & 0xFFFF, level)));
            }
            if (k >= 4) continue;
            for (const int32_t* axis : {s.xs, s.zs})
                for (int j = 2; j >= 0; --j) out.uvs.push_back(float(axis[3 * f + j]) * (127.0f / float(ts)));
            for (int j = 0; j < (k < 2 ? 3 : 1); ++j) {
                out.textures.push_back(uint16_t(tx[j]));
                const int sc = s.scales ? s.scales[3 * f + j] : ts;
                const float q = sc == 0 ? 1.0f : float(ts) / float(sc);
                if (k == 0 || k == 2) out.scales.push_back({q, float(x * 128) * q, float(z * 128) * q});
            }
        }
    out.flags |= (s.caster ? 1 : 0) | (drawable ? 0 : 2);
    return out;
}

// The draw of an uploaded tile into the current target; false where the library throws, at a
// face past the count of grid points.
inline bool draw(toolkit& t, const ground& g, const complexground& tile, int x, int z) {
    if (!rasterstate.targetdepth) return true;
    float screen[256][4];
    for (int i = 0; i < std::min(256, tile.vertices.length()); ++i) {
        groundpoint v = tile.vertices[i];
        if (t.fogoverride && !tile.depths.empty()) {
            const float* m = t.viewmatrix;
            const float eye = (v.w * m[14] + v.y * m[6]) + (v.z * m[10] + v.x * m[2]);
            const float k = std::clamp((eye - (rasterstate.farplane - 2048.0f)) * 0.0009541985f, 0.0f, 1.0f);
            v.y = v.y + (((v.y - float(tile.depths[i])) + 10.0f) - v.y) * k;
        }
        _mm_storeu_ps(screen[i], projectpoint(_mm_setr_ps(v.x, v.y, v.z, v.w), t.viewprojection));
        screen[i][3] = screen[i][2];
    }
    const bool colour = rasterstate.targetcolour, shade = t.fogoverride;
    if (colour && shade)
        for (int c = 0; c < 4; ++c) rasterstate.shadecolour[c] = float(tile.tilecolour >> (8 * c) & 0xFF) * 256.0f;
    int f = 0, texture = 0, scale = 0;
    for (int k = 0; k < 5; ++k)
        for (int n = 0; n < tile.facecounts[k]; ++n, ++f) {
            const int ids = k < 2 ? 3 : k < 4 ? 1 : 0, records = k == 0 ? 3 : k == 2 ? 1 : 0;
            const int first = texture, firstscale = scale;
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
            for (int j = 0; j < 3; ++j) {
                const groundpoint& p = tile.vertices[v[j]];
                const int ox = uint16_t(trunc(p.x) - x * g.tilesize), oz = uint16_t(trunc(p.z) - z * g.tilesize);
                setcolourlanes(face.colour[j], sun(t, normalat(g, x, z, ox, oz), tile.colours[3 * f + j]));
                face.shadefactor[j] = std::clamp(p.y * 0.00048828125f, 0.0f, 1.0f);
            }
            bool fog = false;
            for (int j = 0; j < 3; ++j) fog |= t.fogdistance > 0 && face.position[j][2] > rasterstate.fogstart;
            const recipe fold = shade ? (fog ? recipe::fogshade : recipe::shadeonly)
                                : fog ? recipe::fogonly
                                      : recipe::plain;
            if (shade) {
                t.shadestartf = 0, t.shadescale = 0.00048828125f;
                const float tint[4] = {1, 0, 0, 1};
                std::copy_n(tint, 4, rasterstate.shadecolour), std::copy_n(tint, 4, face.shadetint);
            }
            trianglemember m =
                modeltriangle({fold, shading::gouraud, alphamode::opaque, wrapmode::repeat, blended::no, true, true});
            const texturerecord* r[3] = {};
            bool all = ids > 0;
            for (int i = 0; i < ids; ++i) all = (r[i] = gettexture(tile.textures[first + i])) && r[i]->pixels && all;
            if (all) {
                const float* uv = tile.uvs.get() + 6 * f;
                for (int j = 0; j < 3; ++j)
                    face.uv[j][0] = face.uv[j][2] = uv[2 - j], face.uv[j][1] = face.uv[j][3] = uv[5 - j];
                for (int i = 0; i < ids; ++i) face.texels[i] = r[i]->pixels;
                for (int i = 0; i < records; ++i)
                    for (int l = 0; l < 4; ++l) {
                        const texscale& ms = tile.texscales[firstscale + i];
                        face.uvscale[i][l] = ms.q, face.uvoffset[i][l] = l % 2 ? ms.v : ms.u;
                    }
                face.blendfactor = 0x009B009B;
                const bool blend = !shade && k >= 2 && (g.flags & GF_BLENDMARK) &&
                                   (r[0]->type == 4 || r[0]->type == 8 || r[0]->type == 9);
                m = groundtriangle({fold, layers(3 - k), blend ? blended::yes : blended::no, shadowed::no});
            }
            rasterreference::triangle(m, face);
        }
    return true;
}

// The map of one tile: every face flat, in its texture's average colour or its own colours.
inline void drawmap(const ground& g, const complexground& tile, int x, int z, float mx, float fy, float step) {
    if (!rasterstate.targetcolour) return;
    int total = 0;
    for (int count : tile.facecounts) total += count;
    for (int f = 0; f < total; ++f) {
        const texturedescriptor* d = f < tile.textures.length() ? getdescriptor(tile.textures[f]) : nullptr;
        if ((!d || d->hidden) && tile.colours.empty() && tile.mapcolours.empty()) continue;
        rastertriangle face{};
        for (int j = 0; j < 3; ++j) {
            const groundpoint& v = tile.vertices[tile.faces[3 * f + j]];
            face.position[j][0] = float(trunc((v.x - float(x * g.tilesize)) * step / float(g.tilesize) + mx));
            face.position[j][1] = float(trunc(fy - (v.z - float(z * g.tilesize)) * step / float(g.tilesize)));
            face.position[j][2] = face.position[j][3] = 0.5f;
            const allocatedmemory<uint32_t>& own = tile.mapcolours.empty() ? tile.colours : tile.mapcolours;
            setcolourlanes(face.colour[j], d && !d->hidden ? uint32_t(hsltorgb[d->averagecolour]) : own[3 * f + j]);
        }
        rasterreference::triangle(rawmember(true, rasterstate.targetdepth), face);
    }
}

}  // namespace groundreference
