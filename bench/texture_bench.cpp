// Texture loads through the load's smoothing, beside a copy of the same 64 KB into the slot: the
// limit of a load that did nothing but move the pixels.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

#include "ratio.h"
#include "toolkit/texturefilter.h"
#include "toolkit/texturestore.h"

namespace {

constexpr int texels = texturesize * texturesize;

// A texture with a transparent quarter, so that a keyed load renormalises at its edges.
std::vector<uint32_t> texture() {
    std::mt19937 random(11);
    std::vector<uint32_t> t(texels);
    for (int i = 0; i < texels; ++i) t[i] = i % texturesize < 32 ? 0 : random() | 0xFF000000u;
    return t;
}

struct slot {
    uint32_t* pixels = static_cast<uint32_t*>(aligned_alloc(64, texturesize * atlaspitch * 4));
    ~slot() { free(pixels); }
};

void load(benchmark::State& state, bool opaque) {
    std::vector<uint32_t> in = texture();
    slot out;
    for (auto _ : state) {
        filtertexture(in.data(), out.pixels, atlaspitch, opaque, true, false);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations());
    state.SetBytesProcessed(state.iterations() * texels * 4);
}
BENCHMARK_CAPTURE(load, opaque, true);
BENCHMARK_CAPTURE(load, keyed, false);

void BM_texturecopy(benchmark::State& state) {
    std::vector<uint32_t> in = texture();
    slot out;
    for (auto _ : state) {
        for (int y = 0; y < texturesize; ++y)
            memcpy(out.pixels + y * atlaspitch, in.data() + y * texturesize, texturesize * 4);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations());
    state.SetBytesProcessed(state.iterations() * texels * 4);
}
BENCHMARK(BM_texturecopy);

[[maybe_unused]] const bool compared = [] {
    compareto("load/opaque", "BM_texturecopy");
    compareto("load/keyed", "BM_texturecopy");
    return true;
}();

}  // namespace
