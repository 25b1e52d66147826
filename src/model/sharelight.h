// Shared light: where vertices of two models touch, each takes the other's normal into a running
// sum, so that two pieces placed side by side shade as one surface.
#pragma once
#include "model/model.h"
#include "toolkit/renderworkspace.h"

// Joins the touching vertices of `a` and of `b` standing at (x, y, z) from it. Both need
// FM_SHARELIGHT; both get fresh bounds and normals whether or not anything touches.
void sharelight(model& a, model& b, renderworkspace& w, int x, int y, int z);
