// Sprites drawn at their own size into the current target: once, tiled over a rectangle, or
// through a span mask. Rows are clipped to the clip rectangle and run as groups of four pixels
// from the clipped left end, then leftovers.
#pragma once
#include <cstdint>

#include "pixel/lanewidth.h"
#include "sprite/sprite.h"
#include "toolkit/toolkit.h"

struct spanmask;

// (x, y) is the corner of the full rectangle; the image lies inside it by its pads. A tintmode or
// blendmode out of range draws nothing. Rows run `lanes` pixels at a time where they can.
void drawsprite(const toolkit& t, const spriteimage& image, int x, int y, int tint, uint32_t colour, int blend,
                lanewidth lanes);

// Repeats the sprite over (x, y, w, h), one full rectangle apart, under the clip rectangle narrowed
// to that area; the clip rectangle is put back, clamped to the target, afterwards.
void tilesprite(toolkit& t, const spriteimage& image, int x, int y, int w, int h, int tint, uint32_t colour,
                int blend, lanewidth lanes);

// Alpha-blends the plain sprite where the mask, its corner at (maskx, masky), admits pixels. Rows
// past the end of the mask's tables draw nothing.
void drawthroughmask(const toolkit& t, const spriteimage& image, int x, int y, const spanmask& mask, int maskx,
                     int masky, lanewidth lanes);
