// Triangles on a 1024x768 target with a depth buffer against llvmpipe (one thread) drawing the
// same seeded triangles in the same run: Gouraud triangles of about 50 and 1000 pixels, textured
// ones (128x128, nearest, repeat) and blended ones by a constant weight. Every covered pixel passes
// the depth test: each batch starts on a cleared depth buffer (the clear is not timed) and each
// triangle lies nearer than those before it.
//
// Where our time goes: the same draws with the clip rectangle cut to no rows (the triangle set-up
// alone) and to no columns (set-up and the walk down the rows, no pixels), as shares of the full
// draw's time.
#include <benchmark/benchmark.h>
#include <xmmintrin.h>

#include <string>
#include <vector>

#include "llvmpipe.h"
#include "ratio.h"
#include "raster/raster.h"
#include "target.h"
#include "toolkit/fill.h"
#include "trianglework.h"
#include "util/frame.h"

namespace {

constexpr int width = benchtarget::width, height = benchtarget::height;
constexpr int blendweight = 160;

struct workload {
    const char* name;
    int count;
    float area;
    peerfill fill;
};

// About a million pixels a batch.
constexpr workload workloads[] = {
    {"gouraud50", 20000, 50, peerfill::gouraud},
    {"gouraud1000", 1000, 1000, peerfill::gouraud},
    {"textured1000", 1000, 1000, peerfill::textured},
    {"blended1000", 1000, 1000, peerfill::blended},
};

const trianglework& triangles(const workload* w) {
    static std::vector<trianglework> made = [] {
        std::vector<trianglework> v;
        for (const workload& each : workloads) v.push_back(maketriangles(each.count, each.area, width, height, 7));
        return v;
    }();
    return made[w - workloads];
}

const std::vector<uint32_t>& texture() {
    static const std::vector<uint32_t> texels = maketexture(11);
    return texels;
}

void rates(benchmark::State& state, const trianglework& work, bool pixels) {
    using benchmark::Counter;
    if (pixels) state.counters["pixels"] = Counter(double(state.iterations()) * work.pixels, Counter::kIsRate);
    state.counters["triangles"] = Counter(double(state.iterations()) * work.count(), Counter::kIsRate);
}

enum class cut { none, allrows, allcolumns };

void ours(benchmark::State& state, const workload* w, cut c) {
    benchtarget target;
    libraryfloats mode;
    const trianglework& work = triangles(w);
    std::vector<rastertriangle> faces = rasterrecords(work, texture().data(), blendweight);
    trianglefunction draw =
        choosetriangle(widestlanes(), recipe::plain, w->fill == peerfill::textured ? shading::textured : shading::gouraud,
                       alphamode::opaque, wrapmode::repeat, w->fill == peerfill::blended ? blended::yes : blended::no,
                       true, true);
    if (c == cut::allrows) setcliprect(target.t, 0, 0, width, 0);
    if (c == cut::allcolumns) setcliprect(target.t, 0, 0, 0, height);
    for (auto _ : state) {
        state.PauseTiming();
        cleardepth(target.t);
        state.ResumeTiming();
        for (const rastertriangle& f : faces)
            if (accepttriangle(f.position[0], f.position[1], f.position[2])) draw(&f);
        benchmark::ClobberMemory();
    }
    rates(state, work, c == cut::none);
}

void peer(benchmark::State& state, const workload* w) {
    llvmpipe* p = llvmpipe::instance();
    if (!p) {
        state.SkipWithError(llvmpipe::failure());
        return;
    }
    const trianglework& work = triangles(w);
    p->load(work, w->fill, texture().data(), blendweight);
    drawloaded(state, *p);
    rates(state, work, true);
}

[[maybe_unused]] const bool registered = [] {
    // Real time, as the peer's work need not all be on this thread's clock; the reported names
    // end in "real_time".
    for (const workload& w : workloads) {
        auto named = [&](const char* kind) { return std::string(kind) + "/" + w.name; };
        auto reported = [&](const char* kind) { return named(kind) + "/real_time"; };
        benchmark::RegisterBenchmark(named("triangle").c_str(), ours, &w, cut::none)->UseRealTime();
        benchmark::RegisterBenchmark(named("llvmpipe").c_str(), peer, &w)->UseRealTime();
        benchmark::RegisterBenchmark(named("trianglesetup").c_str(), ours, &w, cut::allrows)->UseRealTime();
        benchmark::RegisterBenchmark(named("trianglerows").c_str(), ours, &w, cut::allcolumns)->UseRealTime();
        compareto(reported("triangle").c_str(), reported("llvmpipe").c_str());
        shareof(reported("trianglesetup").c_str(), reported("triangle").c_str());
        shareof(reported("trianglerows").c_str(), reported("triangle").c_str());
    }
    return true;
}();

}  // namespace
