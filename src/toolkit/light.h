// Light and fog: the sun, up to four point lights, the shadow slope and cell, the distance fog on
// screen depth, and the shade colour with its override.
#pragma once
#include "pixel/floatlanes.h"
#include "toolkit/toolkit.h"

inline constexpr int maxlights = 4;

// A colour word's bytes from the low byte up (blue, green, red, alpha), each times 256.
inline __m128 colourfloats(int colour) {
    auto byte = [colour](int shift) { return static_cast<float>((static_cast<uint32_t>(colour) >> shift & 0xFF) * 256); };
    return floats4::setr(byte(0), byte(8), byte(16), byte(24));
}

void setsun(toolkit& t, int colour, float ambient, float diffuse, float x, float y, float z);
// `lights` holds x, y, z, radius, colour for each light.
void setpointlights(toolkit& t, int count, const int* lights, const float* intensities);
void setshadowcell(toolkit& t, int size);
// Only the byte value 1 switches fog on.
void setfogenabled(toolkit& t, uint8_t value);
void setfog(toolkit& t, int colour, int distance);
// Brings the rasterisers' fog start, scale and colour in step with the toolkit's fog distance,
// fog colour, projection and viewport.
void updatefog(const toolkit& t);
void setshade(toolkit& t, int start, int colour, int range);
// The override nests one deep: a second override saves the first override's colour.
void overrideshade(toolkit& t, int start, int colour, int range);
void restoreshade(toolkit& t);
