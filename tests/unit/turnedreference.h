// The walk of a sprite drawn onto a parallelogram, pixel by pixel: every pixel of every row of the
// bounding box steps the source position on and is drawn when the position lies inside the image
// (and its column inside the mask's span). Positions are exact here; the library narrows each row
// by division instead and must draw the same pixels with the same samples.
#pragma once
#include <cstdint>

#include "sprite/parallelogram.h"
#include "spritereference.h"

namespace turnedreference {

struct mask {
    const int* offsets;
    const int* widths;
    int rows;
    int x, y;
};

// Draws with the leftover form of (tint, blend); with a mask, the rows of the box meet the mask's
// rows from its corner on, rows above it draw nothing and the first row below it ends the draw.
inline void walk(const parallelogram& p, const spriteimage& image, uint32_t* buffer, int bufferwidth, int tint,
                 uint32_t colour, int blend, const mask* m = nullptr) {
    using int64 = long long;
    int urow = p.urow, vrow = p.vrow;
    for (int j = 0; j < p.rows; ++j, urow += p.duy, vrow += p.dvy) {
        int64 mrow = int64{p.firstrow} + j - (m ? m->y : 0);
        if (m && mrow < 0) continue;
        if (m && mrow >= m->rows) break;
        uint32_t* row = buffer + p.rowstart + int64{j} * bufferwidth;
        for (int i = 0; i < p.columns; ++i) {
            int64 u = urow + int64{i} * p.du, v = vrow + int64{i} * p.dv;
            if (u < 0 || u >= int64{image.width} << 12 || v < 0 || v >= int64{image.height} << 12) continue;
            if (m) {
                int64 column = int64{p.firstcolumn} + i - m->x;
                if (column < m->offsets[mrow] || column >= int64{m->offsets[mrow]} + m->widths[mrow]) continue;
            }
            uint32_t s = image.pixels[(v >> 12) * image.pitch + (u >> 12)];
            row[i] = spritereference::pixel(tint, blend, false, s, colour, row[i]);
        }
    }
}

}  // namespace turnedreference
