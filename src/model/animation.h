// Animation steps: one transform applied to the vertices, faces or billboards of listed groups
// (or of the whole model), the matrix of a skeleton applied to masked vertices, and the pivot that
// turns and scales share. Steps write into the model's own arrays, so a model that animates is a
// clone with private arrays; none of them clears the bounds, the host ends a run with h.ka.
#pragma once
#include <cstdint>

#include "model/model.h"

enum animationtype : int {
    ANIM_ORIGIN = 0,     // the pivot: the mean of the selected vertices plus (x, y, z)
    ANIM_TRANSLATE = 1,
    ANIM_ROTATE = 2,     // binary angles about z, x and y, round the pivot
    ANIM_SCALE = 3,      // 128ths, round the pivot
    ANIM_ALPHA = 5,      // x eighths of the alpha range
    ANIM_COLOUR = 7,     // hue, saturation and lightness deltas
    ANIM_BILLBOARD_OFFSET = 8,
    ANIM_BILLBOARD_ROTATION = 9,
    ANIM_BILLBOARD_SCALE = 10,  // 128ths
};

// Which items a step takes.
struct animationselection {
    const int32_t* groups = nullptr;  // group ids, walked in order; ids past the table are skipped
    int groupcount = 0;
    bool whole = false;         // every item, without groups
    bool masked = false;        // items count only where `select` meets their mask, if masks exist
    uint32_t select = 0;
    int order = 0;              // bit 0 turns about x before z
};

// The three forms of a step, as h.J, h.e and h.w give them. `normals` turns the normals of turned
// vertices too, and throws after the vertices moved if the mask lacks FM_ANIMATE_NORMALS.
void animatestep(model& m, int type, const animationselection& s, int x, int y, int z, bool normals);

// The selective step with a frame: 14 packed values, a 3 by 3 matrix A, and the translations T1
// and T2 that turns and scales fold in before their vertex loop.
void animateframed(model& m, int type, const animationselection& s, int x, int y, int z, const int32_t* frame);

// A frame value: 32768 over the low 15 bits, plus the rest shifted down.
inline float decodeframe(int32_t v) { return 32768.0f / static_cast<float>(v & 0x7FFF) + static_cast<float>(v >> 15); }

// The 16 floats `a` on the used vertices whose mask meets `select`: as a matrix on the point, or
// with `inverse` the transpose of its upper rows on the point less its last row.
void applymatrix(model& m, const float* a, uint32_t select, bool inverse);

// Clears the pivot of a model with vertex groups, and tells whether it had them.
bool resetorigin(model& m);
