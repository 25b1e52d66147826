// How many pixels a row loop takes at once: four in 128-bit registers, or eight in 256-bit ones on
// processors with AVX2, with the same bits either way. A family built at both widths has one file
// per width; the widest this processor runs is found once, and draws are handed a width rather
// than looking it up, so tests and benchmarks can ask for either.
#pragma once
#include <array>
#include <string_view>
#include <vector>

enum class lanewidth : int { four, eight };
constexpr std::array<std::string_view, 2> axisnames(lanewidth) { return {"four", "eight"}; }

lanewidth widestlanes();

// Every width this processor runs, narrowest first: what tests and benchmarks go through.
inline std::vector<lanewidth> runnablewidths() {
    if (widestlanes() == lanewidth::eight) return {lanewidth::four, lanewidth::eight};
    return {lanewidth::four};
}
