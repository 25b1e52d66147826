// The members of the rasteriser: every span function and every triangle function that exists,
// as lists of variants made from the table of model and free-triangle faces. The same rule gives
// the lists and the choice of a member for a face, so the two cannot disagree.
#pragma once
#include <algorithm>
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

// The table's exceptions, as they stand in the lists: no alpha-mode texture is blended, and the
// only textured members that test depth without writing it are the two alpha-mode ones under shade.
static_assert(std::ranges::none_of(spanmembers, [](const spanmember& m) {
    return m.get<alphamode>() == alphamode::alpha && m.get<blended>() == blended::yes;
}));
static_assert(std::ranges::count_if(spanmembers, [](const spanmember& m) {
                  return m.get<shading>() == shading::textured && m.get<depthmode>() == depthmode::testonly;
              }) == 2);

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

    // The place of a member's function, or null where this file does not build it.
    constexpr const trianglefunction* find(const trianglemember& m) const {
        int i = indexof(triangles, m);
        return i < 0 ? nullptr : &trianglefunctions[size_t(i)];
    }
    constexpr const spanfunction* find(const spanmember& m) const {
        int i = indexof(spans, m);
        return i < 0 ? nullptr : &spanfunctions[size_t(i)];
    }
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
