// The ground view with a shadow map: each frame four footprints of 24 by 24 cells move to new places,
// taken off where they stood and added where they go, so that the tiles under them refresh their
// slices, and every textured face draws through its slice. Reported beside the view without a map
// in the same run.
#include <benchmark/benchmark.h>

#include <algorithm>

#include "ground/shadows.h"
#include "groundview.h"
#include "ratio.h"
#include "toolkit/fill.h"

namespace {

void shadowed(benchmark::State& state) {
    static groundview s(GF_SHADOWMAP);
    shadowmask mask(*s.target.t.pool, 24, 24);
    for (int i = 0; i < mask.cells.length(); ++i) mask.cells[i] = (i / 24 - 12) * (i / 24 - 12) + (i % 24 - 12) * (i % 24 - 12) < 120;
    mask.usedwidth = mask.usedheight = 24;
    // Every tile takes its slice at its first draw.
    std::fill_n(s.g->dirty.get(), s.g->dirty.length(), 1);
    int frame = 0;
    auto place = [](int frame, int k, int& x, int& z) {
        x = (frame * 37 + k * 1500) % (side * tilesize), z = (frame * 23 + k * 2100) % (side * tilesize);
    };
    for (auto _ : state) {
        state.PauseTiming();
        drawrectangle(s.target.t, 0, 0, benchtarget::width, benchtarget::height, 0, 0);
        cleardepth(s.target.t);
        state.ResumeTiming();
        for (int k = 0; k < 4; ++k) {
            int x, z;
            place(frame - 1, k, x, z);
            if (frame) changeshadows(*s.g, mask, x, 0, z, true);
            place(frame, k, x, z);
            changeshadows(*s.g, mask, x, 0, z, false);
        }
        ++frame;
        for (int x = 0; x < side; ++x)
            for (int z = 0; z < side; ++z) (*s.g->slot(x, z))->draw(s.target.t, *s.g, x, z);
        benchmark::ClobberMemory();
    }
    state.counters["frames"] = benchmark::Counter(double(state.iterations()), benchmark::Counter::kIsRate);
}

[[maybe_unused]] const bool registered = [] {
    benchmark::RegisterBenchmark("groundshadow/view", shadowed)->UseRealTime()->Unit(benchmark::kMillisecond);
    compareto("groundshadow/view/real_time", "ground/view/real_time");
    return true;
}();

}  // namespace
