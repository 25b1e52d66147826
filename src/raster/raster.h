// The rasteriser's call interface: a caller fills one `rastertriangle` and calls the triangle
// function it chose for the face; the triangle function fills a `rasterspan` for each half of the
// triangle and calls the span function of its member. Every combination of the axes below that
// exists is a function of its own, so that no span tests an axis per pixel.
#pragma once
#include <emmintrin.h>

#include <array>
#include <cstdint>
#include <string_view>

#include "toolkit/toolkit.h"

// Which of fog and shade are folded into the vertex colours.
enum class recipe { fogshade, fogonly, shadeonly, plain };
constexpr std::array<std::string_view, 4> axisnames(recipe) { return {"fogshade", "fogonly", "shadeonly", "plain"}; }

// A pixel passes where its z is at most the stored one; `testwrite` then stores its z.
enum class depthmode { testwrite, testonly, none };
constexpr std::array<std::string_view, 3> axisnames(depthmode) { return {"testwrite", "testonly", "nodepth"}; }

// `colourless` members touch no colour: the depth-only member and the walk that stores nothing.
enum class shading { gouraud, textured, colourless };
constexpr std::array<std::string_view, 3> axisnames(shading) { return {"gouraud", "textured", "colourless"}; }

// The `value` of a texture record: 1 skips texels that are all zero, 2 blends by texel alpha.
enum class alphamode { opaque, key, alpha };
constexpr std::array<std::string_view, 3> axisnames(alphamode) { return {"opaque", "key", "alpha"}; }

enum class wrapmode { repeat, clamp };
constexpr std::array<std::string_view, 2> axisnames(wrapmode) { return {"repeat", "clamp"}; }

// Mixed with the colour buffer by the constant `blendfactor`.
enum class blended { no, yes };
constexpr std::array<std::string_view, 2> axisnames(blended) { return {"unblended", "blended"}; }

// The span adds `addcolour` after multiplying the texel.
enum class addterm { no, yes };
constexpr std::array<std::string_view, 2> axisnames(addterm) { return {"noadd", "add"}; }

// Ground faces mix layers of texture and darken by a shadow map; models and free triangles use
// one layer and no map. `singlescaled` moves its one texture by `uvscale` and `uvoffset`;
// `triple` mixes three by the weights of the corners, `triplescaled` each moved by its own.
enum class layers { single, singlescaled, triple, triplescaled };
constexpr std::array<std::string_view, 4> axisnames(layers) {
    return {"single", "singlescaled", "triple", "triplescaled"};
}

enum class shadowed { no, yes };
constexpr std::array<std::string_view, 2> axisnames(shadowed) { return {"unshadowed", "shadowed"}; }

// A record's `value` as its alpha mode: 2 alpha, 1 key, anything else opaque.
constexpr alphamode alphamodeof(int value) {
    return value == 2 ? alphamode::alpha : value == 1 ? alphamode::key : alphamode::opaque;
}

// One screen-space triangle, filled by the caller. A colour lane set is four 16-bit lanes in the
// byte order of a pixel (blue, green, red, alpha), each byte in the high half.
struct alignas(16) rastertriangle {
    alignas(16) float position[3][4];   // x, y in pixels, projected z, z again
    alignas(16) uint16_t colour[3][8];  // the low four lanes are read
    alignas(16) float uv[3][4];         // u, v, u, v in texels
    alignas(16) float uvscale[3][4];
    alignas(16) float uvoffset[3][4];
    alignas(16) uint64_t shadowshift[2];
    alignas(16) float shadefactor[4];  // per vertex, 0 to 1
    alignas(16) float shadetint[4];    // on the scale of a colour lane set
    uint32_t blendfactor;              // a | a << 16, a the weight of the new colour
    const uint32_t* texels[3];         // rows 256 texels apart
    const uint8_t* shadowmap;
};

