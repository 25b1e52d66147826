// A grid of cells, 0 or 1, that a model or ground tile fills with its shadow. Peer of the host's
// `aa`. Its cells live in a memory pool; a holder reuses a mask whose cells are large enough,
// clearing them and setting the placement anew.
#pragma once
#include <cstdint>

#include "util/hostseam.h"
#include "util/memory/allocatedmemory.h"

class memorymanager;

struct shadowmask {
    memorymanager* pool;
    int width, height;
    int x, y, usedwidth, usedheight;  // placement and used part, zero at the start
    allocatedmemory<uint8_t> cells;   // width * height

    // Takes width * height cells from the pool, all cleared.
    shadowmask(memorymanager& pool, int width, int height);
};

// What a model or ground tile hands back to the host once it has its mask: the host's own object
// `givenobject` when the mask is the one it was given, reused; a new host object from the host's
// factory holding `made` when it is another; none without a mask.
hostobject* maskobject(shadowmask* made, const shadowmask* given, hostobject* givenobject);
