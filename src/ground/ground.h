// The ground, peer of the host's `i`: a rectangle of `sizex` by `sizez` square tiles over a grid
// of height points, and a slot per tile for the faces the host uploads. Every grid and the slot
// array are flat with rows of `sizex + 1` points and `sizex` tiles whatever `sizez` is: a ground
// that is not square reads its rows at that pitch, which is part of its format.
#pragma once
#include <jni.h>

#include <cstdint>

#include "util/memory/allocatedmemory.h"
#include "util/memory/ringlink.h"

struct toolkit;
class genericground;

// Ground flags.
inline constexpr uint32_t GF_BLENDMARK = 0x08;  // faces of texture type 4, 8 or 9 blend over the buffer
inline constexpr uint32_t GF_SHADOWMAP = 0x10;
inline constexpr uint32_t GF_PLAIN = 0x20;  // no shadow map, and hidden textures count as none

struct alignas(16) groundpoint {
    float x, y, z, w;
};

// A point light of the ground; the nodes stay in the ground and move between its two lists.
struct lightnode : ringlink {
    int id;
    uint16_t intensity;
    uint32_t colour;  // blue, green, red from the low byte
};

struct groundshadows {
    struct ground* owner;
    int width, height;  // cells, with a frame of one cell around the map
    int cellspertile;
    allocatedmemory<uint8_t> cells;
};

struct ground {
    int slotcount;  // sizex * sizez
    genericground** tiles;
    allocatedmemory<uint8_t> shadowatlas;
    int atlascursor;
    toolkit* owner;  // its pool holds every block
    int sizex, sizez;
    int tilesize, tileshift;  // world units per tile, a power of two
    int scale;                // the host's; nothing reads it
    uint32_t flags;
    allocatedmemory<int32_t> heights;
    allocatedmemory<groundpoint> normals;
    allocatedmemory<uint8_t> shades;
    lightnode lightnodes[255];
    int lightcount;
    ring<lightnode> freelights, usedlights;
    groundshadows* shadows;
    allocatedmemory<uint8_t> spare;
    allocatedmemory<uint8_t> dirty;  // a byte per tile, with `shadows`

    ground() = default;
    ground(const ground&) = delete;
    ground& operator=(const ground&) = delete;
    // Deletes every tile, the shadow map and the slots.
    ~ground();

    int point(int a, int b) const { return a * (sizex + 1) + b; }
    // The slot of tile (x, z), or null for a position off the grid or past the slots.
    genericground** slot(int x, int z) const;
    // The shade byte of a grid point; 0 once the shades are released or off the grid.
    int shade(int a, int b) const;
};

// A ground with every slot empty and its heights and shades 0. Throws OutOfMemory "native(SIA)"
// when the slots cannot be had.
ground* makeground(toolkit& owner, int sizex, int sizez, int tilesize, int scale, uint32_t flags);

// The shadow map of a ground, its cells at the toolkit's cell size and every tile unmarked.
void makeshadows(ground& g);

// The grid's normals from the heights of `normalheights`, a block laid out as the ground's own.
void computenormals(ground& g, const int32_t* normalheights);

// The height of grid point (a, b): 0 off the ground's grid block.
int gridheight(const ground& g, int a, int b);

// The height at world position (a, b), interpolated between the four grid points round it; 0
// off the ground.
int groundheight(const ground& g, int a, int b);

// The ground of a host `i` object; a null object raises NullPointerException.
ground& groundpeer(JNIEnv* env, jobject self);
