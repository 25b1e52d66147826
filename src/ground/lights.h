// Point lights of the ground: each light reaches the tiles round it once, when it is added, and
// leaves on each tile its strength at the four corners; the tile's draw then spreads those
// strengths over its vertices in integers, scaled by the intensity the host sets per frame.
#pragma once
#include <cstdint>

#include "ground/ground.h"

// The lights of one tile, up to four. Records of the tiles a light reaches first are one block,
// shared by those tiles through `lightblock`, each at its own `lightindex`.
struct tilelight {
    uint8_t count;
    uint16_t near[4];   // corner (x, z)
    uint16_t right[4];  // corner (x, z + 1)
    uint16_t far[4];    // corner (x + 1, z + 1)
    uint16_t left[4];   // corner (x + 1, z)
    lightnode* nodes[4];
    uint8_t modes[4];  // 1 for the whole tile, 2 to 5 for one side of a diagonal
};

// A light's strength at a grid point of normal n, 0 to 256: falling off with the square of the
// distance over `reach`, and with the angle to the normal.
uint16_t cornerstrength(float reach, float dx, float dy, float dz, const groundpoint& n);

// Adds light `id` at (x, y, z) to the tiles within `radius`, one mode a tile from `modes` read
// row by row; does nothing once the 255 lights are in use.
void addlight(ground& g, int id, int x, int y, int z, int radius, uint32_t colour, const int32_t* modes,
              int modecount);

// Intensities by place among the lights in use, oldest first, as far as `count` reaches.
void setintensities(ground& g, const float* values, int count);

// Takes the oldest light named `id` off every tile it reaches; an unknown id does nothing.
void removelight(ground& g, int id);

// Multiplies a wrapped product as the 32-bit integers of the light terms do.
inline int32_t wrapmul(int32_t a, int32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b)); }

// The lights of a tile on a vertex at offsets (ox, oz) of a face of class `faceclass`, added to
// its sunlit colour `base`, each channel kept within 4 to 252. A light that is off costs one test.
inline uint32_t pointlight(const tilelight& l, uint32_t base, int ox, int oz, int tileshift, int faceclass) {
    int sum[3];
    for (int c = 0; c < 3; ++c) sum[c] = static_cast<int>(base >> (8 * c) & 0xFF);
    for (int e = 0; e < l.count; ++e) {
        const lightnode& node = *l.nodes[e];
        if (node.intensity == 0 || (l.modes[e] != 1 && l.modes[e] != faceclass)) continue;
        const int16_t p = static_cast<int16_t>((wrapmul(l.left[e] - l.near[e], ox) >> tileshift) + l.near[e]);
        const int16_t q = static_cast<int16_t>((wrapmul(l.far[e] - l.right[e], ox) >> tileshift) + l.right[e]);
        const int16_t v = static_cast<int16_t>((wrapmul(q - p, oz) >> tileshift) + p);
        const int32_t lit = (v * node.intensity) >> 8;
        for (int c = 0; c < 3; ++c) {
            const int32_t channel = static_cast<int32_t>(node.colour >> (8 * c) & 0xFF);
            sum[c] += wrapmul(wrapmul(channel, lit), static_cast<int32_t>(base >> (8 * c) & 0xFF)) >> 16;
        }
    }
    uint32_t out = base & 0xFF000000u;
    for (int c = 0; c < 3; ++c) out |= static_cast<uint32_t>(sum[c] >= 253 ? 252 : sum[c] < 4 ? 4 : sum[c]) << (8 * c);
    return out;
}
