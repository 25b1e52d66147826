#include "ground/upload.h"

#include <jni.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "ground/tileshade.h"
#include "toolkit/tables.h"
#include "toolkit/texturestore.h"
#include "util/arraypin.h"
#include "util/exception.h"
#include "util/frame.h"
#include "util/memory/memorypool.h"
#include "util/peer.h"

namespace {

bool hidden(int id) {
    const texturedescriptor* d = getdescriptor(id);
    return d && d->hidden;
}

// Texture types whose faces blend over the buffer on a ground that asks for it.
bool blendingtype(const texturedescriptor* d) { return d && (d->type == 4 || d->type == 8 || d->type == 9); }

// An HSL code at a light level: its lightness scaled by the level, kept within 2 to 126 as an
// unsigned value, so that a negative one goes to 126.
uint32_t shadedcolour(int hsl, int level) {
    unsigned l = static_cast<unsigned>((level * (hsl & 127)) >> 7);
    l = l < 2 ? 2 : l > 126 ? 126 : l;
    return static_cast<uint32_t>(hsltorgb[(hsl & 0xFF80) | static_cast<int>(l)]);
}

// A textured face's colour: mixed with the grey of its level by the texture's blend weight, then
// brightened by its bright byte.
uint32_t texturetint(uint32_t rgb, int id, int level) {
    const texturedescriptor* d = getdescriptor(id);
    if (!d) return rgb;
    if (d->blend != 0 && d->type != 4) {
        const uint32_t w = d->blend, grey = static_cast<unsigned>(level) < 128 ? level * 0x020202u : 0xFFFFFFu;
        rgb = ((((rgb & 0xFF00) * (256 - w) + (grey & 0xFF00) * w) & 0xFF0000) +
               (((rgb & 0xFF00FF) * (256 - w) + (grey & 0xFF00FF) * w) & 0xFF00FF00)) >>
              8;
    }
    if (d->bright != 0) {
        uint32_t out = 0;
        for (int c = 0; c < 24; c += 8) out |= (std::min((rgb >> c & 0xFF) * (d->bright + 256u), 65535u) >> 8) << c;
        rgb = out;
    }
    return rgb;
}

}  // namespace

