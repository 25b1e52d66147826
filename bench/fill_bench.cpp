// Clears and rectangles on a 1024x768 target against memset of the same buffer, the limit that
// the store paths aim at.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>

#include "ratio.h"
#include "target.h"
#include "toolkit/blend.h"
#include "toolkit/fill.h"
#include "toolkit/toolkit.h"

namespace {

constexpr int width = benchtarget::width, height = benchtarget::height;
using target = benchtarget;

void pixels(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * width * height);
    state.SetBytesProcessed(state.iterations() * width * height * 4);
}

void BM_memset(benchmark::State& state) {
    target g;
    int v = 0;
    for (auto _ : state) {
        memset(g.t.colourbuffer, ++v, width * height * 4);
        benchmark::ClobberMemory();
    }
    pixels(state);
}
BENCHMARK(BM_memset);

void BM_depthclear(benchmark::State& state) {
    target g;
    for (auto _ : state) {
        cleardepth(g.t);
        benchmark::ClobberMemory();
    }
    pixels(state);
}
BENCHMARK(BM_depthclear);

// A rectangle from column x, w columns wide, over every row.
void rectangle(benchmark::State& state, int x, int w, uint32_t colour, int mode) {
    target g;
    for (auto _ : state) {
        drawrectangle(g.t, x, 0, w, height, colour, mode);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * w * height);
    state.SetBytesProcessed(state.iterations() * w * height * 4);
}
BENCHMARK_CAPTURE(rectangle, colourclear, 0, width, 0xFF000000u, replace);
// An opaque blended rectangle that covers the target takes the store path.
BENCHMARK_CAPTURE(rectangle, opaque, 0, width, 0xFF336699u, blend);
// Not the whole target: the per-row split into head, body and tail.
BENCHMARK_CAPTURE(rectangle, opaquerows, 1, width - 2, 0xFF336699u, replace);
BENCHMARK_CAPTURE(rectangle, blend, 0, width, 0x80336699u, blend);
BENCHMARK_CAPTURE(rectangle, add, 0, width, 0x01010101u, add);

[[maybe_unused]] const bool compared = [] {
    compareto("rectangle/colourclear", "BM_memset");
    compareto("BM_depthclear", "BM_memset");
    compareto("rectangle/opaque", "BM_memset");
    compareto("rectangle/opaquerows", "BM_memset");
    return true;
}();

}  // namespace
