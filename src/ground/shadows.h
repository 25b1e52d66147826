// The ground's shadow map: byte cells over the whole ground to which moving things add their
// footprints and from which they take them back, with a frame of one cell that is never written.
// Each change marks the tiles it touches, whose slices are refreshed at their next draw.
#pragma once
#include "ground/ground.h"
#include "toolkit/shadowmask.h"

// Adds the footprint standing at (x, y, z) to the map, or with `take` subtracts it, byte by byte
// with wrap-around, so that what was added and taken back leaves the map as it was. Nothing
// without a map.
void changeshadows(ground& g, const shadowmask& mask, int x, int y, int z, bool take);