// The rows of one half of a triangle, as the triangle function hands them to a span function.
// The span advances the fields marked so, row by row, and leaves them at the first row it did not
// draw. Left lanes come before right lanes.
struct alignas(16) rasterspan {
    int32_t y;     // advanced
    int32_t rows;  // at most 0 draws nothing
    uint32_t blendfactor;
    const uint32_t* texels[3];
    const uint8_t* shadowmap;
    alignas(16) uint64_t shadowshift[2];
    alignas(16) float edge[4];  // left x, left z, right x, right z; advanced
    alignas(16) float edgestep[4];
    alignas(16) uint16_t modulate[8];  // advanced
    alignas(16) int16_t modulatestep[8];
    alignas(16) uint16_t addcolour[8];  // advanced
    alignas(16) int16_t addcolourstep[8];
    alignas(16) float uv[4];  // u over z, v over z, left then right; advanced
    alignas(16) float uvstep[4];
    alignas(16) float weights[4];  // advanced
    alignas(16) float weightstep[4];
    alignas(16) float uvscale[3][4];
    alignas(16) float uvoffset[3][4];
};

using trianglefunction = void (*)(const rastertriangle*);
using spanfunction = void (*)(rasterspan*);

// The triangle function of a model face, and the span function it calls, at the lanes of the
// drawing context: `colour` and `depth` tell which buffers the target has. Gouraud faces ignore the
// alpha and wrap modes; an alpha-mode face is never blended. A target without colour gets the depth-only member; without either, null.
trianglefunction choosetriangle(lanewidth lanes, recipe r, shading s, alphamode a, wrapmode w, blended b, bool colour,
                                bool depth);
spanfunction choosespan(lanewidth lanes, recipe r, shading s, alphamode a, wrapmode w, blended b, bool colour, bool depth);

// The triangle function of a textured ground face on a target with colour and depth. Blending
// holds only for one-texture faces without shade; a blended `single` face tests depth without
// writing it.
trianglefunction choosegroundtriangle(lanewidth lanes, recipe r, layers l, blended b, shadowed s);

// The host's free Gouraud triangle: with both buffers it tests depth and leaves it as it was;
// with depth alone it walks its rows and stores nothing; without colour or depth, null.
trianglefunction rawtriangle(lanewidth lanes, bool colour, bool depth);

// A pixel word as a colour lane set, in both halves of a 16-byte slot.
inline void setcolourlanes(uint16_t* lanes, uint32_t pixel) {
    __m128i bytes = _mm_cvtsi32_si128(static_cast<int>(pixel));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(lanes),
                     _mm_unpacklo_epi64(_mm_unpacklo_epi8(_mm_setzero_si128(), bytes),
                                        _mm_unpacklo_epi8(_mm_setzero_si128(), bytes)));
}

// Where a projected point (x, y, z, z) lies against the screen: x, y and z times 32767,
// truncated and packed with saturation to 16 bits, compared at once with `screenbounds`. The byte
// mask of the eight compares: above right, bottom, far and near, then 0 above x, y, z and z. A
// point on the screen and beyond near gives `onscreen`; the left and top sides are at 0 whatever
// the viewport.
inline constexpr int onscreen = 0x00C0;
inline int screenside(const float* p) {
    const __m128 scale = _mm_setr_ps(1.0f, 1.0f, 32767.0f, 32767.0f);
    const __m128i bounds = _mm_load_si128(reinterpret_cast<const __m128i*>(rasterstate.screenbounds));
    __m128i v = _mm_cvttps_epi32(_mm_mul_ps(_mm_loadu_ps(p), scale));
    v = _mm_packs_epi32(v, v);
    return _mm_movemask_epi8(_mm_unpacklo_epi64(_mm_cmpgt_epi16(v, bounds), _mm_cmpgt_epi16(_mm_setzero_si128(), v)));
}

// Whether a face goes on to be drawn, from its three projected vertices: all three lie beyond the
// near depth, not all beyond one side of the screen, and they run counter-clockwise with y down.
inline bool accepttriangle(const float* a, const float* b, const float* c) {
    if ((screenside(a) & screenside(b) & screenside(c)) != onscreen) return false;
    float e1 = (a[0] - b[0]) * (c[1] - b[1]), e2 = (a[1] - b[1]) * (c[0] - b[0]);
    return e2 < e1;
}

// A square of `side` pixels with its top left corner at (x, y), at depth z: a whole texture (128
// texels) across it, multiplied by `colour`, drawn by a textured span member or the depth-only
// one, clipped to `viewport` and `rasterclip` like the rows of a triangle.
void drawsquare(spanfunction span, int x, int y, int side, float z, uint32_t colour, const uint32_t* texels);
