// Scalar twins of the shared point projection, written lane by lane from its definition.
#pragma once
#include <cmath>

#include "toolkit/toolkit.h"

// Row vector p times m: (w*row3 + y*row1) + (z*row2 + x*row0) in each lane.
inline void referencetransform(const float* p, const float* m, float* out) {
    for (int j = 0; j < 4; ++j) out[j] = (p[3] * m[12 + j] + p[1] * m[4 + j]) + (p[2] * m[8 + j] + p[0] * m[j]);
}

// Divide by w, then a negative clip z makes the result's z negative; then the viewport.
inline void referenceproject(const float* p, const float* m, float* out) {
    float v[4];
    referencetransform(p, m, v);
    for (int j = 0; j < 4; ++j) {
        float n = v[j] / v[3];
        if (j == 2 && std::signbit(v[2])) n = -std::fabs(n);
        out[j] = n * rasterstate.viewportscale[j] + rasterstate.viewportoffset[j];
    }
}
