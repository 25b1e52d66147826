// Clears and rectangles on a 1024x768 target against memset of the same buffer, the limit that
// the store paths aim at.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>

#include "ratio.h"
#include "toolkit/blend.h"
#include "toolkit/fill.h"
#include "toolkit/toolkit.h"

namespace {

constexpr int width = 1024, height = 768;

struct target {
    toolkit t{};
    target() {
        t.width = width;
        t.height = height;
        t.colourbuffer = static_cast<uint32_t*>(aligned_alloc(64, width * height * 4));
        t.depthbuffer = static_cast<float*>(aligned_alloc(64, width * height * 4));
        memset(t.colourbuffer, 0, width * height * 4);
        memset(t.depthbuffer, 0, width * height * 4);
        setcliprect(t, 0, 0, width, height);
    }
    ~target() {
        free(t.colourbuffer);
        free(t.depthbuffer);
    }
};

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

void BM_colourclear(benchmark::State& state) {
    target g;
    uint32_t c = 0;
    for (auto _ : state) {
        drawrectangle(g.t, 0, 0, width, height, ++c, replace);
        benchmark::ClobberMemory();
    }
    pixels(state);
}
BENCHMARK(BM_colourclear);

void BM_depthclear(benchmark::State& state) {
    target g;
    for (auto _ : state) {
        cleardepth(g.t);
        benchmark::ClobberMemory();
    }
    pixels(state);
}
BENCHMARK(BM_depthclear);

// An opaque blended rectangle that covers the target takes the store path.
void BM_opaquerectangle(benchmark::State& state) {
    target g;
    for (auto _ : state) {
        drawrectangle(g.t, 0, 0, width, height, 0xFF336699, blend);
        benchmark::ClobberMemory();
    }
    pixels(state);
}
BENCHMARK(BM_opaquerectangle);

// Not the whole target: the per-row split into head, body and tail.
void BM_opaquerectanglerows(benchmark::State& state) {
    target g;
    for (auto _ : state) {
        drawrectangle(g.t, 1, 0, width - 2, height, 0xFF336699, replace);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * (width - 2) * height);
}
BENCHMARK(BM_opaquerectanglerows);

void BM_blendrectangle(benchmark::State& state) {
    target g;
    for (auto _ : state) {
        drawrectangle(g.t, 0, 0, width, height, 0x80336699, blend);
        benchmark::ClobberMemory();
    }
    pixels(state);
}
BENCHMARK(BM_blendrectangle);

void BM_addrectangle(benchmark::State& state) {
    target g;
    for (auto _ : state) {
        drawrectangle(g.t, 0, 0, width, height, 0x01010101, add);
        benchmark::ClobberMemory();
    }
    pixels(state);
}
BENCHMARK(BM_addrectangle);

[[maybe_unused]] const bool compared = [] {
    compareto("BM_colourclear", "BM_memset");
    compareto("BM_depthclear", "BM_memset");
    compareto("BM_opaquerectangle", "BM_memset");
    compareto("BM_opaquerectanglerows", "BM_memset");
    return true;
}();

}  // namespace
