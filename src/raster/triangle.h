// The triangle functions: one template over the axes of a triangle member. It sorts the vertices
// by y, folds fog and shade into their colours, steps along the three edges with the approximate
// reciprocal of each edge's height, clips rows to the viewport and clip rectangle, and hands each
// half of the triangle to the member's span.
#pragma once
#include <emmintrin.h>

#include <algorithm>
#include <cstdint>

#include "raster/cornerorder.h"
#include "raster/members.h"
#include "raster/span.h"
#include "toolkit/toolkit.h"

namespace trianglelanes {

template <int i>
[[gnu::always_inline]] inline __m128 spread(__m128 a) {
    return _mm_shuffle_ps(a, a, _MM_SHUFFLE(i, i, i, i));
}

// x and z of a position or a step, as a left or right pair of an edge.
[[gnu::always_inline]] inline __m128 xz(__m128 left, __m128 right) {
    return _mm_shuffle_ps(left, right, _MM_SHUFFLE(2, 0, 2, 0));
}

// Lanes 0 and 1 of `left`, 2 and 3 of `right`.
[[gnu::always_inline]] inline __m128 halves(__m128 left, __m128 right) {
    return _mm_castpd_ps(_mm_move_sd(_mm_castps_pd(right), _mm_castps_pd(left)));
}
[[gnu::always_inline]] inline __m128i halves(__m128i left, __m128i right) {
    return _mm_castpd_si128(_mm_move_sd(_mm_castsi128_pd(right), _mm_castsi128_pd(left)));
}

// A vertex colour's start lanes: truncated, saturated to 0 to 65535, in both halves.
[[gnu::always_inline]] inline __m128i startlanes(__m128 c) {
    __m128i v = _mm_sub_epi32(_mm_cvttps_epi32(c), _mm_set1_epi32(0x8000));
    return _mm_add_epi16(_mm_packs_epi32(v, v), _mm_set1_epi16(-0x8000));
}

// An edge's step of a colour: truncated, saturated to signed 16 bits.
[[gnu::always_inline]] inline __m128i steplanes(__m128 from, __m128 to, __m128 reciprocal) {
    __m128i v = _mm_cvttps_epi32(_mm_mul_ps(_mm_sub_ps(to, from), reciprocal));
    return _mm_packs_epi32(v, v);
}

// One colour interpolant of the three sorted vertices: float values and start lanes, and the
// steps along top-middle, top-bottom and middle-bottom.
struct vertexcolours {
    __m128i start[3];
    __m128i tm, tb, mb;
    [[gnu::always_inline]] vertexcolours(const __m128* c, const __m128i* lanes, const __m128* reciprocal) {
        for (int i = 0; i < 3; ++i) start[i] = lanes ? lanes[i] : startlanes(c[i]);
        tm = steplanes(c[0], c[1], reciprocal[0]);
        tb = steplanes(c[0], c[2], reciprocal[1]);
        mb = steplanes(c[1], c[2], reciprocal[2]);
    }
};

// A float interpolant of the three sorted vertices (texture coordinates over z, layer weights),
// with its steps along top-middle, top-bottom and middle-bottom.
struct vertexfloats {
    __m128 start[3], tm, tb, mb;
    [[gnu::always_inline]] vertexfloats(const __m128* v, const __m128* reciprocal)
        : start{v[0], v[1], v[2]},
          tm(_mm_mul_ps(_mm_sub_ps(v[1], v[0]), reciprocal[0])),
          tb(_mm_mul_ps(_mm_sub_ps(v[2], v[0]), reciprocal[1])),
          mb(_mm_mul_ps(_mm_sub_ps(v[2], v[1]), reciprocal[2])) {}
    // The upper half's left and right lanes, `skips` rows on from the top vertex, and their steps.
    [[gnu::always_inline]] void upper(float* value, float* step, bool tbleft, __m128 skips) const {
        const __m128 steps = tbleft ? halves(tb, tm) : halves(tm, tb);
        _mm_store_ps(step, steps);
        _mm_store_ps(value, _mm_add_ps(start[0], _mm_mul_ps(skips, steps)));
    }
    // The lower half's side that runs from the middle vertex, `skips` rows on; the other side goes on.
    [[gnu::always_inline]] void lower(float* value, float* step, bool right, __m128 skips) const {
        auto replace = [right](__m128 side, __m128 old) { return right ? halves(old, side) : halves(side, old); };
        _mm_store_ps(step, replace(mb, _mm_load_ps(step)));
        _mm_store_ps(value, replace(_mm_add_ps(start[1], _mm_mul_ps(skips, mb)), _mm_load_ps(value)));
    }
};

}  // namespace trianglelanes

