// Sprites scaled to a rectangle by nearest sampling, with or without a constant depth tested
// against the depth buffer. Model billboards come here too, with a texture's pixels as image.
#pragma once
#include <cstdint>

#include "pixel/lanewidth.h"
#include "sprite/sprite.h"
#include "toolkit/toolkit.h"

// The full rectangle of the image is scaled to (x, y, w, h); its pads shrink the drawn part in
// proportion. A tintmode or blendmode out of range draws nothing. Rows run `lanes` pixels at a
// time where they can.
void drawscaled(const toolkit& t, const spriteimage& image, int x, int y, int w, int h, int tint, uint32_t colour,
                int blend, lanewidth lanes);

// As drawscaled, but where the target has depth a pixel is written only if z <= its depth; the
// depth buffer is not written. Without depth it is drawscaled.
void drawscaledatdepth(const toolkit& t, const spriteimage& image, int x, int y, float z, int w, int h, int tint,
                       uint32_t colour, int blend, lanewidth lanes);
