// The tiles of a ground: each slot of `tiles` holds one object of this class tree, with the faces
// the host uploaded for it, and drawing goes through its virtual operations.
#pragma once
#include <cstdint>

#include "ground/ground.h"
#include "ground/lights.h"
#include "toolkit/shadowmask.h"
#include "util/memory/allocatedmemory.h"

// Tile flags.
inline constexpr uint8_t TF_CASTER = 0x01;
inline constexpr uint8_t TF_EMPTY = 0x02;     // nothing to draw
inline constexpr uint8_t TF_BLENDING = 0x08;  // a face blends over the buffer

// A texture layer's move for a scaled face: its scale, and its offset in u and v.
struct texscale {
    float q, u, v;
};

// The face groups in the order faces are stored and drawn.
enum facegroup { triplescaledfaces, triplefaces, singlescaledfaces, singlefaces, gouraudfaces, hiddenfaces };
inline constexpr int facegroups = 6;

class genericground {
public:
    genericground();
    virtual ~genericground();
    genericground(const genericground&) = delete;
    genericground& operator=(const genericground&) = delete;

    // Paints the faces of the tile at (x, z) into a mask of the tile's cells of the shadow map.
    virtual void paintfootprint(ground& g, int x, int z, shadowmask& mask) = 0;
    // Draws the tile at (x, z) of the ground into the current target.
    virtual void draw(toolkit& t, ground& g, int x, int z) = 0;
    // Draws the tile flat for a map, `step` pixels a side, its near left corner at (mx, fy).
    virtual void drawmap(ground& g, int x, int z, float mx, float fy, float step) = 0;

    allocatedmemory<uint8_t> shadowslice;
    int sliceoffset = 0;
    allocatedmemory<groundpoint> vertices;  // x, y, z, 1
    allocatedmemory<uint16_t> depths;       // depth below the surface, or empty
    allocatedmemory<uint32_t> colours;      // three per face, shaded
    allocatedmemory<uint32_t> mapcolours;   // three per face, lit, or empty
    allocatedmemory<uint16_t> textures;     // of the textured faces
    allocatedmemory<texscale> texscales;    // of the scaled layers
    const uint8_t* shadowmap = nullptr;
    int shadowshift = 0;
    uint8_t tileflags = 0;
    allocatedmemory<tilelight> lightblock;  // shared with the tiles a light reached with this one
    uint16_t lightindex = 0;
};

class complexground : public genericground {
public:
    void paintfootprint(ground& g, int x, int z, shadowmask& mask) override;
    void draw(toolkit& t, ground& g, int x, int z) override;
    void drawmap(ground& g, int x, int z, float mx, float fy, float step) override;

    allocatedmemory<uint8_t> faces;  // three vertex indices per face
    allocatedmemory<float> uvs;      // six per textured face: u of vertex 2, 1, 0, then v
    allocatedmemory<uint8_t> faceclass;  // a face's side of the diagonal once a light split the tile
    uint32_t tilecolour = 0;
    uint8_t facecounts[facegroups] = {};
};
