// A ground of 64 by 64 hilly tiles of 128 units, each two faces of one, one scaled, three or three
// scaled textures, seen whole through a perspective camera with fog on a 1024x768 target: the
// whole view in tiles, faces and pixels a second (its frames a second are the iterations). Beside
// it the same triangles, single-layer, by our plain textured member and by llvmpipe (one thread)
// in the same run, and tile uploads a second.
#include <benchmark/benchmark.h>
#include <xmmintrin.h>

#include <cmath>
#include <memory>
#include <vector>

#include "groundview.h"
#include "llvmpipe.h"
#include "raster/raster.h"
#include "ratio.h"
#include "target.h"
#include "toolkit/fill.h"
#include "toolkit/light.h"
#include "toolkit/projection.h"
#include "toolkit/tables.h"
#include "toolkit/view.h"
#include "trianglework.h"
#include "util/frame.h"
#include "util/memory/memorypool.h"

namespace {

groundview& scene() {
    static groundview made;
    return made;
}

void rates(benchmark::State& state, double tiles, double faces, double pixels) {
    using benchmark::Counter;
    const double n = double(state.iterations());
    if (tiles) state.counters["tiles"] = Counter(n * tiles, Counter::kIsRate);
    if (faces) state.counters["faces"] = Counter(n * faces, Counter::kIsRate);
    if (pixels) state.counters["pixels"] = Counter(n * pixels, Counter::kIsRate);
}

void view(benchmark::State& state) {
    groundview& s = scene();
    for (auto _ : state) {
        state.PauseTiming();
        drawrectangle(s.target.t, 0, 0, benchtarget::width, benchtarget::height, 0, 0);
        cleardepth(s.target.t);
        state.ResumeTiming();
        for (int x = 0; x < side; ++x)
            for (int z = 0; z < side; ++z) (*s.g->slot(x, z))->draw(s.target.t, *s.g, x, z);
        benchmark::ClobberMemory();
    }
    state.counters["frames"] = benchmark::Counter(double(state.iterations()), benchmark::Counter::kIsRate);
    rates(state, side * side, s.faces.count(), s.faces.pixels);
}

void single(benchmark::State& state) {
    groundview& s = scene();
    const std::vector<rastertriangle> faces = rasterrecords(s.faces, s.texels.data(), 0);
    const trianglefunction draw = choosegroundtriangle(recipe::plain, layers::single, blended::no, shadowed::no);
    for (auto _ : state) {
        state.PauseTiming();
        cleardepth(s.target.t);
        state.ResumeTiming();
        for (const rastertriangle& f : faces) draw(&f);
        benchmark::ClobberMemory();
    }
    rates(state, 0, s.faces.count(), s.faces.pixels);
}

void peer(benchmark::State& state) {
    groundview& s = scene();
    llvmpipe* p = llvmpipe::instance();
    if (!p) return state.SkipWithError(llvmpipe::failure());
    p->load(s.faces, peerfill::textured, s.texels.data(), 0);
    drawloaded(state, *p);
    rates(state, 0, s.faces.count(), s.faces.pixels);
}

void upload(benchmark::State& state) {
    groundview& s = scene();
    hosttile h;
    const tilesource source = h.source(5, 6);
    genericground** slot = s.g->slot(5, 6);
    for (auto _ : state) {
        delete *slot;
        *slot = buildtile(*s.g, 5, 6, source);
    }
    rates(state, 1, 0, 0);
}

[[maybe_unused]] const bool registered = [] {
    benchmark::RegisterBenchmark("ground/view", view)->UseRealTime()->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("ground/single", single)->UseRealTime()->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("llvmpipe/groundsingle", peer)->UseRealTime()->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("ground/upload", upload);
    compareto("ground/single/real_time", "llvmpipe/groundsingle/real_time");
    compareto("ground/view/real_time", "llvmpipe/groundsingle/real_time");
    return true;
}();

}  // namespace
