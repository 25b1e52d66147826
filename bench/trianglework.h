// Seeded screen-space triangles that the triangle benchmarks draw, ours and the peer's alike.
#pragma once
#include <cstdint>
#include <vector>

#include "raster/raster.h"
#include "toolkit/texturestore.h"

class complexground;
struct model;
struct renderworkspace;
struct toolkit;

// One corner: pixels with y down, z inside the depth range 0 to 1, texel coordinates (a texture is
// 128 texels across) and a colour 0xAARRGGBB.
struct benchvertex {
    float x, y, z;
    float u, v;
    uint32_t colour;
};

struct trianglework {
    std::vector<benchvertex> vertices;  // three a triangle
    double pixels = 0;                  // the covered area, summed
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

// The triangles as a model face fills them: colours as lane sets, texel coordinates twice, the
// texture and the constant blend weight of 255.
std::vector<rastertriangle> rasterrecords(const trianglework& work, const uint32_t* texels, int blendweight);

// A tile's faces of groups 0 to 4 as the ground draw hands them on: projected by the toolkit's
// view, what the face test accepts, in their shaded colours, the texture across the tile.
void addtiletriangles(trianglework& work, const complexground& tile, int x, int z, int tilesize, const toolkit& t);

// A model's faces as its last draw through `w` hands them on: what the face test accepts, the
// corners as projected, their colours after the sun, the texture coordinates moved by the offsets
// of the texture's first layer.
void addmodeltriangles(trianglework& work, const model& m, const renderworkspace& w, const toolkit& t,
                       const texturerecord& texture);
