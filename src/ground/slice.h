// A tile's slice of the shadow map: its cells softened to how many of each cell and its four
// neighbours are shaded, kept in atlas blocks that many tiles share with rows 256 bytes apart, so
// that the ground spans read it as a multiplier by the texture coordinates.
#pragma once
#include "ground/tile.h"
#include "toolkit/toolkit.h"

// At the start of a tile's draw: a tile the shadow map marked gets its slice made anew, and every
// tile with a slice hands it to the spans; a tile without one draws unshadowed.
void refreshslice(const toolkit& t, ground& g, genericground& tile, int x, int z);
