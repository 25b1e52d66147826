// Sprites drawn onto a parallelogram: rotated, sheared, flipped or scaled. Every pixel goes through
// the leftover form of the draw's pixel operation.
#pragma once
#include <cstdint>

#include "sprite/parallelogram.h"
#include "sprite/sprite.h"
#include "toolkit/toolkit.h"

// A tintmode or blendmode out of range draws nothing; so does a target without colour.
void drawturned(const toolkit& t, const spriteimage& image, corners c, int tint, uint32_t colour, int blend);

// The rows of a span mask: row r admits the columns offsets[r] to offsets[r] + widths[r] - 1.
struct maskspans {
    const int* offsets;
    const int* widths;
    int rows;
};

// Draws through the mask placed with its corner at (maskx, masky): each pixel stored as it is with
// `opaque`, alpha-blended without.
void drawturnedmasked(const toolkit& t, const spriteimage& image, corners c, const maskspans& mask, int maskx,
                      int masky, bool opaque);
