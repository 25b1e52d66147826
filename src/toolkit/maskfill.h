// Filling a span mask with one colour.
#pragma once
#include <cstdint>

#include "toolkit/toolkit.h"

struct spanmask;

// Stores colour over every row of the mask placed with its corner at (x, y), under the clip.
void fillmask(toolkit& t, uint32_t colour, const spanmask& mask, int x, int y);
