// Picking: whether a screen point falls on a model drawn under a matrix, by its projected box or by
// the screen rectangles of its faces; and where its marker vertices stand in the world.
#pragma once
#include "model/model.h"
#include "toolkit/renderworkspace.h"

// The model under `matrix` (16 floats, 16-byte aligned) covers pixel (x, y): its projected box
// does, and with `boxonly` false some face's screen rectangle does too. The projected points go to
// the workspace's vertices.
bool hittest(model& m, renderworkspace& w, const float* matrix, int x, int y, bool boxonly);

// The marker vertices through `matrix`, three truncated ints each, into `out`.
void markerpositions(const model& m, const float* matrix, int* out);
