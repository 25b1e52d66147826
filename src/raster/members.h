// The members of the rasteriser: every span function and every triangle function that exists,
// as lists of variants made from the table of model and free-triangle faces. The same rule gives
// the lists and the choice of a member for a face, so the two cannot disagree.
#pragma once
#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "pixel/lanewidth.h"
#include "pixel/variants.h"
#include "raster/raster.h"

using spanmember = variant<shading, depthmode, alphamode, wrapmode, blended, addterm, layers, shadowed>;

// A triangle member is its recipe and the span it calls.
using trianglemember = variant<recipe, shading, depthmode, alphamode, wrapmode, blended, addterm, layers, shadowed>;

constexpr spanmember spanof(const trianglemember& m) {
    return spanmember(m.get<shading>(), m.get<depthmode>(), m.get<alphamode>(), m.get<wrapmode>(), m.get<blended>(),
                      m.get<addterm>(), m.get<layers>(), m.get<shadowed>());
}

constexpr trianglemember withrecipe(recipe r, const spanmember& s) {
    return trianglemember(r, s.get<shading>(), s.get<depthmode>(), s.get<alphamode>(), s.get<wrapmode>(),
                          s.get<blended>(), s.get<addterm>(), s.get<layers>(), s.get<shadowed>());
}

// Members where an axis does not matter hold its first value there.
constexpr spanmember gouraudspan(depthmode d, blended b) {
    return spanmember(shading::gouraud, d, alphamode::opaque, wrapmode::repeat, b, addterm::no, layers::single,
                      shadowed::no);
}
constexpr spanmember colourlessspan(depthmode d) {
    return spanmember(shading::colourless, d, alphamode::opaque, wrapmode::repeat, blended::no, addterm::no,
                      layers::single, shadowed::no);
}

// A face as the model render variants describe it: the recipe of the variant, the face's texture
// and blending, and which buffers the target has.
struct faceselection {
    recipe fold;
    shading kind;  // gouraud or textured
    alphamode alpha;
    wrapmode wrap;
    blended blend;
    bool colour, depth;
};

// The span of a model face by the table of members. Gouraud faces test and write depth, blended
// ones only test it; textured faces with fog or shade add `addcolour`, and an alpha-mode texture
// under shade tests depth without writing it. An alpha-mode face is never blended.
constexpr spanmember modelspan(const faceselection& f) {
    if (!f.colour) return colourlessspan(f.depth ? depthmode::testwrite : depthmode::none);
    if (f.kind == shading::gouraud)
        return gouraudspan(!f.depth                  ? depthmode::none
                           : f.blend == blended::yes ? depthmode::testonly
                                                     : depthmode::testwrite,
                           f.blend);
    const bool alpha = f.alpha == alphamode::alpha, shade = f.fold == recipe::fogshade || f.fold == recipe::shadeonly;
    const depthmode d = !f.depth ? depthmode::none : alpha && shade ? depthmode::testonly : depthmode::testwrite;
    return spanmember(f.kind, d, f.alpha, f.wrap, alpha ? blended::no : f.blend,
                      f.fold == recipe::plain ? addterm::no : addterm::yes, layers::single, shadowed::no);
}

// Colourless members set up no colours, so they have one triangle function whatever the recipe.
constexpr trianglemember modeltriangle(const faceselection& f) {
    return withrecipe(f.colour ? f.fold : recipe::plain, modelspan(f));
}

// The free triangle of the host: a plain Gouraud face that tests depth and never writes it, or
// with depth alone, a walk of its rows that stores nothing.
constexpr trianglemember rawmember(bool colour, bool depth) {
    if (colour && depth) return withrecipe(recipe::plain, gouraudspan(depthmode::testonly, blended::no));
    return modeltriangle(
        {recipe::plain, shading::gouraud, alphamode::opaque, wrapmode::repeat, blended::no, colour, false});
}

// A textured ground face on a target with colour and depth: its recipe, layers and shadow map,
// and whether it asks to be blended.
struct groundselection {
    recipe fold;
    layers layer;
    blended blend;
    shadowed shadow;
};

// The ground's spans repeat their textures and write every texel as opaque. Only one-texture faces
// without shade blend, and the blended `single` span alone leaves depth as it was.
constexpr spanmember groundspan(const groundselection& g) {
    const bool one = g.layer == layers::single || g.layer == layers::singlescaled;
    const bool shade = g.fold == recipe::fogshade || g.fold == recipe::shadeonly;
    const blended b = one && !shade ? g.blend : blended::no;
    const depthmode d = g.layer == layers::single && b == blended::yes ? depthmode::testonly : depthmode::testwrite;
    return spanmember(shading::textured, d, alphamode::opaque, wrapmode::repeat, b,
                      g.fold == recipe::plain ? addterm::no : addterm::yes, g.layer, g.shadow);
}

constexpr trianglemember groundtriangle(const groundselection& g) { return withrecipe(g.fold, groundspan(g)); }

