// The smoothing every texture gets when it is loaded, so that spans can take the nearest texel:
// a separable five-tap Gaussian of sigma 1 in single-precision floats, across then down.
#pragma once
#include <cstdint>

inline constexpr float texturetaps[5] = {0.053990968f, 0.24197072f, 0.3989423f, 0.24197072f, 0.053990968f};

// Smooths the 128 by 128 pixels at `in` (row-major) into `out`, whose rows are `pitch` pixels
// apart. Without `opaque`, a pixel of 0 is transparent: it stays 0 and the others' weights are
// renormalised over the taps that are not. Each axis either repeats (`wrapu`, `wrapv`) or
// clamps to its edge texel.
void filtertexture(const uint32_t* in, uint32_t* out, long pitch, bool opaque, bool wrapu, bool wrapv);
