// Lines and discs on a 1024x768 target, in pixels drawn per second, by blend mode. Nothing draws
// the same shapes to compare with; BM_memset of the fill benchmarks gives the store rate of the
// memory in the same run.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

#include "toolkit/blend.h"
#include "toolkit/disc.h"
#include "toolkit/line.h"
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
        for (int i = 0; i < width * height; ++i) t.depthbuffer[i] = static_cast<float>(i % 7);
        setcliprect(t, 0, 0, width, height);
    }
    ~target() {
        free(t.colourbuffer);
        free(t.depthbuffer);
    }
    // Pixels that one draw changes, counted on a cleared target.
    template <class Draw>
    long long count(Draw draw) {
        memset(t.colourbuffer, 0, width * height * 4);
        draw();
        long long n = 0;
        for (int i = 0; i < width * height; ++i) n += t.colourbuffer[i] != 0;
        return n;
    }
};

struct line {
    int x1, y1, x2, y2;
};
struct disc {
    int x, y, radius;
};

// Lines of 16 to 512 pixels in every direction, all inside the target.
const std::vector<line>& lines() {
    static const std::vector<line> all = [] {
        std::mt19937 rng(1);
        std::vector<line> v;
        while (v.size() < 1000) {
            int x1 = rng() % width, y1 = rng() % height, length = 16 + rng() % 497;
            double angle = (rng() % 6283) / 1000.0;
            int x2 = x1 + static_cast<int>(length * std::cos(angle)),
                y2 = y1 + static_cast<int>(length * std::sin(angle));
            if (x2 >= 0 && x2 < width && y2 >= 0 && y2 < height) v.push_back({x1, y1, x2, y2});
        }
        return v;
    }();
    return all;
}

// Discs of radius 1 to 48, as particles and markers are, all inside the target.
const std::vector<disc>& discs() {
    static const std::vector<disc> all = [] {
        std::mt19937 rng(2);
        std::vector<disc> v;
        for (int i = 0; i < 1000; ++i) {
            int r = 1 + rng() % 48;
            v.push_back(
                {r + static_cast<int>(rng() % (width - 2 * r)), r + static_cast<int>(rng() % (height - 2 * r)), r});
        }
        return v;
    }();
    return all;
}

void BM_lines(benchmark::State& state) {
    target g;
    const int mode = static_cast<int>(state.range(0));
    long long drawn = 0;
    for (const line& l : lines()) drawn += g.count([&] { drawline(g.t, l.x1, l.y1, l.x2, l.y2, 0xFFFFFFFF, replace); });
    for (auto _ : state) {
        for (const line& l : lines()) drawline(g.t, l.x1, l.y1, l.x2, l.y2, 0x80336699, mode);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * drawn);
}
BENCHMARK(BM_lines)->Arg(replace)->Arg(blend)->Arg(add);

// Argument: mode, and 1 for the depth test of particles.
void BM_discs(benchmark::State& state) {
    target g;
    const int mode = static_cast<int>(state.range(0));
    float* depth = g.t.depthbuffer;
    g.t.depthbuffer = nullptr;
    long long drawn = 0;
    for (const disc& d : discs()) drawn += g.count([&] { drawdisc(g.t, d.x, d.y, d.radius, 0, 0xFFFFFFFF, replace); });
    if (state.range(1)) g.t.depthbuffer = depth;
    for (auto _ : state) {
        for (const disc& d : discs()) drawdisc(g.t, d.x, d.y, d.radius, 3.0f, 0x80336699, mode);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * drawn);
}
BENCHMARK(BM_discs)->Args({replace, 0})->Args({blend, 0})->Args({add, 0})->Args({blend, 1});

}  // namespace
