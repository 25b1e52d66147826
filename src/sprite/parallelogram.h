// Where a sprite drawn onto a parallelogram lands in the target and how the target's pixels map
// back to its image: the bounding box of the four corners cut to the clip rectangle, and the
// inverse mapping in 20.12 fixed point, centred on the parallelogram's centre.
#pragma once
#include <cstdint>

#include "sprite/sprite.h"

// Where the full rectangle's top-left (x0, y0), top-right (x1, y1) and bottom-left (x2, y2) corners
// go on the target.
struct corners {
    float x0, y0, x1, y1, x2, y2;
};

struct parallelogram {
    int firstrow, rows;         // the bounding box's rows in the target
    int firstcolumn, columns;   // and its columns; rows shorter than the box are never made
    int rowstart;               // buffer index of the first row's first pixel
    int du, dv;                 // source steps per target column, 20.12
    int duy, dvy;               // and per target row
    int urow, vrow;             // source position of the first row's first pixel
};

// Places the image's parallelogram under the clip rectangle (left, top, right, bottom) of a target
// whose rows are `bufferwidth` pixels apart. False when it covers no whole row and column there,
// and when a corner is not a finite number, which gives no usable mapping.
bool placeparallelogram(const spriteimage& image, corners c, const int clip[4], int bufferwidth, parallelogram& out);
