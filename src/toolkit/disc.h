// Filled discs in the target's colour buffer under the clip rectangle, with a blend mode and an
// optional depth test.
#pragma once
#include <cstdint>

#include "toolkit/toolkit.h"

// The disc of |radius| around (x, y). With a depth buffer a pixel is written only where the
// stored depth is greater than z.
void drawdisc(toolkit& t, int x, int y, int radius, float z, uint32_t colour, int mode);
