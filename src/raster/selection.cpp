// Choosing a member: the tables hold, for every face a caller can describe, the place of its
// function in the table of the file that builds it, worked out when the library is compiled.
#include <array>

#include "raster/members.h"

namespace {

// The place of a member's function in the file that builds it, or null.
template <class Member>
constexpr auto slotof(const Member& m) {
    decltype(gouraudmembers.find(m)) found = nullptr;
    auto look = [&](const auto& file) {
        if (file.builds(m)) found = file.find(m);
    };
    look(gouraudmembers), look(colourlessmembers), look(opaquemembers), look(keymembers), look(alphamembers);
    look(groundmembers), look(shadowedgroundmembers);
    return found;
}

constexpr int selectionkey(const faceselection& f) {
    int key = int(f.fold) * 2 + (f.kind == shading::textured);
    key = ((key * axiscount<alphamode> + int(f.alpha)) * axiscount<wrapmode> + int(f.wrap)) * axiscount<blended>;
    return (key + int(f.blend)) * 4 + f.colour * 2 + f.depth;
}

// The slot of every face's member, by its key; null where the target has neither buffer.
template <class Slot>
constexpr auto selectiontable(Slot slot) {
    std::array<decltype(slot(trianglemember{})),
               axiscount<recipe> * 2 * axiscount<alphamode> * axiscount<wrapmode> * axiscount<blended> * 4>
        table{};
    everyface([&](const faceselection& f) { table[size_t(selectionkey(f))] = slot(modeltriangle(f)); });
    return table;
}

constexpr int groundkey(const groundselection& g) {
    const int key = (int(g.fold) * axiscount<layers> + int(g.layer)) * axiscount<blended> + int(g.blend);
    return key * axiscount<shadowed> + int(g.shadow);
}

constexpr auto groundselectiontable = [] {
    std::array<const trianglefunction*,
               axiscount<recipe> * axiscount<layers> * axiscount<blended> * axiscount<shadowed>>
        table{};
    everygroundface([&](const groundselection& g) { table[size_t(groundkey(g))] = slotof(groundtriangle(g)); });
    return table;
}();

constexpr auto triangleselection = selectiontable([](const trianglemember& m) { return slotof(m); });
constexpr auto spanselection = selectiontable([](const trianglemember& m) { return slotof(spanof(m)); });

}  // namespace

trianglefunction trianglefor(const trianglemember& m) {
    const trianglefunction* slot = slotof(m);
    return slot ? *slot : nullptr;
}

spanfunction spanfor(const spanmember& m) {
    const spanfunction* slot = slotof(m);
    return slot ? *slot : nullptr;
}

trianglefunction choosetriangle(recipe r, shading s, alphamode a, wrapmode w, blended b, bool colour, bool depth) {
    const trianglefunction* slot = triangleselection[size_t(selectionkey({r, s, a, w, b, colour, depth}))];
    return slot ? *slot : nullptr;
}

spanfunction choosespan(recipe r, shading s, alphamode a, wrapmode w, blended b, bool colour, bool depth) {
    const spanfunction* slot = spanselection[size_t(selectionkey({r, s, a, w, b, colour, depth}))];
    return slot ? *slot : nullptr;
}

trianglefunction rawtriangle(bool colour, bool depth) {
    return colour || depth ? trianglefor(rawmember(colour, depth)) : nullptr;
}

trianglefunction choosegroundtriangle(recipe r, layers l, blended b, shadowed s) {
    return *groundselectiontable[size_t(groundkey({r, l, b, s}))];
}
