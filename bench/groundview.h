// The ground benchmark's view, for benchmarks that change its ground and draw it again: a ground
// of `groundviewside` tiles a side of `groundviewtile` units, and the frames of the whole view.
#pragma once
#include <benchmark/benchmark.h>

struct ground;

inline constexpr int groundviewside = 64, groundviewtile = 128;

ground& groundviewground();
// The frames of the whole view; `eachframe`, if given, changes the ground before each frame's draw
// and counts in its time.
void groundviewframes(benchmark::State& state, void (*eachframe)(ground&, int) = nullptr);
