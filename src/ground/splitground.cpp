#include "ground/splitground.h"

#include <emmintrin.h>

#include <algorithm>

#include "toolkit/toolkit.h"
#include "util/assertion.h"
#include "util/memory/memorypool.h"
#include "util/truncate.h"

namespace {

// One corner of a face with all that the face stores for it.
struct facecorner {
    uint8_t index;
    uint32_t colour, map;
    float u, v;
    uint16_t id;
    texscale scale;
};

// Each byte moved from p toward q by t, rounded as the processor converts.
uint32_t mixcolour(uint32_t p, uint32_t q, float t) {
    uint32_t out = p & 0xFF000000u;
    for (int c = 0; c < 24; c += 8) {
        const int a = static_cast<int>(p >> c & 0xFF), b = static_cast<int>(q >> c & 0xFF);
        out |= static_cast<uint32_t>((a + _mm_cvtss_si32(_mm_set_ss(static_cast<float>(b - a) * t))) & 0xFF) << c;
    }
    return out;
}

// Faces a face becomes: 1 on one side, touching the line or not; 2 with a corner on the line and
// the other two across it; 3 otherwise.
int pieces(const int sides[3]) {
    if (sides[0] & sides[1] & sides[2]) return 1;
    return sides[0] == 3 || sides[1] == 3 || sides[2] == 3 ? 2 : 3;
}

constexpr int idsof(int group) { return group < 2 ? 3 : group < 4 ? 1 : 0; }
constexpr int recordsof(int group) { return group == 0 ? 3 : group == 2 ? 1 : 0; }

}  // namespace

