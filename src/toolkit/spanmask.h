// A shape given row by row, each row as a first x relative to the mask and a width: the stencil
// of masked fills, lines, sprites and text. Peer of the host's `wa`; its two tables live in a
// memory pool, so their addresses are read afresh at each use.
#pragma once
#include <algorithm>

#include "util/memory/allocatedmemory.h"

struct spanmask {
    int width, height;  // as the host gave them; fills and lines go by the tables alone
    allocatedmemory<int> offsets;
    int offsetcount;  // as the host gave it; nothing reads it
    allocatedmemory<int> widths;
    int widthcount;   // likewise

    // The rows both tables hold: a widths table shorter than the offsets would otherwise be read
    // past its end. Zero once the pool is gone.
    int rows() const { return std::min(offsets.length(), widths.length()); }
};
