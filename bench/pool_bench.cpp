// The pool's allocation beside the C library's malloc and free of the same sizes, and the cost
// of compaction per MB beside a plain memmove of the same bytes.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "ratio.h"
#include "util/memory/memorymanager.h"

namespace {

constexpr int batch = 1024;

// Sizes of the arrays models and fonts keep: mostly small, a few larger.
const std::vector<int>& sizes() {
    static const std::vector<int> list = [] {
        std::mt19937 random(7);
        std::vector<int> s(batch);
        for (int& n : s) n = random() % 8 == 0 ? 1024 + random() % 8192 : 16 + random() % 1008;
        return s;
    }();
    return list;
}

// A batch of blocks taken and all released: in steady state every allocation is a bump.
void BM_poolbump(benchmark::State& state) {
    memorymanager pool(16 << 20);
    std::vector<allocatedmemory<uint8_t>> handles(batch);
    for (auto _ : state) {
        for (int i = 0; i < batch; ++i) pool.allocate(handles[i], sizes()[i]);
        benchmark::DoNotOptimize(handles[batch - 1].get());
        for (auto& h : handles) h.release();
    }
    state.SetItemsProcessed(state.iterations() * batch);
}
BENCHMARK(BM_poolbump);

void BM_mallocfree(benchmark::State& state) {
    std::vector<void*> blocks(batch);
    for (auto _ : state) {
        for (int i = 0; i < batch; ++i) blocks[i] = malloc(sizes()[i]);
        benchmark::DoNotOptimize(blocks[batch - 1]);
        for (void* b : blocks) free(b);
    }
    state.SetItemsProcessed(state.iterations() * batch);
}
BENCHMARK(BM_mallocfree);

// A rolling set of 256 live blocks, each replaced in turn, in an arena four times their size:
// the top is reached every few hundred allocations and the arena compacts.
void BM_poolcompacting(benchmark::State& state) {
    memorymanager pool(4 * 256 * 2048);
    std::vector<allocatedmemory<uint8_t>> handles(256);
    int next = 0;
    for (auto _ : state) {
        for (int i = 0; i < batch; ++i, next = (next + 1) & 255) pool.allocate(handles[next], sizes()[i] & 2047);
        benchmark::DoNotOptimize(handles[next].get());
    }
    state.SetItemsProcessed(state.iterations() * batch);
}
BENCHMARK(BM_poolcompacting);

void BM_mallocfreerolling(benchmark::State& state) {
    std::vector<void*> blocks(256);
    int next = 0;
    for (auto _ : state) {
        for (int i = 0; i < batch; ++i, next = (next + 1) & 255) {
            free(blocks[next]);
            blocks[next] = malloc(sizes()[i] & 2047);
        }
        benchmark::DoNotOptimize(blocks[next]);
    }
    for (void* b : blocks) free(b);
    state.SetItemsProcessed(state.iterations() * batch);
}
BENCHMARK(BM_mallocfreerolling);

constexpr int compactedmb = 10;
constexpr int blocksize = 1000;

// 10 MB of blocks; each round the oldest goes, the rest slide down over it, and a new block
// takes the top. The counter is the time per MB compacted.
void BM_compact10MB(benchmark::State& state) {
    constexpr int count = compactedmb * (1 << 20) / blocksize;
    memorymanager pool(compactedmb << 20);
    std::vector<allocatedmemory<uint8_t>> handles(count);
    for (auto& h : handles) pool.allocate(h, blocksize);
    int oldest = 0;
    for (auto _ : state) {
        handles[oldest].release();
        benchmark::DoNotOptimize(pool.compact());
        pool.allocate(handles[oldest], blocksize);
        oldest = (oldest + 1) % count;
    }
    state.counters["per MB"] = benchmark::Counter(static_cast<double>(state.iterations()) * compactedmb,
                                                  benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_compact10MB)->Unit(benchmark::kMillisecond);

void BM_memmove10MB(benchmark::State& state) {
    std::unique_ptr<uint8_t[]> bytes(new uint8_t[(compactedmb << 20) + blocksize]());
    for (auto _ : state) {
        memmove(bytes.get(), bytes.get() + blocksize, compactedmb << 20);
        benchmark::DoNotOptimize(bytes.get());
    }
    state.counters["per MB"] = benchmark::Counter(static_cast<double>(state.iterations()) * compactedmb,
                                                  benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_memmove10MB)->Unit(benchmark::kMillisecond);

[[maybe_unused]] const bool compared = [] {
    compareto("BM_poolbump", "BM_mallocfree");
    compareto("BM_poolcompacting", "BM_mallocfreerolling");
    compareto("BM_compact10MB", "BM_memmove10MB");
    return true;
}();

}  // namespace
