// The faces of a model, in stored order, as every member walks them. Texture look-ups may call the
// host, which may use the model's pool: model arrays are read through their handles after each.
#include <algorithm>

#include "model/render.h"
#include "toolkit/projection.h"
#include "toolkit/texturestore.h"

namespace {

// Which faces a pass draws: all of them, or in a translucent model the opaque faces and then the
// translucent ones, as `inpass` chooses.
enum class pass { all, opaque, translucent };

bool inpass(pass p, uint8_t alpha, const texturerecord* r) {
    bool alphatexture = r && r->value == 2;
    if (p == pass::opaque) return alpha == 0 && !alphatexture;
    return alpha != 255 && (alphatexture || alpha != 0);
}

// The normal a corner is lit by on a smooth face: the shared one where sharing gave it one.
const quad& smoothnormal(const model& m, int vertex) {
    if (!m.sharednormals.empty() && m.sharednormals[vertex].w != 0.0f) return m.sharednormals[vertex];
    return m.normals[vertex];
}

template <bool pointlit>
void relight(const modeldraw& d, int f, const uint16_t corner[3], uint32_t colour[3]) {
    const model& m = *d.mdl;
    int type = m.facetypes.empty() ? 0 : m.facetypes[f];
    if (type > 1) return;
    float scale = type == 0 ? d.smoothscale : d.flatscale;
    for (int k = 0; k < 3; ++k) {
        const quad& n = type == 0 ? smoothnormal(m, corner[k]) : m.facenormals[f];
        colour[k] = sunterm(colour[k], n, scale, *d.t);
        if constexpr (pointlit)
            colour[k] = pointlightterm(colour[k], _mm_load_ps(&m.vertices[corner[k]].x), _mm_load_ps(&n.x), d.lights);
    }
}

template <bool pointlit, bool shade, bool colourless>
void drawface(modeldraw& d, int f, pass p, rastertriangle& tri) {
    model& m = *d.mdl;
    if (!m.facetypes.empty() && m.facetypes[f] == 2) return;
    const uint8_t alpha = m.facealphas.empty() ? 0 : m.facealphas[f];
    // The passes of a translucent model choose their faces by texture before any face is tested,
    // so every face asks the store for its texture, on screen or not.
    if (p != pass::all && !inpass(p, alpha, f < m.texturedfacecount ? gettexture(m.facetextures[f]) : nullptr))
        return;
    const uint16_t corner[3] = {m.facea[f], m.faceb[f], m.facec[f]};
    const float(*screen)[4] = d.workspace->vertices;
    if (!accepttriangle(screen[corner[0]], screen[corner[1]], screen[corner[2]])) return;
    for (int k = 0; k < 3; ++k) _mm_store_ps(tri.position[k], _mm_load_ps(screen[corner[k]]));

    if constexpr (colourless) {
        choosetriangle(d.lanes, recipe::plain, shading::gouraud, alphamode::opaque, wrapmode::repeat, blended::no, false,
                       true)(&tri);
        return;
    }

    if constexpr (shade) {
        const float* heights = d.workspace->heights;
        __m128 s = _mm_setr_ps(heights[corner[0]], heights[corner[1]], heights[corner[2]], 1.0f);
        s = _mm_mul_ps(_mm_sub_ps(s, _mm_set1_ps(d.t->shadestartf)), _mm_set1_ps(d.t->shadescale));
        s = _mm_min_ps(_mm_max_ps(s, _mm_setzero_ps()), _mm_set1_ps(1.0f));
        // A face wholly in the shade at any corner is not drawn.
        if (_mm_movemask_ps(_mm_cmpeq_ps(s, _mm_set1_ps(1.0f))) & 7) return;
        _mm_store_ps(tri.shadefactor, s);
        _mm_store_ps(tri.shadetint, _mm_load_ps(rasterstate.shadecolour));
    }

    const texturerecord* r = f < m.texturedfacecount ? gettexture(m.facetextures[f]) : nullptr;
    const facecolours lit = m.litcolours[f];
    uint32_t colour[3] = {lit.corner[0], lit.corner[1], lit.corner[2]};
    bool canrelight = pointlit ? !m.normals.empty() : m.facenormals.length() > 0;
    if (canrelight && !(r && r->type == 6)) relight<pointlit>(d, f, corner, colour);
    for (int k = 0; k < 3; ++k) setcolourlanes(tri.colour[k], colour[k]);

    const uint32_t weight = 255u - alpha;
    tri.blendfactor = weight | weight << 16;
    const blended mix = alpha ? blended::yes : blended::no;
    if (!r || !r->pixels) {
        choosetriangle(d.lanes, d.steps, shading::gouraud, alphamode::opaque, wrapmode::repeat, mix, d.colour, d.depth)(&tri);
        return;
    }
    const __m128 offset = _mm_setr_ps(r->offsetu[0], r->offsetv[0], r->offsetu[0], r->offsetv[0]);
    const texel uv[3] = {m.uva[f], m.uvb[f], m.uvc[f]};
    for (int k = 0; k < 3; ++k)
        _mm_store_ps(tri.uv[k], _mm_add_ps(_mm_setr_ps(uv[k].u, uv[k].v, uv[k].u, uv[k].v), offset));
    tri.texels[0] = r->pixels;
    const alphamode mode = alphamodeof(r->value);
    // Seen now, the translucency takes effect from the next draw.
    if (alpha || mode == alphamode::alpha) m.hastranslucency = 1;
    const wrapmode wrap = r->flagfive || r->flagsix ? wrapmode::repeat : wrapmode::clamp;
    choosetriangle(d.lanes, d.steps, shading::textured, mode, wrap, mix, d.colour, d.depth)(&tri);
}

}  // namespace

template <bool pointlit, bool shade, bool colourless>
void drawfaces(modeldraw& d) {
    model& m = *d.mdl;
    renderworkspace& w = *d.workspace;
    // The workspace holds the largest model there may be; larger ones draw only that much.
    const int used = std::min(m.usedvertexcount, workspacevertices);
    const quad* v = m.vertices.get();
    const __m128 one = _mm_set1_ps(1.0f);
    for (int i = 0; i < used; ++i) {
        __m128 p = _mm_load_ps(&v[i].x);
        p = _mm_movelh_ps(p, _mm_unpackhi_ps(p, one));  // x, y, z, 1
        __m128 s = projectpoint(p, d.modelviewprojection);
        _mm_store_ps(w.vertices[i], _mm_shuffle_ps(s, s, _MM_SHUFFLE(2, 2, 1, 0)));
    }
    if constexpr (shade) {
        const float* a = d.matrix;
        const int all = std::min(m.vertexcount, workspacevertices);
        for (int i = 0; i < all; ++i) w.heights[i] = -(v[i].x * a[1] + v[i].y * a[5] + v[i].z * a[9] + a[13]);
    }

    alignas(16) rastertriangle tri;
    if (m.hastranslucency) {
        for (pass p : {pass::opaque, pass::translucent})
            for (int f = 0; f < m.facecount; ++f) drawface<pointlit, shade, colourless>(d, f, p, tri);
    } else {
        for (int f = 0; f < m.facecount; ++f) drawface<pointlit, shade, colourless>(d, f, pass::all, tri);
    }
    drawbillboards(d);
}

template void drawfaces<false, false, false>(modeldraw&);
template void drawfaces<false, true, false>(modeldraw&);
template void drawfaces<true, false, false>(modeldraw&);
template void drawfaces<true, true, false>(modeldraw&);
template void drawfaces<false, false, true>(modeldraw&);
template void drawfaces<false, true, true>(modeldraw&);
