// Lines one pixel wide, drawn straight into the target's colour buffer under the clip rectangle
// with a blend mode. Coordinates are widened to 64 bits, so that a line whose ends lie far off the
// target still crosses it where it should.
#pragma once
#include <cstdint>

#include "toolkit/toolkit.h"

struct spanmask;

// Row y from column x0 through x1; nothing at all unless the row lies inside the clip.
void drawrow(toolkit& t, long long x0, long long x1, int y, uint32_t colour, int mode);

// Column x from row y0 through y1; nothing at all unless the column lies inside the clip.
void drawcolumn(toolkit& t, int x, long long y0, long long y1, uint32_t colour, int mode);

// Both ends are drawn. Rows and columns go to the two above.
void drawline(toolkit& t, int x1, int y1, int x2, int y2, uint32_t colour, int mode);

// As drawline, without the shortcuts, drawing only what the mask admits with its corner at
// (maskx, masky).
void drawmaskedline(toolkit& t, int x1, int y1, int x2, int y2, uint32_t colour, int mode, const spanmask& mask,
                    int maskx, int masky);
