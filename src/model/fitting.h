// A placed model bent onto the ground under it: each vertex moved in y by the ground's height
// beneath it, fully, fading with the height in the model, or between two grounds; or the whole
// model tilted to the slope and set on it.
#pragma once
#include "ground/ground.h"
#include "model/model.h"

// Fits the model standing at (x, y, z) in `mode`, 1 to 5, with the mode's parameter `p`; `second`
// is the other ground of modes 4 and 5. Throws without the bits of the mode; leaves the model
// alone where it does not stand wholly on the ground or the ground under it is flat at y.
void fitmodel(model& m, int mode, int p, const ground& g, const ground* second, int x, int y, int z);
