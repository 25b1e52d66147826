// Triangles on a 1024x768 target with a depth buffer against llvmpipe (one thread) drawing the
// same seeded triangles in the same run: Gouraud triangles of about 50 and 1000 pixels, textured
// ones (128x128, nearest, repeat) and blended ones by a constant weight. Every covered pixel passes
// the depth test: each batch starts on a cleared depth buffer (the clear is not timed) and each
// triangle lies nearer than those before it.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "llvmpipe.h"
#include "ratio.h"
#include "target.h"
#include "trianglework.h"

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

void peer(benchmark::State& state, const workload* w) {
    llvmpipe* p = llvmpipe::instance();
    if (!p) {
        state.SkipWithError(llvmpipe::failure());
        return;
    }
    const trianglework& work = triangles(w);
    p->load(work, w->fill, texture().data(), blendweight);
    // The first draw of a fill compiles its shaders.
    p->draw();
    p->finish();
    for (auto _ : state) {
        state.PauseTiming();
        p->cleardepth();
        state.ResumeTiming();
        p->draw();
        p->finish();
    }
    rates(state, work, true);
}

[[maybe_unused]] const bool registered = [] {
    for (const workload& w : workloads) {
        std::string name = w.name;
        benchmark::RegisterBenchmark(("llvmpipe/" + name).c_str(), peer, &w)->UseRealTime();
    }
    return true;
}();

}  // namespace
