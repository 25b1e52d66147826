// Construction of a model from the host's decoded arrays: positions to floats, faces reordered so
// that textured faces come first, faces that are never drawn dropped, texture coordinates derived
// from the mapping records, the group tables animation needs, and billboard faces folded to their
// centroid. This is the only way vertex data enter the library.
#pragma once
#include <cstdint>
#include <memory>

#include "model/model.h"

// A host array as the build reads it; a null array has no data.
template <class T>
struct hostarray {
    const T* data = nullptr;
    int length = 0;

    explicit operator bool() const { return data != nullptr; }
    const T& operator[](long i) const { return data[i]; }
};

// The host's texture mapping records, one per mapping. For a planar mapping `p`, `m`, `n` are
// vertex indices; otherwise a direction, 32767 being 1.0.
struct mappingsource {
    int count = 0;
    hostarray<int8_t> type;  // 0 planar, 1 cylinder, 2 cube, 3 sphere
    hostarray<int16_t> p, m, n;
    hostarray<int32_t> scalex, scaley, scalez;
    hostarray<int8_t> rotation;   // 256 steps to the circle
    hostarray<int8_t> direction;  // quarter turns of the result
    hostarray<int32_t> shift0, shift1, shift2;  // 256 is 1.0
};

// Everything the host hands over, in its order. Arrays the build needs are noted in `buildmodel`.
struct modelsource {
    int vertexcount = 0, usedvertexcount = 0;
    hostarray<int32_t> x, y, z;
    hostarray<int32_t> vertexgroupids;
    hostarray<int16_t> vertexmasks;
    int facecount = 0;
    hostarray<int16_t> a, b, c;
    hostarray<int8_t> types, priorities, alphas;
    hostarray<int8_t> mappings;  // per face, 0xFF none
    hostarray<int16_t> colours;
    hostarray<int16_t> textures;  // -1 none
    hostarray<int32_t> facegroupids;
    uint8_t renderorder = 0xFF;
    hostarray<int16_t> facemasks;
    mappingsource mapping;
    hostarray<int32_t> markers;
    int markertriangles = 0, markerpoints = 0;
    uint32_t functionmask = 0, modelflags = 0;
    int ambient = 0, contrast = 0;
    hostarray<int32_t> billboardints;  // 7 ints per billboard, then a group id per billboard
};

// Builds the model in `pool`. Texture ids are looked up in the current toolkit's store. x, y, z,
// a, b, c and colours must be present; counts and indices are the host's to keep right.
std::unique_ptr<model> buildmodel(const modelsource& s, memorymanager& pool);
