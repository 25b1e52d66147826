// Tile upload: the host describes a tile as a soup of faces in parallel arrays, three entries a
// face, and the upload makes it a `complexground`: vertices shared by position, faces sorted into
// the groups they are drawn by, colours with the ground's shade baked in.
#pragma once
#include <cstdint>

#include "ground/tile.h"

// The host's arrays of one tile. `count` entries are read from each; a null `ys` means heights of
// 0, a null `depths` none, a null `mapcolours` no map colours, a null `scales` all `tilesize`.
struct tilesource {
    int count;  // three a face
    const int32_t *xs, *ys, *zs, *depths, *colours, *mapcolours, *textures, *scales;
    uint32_t tilecolour;
    bool usedepths, caster;
};

// The tile at (x, z) of the ground, on the ground's grid and its texture store's descriptors.
complexground* buildtile(const ground& g, int x, int z, const tilesource& s);
