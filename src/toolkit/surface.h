// Off-screen targets: a sprite's pixels for colour and a surface for depth can stand in for a
// canvas.
#pragma once
#include <cstdint>

#include "toolkit/toolkit.h"

struct sprite;

// A depth target, peer of the host's `oa`; its buffer is 64-byte aligned and not cleared.
struct surface {
    int width, height;
    float* buffer;
};

surface* makesurface(int width, int height);
void destroysurface(surface* s);

// Makes the sprite's pixels the colour buffer and the surface's buffer the depth buffer, either
// of them possibly absent. The size is the sprite's, else the surface's, else unchanged; the clip
// and the viewport take the whole of it and nothing is cleared. A surface smaller than the sprite
// would be written past its end, so it is refused before anything changes.
void selectoffscreen(toolkit& t, sprite* colour, surface* depth);
