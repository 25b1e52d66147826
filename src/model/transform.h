// Whole-model transforms: turns about each axis with or without the normals, translation, scaling
// in 128ths and the mirror in z. Each needs its bits of the function mask and refuses before it
// touches anything; some leave the bounds as they were although the vertices moved, and the
// bounds getters then answer from before the move.
#pragma once
#include "model/model.h"
#include "toolkit/tables.h"

enum class turnaxis { x, y, z };

// One point turned by the binary angle with sine `s` and cosine `c`; the coordinate along the axis
// keeps its value.
template <turnaxis A>
inline void turn(float& x, float& y, float& z, float s, float c) {
    if constexpr (A == turnaxis::y) {
        float nx = z * s + x * c, nz = z * c - x * s;
        x = nx, z = nz;
    } else if constexpr (A == turnaxis::x) {
        float ny = y * c - z * s, nz = z * c + y * s;
        y = ny, z = nz;
    } else {
        float nx = y * s + x * c, ny = y * c - x * s;
        x = nx, y = ny;
    }
}

template <turnaxis A>
inline void turn(quad& p, int angle) {
    turn<A>(p.x, p.y, p.z, sintable[angle & 0x3FFF], costable[angle & 0x3FFF]);
}

// Turns every vertex about the axis and lets the normals go, unless `withnormals` and the model
// has normals: then the normals turn with the vertices, by the rule of each axis.
void turnmodel(model& m, turnaxis axis, int angle, bool withnormals);

void translatemodel(model& m, int x, int y, int z);
// 128 is 1.0; an axis at 128 is left alone and needs no bit.
void scalemodel(model& m, int x, int y, int z);
void mirrormodel(model& m);

// After a turn that leaves the normals behind: they go, and come back at once in a point-lit model.
void dropnormals(model& m);