template <trianglemember M, class V, class F>
struct triangleframe {
    static constexpr spanmember span = spanof(M);
    static constexpr bool colour = M.get<shading>() != shading::colourless;
    static constexpr bool textured = M.get<shading>() == shading::textured;
    static constexpr bool add = M.get<addterm>() == addterm::yes;
    static constexpr bool fog = M.get<recipe>() == recipe::fogshade || M.get<recipe>() == recipe::fogonly;
    static constexpr bool shade = M.get<recipe>() == recipe::fogshade || M.get<recipe>() == recipe::shadeonly;
    static constexpr layers layer = M.get<layers>();
    static constexpr bool mixed = layer == layers::triple || layer == layers::triplescaled;
    static constexpr bool shadowmap = M.get<shadowed>() == shadowed::yes;
    // A scaled single layer without shadow map is scaled at its corners; the map wants the
    // coordinates unscaled, so with it the span scales them.
    static constexpr bool cornerscaled = layer == layers::singlescaled && !shadowmap;

    // Modulate and add colours of one vertex, in float lanes; a Gouraud vertex has their sum.
    [[gnu::always_inline]] static void vertexcolour(const rastertriangle* t, int i, __m128 z, __m128& modulate,
                                                    __m128& addcolour) {
        const __m128 one = _mm_set1_ps(1.0f);
        modulate = _mm_cvtepi32_ps(
            _mm_unpacklo_epi16(_mm_load_si128(reinterpret_cast<const __m128i*>(t->colour[i])), _mm_setzero_si128()));
        if constexpr (shade) {
            __m128 s = _mm_set1_ps(t->shadefactor[i]);
            modulate = _mm_mul_ps(_mm_sub_ps(one, s), modulate);
            addcolour = _mm_mul_ps(s, _mm_load_ps(t->shadetint));
        }
        if constexpr (fog) {
            const rasterstatedata& r = rasterstate;
            __m128 f = _mm_mul_ps(_mm_sub_ps(z, _mm_set1_ps(r.fogstart)), _mm_set1_ps(r.fogscale));
            f = _mm_min_ps(_mm_max_ps(f, _mm_setzero_ps()), one);
            __m128 fogged = _mm_mul_ps(f, _mm_load_ps(r.fogcolour)), clear = _mm_sub_ps(one, f);
            if constexpr (shade) {
                modulate = _mm_mul_ps(modulate, clear);
                addcolour = _mm_add_ps(fogged, _mm_mul_ps(addcolour, clear));
            } else {
                modulate = _mm_mul_ps(clear, modulate);
                addcolour = fogged;
            }
        }
        if constexpr (!textured && (fog || shade)) modulate = _mm_add_ps(addcolour, modulate);
    }

