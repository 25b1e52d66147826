// Triangles the host gives in pixels: Gouraud shaded, at depth 0, with no accept test; a target
// with depth keeps its depths.
#pragma once
#include <cstdint>

// Corners (x, y) in pixels, one colour each, drawn by the free-triangle member for the buffers
// of the current target.
void drawfreetriangle(const float* xy, const uint32_t* colours);
