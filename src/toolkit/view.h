// The camera: view and projection matrices, their product and the six frustum planes, with the
// eye-space near and far distances that fog and ground read.
#pragma once
#include "toolkit/toolkit.h"

// Planes W+X, W-X, W+Y, W-Y, W+Z, W-Z of the matrix's columns, each scaled by the approximate
// reciprocal length of its normal. A point is inside a plane when a*x + b*y + c*z + d >= 0.
void buildplanes(const float* m, float planes[6][4]);

// The matrices are 16 floats, 16-byte aligned.
void setviewmatrix(toolkit& t, const float* m);
void setprojectionmatrix(toolkit& t, const float* m);