template <class Visit>
constexpr void everygroundface(Visit visit) {
    for (int r = 0; r < axiscount<recipe>; ++r)
        for (int l = 0; l < axiscount<layers>; ++l)
            for (int b = 0; b < axiscount<blended>; ++b)
                for (int s = 0; s < axiscount<shadowed>; ++s)
                    visit(groundselection{recipe(r), layers(l), blended(b), shadowed(s)});
}

// Every face the model table knows, on a target with at least one buffer.
template <class Visit>
constexpr void everyface(Visit visit) {
    for (int r = 0; r < axiscount<recipe>; ++r)
        for (shading s : {shading::gouraud, shading::textured})
            for (int a = 0; a < axiscount<alphamode>; ++a)
                for (int w = 0; w < axiscount<wrapmode>; ++w)
                    for (int b = 0; b < axiscount<blended>; ++b)
                        for (bool colour : {true, false})
                            for (bool depth : {true, false})
                                if (colour || depth)
                                    visit(faceselection{recipe(r), s, alphamode(a), wrapmode(w), blended(b), colour,
                                                        depth});
}

namespace rastermembers {

// The distinct values of `pick` over every face and the free triangles, in the order they first
// appear.
template <size_t N, class Pick>
constexpr auto distinct(Pick pick) {
    using member = decltype(pick(trianglemember{}));
    std::array<member, N> list{};
    size_t n = 0;
    auto add = [&](const trianglemember& m) {
        member v = pick(m);
        for (size_t i = 0; i < n; ++i)
            if (list[i] == v) return;
        if (n < N) list[n] = v;
        ++n;
    };
    everyface([&](const faceselection& f) { add(modeltriangle(f)); });
    add(rawmember(true, true));
    add(rawmember(false, true));
    everygroundface([&](const groundselection& g) { add(groundtriangle(g)); });
    return std::pair{list, n};
}

}  // namespace rastermembers

// 42 textured spans (five a row for alpha-mode textures, four for the others), four Gouraud ones,
// the depth-only span, for the host's free triangle the unblended Gouraud span that only tests
// depth and the walk that stores nothing, and 22 of the ground's 24: its plain one-texture spans
// without shadow map are the model's opaque repeating ones.
inline constexpr std::array<spanmember, 71> spanmembers =
    rastermembers::distinct<71>([](const trianglemember& m) { return spanof(m); }).first;
static_assert(rastermembers::distinct<71>([](const trianglemember& m) { return spanof(m); }).second == 71);

// A span that serves several recipes has a triangle function for each: eight a row of textures,
// sixteen Gouraud members, the depth-only one, the two of the free triangle, and the ground's: four
// recipes for each of its eight unblended layer and map pairs, two for each of its four blended
// ones, less the four it shares with models.
inline constexpr std::array<trianglemember, 135> trianglemembers =
    rastermembers::distinct<135>([](const trianglemember& m) { return m; }).first;
static_assert(rastermembers::distinct<135>([](const trianglemember& m) { return m; }).second == 135);

// The table of model and free-triangle spans as it stands, checked against the rule above when the
// library is compiled: a row per texture mode or Gouraud kind, a column per target and recipe (with
// depth: fogshade or shadeonly, fogonly, plain; without depth: fog or shade, plain). A cell is the
// depth work of its function (w testwrite, o testonly, n none) or names the function it shares:
// 1 that of column 1, = that of the column before. Alpha-mode textures under shade, and blended
// Gouraud faces, test depth without writing it; no alpha-mode texture is blended.
namespace rastertable {

struct row {
    shading kind;
    alphamode alpha;
    wrapmode wrap;
    blended blend;
    const char* cells;
};

using enum recipe;
struct column {
    int count;
    recipe folds[3];
};
inline constexpr column columns[5] = {
    {2, {fogshade, shadeonly}}, {1, {fogonly}}, {1, {plain}}, {3, {fogshade, fogonly, shadeonly}}, {1, {plain}}};

inline constexpr row rows[] = {{shading::textured, alphamode::alpha, wrapmode::repeat, blended::no, "owwnn"},
                               {shading::textured, alphamode::alpha, wrapmode::clamp, blended::no, "owwnn"},
                               {shading::textured, alphamode::key, wrapmode::repeat, blended::no, "w1wnn"},
                               {shading::textured, alphamode::key, wrapmode::clamp, blended::no, "w1wnn"},
                               {shading::textured, alphamode::opaque, wrapmode::repeat, blended::no, "w1wnn"},
                               {shading::textured, alphamode::opaque, wrapmode::clamp, blended::no, "w1wnn"},
                               {shading::textured, alphamode::key, wrapmode::repeat, blended::yes, "w1wnn"},
                               {shading::textured, alphamode::key, wrapmode::clamp, blended::yes, "w1wnn"},
                               {shading::textured, alphamode::opaque, wrapmode::repeat, blended::yes, "w1wnn"},
                               {shading::textured, alphamode::opaque, wrapmode::clamp, blended::yes, "w1wnn"},
                               {shading::gouraud, alphamode::opaque, wrapmode::repeat, blended::no, "w==n="},
                               {shading::gouraud, alphamode::opaque, wrapmode::repeat, blended::yes, "o==n="}};

constexpr spanmember cell(const row& r, int column, recipe fold) {
    return modelspan({fold, r.kind, r.alpha, r.wrap, r.blend, true, column < 3});
}

constexpr bool holds() {
    for (const row& r : rows)
        for (int column = 0; column < 5; ++column)
            for (int k = 0; k < columns[column].count; ++k) {
                const recipe fold = columns[column].folds[k];
                const char c = r.cells[column];
                const int shared = c == '1' ? 0 : column - 1;
                const bool textured = r.kind == shading::textured;
                const spanmember own(r.kind, depthmode(std::string_view("won").find(c)), r.alpha, r.wrap, r.blend,
                                     textured && fold != plain ? addterm::yes : addterm::no, layers::single,
                                     shadowed::no);
                if (cell(r, column, fold) != (c == '1' || c == '=' ? cell(r, shared, columns[shared].folds[0]) : own))
                    return false;
            }
    // An alpha-mode face asked for blended is the unblended one.
    return modelspan({fogonly, shading::textured, alphamode::alpha, wrapmode::clamp, blended::yes, true, true}) ==
           cell(rows[1], 1, fogonly);
}
static_assert(holds());

}  // namespace rastertable

