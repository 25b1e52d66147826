// Choosing a member: the tables hold, for every face a caller can describe, the place of its
// function in the table of the file that builds it, worked out when the library is compiled.
#include <array>

#include "raster/members.h"

namespace {

constexpr const trianglefunction* triangleslot(const trianglemember& m) {
    const trianglefunction* found = nullptr;
    auto look = [&](const auto& file) {
        if (int i = indexof(file.triangles, m); i >= 0) found = &file.trianglefunctions[size_t(i)];
    };
    look(gouraudmembers), look(colourlessmembers), look(opaquemembers), look(keymembers), look(alphamembers);
    return found;
}

constexpr const spanfunction* spanslot(const spanmember& m) {
    const spanfunction* found = nullptr;
    auto look = [&](const auto& file) {
        if (int i = indexof(file.spans, m); i >= 0) found = &file.spanfunctions[size_t(i)];
    };
    look(gouraudmembers), look(colourlessmembers), look(opaquemembers), look(keymembers), look(alphamembers);
    return found;
}

constexpr int selectioncount =
    axiscount<recipe> * 2 * axiscount<alphamode> * axiscount<wrapmode> * axiscount<blended> * 4;

constexpr int selectionkey(recipe r, shading s, alphamode a, wrapmode w, blended b, bool colour, bool depth) {
    int key = int(r) * 2 + (s == shading::textured);
    key = ((key * axiscount<alphamode> + int(a)) * axiscount<wrapmode> + int(w)) * axiscount<blended> + int(b);
    return key * 4 + colour * 2 + depth;
}

// The slot of every face's member, by its key; null where the target has neither buffer.
template <class Slot>
constexpr auto selectiontable(Slot slot) {
    std::array<decltype(slot(trianglemember{})), selectioncount> table{};
    for (int r = 0; r < axiscount<recipe>; ++r)
        for (shading s : {shading::gouraud, shading::textured})
            for (int a = 0; a < axiscount<alphamode>; ++a)
                for (int w = 0; w < axiscount<wrapmode>; ++w)
                    for (int b = 0; b < axiscount<blended>; ++b)
                        for (bool colour : {true, false})
                            for (bool depth : {true, false})
                                if (colour || depth)
                                    table[size_t(selectionkey(recipe(r), s, alphamode(a), wrapmode(w), blended(b),
                                                              colour, depth))] =
                                        slot(modeltriangle(recipe(r), s, alphamode(a), wrapmode(w), blended(b), colour,
                                                           depth));
    return table;
}

constexpr auto triangleselection = selectiontable(triangleslot);
constexpr auto spanselection = selectiontable([](const trianglemember& m) { return spanslot(spanof(m)); });

}  // namespace

trianglefunction trianglefor(const trianglemember& m) {
    const trianglefunction* slot = triangleslot(m);
    return slot ? *slot : nullptr;
}

spanfunction spanfor(const spanmember& m) {
    const spanfunction* slot = spanslot(m);
    return slot ? *slot : nullptr;
}

trianglefunction choosetriangle(recipe r, shading s, alphamode a, wrapmode w, blended b, bool colour, bool depth) {
    const trianglefunction* slot = triangleselection[size_t(selectionkey(r, s, a, w, b, colour, depth))];
    return slot ? *slot : nullptr;
}

spanfunction choosespan(recipe r, shading s, alphamode a, wrapmode w, blended b, bool colour, bool depth) {
    const spanfunction* slot = spanselection[size_t(selectionkey(r, s, a, w, b, colour, depth))];
    return slot ? *slot : nullptr;
}

trianglefunction rawtriangle(bool colour, bool depth) {
    return colour || depth ? trianglefor(rawmember(colour, depth)) : nullptr;
}
