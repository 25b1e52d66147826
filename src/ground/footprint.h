// A tile's footprint: the cells of the shadow map that the tile covers, painted from its faces into
// a shadow mask that the host then adds to the shadow maps where the tile's caster stands.
#pragma once
#include "ground/tile.h"
#include "toolkit/shadowmask.h"

// The footprint of the tile at (x, z), painted into `given` when its cells are enough, else into a
// new mask of the ground's pool; none for a tile whose flags are all clear.
shadowmask* tilefootprint(ground& g, genericground& tile, int x, int z, shadowmask* given);
