// Changes of a finished model's colours: one HSL code for another, one texture for another, a tint
// of every code towards a target. Each needs its bit of the function mask.
#pragma once
#include <cstdint>

#include "model/model.h"

void recolour(model& m, uint16_t from, uint16_t to);
void retexture(model& m, uint16_t from, uint16_t to);
// `amount` 128 reaches the target, 0 leaves the code; a target of -1 leaves that field.
void tint(model& m, int hue, int saturation, int lightness, int amount);
