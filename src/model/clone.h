// A clone makes one model a view of another: every array the clone's mask does not protect is
// shared by handle, and every array it protects is copied into blocks that a scratch model keeps.
// The host reuses its scratch models frame after frame, so that a clone normally allocates
// nothing; two clones made with one scratch share, and overwrite, its arrays.
#pragma once
#include <cstdint>

#include "model/model.h"

// Makes `dest` a clone of `source` under `mask`, which may only lose bits of the source's mask:
// a wider one is refused before anything changes. `grow` gives a newly made face type array 100
// spare entries; `prelight` lights the source first where the clone would share its colours.
void clonemodel(model& source, model& dest, model& scratch, uint32_t mask, bool grow, bool prelight);
