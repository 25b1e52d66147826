// The flat triangle fill of shadow masks: a model's outline and a ground tile's footprint are
// painted into a mask's cells with it. The cells stand in for the target for the time of the fill,
// with the mask's `width` as the pitch; rows are clipped as the current viewport and clip
// rectangle say, columns not at all.
#pragma once
#include "toolkit/shadowmask.h"

// Sets to 1 the cells of the triangle with integer corners (column, row).
void fillshadowtriangle(shadowmask& mask, const int corners[3][2]);

// The same for a triangle turned up, its corners running the way a visible face does; others are
// passed over.
void fillfacingtriangle(shadowmask& mask, const int corners[3][2]);
