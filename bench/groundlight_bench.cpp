// The ground view with four point lights on every tile it draws, in frames a second beside the
// same view without them in the same run (the cost of the lights as a ratio), and a light of a
// reach of eight tiles added and taken off again, a second.
#include <benchmark/benchmark.h>

#include <vector>

#include "ground/lights.h"
#include "ground/tile.h"
#include "groundview.h"
#include "ratio.h"

namespace {

constexpr int across = 15, spacing = groundviewside * groundviewtile / across;

// Lights of eight tiles' reach a little above the ground on a grid over it: more than four reach
// each tile, and a tile keeps four.
void lit(benchmark::State& state) {
    ground& g = groundviewground();
    const std::vector<int32_t> modes(1024, 1);
    for (int i = 0; i < across * across; ++i)
        addlight(g, i, spacing / 2 + i % across * spacing, -400, spacing / 2 + i / across * spacing,
                 8 * groundviewtile, 0x80FFC0, modes.data(), int(modes.size()));
    const std::vector<float> intensities(across * across, 0.8f);
    setintensities(g, intensities.data(), int(intensities.size()));
    int four = 0;
    for (int i = 0; i < g.slotcount; ++i) four += !g.tiles[i]->lightblock.empty() && g.tiles[i]->lightblock[g.tiles[i]->lightindex].count == 4;
    groundviewframes(state);
    state.counters["tiles with four"] = four;
    for (int i = 0; i < across * across; ++i) removelight(g, i);
}

void addremove(benchmark::State& state) {
    ground& g = groundviewground();
    const std::vector<int32_t> modes(1024, 1);
    const int middle = groundviewside * groundviewtile / 2;
    for (auto _ : state) {
        addlight(g, 1, middle, -400, middle, 8 * groundviewtile, 0xFFFFFF, modes.data(), int(modes.size()));
        removelight(g, 1);
    }
    state.counters["lights"] = benchmark::Counter(double(state.iterations()), benchmark::Counter::kIsRate);
}

[[maybe_unused]] const bool registered = [] {
    benchmark::RegisterBenchmark("ground/litview", lit)->UseRealTime()->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("ground/lightaddremove", addremove)->UseRealTime();
    compareto("ground/litview/real_time", "ground/view/real_time");
    return true;
}();

}  // namespace