splitground::splitground(complexground* uncut, const ground& g, float ox, float oz, bool anti) {
    const complexground& u = *uncut;
    auto sides = [&](const allocatedmemory<groundpoint>& at, const uint8_t* face, int out[3]) {
        for (int j = 0; j < 3; ++j) out[j] = sideof(anti, at[face[j]].x - ox, at[face[j]].z - oz);
    };
    int counts[facegroups] = {}, added = 0, total = 0;
    for (int k = 0, f = 0; k < facegroups; ++k)
        for (int n = 0; n < u.facecounts[k]; ++n, ++f) {
            int s[3] = {3, 3, 3};
            if (k < hiddenfaces) sides(u.vertices, u.faces.get() + 3 * f, s);
            const int p = pieces(s);
            counts[k] += p, added += p - 1, total += p;
        }
    // Every block is made before any is read: a new block may move the old tile's.
    memorymanager& pool = *g.owner->pool;
    const int textured = counts[0] + counts[1] + counts[2] + counts[3];
    pool.allocate(faces, 3 * total);
    pool.allocate(vertices, u.vertices.length() + added);
    if (!u.depths.empty()) pool.allocate(depths, u.vertices.length() + added);
    if (!u.colours.empty()) pool.allocate(colours, 3 * total);
    if (!u.mapcolours.empty()) pool.allocate(mapcolours, 3 * total);
    pool.allocate(textures, 3 * (counts[0] + counts[1]) + counts[2] + counts[3]);
    pool.allocate(texscales, 3 * counts[0] + counts[2]);
    pool.allocate(uvs, 6 * textured);
    int vertexcount = u.vertices.length();
    std::copy_n(u.vertices.get(), vertexcount, vertices.get());
    if (!depths.empty()) std::copy_n(u.depths.get(), vertexcount, depths.get());

    // The crossing of the line with the edge from p to q: a vertex found at its x and z, or a new
    // one at the ground's height there.
    auto crossing = [&](const facecorner& p, const facecorner& q) {
        const groundpoint &vp = vertices[p.index], &vq = vertices[q.index];
        const float px = vp.x - ox, pz = vp.z - oz, qx = vq.x - ox, qz = vq.z - oz;
        const float t = anti ? (128.0f - px - pz) / ((qz - pz) + (qx - px)) : (px - pz) / ((qz - pz) - (qx - px));
        const float x = vp.x + (vq.x - vp.x) * t, z = vp.z + (vq.z - vp.z) * t;
        int at = 4;
        while (at < vertexcount && !(vertices[at].x == x && vertices[at].z == z)) ++at;
        if (at == vertexcount) {
            vertices[at] = {x, static_cast<float>(groundheight(g, truncate(x), truncate(z))), z, 1.0f};
            if (!depths.empty()) depths[at] = depths[p.index];
            ++vertexcount;
        }
        return facecorner{static_cast<uint8_t>(at), mixcolour(p.colour, q.colour, t), mixcolour(p.map, q.map, t),
                          p.u + (q.u - p.u) * t, p.v + (q.v - p.v) * t, p.id, p.scale};
    };
    int out = 0, texture = 0, scale = 0;
    auto emit = [&](int k, const facecorner& a, const facecorner& b, const facecorner& c) {
        const facecorner* corner[3] = {&a, &b, &c};
        for (int j = 0; j < 3; ++j) {
            faces[3 * out + j] = corner[j]->index;
            if (!colours.empty()) colours[3 * out + j] = corner[j]->colour;
            if (!mapcolours.empty()) mapcolours[3 * out + j] = corner[j]->map;
            if (k < gouraudfaces) uvs[6 * out + 2 - j] = corner[j]->u, uvs[6 * out + 5 - j] = corner[j]->v;
        }
        for (int j = 0; j < idsof(k); ++j) textures[texture++] = corner[j]->id;
        for (int j = 0; j < recordsof(k); ++j) texscales[scale++] = corner[j]->scale;
        ++out;
    };
    for (int k = 0, f = 0, oldtexture = 0, oldscale = 0; k < facegroups; ++k)
        for (int n = 0; n < u.facecounts[k]; ++n, ++f) {
            const int ids = idsof(k), records = recordsof(k);
            facecorner c[3];
            for (int j = 0; j < 3; ++j) {
                const int e = 3 * f + j;
                c[j] = {u.faces[e], u.colours.empty() ? 0 : u.colours[e], u.mapcolours.empty() ? 0 : u.mapcolours[e],
                        k < gouraudfaces ? u.uvs[6 * f + 2 - j] : 0.0f, k < gouraudfaces ? u.uvs[6 * f + 5 - j] : 0.0f,
                        ids ? u.textures[oldtexture + (ids == 3 ? j : 0)] : uint16_t{0},
                        records ? u.texscales[oldscale + (records == 3 ? j : 0)] : texscale{}};
            }
            oldtexture += ids, oldscale += records;
            int s[3] = {3, 3, 3};
            if (k < hiddenfaces) sides(u.vertices, u.faces.get() + 3 * f, s);
            if (pieces(s) == 1) {
                emit(k, c[0], c[1], c[2]);
            } else if (pieces(s) == 2) {
                const int v = s[0] == 3 ? 0 : s[1] == 3 ? 1 : 2;
                const facecorner &a = c[(v + 1) % 3], &b = c[(v + 2) % 3], m = crossing(a, b);
                emit(k, c[v], a, m), emit(k, m, b, c[v]);
            } else {
                // The corner alone on its side, and the crossings of its two edges.
                const int v = s[0] != s[1] && s[0] != s[2] ? 0 : s[1] != s[2] ? 1 : 2;
                const facecorner &a = c[(v + 1) % 3], &b = c[(v + 2) % 3], m = crossing(c[v], a), w = crossing(c[v], b);
                emit(k, c[v], m, w), emit(k, m, a, b), emit(k, b, w, m);
            }
        }
    vertices.truncate(vertexcount);
    if (!depths.empty()) depths.truncate(vertexcount);
    for (int k = 0; k < facegroups; ++k) facecounts[k] = static_cast<uint8_t>(counts[k]);
    tilecolour = u.tilecolour, tileflags = u.tileflags;
    shadowslice.copyfrom(u.shadowslice);
    sliceoffset = u.sliceoffset, shadowmap = u.shadowmap, shadowshift = u.shadowshift;
    inner.reset(uncut);
}

void splitground::drawmap(ground& g, int x, int z, float mx, float fy, float step) {
    inner->drawmap(g, x, z, mx, fy, step);
}

void splittile(const ground& g, genericground** slot, int x, int z, int mode) {
    auto* tile = dynamic_cast<complexground*>(*slot);
    if (!tile) return;
    int drawn = 0;
    for (int k = 0; k < hiddenfaces; ++k) drawn += tile->facecounts[k];
    if (drawn == 0) return;
    WEXEL_ASSERT(dynamic_cast<splitground*>(tile) == nullptr, "dynamic_cast<splitground *>(tile) == null", "ground",
                 716);
    const bool anti = antidiagonal(mode);
    const float ox = static_cast<float>(x << g.tileshift), oz = static_cast<float>(z << g.tileshift);
    auto* split = new splitground(tile, g, ox, oz, anti);
    *slot = split;
    drawn = 0;
    for (int k = 0; k < hiddenfaces; ++k) drawn += split->facecounts[k];
    g.owner->pool->allocate(split->faceclass, drawn);
    for (int f = 0; f < drawn; ++f) {
        const uint8_t* face = split->faces.get() + 3 * f;
        int all = 3;
        for (int j = 0; j < 3; ++j) {
            const groundpoint& p = split->vertices[face[j]];
            all &= sideof(anti, p.x - ox, p.z - oz);
        }
        split->faceclass[f] = faceclassof(anti, all);
    }
}
