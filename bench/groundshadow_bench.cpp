// The ground view with a shadow map: before each frame four footprints of 24 by 24 cells move on,
// taken off where they stood and added where they go, so that the tiles under them refresh their
// slices, and every textured face draws through its slice. In frames a second beside the same
// view without a map in the same run.
#include <benchmark/benchmark.h>

#include <algorithm>

#include "ground/shadows.h"
#include "ground/tile.h"
#include "groundview.h"
#include "ratio.h"
#include "toolkit/toolkit.h"
#include "util/memory/memorypool.h"

namespace {

shadowmask* footprint;

void place(int frame, int k, int& x, int& z) {
    x = (frame * 37 + k * 1500) % (groundviewside * groundviewtile);
    z = (frame * 23 + k * 2100) % (groundviewside * groundviewtile);
}

void movefootprints(ground& g, int frame) {
    for (int k = 0; k < 4; ++k) {
        int x, z;
        if (frame) place(frame - 1, k, x, z), changeshadows(g, *footprint, x, 0, z, true);
        place(frame, k, x, z), changeshadows(g, *footprint, x, 0, z, false);
    }
}

void shadowed(benchmark::State& state) {
    ground& g = groundviewground();
    makeshadows(g);
    // A round footprint; every tile takes its slice at its first draw.
    shadowmask mask(*g.owner->pool, 24, 24);
    for (int i = 0; i < 24 * 24; ++i) mask.cells[i] = (i / 24 - 12) * (i / 24 - 12) + (i % 24 - 12) * (i % 24 - 12) < 120;
    mask.usedwidth = mask.usedheight = 24;
    footprint = &mask;
    std::fill_n(g.dirty.get(), g.dirty.length(), 1);
    groundviewframes(state, movefootprints);
    // The view goes back to drawing without a map.
    delete g.shadows;
    g.shadows = nullptr;
    g.dirty.release(), g.shadowatlas.release();
    for (int i = 0; i < g.slotcount; ++i) g.tiles[i]->shadowslice.release();
}

[[maybe_unused]] const bool registered = [] {
    benchmark::RegisterBenchmark("groundshadow/view", shadowed)->UseRealTime()->Unit(benchmark::kMillisecond);
    compareto("groundshadow/view/real_time", "ground/view/real_time");
    return true;
}();

}  // namespace