complexground* buildtile(const ground& g, int x, int z, const tilesource& s) {
    memorymanager& pool = *g.owner->pool;
    const toolkit& light = *g.owner;
    const int n = s.count, facecount = n / 3, ts = g.tilesize;
    const int wx = x << g.tileshift, wz = z << g.tileshift;
    const tilecorners corners(g, x, z);
    // A face without a texture on any corner, or on a plain ground with a hidden one, has none.
    auto untextured = [&g](const int* t) {
        return t[0] == -1 || t[1] == -1 || t[2] == -1 ||
               (g.flags & GF_PLAIN && (hidden(t[0]) || hidden(t[1]) || hidden(t[2])));
    };
    bool usedepth = false;
    for (int i = 0; s.usedepths && s.depths && i < n; ++i) usedepth |= s.depths[i] > 0;

    auto tile = std::make_unique<complexground>();
    pool.allocate(tile->vertices, n + 4);
    if (usedepth) pool.allocate(tile->depths, n + 4);
    groundpoint* v = tile->vertices.get();
    uint16_t* depth = tile->depths.get();
    for (int c = 0; c < 4; ++c) {
        v[c] = {static_cast<float>(wx + (c == 1 || c == 2 ? ts : 0)), 0.0f, static_cast<float>(wz + (c >= 2 ? ts : 0)),
                1.0f};
        if (depth) depth[c] = 0;
    }

    // First pass: each vertex finds its slot, a corner's or the first one at its x and z, and each
    // face its group.
    int vertexcount = 4;
    std::vector<uint8_t> index(static_cast<size_t>(n)), group(static_cast<size_t>(facecount));
    int counts[facegroups] = {};
    bool drawable = false;
    uint8_t flags = s.caster ? TF_CASTER : 0;
    for (int f = 0; f < facecount; ++f) {
        const int i = 3 * f;
        for (int k = i; k < i + 3; ++k) {
            const int xo = s.xs[k], zo = s.zs[k], vx = wx + xo, vz = wz + zo;
            const groundpoint p{static_cast<float>(vx),
                                static_cast<float>(groundheight(g, vx, vz) + (s.ys ? s.ys[k] : 0)),
                                static_cast<float>(vz), 1.0f};
            int at;
            if ((xo == 0 || xo == ts) && (zo == 0 || zo == ts)) {
                at = xo == 0 ? (zo == 0 ? 0 : 3) : (zo == 0 ? 1 : 2);
            } else {
                at = 4;
                while (at < vertexcount && !(v[at].x == p.x && v[at].z == p.z)) ++at;
                if (at < vertexcount) {
                    index[k] = static_cast<uint8_t>(at);
                    continue;
                }
                ++vertexcount;
            }
            v[at] = p;
            if (depth) depth[at] = static_cast<uint16_t>(s.depths[k]);
            index[k] = static_cast<uint8_t>(at);
        }
        const int *c = s.colours + i, *t = s.textures + i, *sc = s.scales ? s.scales + i : nullptr;
        facegroup kind = hiddenfaces;
        if (c[0] != -1 || c[1] != -1 || c[2] != -1) {
            drawable = true;
            kind = gouraudfaces;
        }
        if (kind == gouraudfaces && !untextured(t)) {
            if (!(flags & TF_BLENDING) && g.flags & GF_BLENDMARK && blendingtype(getdescriptor(t[0])))
                flags |= TF_BLENDING;
            const bool one = t[0] == t[1] && t[1] == t[2];
            if (sc && !(sc[0] == ts && sc[1] == ts && sc[2] == ts))
                kind = one && sc[0] == sc[1] && sc[1] == sc[2] ? singlescaledfaces : triplescaledfaces;
            else
                kind = one ? singlefaces : triplefaces;
        }
        group[f] = static_cast<uint8_t>(kind);
        ++counts[kind];
    }

    // Between the passes every block is made at its final size, or trimmed to it.
    tile->vertices.truncate(vertexcount);
    if (usedepth) tile->depths.truncate(vertexcount);
    if (s.mapcolours) pool.allocate(tile->mapcolours, n);
    const int textured = counts[0] + counts[1] + counts[2] + counts[3];
    if (drawable) {
        pool.allocate(tile->colours, n);
        pool.allocate(tile->textures, 3 * (counts[0] + counts[1]) + counts[2] + counts[3]);
        pool.allocate(tile->texscales, 3 * counts[0] + counts[2]);
        pool.allocate(tile->uvs, 6 * textured);
    }
    pool.allocate(tile->faces, n);

    // Second pass: each face stored at the next place of its group, in one pass of stores.
    int place[facegroups], texture[facegroups] = {}, scale[facegroups] = {};
    for (int k = 0, at = 0; k < facegroups; at += counts[k++]) place[k] = at;
    texture[1] = 3 * counts[0], texture[2] = texture[1] + 3 * counts[1], texture[3] = texture[2] + counts[2];
    scale[2] = 3 * counts[0];
    uint32_t* colours = tile->colours.get();
    uint32_t* mapcolours = tile->mapcolours.get();
    uint16_t* textures = tile->textures.get();
    texscale* texscales = tile->texscales.get();
    float* uvs = tile->uvs.get();
    uint8_t* faces = tile->faces.get();
    const float k = 127.0f / static_cast<float>(ts);
    auto record = [&](int sc) {
        const float q = sc == 0 ? 1.0f : static_cast<float>(ts) / static_cast<float>(sc);
        return texscale{q, static_cast<float>(x << 7) * q, static_cast<float>(z << 7) * q};
    };
    for (int f = 0; f < facecount; ++f) {
        const int i = 3 * f, kind = group[f], at = place[kind]++;
        const int* t = s.textures + i;
        const bool plain = untextured(t);
        for (int j = 0; j < 3; ++j) {
            const int e = i + j, xo = s.xs[e], zo = s.zs[e];
            const int level = 74 - corners.shadeat(xo, zo, g.tileshift);
            const int hsl = s.colours[e] == -1 ? 0 : s.colours[e] & 0xFFFF;
            if (colours) colours[3 * at + j] = texturetint(shadedcolour(hsl, level), plain ? -1 : t[j], level);
            if (mapcolours) {
                const int map = s.mapcolours[e] == -1 ? 0 : s.mapcolours[e] & 0xFFFF;
                mapcolours[3 * at + j] = sunlight(light, corners.normalat(xo, zo, ts), shadedcolour(map, level));
            }
            faces[3 * at + j] = index[e];
        }
        if (kind >= gouraudfaces) continue;
        for (int j = 0; j < 3; ++j) {
            uvs[6 * at + j] = static_cast<float>(s.xs[i + 2 - j]) * k;
            uvs[6 * at + 3 + j] = static_cast<float>(s.zs[i + 2 - j]) * k;
        }
        const int layers = kind == triplescaledfaces || kind == triplefaces ? 3 : 1;
        for (int j = 0; j < layers; ++j) textures[texture[kind]++] = static_cast<uint16_t>(t[j]);
        if (kind == triplescaledfaces || kind == singlescaledfaces)
            for (int j = 0; j < layers; ++j) texscales[scale[kind]++] = record(s.scales[i + j]);
    }
    tile->tilecolour = s.tilecolour;
    for (int c = 0; c < facegroups; ++c) tile->facecounts[c] = static_cast<uint8_t>(counts[c]);
    tile->tileflags = flags | (drawable ? 0 : TF_EMPTY);
    return tile.release();
}

extern "C" JNIEXPORT void JNICALL Java_i_ya(JNIEnv* env, jobject self, jint x, jint z, jintArray xs, jintArray ys,
                                            jintArray zs, jintArray depths, jintArray colours, jintArray mapcolours,
                                            jintArray textures, jintArray scales, jint tilecolour, jint usedepths, jint,
                                            jboolean caster) {
    runexport(env, [&] {
        // Every array reads as many entries as the shortest holds, in whole faces; the ones a tile
        // cannot be without are not null.
        int count = arraylength(env, xs);
        if (count == 0) return;
        for (jintArray a : {ys, zs, depths, colours, mapcolours, textures, scales})
            if (a) count = std::min(count, static_cast<int>(arraylength(env, a)));
        if (!zs || !colours || !textures) fail<NullPointerException>();
        using ints = arraypin<pinkind::intread>;
        ints pxs(env, xs), pys(env, ys), pzs(env, zs), pdepths(env, depths), pcolours(env, colours),
            pmapcolours(env, mapcolours), ptextures(env, textures), pscales(env, scales);
        ground& g = groundpeer(env, self);
        genericground** slot = g.slot(x, z);
        if (!slot) return;
        const tilesource s{
            count / 3 * 3,  pxs.get(),          pys.get(),       pzs.get(),     pdepths.get(),
            pcolours.get(), pmapcolours.get(),  ptextures.get(), pscales.get(), static_cast<uint32_t>(tilecolour),
            usedepths != 0, caster != JNI_FALSE};
        complexground* tile = buildtile(g, x, z, s);
        delete *slot;
        *slot = tile;
    });
}
