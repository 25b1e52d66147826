// Choosing a member: the tables hold, for every face a caller can describe, the place of its
// function in the table of the file that builds it, worked out when the library is compiled; the
// widest lanes the processor runs choose between the tables of each width.
#include <array>

#include "raster/members.h"

namespace {

// The place of a member's function in the file that builds it at a lane width, or null.
template <lanewidth lanes, class Member>
constexpr auto slotof(const Member& m) {
    decltype(gouraudmembers.find(m)) found = nullptr;
    auto look = [&](const auto& file) {
        if (file.builds(m)) found = file.find(m);
    };
    if constexpr (lanes == lanewidth::eight)
        look(widegouraudmembers), look(widecolourlessmembers), look(wideopaquemembers), look(widekeymembers),
            look(widealphamembers);
    else
        look(gouraudmembers), look(colourlessmembers), look(opaquemembers), look(keymembers), look(alphamembers);
    // The ground's own members are built at four lanes alone.
    look(groundmembers), look(shadowedgroundmembers);
    return found;
}

template <class Member>
auto slotof(const Member& m, lanewidth lanes) {
    return lanes == lanewidth::eight ? slotof<lanewidth::eight>(m) : slotof<lanewidth::four>(m);
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

template <lanewidth lanes>
constexpr auto groundtable = [] {
    std::array<const trianglefunction*,
               axiscount<recipe> * axiscount<layers> * axiscount<blended> * axiscount<shadowed>>
        table{};
    everygroundface(
        [&](const groundselection& g) { table[size_t(groundkey(g))] = slotof<lanes>(groundtriangle(g)); });
    return table;
}();

// By lane width, narrowest first.
constexpr std::array groundtriangleselection = {groundtable<lanewidth::four>, groundtable<lanewidth::eight>};
constexpr std::array triangleselection = {
    selectiontable([](const trianglemember& m) { return slotof<lanewidth::four>(m); }),
    selectiontable([](const trianglemember& m) { return slotof<lanewidth::eight>(m); })};
constexpr std::array spanselection = {
    selectiontable([](const trianglemember& m) { return slotof<lanewidth::four>(spanof(m)); }),
    selectiontable([](const trianglemember& m) { return slotof<lanewidth::eight>(spanof(m)); })};

}  // namespace

trianglefunction trianglefor(const trianglemember& m, lanewidth lanes) {
    const trianglefunction* slot = slotof(m, lanes);
    return slot ? *slot : nullptr;
}

spanfunction spanfor(const spanmember& m, lanewidth lanes) {
    const spanfunction* slot = slotof(m, lanes);
    return slot ? *slot : nullptr;
}

trianglefunction choosetriangle(lanewidth lanes, recipe r, shading s, alphamode a, wrapmode w, blended b, bool colour,
                                bool depth) {
    const trianglefunction* slot = triangleselection[size_t(lanes)][size_t(selectionkey({r, s, a, w, b, colour, depth}))];
    return slot ? *slot : nullptr;
}

spanfunction choosespan(lanewidth lanes, recipe r, shading s, alphamode a, wrapmode w, blended b, bool colour, bool depth) {
    const spanfunction* slot = spanselection[size_t(lanes)][size_t(selectionkey({r, s, a, w, b, colour, depth}))];
    return slot ? *slot : nullptr;
}

trianglefunction rawtriangle(lanewidth lanes, bool colour, bool depth) {
    return colour || depth ? trianglefor(rawmember(colour, depth), lanes) : nullptr;
}

trianglefunction choosegroundtriangle(lanewidth lanes, recipe r, layers l, blended b, shadowed s) {
    return *groundtriangleselection[size_t(lanes)][size_t(groundkey({r, l, b, s}))];
}