// The members are built in seven files, by shading and alpha mode and for the ground by shadow
// map, so that they build in parallel and a change to one kind of pixel rebuilds only its file.
template <const auto& list>
inline constexpr auto gouraudslice = slice<list, shading, shading::gouraud>();
template <const auto& list>
inline constexpr auto colourlessslice = slice<list, shading, shading::colourless>();
// The ground's own members, those with more than one plain layer or with a shadow map, build in
// two files of their own, by shadow map.
template <class M>
constexpr bool groundonly(const M& m) {
    return m.template get<layers>() != layers::single || m.template get<shadowed>() == shadowed::yes;
}
template <const auto& list, bool ground>
constexpr auto groundpart() {
    constexpr size_t count = [] {
        size_t n = 0;
        for (const auto& m : list) n += groundonly(m) == ground;
        return n;
    }();
    std::array<std::remove_cvref_t<decltype(list[0])>, count> out{};
    size_t n = 0;
    for (const auto& m : list)
        if (groundonly(m) == ground) out[n++] = m;
    return out;
}
template <const auto& list>
inline constexpr auto sharedpart = groundpart<list, false>();
template <const auto& list>
inline constexpr auto groundpartof = groundpart<list, true>();
template <const auto& list, shadowed s>
inline constexpr auto groundslice = slice<groundpartof<list>, shadowed, s>();
template <const auto& list>
inline constexpr auto texturedslice = slice<sharedpart<list>, shading, shading::textured>();
template <const auto& list, alphamode a>
inline constexpr auto alphaslice = slice<texturedslice<list>, alphamode, a>();

// The functions each file builds, in the order of its slices.
template <const auto& trianglelist, const auto& spanlist>
struct memberfile {
    static constexpr const auto& triangles = trianglelist;
    static constexpr const auto& spans = spanlist;
    std::array<trianglefunction, triangles.size()> trianglefunctions;
    std::array<spanfunction, spans.size()> spanfunctions;

    // Whether this file builds a member, and the place of its function.
    static constexpr bool builds(const trianglemember& m) { return indexof(triangles, m) >= 0; }
    static constexpr bool builds(const spanmember& m) { return indexof(spans, m) >= 0; }
    constexpr const trianglefunction* find(const trianglemember& m) const {
        return &trianglefunctions[size_t(indexof(triangles, m))];
    }
    constexpr const spanfunction* find(const spanmember& m) const { return &spanfunctions[size_t(indexof(spans, m))]; }
};

using gouraudfile = memberfile<gouraudslice<trianglemembers>, gouraudslice<spanmembers>>;
using colourlessfile = memberfile<colourlessslice<trianglemembers>, colourlessslice<spanmembers>>;
template <alphamode a>
using texturedfile = memberfile<alphaslice<trianglemembers, a>, alphaslice<spanmembers, a>>;

template <shadowed s>
using groundfile = memberfile<groundslice<trianglemembers, s>, groundslice<spanmembers, s>>;

extern const gouraudfile gouraudmembers;
extern const colourlessfile colourlessmembers;
extern const texturedfile<alphamode::opaque> opaquemembers;
extern const texturedfile<alphamode::key> keymembers;
extern const texturedfile<alphamode::alpha> alphamembers;
extern const groundfile<shadowed::no> groundmembers;
extern const groundfile<shadowed::yes> shadowedgroundmembers;
// The same tables at eight lanes, for processors with AVX2; the ground's own members are built
// at four lanes only and serve both widths.
extern const gouraudfile widegouraudmembers;
extern const colourlessfile widecolourlessmembers;
extern const texturedfile<alphamode::opaque> wideopaquemembers;
extern const texturedfile<alphamode::key> widekeymembers;
extern const texturedfile<alphamode::alpha> widealphamembers;

// The function of any member at a lane width; null for a combination that is not a member.
trianglefunction trianglefor(const trianglemember& m, lanewidth lanes);
spanfunction spanfor(const spanmember& m, lanewidth lanes);
