// Seeded screen-space triangles that the triangle benchmarks draw, ours and the peer's alike.
#pragma once
#include <cstdint>
#include <vector>

#include "toolkit/texturestore.h"

// One corner: pixels with y down, z inside the depth range 0 to 1, texel coordinates (a texture is
// 128 texels across) and a colour 0xAARRGGBB.
struct benchvertex {
    float x, y, z;
    float u, v;
    uint32_t colour;
};

struct trianglework {
    std::vector<benchvertex> vertices;  // three a triangle
    double pixels;                      // the covered area, summed
    int count() const { return int(vertices.size() / 3); }
};

// `count` triangles of `area` pixels each, of varied shape, counter-clockwise on the screen, lying
// inside a target of the given size. Each triangle is nearer than every one before it, so that on
// a cleared depth buffer every covered pixel passes the depth test. The texel coordinates run from
// 0 to 128 across each triangle's bounds.
trianglework maketriangles(int count, float area, int width, int height, uint32_t seed);

// A seeded 128x128 texture in rows of 256 texels, the row pitch of the texture atlas.
inline constexpr int texturepitch = atlaspitch;
std::vector<uint32_t> maketexture(uint32_t seed);