    static void draw(const rastertriangle* t) {
        using namespace trianglelanes;
        const float y0 = t->position[0][1], y1 = t->position[1][1], y2 = t->position[2][1];
        int order[3];
        cornerorder(y0, y1, y2, order);
        __m128 p[3];
        for (int i = 0; i < 3; ++i) p[i] = _mm_load_ps(t->position[order[i]]);
        __m128i rowsof = _mm_cvttps_epi32(_mm_unpacklo_ps(_mm_unpacklo_ps(spread<1>(p[0]), spread<1>(p[2])),
                                                          spread<1>(p[1])));  // yt, ym, yb, ym
        const int yt = _mm_cvtsi128_si32(rowsof), ym = _mm_cvtsi128_si32(_mm_srli_si128(rowsof, 4)),
                  yb = _mm_cvtsi128_si32(_mm_srli_si128(rowsof, 8));
        // Heights of top-middle, top-bottom, middle-bottom, at least 0.000001 (bits 0x358637BD).
        __m128i heights = _mm_sub_epi32(_mm_setr_epi32(ym, yb, yb, 0), _mm_setr_epi32(yt, yt, ym, 0));
        __m128 reciprocals =
            _mm_rcp_ps(_mm_max_ps(_mm_cvtepi32_ps(heights), _mm_castsi128_ps(_mm_set1_epi32(0x358637BD))));
        const __m128 reciprocal[3] = {spread<0>(reciprocals), spread<1>(reciprocals), spread<2>(reciprocals)};
        const __m128 tm = _mm_mul_ps(_mm_sub_ps(p[1], p[0]), reciprocal[0]);
        const __m128 tb = _mm_mul_ps(_mm_sub_ps(p[2], p[0]), reciprocal[1]);
        const __m128 mb = _mm_mul_ps(_mm_sub_ps(p[2], p[1]), reciprocal[2]);
        // The upper half has top-bottom on the left when top-middle leans further right.
        const bool tbleft = _mm_comigt_ss(tm, tb);

        // Rows run from the top vertex's row; those above the viewport or the clip are skipped, and
        // every interpolant starts as many steps on. Rows are counted in 64 bits and bounded by the
        // clip, so that no vertex, however far off, huge or undefined, walks rows outside it; the
        // bottom ends are summed in 32 bits, as the clip's height was taken.
        const rasterstatedata& state = rasterstate;
        const long long viewy = state.viewport[1], clipy = state.rasterclip[1];
        const long long bottom =
            std::min(state.viewport[1] + state.viewport[3], state.rasterclip[1] + state.rasterclip[3]);
        long long y = yt, skip = 0;
        if (y < viewy) skip = viewy - y, y = viewy;
        if (y < clipy) skip += clipy - y, y = clipy;
        long long rows = std::min(static_cast<long long>(ym), bottom) - y;

        rasterspan s;
        s.y = static_cast<int>(y);
        const __m128 skips = _mm_set1_ps(static_cast<float>(skip));
        const __m128i skiplanes = _mm_set1_epi16(static_cast<short>(skip));
        {
            __m128 step = tbleft ? xz(tb, tm) : xz(tm, tb);
            _mm_store_ps(s.edgestep, step);
            _mm_store_ps(s.edge, _mm_add_ps(xz(p[0], p[0]), _mm_mul_ps(skips, step)));
        }
        // Colours and texture coordinates of the sorted vertices, with their edge steps.
        __m128 modulate[3] = {}, addcolour[3] = {}, uz[3] = {}, w[3] = {};
        __m128i lanes[3] = {};
        if constexpr (colour)
            for (int i = 0; i < 3; ++i) {
                vertexcolour(t, order[i], spread<2>(p[i]), modulate[i], addcolour[i]);
                __m128i c = _mm_load_si128(reinterpret_cast<const __m128i*>(t->colour[order[i]]));
                lanes[i] = _mm_unpacklo_epi64(c, c);
            }
        // Unfolded colours start at their own lanes.
        const vertexcolours modulates(modulate, fog || shade ? nullptr : lanes, reciprocal);
        const vertexcolours adds(addcolour, nullptr, reciprocal);
        if constexpr (colour) {
            __m128i step = tbleft ? halves(modulates.tb, modulates.tm) : halves(modulates.tm, modulates.tb);
            _mm_store_si128(reinterpret_cast<__m128i*>(s.modulatestep), step);
            _mm_store_si128(reinterpret_cast<__m128i*>(s.modulate),
                            _mm_add_epi16(modulates.start[0], _mm_mullo_epi16(skiplanes, step)));
        }
        if constexpr (add) {
            __m128i step = tbleft ? halves(adds.tb, adds.tm) : halves(adds.tm, adds.tb);
            _mm_store_si128(reinterpret_cast<__m128i*>(s.addcolourstep), step);
            _mm_store_si128(reinterpret_cast<__m128i*>(s.addcolour),
                            _mm_add_epi16(adds.start[0], _mm_mullo_epi16(skiplanes, step)));
        }
        if constexpr (textured) {
            // u and v over z: the span multiplies them back by its interpolated z.
            for (int i = 0; i < 3; ++i) {
                __m128 uv = _mm_load_ps(t->uv[order[i]]);
                if constexpr (cornerscaled) uv = _mm_mul_ps(uv, _mm_load_ps(t->uvscale[0]));
                uz[i] = _mm_mul_ps(uv, spread<2>(_mm_rcp_ps(p[i])));
            }
            s.texels[0] = t->texels[0];
        }
        const vertexfloats uvs(uz, reciprocal);
        if constexpr (textured) uvs.upper(s.uv, s.uvstep, tbleft, skips);
        // Layer weights of the corners, w0 and w1 twice: all of the first layer at vertex 0, of the
        // second at vertex 1, of the third at vertex 2.
        if constexpr (mixed) {
            for (int i = 0; i < 3; ++i)
                w[i] = order[i] == 0   ? _mm_setr_ps(65535.0f, 0.0f, 65535.0f, 0.0f)
                       : order[i] == 1 ? _mm_setr_ps(0.0f, 65535.0f, 0.0f, 65535.0f)
                                       : _mm_setzero_ps();
            s.texels[1] = t->texels[1], s.texels[2] = t->texels[2];
        }
        const vertexfloats weights(w, reciprocal);
        if constexpr (mixed) weights.upper(s.weights, s.weightstep, tbleft, skips);
        if constexpr (layer == layers::singlescaled || layer == layers::triplescaled)
            for (int k = 0; k < (mixed ? 3 : 1); ++k) {
                _mm_store_ps(s.uvscale[k], _mm_load_ps(t->uvscale[k]));
                _mm_store_ps(s.uvoffset[k], _mm_load_ps(t->uvoffset[k]));
            }
        if constexpr (shadowmap) {
            s.shadowmap = t->shadowmap;
            _mm_store_si128(reinterpret_cast<__m128i*>(s.shadowshift),
                            _mm_load_si128(reinterpret_cast<const __m128i*>(t->shadowshift)));
        }
        if constexpr (M.get<blended>() == blended::yes) s.blendfactor = t->blendfactor;

        // The upper half ends at the middle vertex's row and leaves the record at the first row it
        // did not draw. If it lay wholly above the clip it drew nothing, and the lower half's new
        // side starts as many steps on as the clipped rows overshoot the middle vertex.
        long long skip2 = 0, lower = static_cast<long long>(yb) - ym;
        if (rows > 0) {
            s.rows = static_cast<int>(rows);
            drawspan<span, V, F>(&s);
        } else {
            skip2 = -rows;
            lower += rows;
        }
        rows = std::min(lower, bottom - s.y);
        if (rows <= 0) return;

        // The lower half replaces the side that ran to the middle vertex by middle-bottom.
        const bool right = _mm_comigt_ss(tb, mb);
        const __m128 skips2 = _mm_set1_ps(static_cast<float>(skip2));
        const __m128i skiplanes2 = _mm_set1_epi16(static_cast<short>(skip2));
        auto replace = [right](auto side, auto old) { return right ? halves(old, side) : halves(side, old); };
        {
            __m128 step = xz(mb, mb);
            _mm_store_ps(s.edgestep, replace(step, _mm_load_ps(s.edgestep)));
            _mm_store_ps(s.edge, replace(_mm_add_ps(xz(p[1], p[1]), _mm_mul_ps(skips2, step)), _mm_load_ps(s.edge)));
        }
        auto replacelanes = [&](int16_t* step, uint16_t* value, const vertexcolours& c) {
            __m128i* steps = reinterpret_cast<__m128i*>(step);
            __m128i* values = reinterpret_cast<__m128i*>(value);
            _mm_store_si128(steps, replace(c.mb, _mm_load_si128(steps)));
            _mm_store_si128(
                values, replace(_mm_add_epi16(c.start[1], _mm_mullo_epi16(skiplanes2, c.mb)), _mm_load_si128(values)));
        };
        if constexpr (colour) replacelanes(s.modulatestep, s.modulate, modulates);
        if constexpr (add) replacelanes(s.addcolourstep, s.addcolour, adds);
        if constexpr (textured) uvs.lower(s.uv, s.uvstep, right, skips2);
        if constexpr (mixed) weights.lower(s.weights, s.weightstep, right, skips2);
        s.rows = static_cast<int>(rows);
        drawspan<span, V, F>(&s);
    }
};

template <trianglemember M, class V, class F>
inline constexpr trianglefunction drawtriangle = &triangleframe<M, V, F>::draw;
