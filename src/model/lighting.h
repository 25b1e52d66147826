// Model colour in two stages. The light pass turns each face's HSL code into a base colour, scaled
// by the model's lightness and touched by its texture, and stores it at the face's three corners.
// Each draw then passes every corner of each drawn face through the sun term, and in point-lit
// drawing the point light term, so that the lights can move without touching the model.
#pragma once
#include <emmintrin.h>

#include <cstdint>

#include "model/model.h"
#include "toolkit/toolkit.h"

// Unit face normals; each vertex of smooth faces gets their mean, flat faces keep their own.
void computenormals(model& m);

// The colour of a face with HSL code `hsl`, texture `texture` (0xFFFF for none) and the model's
// lightness scale `ambient`.
uint32_t basecolour(int hsl, int texture, int ambient);

// Stores every face's base colour with its alpha at its three corners, making normals and
// `litcolours` where they are missing, and lets the HSL codes go when the mask says nothing will
// need them again.
void lightpass(model& m);

// A corner's colour under the sun, for normal `n` whose fourth lane is the weight it was summed
// from. `scale` is 768 / contrast on smooth faces and 512 / contrast on flat ones.
uint32_t sunterm(uint32_t colour, const quad& n, float scale, const toolkit& t);

// The point lights of one draw, in the model's space, as the four-lane term reads them.
struct alignas(16) pointlights {
    float position[4][4];
    float colour[4][4];  // bytes of the light's colour, blue first
    float radius[4];
    int count;
};

// Positions of the toolkit's lights in the space of model matrix `m`, into the model's
// `modellights`, and the draw's copy of the lights.
void placelights(model& mdl, const toolkit& t, const float* m, pointlights& out);

// A corner's colour after the sun, lit further by the point lights at position `p` with normal
// `n`. Distances go through the processor's approximate reciprocal and reciprocal root.
inline uint32_t pointlightterm(uint32_t colour, __m128 p, __m128 n, const pointlights& lights) {
    if (lights.count == 0) return colour;
    __m128i bytes = _mm_unpacklo_epi8(_mm_cvtsi32_si128(static_cast<int>(colour)), _mm_setzero_si128());
    __m128 sum = _mm_cvtepi32_ps(_mm_unpacklo_epi16(bytes, _mm_setzero_si128()));
    __m128 base = _mm_mul_ps(sum, _mm_set1_ps(1.5259022e-5f));
    for (int i = 0; i < lights.count; ++i) {
        __m128 d = _mm_sub_ps(_mm_load_ps(lights.position[i]), p);
        __m128 dd = _mm_mul_ps(d, d), dn = _mm_mul_ps(d, n);
        __m128 dist2 = _mm_add_ss(_mm_add_ss(dd, _mm_shuffle_ps(dd, dd, 1)), _mm_shuffle_ps(dd, dd, 2));
        __m128 facing = _mm_add_ss(_mm_add_ss(dn, _mm_shuffle_ps(dn, dn, 1)), _mm_shuffle_ps(dn, dn, 2));
        facing = _mm_max_ss(facing, _mm_setzero_ps());
        __m128 falloff = _mm_mul_ss(_mm_rcp_ss(dist2), _mm_rsqrt_ss(dist2));
        __m128 k = _mm_mul_ss(_mm_mul_ss(facing, _mm_load_ss(&lights.radius[i])), falloff);
        k = _mm_shuffle_ps(k, k, 0);
        sum = _mm_add_ps(sum, _mm_mul_ps(_mm_mul_ps(_mm_load_ps(lights.colour[i]), base), k));
    }
    __m128i rounded = _mm_cvtps_epi32(sum);
    rounded = _mm_packs_epi32(rounded, rounded);
    return static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(rounded, rounded)));
}
