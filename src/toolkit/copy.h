// Block copies between the target's buffers and a sprite's pixels and a surface's depths, for
// saving what lies under something drawn for a while and putting it back.
#pragma once
#include "toolkit/toolkit.h"

struct sprite;
struct surface;

enum class copyway { fromtarget, totarget };

// Moves the w by h block at (sx, sy) of the target from or to (dx, dy) of the sprite (colour) and
// of the surface (depth). A flag whose target buffer is missing is dropped. Rows are the target's
// width apart on its side and the sprite's width apart on the other, the surface's own width when
// no sprite is given. Nothing is clipped: the host gives blocks that lie inside both.
void copytargetblock(toolkit& t, sprite* colour, surface* depth, int sx, int sy, int w, int h, int dx, int dy,
                     bool withcolour, bool withdepth, copyway way);
