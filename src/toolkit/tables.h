// Process-wide tables built with each toolkit: binary-angle sine and cosine, and HSL16 to RGB.
#pragma once
#include <cstdint>

inline constexpr int angles = 16384;  // binary angle units to the circle

extern float sintable[angles];
extern float costable[angles];
extern int32_t hsltorgb[65536];

void buildtrigtables();
void buildhsltorgb();
