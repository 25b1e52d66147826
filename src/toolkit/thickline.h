// Lines of any width: a quad round the line, drawn as two flat triangles by the rasteriser.
#pragma once
#include "toolkit/toolkit.h"

// The quad's corners in the order they go round: the first end offset to one side and to the
// other by half the width, then the second end on the second side and on the first. The
// first end is taken relative to the clip rectangle's corner.
struct thickquad {
    int x[4], y[4];
};

// False when the ends are equal (in 32-bit arithmetic), and then there is nothing to draw.
bool thicklinecorners(const toolkit& t, int x1, int y1, int x2, int y2, int width, thickquad& q);

// Replaces the covered pixels with the colour, at depth 0; nothing without a colour buffer.
void drawthickline(toolkit& t, int x1, int y1, int x2, int y2, uint32_t colour, int width);
