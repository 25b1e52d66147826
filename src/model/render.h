// Drawing one model under a matrix: it is culled as a capsule round its y axis, its colours are
// made if they are missing, and one of 18 members walks its faces. A member projects each used
// vertex once into the render workspace, rejects faces off the screen or facing away on four lanes
// before any colour work, relights each corner by the sun (and the point lights in the point-lit
// members), and hands each face to the triangle function of its kind; translucent models take a
// second pass for their translucent faces, and billboards follow as scaled sprites.
#pragma once
#include <array>
#include <string_view>

#include "model/lighting.h"
#include "model/model.h"
#include "pixel/lanewidth.h"
#include "pixel/variants.h"
#include "raster/raster.h"
#include "toolkit/renderworkspace.h"

// Which buffers the target has; a target without colour gets the depth-only members.
enum class membertarget { colourdepth, colouronly, depthonly };
constexpr std::array<std::string_view, 3> axisnames(membertarget) { return {"colourdepth", "colouronly", "depthonly"}; }

// Point-lit members add the point light term to the sun's on every face.
enum class memberlight { sun, pointlit };
constexpr std::array<std::string_view, 2> axisnames(memberlight) { return {"sun", "pointlit"}; }

// Shade members mix in the shade colour by height and drop faces wholly shaded.
enum class membershade { none, shade };
constexpr std::array<std::string_view, 2> axisnames(membershade) { return {"noshade", "shade"}; }

enum class memberfog { none, fog };
constexpr std::array<std::string_view, 2> axisnames(memberfog) { return {"nofog", "fog"}; }

using modelmember = variant<membertarget, memberlight, membershade, memberfog>;

// The 16 colour members, then the two depth-only ones, which know neither lights nor fog.
inline constexpr auto modelmembers = [] {
    std::array<modelmember, 18> list{};
    size_t n = 0;
    for (const modelmember& m : allcombinations<membertarget, memberlight, membershade, memberfog>())
        if (m.get<membertarget>() != membertarget::depthonly ||
            (m.get<memberlight>() == memberlight::sun && m.get<memberfog>() == memberfog::none))
            list[n++] = m;
    return list;
}();

// Everything one draw reads, taken once at its start.
struct alignas(16) modeldraw {
    float matrix[16];          // the model's, as the host gave it
    float modelviewprojection[16];
    float modelview[16];
    model* mdl;
    renderworkspace* workspace;
    const toolkit* t;
    recipe steps;              // what the triangle level folds in: fog, shade, both or neither
    bool colour, depth;        // the target's buffers
    float smoothscale, flatscale;  // the sun's strength on smooth and flat faces
    lanewidth lanes;               // of the faces' spans and the billboards' sprite rows
    pointlights lights;
};

// Draws `m` under the model matrix `matrix` (16 floats, 16-byte aligned). With `result`, a model
// that passes the cull gets its screen extent there: the projected ends of its axis, its radius
// on the screen, and 1. Gives the position of the member that drew in `modelmembers`, or -1 when
// nothing was to be drawn.
int drawmodel(model& m, renderworkspace& w, const float* matrix, int* result);

// The faces of one member; the members differ in these three only, the rest is data.
template <bool pointlit, bool shade, bool colourless>
void drawfaces(modeldraw& d);

// Billboards of the model as scaled sprites, each at its face's centroid.
void drawbillboards(modeldraw& d);
