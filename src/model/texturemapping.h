// Texture coordinates of the textured faces, from the host's mapping records: planar, cylinder,
// cube and sphere projections, turned by quarter turns and, round the cylinder and the sphere,
// kept on one side of the seam.
#pragma once
#include "model/build.h"

// Fills `facetextures`, `uva`, `uvb`, `uvc` of the faces below `texturedfacecount`. `faceremap`
// gives each host face's model face, -1 for a dropped one. Scratch comes from the model's pool
// for the length of the call.
void maptextures(model& m, const modelsource& s, const int* faceremap);
