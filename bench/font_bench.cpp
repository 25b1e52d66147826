// Text: a line-by-line page of 12 by 12 glyphs over a 1024x768 target, in each font class and
// form, against the plainest loop that stores the same glyphs pixel by pixel.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <random>

#include "ratio.h"
#include "sprite/fontdraw.h"
#include "toolkit/toolkit.h"
#include "util/memory/memorypool.h"

namespace {

constexpr int width = 1024, height = 768, size = 12, glyphcount = 96;

// Glyph shapes with about a third of their bytes set, some fully and some in between, as
// anti-aliased text has.
struct page {
    toolkit t{};
    memorypool pool{1 << 20, nullptr};
    font f{nullptr, glyphcount};

    page() {
        t.width = width;
        t.height = height;
        t.colourbuffer = static_cast<uint32_t*>(aligned_alloc(64, width * height * 4));
        memset(t.colourbuffer, 0x40, width * height * 4);
        setcliprect(t, 0, 0, width, height);
        std::mt19937 rng(5);
        table(f.widths, size);
        table(f.heights, size);
        table(f.tops, 0);
        table(f.lefts, 0);
        pool.allocate(f.palette, 256);
        for (int i = 0; i < 256; ++i) f.palette[i] = static_cast<jint>(rng());
        for (int g = 0; g < glyphcount; ++g) {
            pool.allocate(f.glyphs[g], size * size);
            for (int i = 0; i < size * size; ++i) {
                uint32_t r = rng() % 6;
                f.glyphs[g][i] = static_cast<jbyte>(r < 4 ? 0 : r == 4 ? 255 : rng() % 254 + 1);
            }
        }
    }
    ~page() { free(t.colourbuffer); }

    void table(allocatedmemory<jint>& into, int value) {
        pool.allocate(into, glyphcount);
        for (int i = 0; i < glyphcount; ++i) into[i] = value;
    }

    // One glyph per cell of the page, row by row, cycling through the font.
    template <class Draw>
    void run(benchmark::State& state, Draw draw) {
        int cols = width / size, rows = height / size, n = 0;
        for (auto _ : state) {
            for (int y = 0; y < rows; ++y)
                for (int x = 0; x < cols; ++x, ++n) draw(n % glyphcount, x * size, y * size);
            benchmark::ClobberMemory();
        }
        long glyphs = static_cast<long>(state.iterations()) * cols * rows;
        state.SetItemsProcessed(glyphs);
        state.counters["pixels"] = benchmark::Counter(static_cast<double>(glyphs) * size * size,
                                                      benchmark::Counter::kIsRate);
    }
};

void glyphs(benchmark::State& state, fontkind kind, uint32_t colour, bool mono) {
    page p;
    p.run(state, [&](int g, int x, int y) { drawtext(p.t, p.f, kind, g, x, y, colour, mono, nullptr); });
}
BENCHMARK_CAPTURE(glyphs, coverage, fontkind::coverage, 0xFF336699u, false);
BENCHMARK_CAPTURE(glyphs, monoopaque, fontkind::mono, 0xFF336699u, false);
BENCHMARK_CAPTURE(glyphs, monofade, fontkind::mono, 0x80336699u, false);
BENCHMARK_CAPTURE(glyphs, palette, fontkind::palette, 0, false);
BENCHMARK_CAPTURE(glyphs, palettemono, fontkind::palette, 0xFF336699u, true);

// Each byte tested and stored on its own, with the clipping done once per glyph.
void BM_plainstoreloop(benchmark::State& state) {
    page p;
    p.run(state, [&](int g, int x, int y) {
        const jbyte* s = p.f.glyphs[g].get();
        uint32_t* row = p.t.colourbuffer + static_cast<long>(y) * width + x;
        for (int j = 0; j < size; ++j, row += width, s += size)
            for (int i = 0; i < size; ++i)
                if (s[i]) row[i] = 0xFF336699u;
    });
}
BENCHMARK(BM_plainstoreloop);

[[maybe_unused]] const bool compared = [] {
    compareto("glyphs/monoopaque", "BM_plainstoreloop");
    compareto("glyphs/palettemono", "BM_plainstoreloop");
    compareto("glyphs/coverage", "BM_plainstoreloop");
    return true;
}();

}  // namespace
