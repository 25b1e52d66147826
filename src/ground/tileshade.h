// How a tile's vertices take the light of the ground: a normal and a shade byte from the four
// corners of the tile, and the sun on a colour word. Uploads bake the shade into the colours and
// light the map colours; every draw lights the colours again with the current sun.
#pragma once
#include <cstdint>

#include "ground/ground.h"
#include "toolkit/toolkit.h"
#include "util/truncate.h"

// The grid normals and shade bytes of a tile's corners (x, z), (x + 1, z), (x, z + 1),
// (x + 1, z + 1).
struct tilecorners {
    groundpoint normal[2][2];  // [along x][along z]
    int shade[2][2];

    tilecorners(const ground& g, int x, int z) {
        for (int i = 0; i < 2; ++i)
            for (int j = 0; j < 2; ++j) {
                normal[i][j] = g.normals[g.point(x + i, z + j)];
                shade[i][j] = g.shade(x + i, z + j);
            }
    }

    // The normal at offsets (xo, zo) in the tile: a corner's own, or between the four, first
    // along x and then along z.
    groundpoint normalat(int xo, int zo, int tilesize) const {
        if ((xo == 0 || xo == tilesize) && (zo == 0 || zo == tilesize)) return normal[xo != 0][zo != 0];
        const float a = static_cast<float>(xo) / static_cast<float>(tilesize);
        const float b = static_cast<float>(zo) / static_cast<float>(tilesize);
        auto mix = [](float p, float q, float t) { return p + (q - p) * t; };
        const groundpoint &n00 = normal[0][0], &n10 = normal[1][0], &n01 = normal[0][1], &n11 = normal[1][1];
        const float lx = mix(n00.x, n10.x, a), ly = mix(n00.y, n10.y, a), lz = mix(n00.z, n10.z, a);
        const float hx = mix(n01.x, n11.x, a), hy = mix(n01.y, n11.y, a), hz = mix(n01.z, n11.z, a);
        return {mix(lx, hx, b), mix(ly, hy, b), mix(lz, hz, b), 1.0f};
    }

    // The shade byte at offsets (xo, zo), between the corners in integers; at a corner that is
    // the corner's own.
    uint8_t shadeat(int xo, int zo, int tileshift) const {
        const int lo = (((shade[1][0] - shade[0][0]) * xo) >> tileshift) + shade[0][0];
        const int hi = (((shade[1][1] - shade[0][1]) * xo) >> tileshift) + shade[0][1];
        return static_cast<uint8_t>(((zo * (hi - lo)) >> tileshift) + lo);
    }
};

// The sun on a colour word for a surface of normal n: each channel scaled by the sun's colour and
// by the ambient or diffuse term, kept within 4 to 252; alpha opaque.
inline uint32_t sunlight(const toolkit& t, const groundpoint& n, uint32_t colour) {
    const float d = (t.sundirection[0] * n.x + t.sundirection[1] * n.y + t.sundirection[2] * n.z) / n.w;
    const int i = truncate(((d > 0 ? t.ambient : t.diffuse) * d + t.lightfactor) * 256.0f);
    uint32_t out = 0xFF000000u;
    for (int c = 0; c < 3; ++c) {
        const int channel = static_cast<int>(colour >> (16 - 8 * c) & 0xFF);
        const int v = ((channel * t.suncolour[c] >> 8) * i) >> 8;
        out |= static_cast<uint32_t>(v >= 253 ? 252 : v < 4 ? 4 : v) << (16 - 8 * c);
    }
    return out;
}
