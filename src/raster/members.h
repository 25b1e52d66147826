// The members of the rasteriser: every span function and every triangle function that exists,
// as lists of variants made from the table of model and free-triangle faces. The same rule gives
// the lists and the choice of a member for a face, so the two cannot disagree.
#pragma once
#include <array>
#include <cstddef>

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

// The span of a model face by the table of members. Gouraud faces test and write depth, blended
// ones only test it; textured faces with fog or shade add `addcolour`, and an alpha-mode texture
// under shade tests depth without writing it. An alpha-mode face is never blended.
constexpr spanmember modelspan(recipe r, shading s, alphamode a, wrapmode w, blended b, bool colour, bool depth) {
    if (!colour) return colourlessspan(depth ? depthmode::testwrite : depthmode::none);
    if (s == shading::gouraud)
        return gouraudspan(!depth              ? depthmode::none
                           : b == blended::yes ? depthmode::testonly
                                               : depthmode::testwrite,
                           b);
    if (a == alphamode::alpha) b = blended::no;
    bool shade = r == recipe::fogshade || r == recipe::shadeonly;
    depthmode d = !depth                           ? depthmode::none
                  : a == alphamode::alpha && shade ? depthmode::testonly
                                                   : depthmode::testwrite;
    return spanmember(s, d, a, w, b, r == recipe::plain ? addterm::no : addterm::yes, layers::single, shadowed::no);
}

// Colourless members set up no colours, so they have one triangle function whatever the recipe.
constexpr trianglemember modeltriangle(recipe r, shading s, alphamode a, wrapmode w, blended b, bool colour,
                                       bool depth) {
    return withrecipe(colour ? r : recipe::plain, modelspan(r, s, a, w, b, colour, depth));
}

// The free triangle of the host: a plain Gouraud face that tests depth and never writes it, or
// with depth alone, a walk of its rows that stores nothing.
constexpr trianglemember rawmember(bool colour, bool depth) {
    if (colour && depth) return withrecipe(recipe::plain, gouraudspan(depthmode::testonly, blended::no));
    return modeltriangle(recipe::plain, shading::gouraud, alphamode::opaque, wrapmode::repeat, blended::no, colour,
                         false);
}

namespace rastermembers {

// Every face the model table knows, as a list of its triangle members, then the free triangles.
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
                                    visit(modeltriangle(recipe(r), s, alphamode(a), wrapmode(w), blended(b), colour,
                                                        depth));
    visit(rawmember(true, true));
    visit(rawmember(false, true));
}

// The distinct values of `pick` over every face, in the order they first appear.
template <size_t N, class Pick>
constexpr auto distinct(Pick pick) {
    using member = decltype(pick(trianglemember{}));
    std::array<member, N> list{};
    size_t n = 0;
    everyface([&](const trianglemember& m) {
        member v = pick(m);
        for (size_t i = 0; i < n; ++i)
            if (list[i] == v) return;
        if (n < N) list[n] = v;
        ++n;
    });
    return std::pair{list, n};
}

}  // namespace rastermembers

// 42 textured spans (five a row for alpha-mode textures, four for the others), four Gouraud ones,
// the depth-only span, and for the host's free triangle the unblended Gouraud span that only tests
// depth and the walk that stores nothing.
inline constexpr std::array<spanmember, 49> spanmembers =
    rastermembers::distinct<49>([](const trianglemember& m) { return spanof(m); }).first;
static_assert(rastermembers::distinct<49>([](const trianglemember& m) { return spanof(m); }).second == 49);

// A span that serves several recipes has a triangle function for each: eight a row of textures,
// sixteen Gouraud members, the depth-only one, and the two of the free triangle.
inline constexpr std::array<trianglemember, 99> trianglemembers =
    rastermembers::distinct<99>([](const trianglemember& m) { return m; }).first;
static_assert(rastermembers::distinct<99>([](const trianglemember& m) { return m; }).second == 99);

// The members are built in five files, by shading and alpha mode, so that they build in parallel
// and a change to one kind of pixel rebuilds only its file.
template <const auto& list>
inline constexpr auto gouraudslice = slice<list, shading, shading::gouraud>();
template <const auto& list>
inline constexpr auto colourlessslice = slice<list, shading, shading::colourless>();
template <const auto& list>
inline constexpr auto texturedslice = slice<list, shading, shading::textured>();
template <const auto& list, alphamode a>
inline constexpr auto alphaslice = slice<texturedslice<list>, alphamode, a>();

// The functions each file builds, in the order of its slices.
template <const auto& trianglelist, const auto& spanlist>
struct memberfile {
    static constexpr const auto& triangles = trianglelist;
    static constexpr const auto& spans = spanlist;
    std::array<trianglefunction, triangles.size()> trianglefunctions;
    std::array<spanfunction, spans.size()> spanfunctions;
};

using gouraudfile = memberfile<gouraudslice<trianglemembers>, gouraudslice<spanmembers>>;
using colourlessfile = memberfile<colourlessslice<trianglemembers>, colourlessslice<spanmembers>>;
template <alphamode a>
using texturedfile = memberfile<alphaslice<trianglemembers, a>, alphaslice<spanmembers, a>>;

extern const gouraudfile gouraudmembers;
extern const colourlessfile colourlessmembers;
extern const texturedfile<alphamode::opaque> opaquemembers;
extern const texturedfile<alphamode::key> keymembers;
extern const texturedfile<alphamode::alpha> alphamembers;

// The function of any member; null for a combination that is not a member.
trianglefunction trianglefor(const trianglemember& m);
spanfunction spanfor(const spanmember& m);
