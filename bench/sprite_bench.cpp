// Sprite draws against pixman compositing the same pixels into a target of the same size, in the
// same run: a 64x64 image with varied alpha at its own size under each write rule, and scaled to
// 128x96 with nearest sampling. pixman takes premultiplied colour, so it gets a premultiplied copy.
#include <benchmark/benchmark.h>
#include <pixman.h>

#include <cstdlib>
#include <random>
#include <vector>

#include "ratio.h"
#include "sprite/drawscaled.h"
#include "sprite/drawsprite.h"
#include "sprite/spriterows.h"
#include "toolkit/blend.h"

namespace {

constexpr int side = 64, targetwidth = 256, targetheight = 256, scaledwidth = 128, scaledheight = 96;

struct scene {
    std::vector<uint32_t> straight = std::vector<uint32_t>(side * side);
    std::vector<uint32_t> premultiplied = std::vector<uint32_t>(side * side);
    uint32_t* colour;
    toolkit t{};
    pixman_image_t* source;
    pixman_image_t* target;

    scene() {
        std::mt19937 random(3);
        for (int y = 0; y < side; ++y)
            for (int x = 0; x < side; ++x) {
                uint32_t a = (x * 3 + y * 5 + random() % 64) & 0xFF, c = random() & 0xFFFFFF;
                straight[y * side + x] = a << 24 | c;
                uint32_t p = a << 24;
                for (int s = 0; s < 24; s += 8) p |= ((c >> s & 0xFF) * a / 255) << s;
                premultiplied[y * side + x] = p;
            }
        colour = static_cast<uint32_t*>(aligned_alloc(64, targetwidth * targetheight * 4));
        for (int i = 0; i < targetwidth * targetheight; ++i) colour[i] = 0xFF000000u | random();
        t.width = targetwidth;
        t.height = targetheight;
        t.colourbuffer = colour;
        setcliprect(t, 0, 0, targetwidth, targetheight);
        source = pixman_image_create_bits(PIXMAN_a8r8g8b8, side, side, premultiplied.data(), side * 4);
        target = pixman_image_create_bits(PIXMAN_a8r8g8b8, targetwidth, targetheight, colour, targetwidth * 4);
    }
    ~scene() {
        pixman_image_unref(source);
        pixman_image_unref(target);
        free(colour);
    }
    spriteimage image() const { return {straight.data(), side, side, side, 0, 0, 0, 0}; }
};

void ownsize(benchmark::State& state, int blend) {
    scene s;
    for (auto _ : state) {
        drawsprite(s.t, s.image(), 10, 10, 1, 0, blend);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * side * side);
}

void pixmanownsize(benchmark::State& state, pixman_op_t op) {
    scene s;
    for (auto _ : state) {
        pixman_image_composite32(op, s.source, nullptr, s.target, 0, 0, 0, 0, 10, 10, side, side);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * side * side);
}

// The same draws held to four pixels per pass, as on processors without AVX2.
struct narrowonly {
    const rowtables* saved = spriterowtables;
    narrowonly() { spriterowtables = &narrowrows; }
    ~narrowonly() { spriterowtables = saved; }
};

void BM_spritealpha(benchmark::State& state) { ownsize(state, blend); }
void BM_spritealphanarrow(benchmark::State& state) {
    narrowonly n;
    ownsize(state, blend);
}
void BM_spriteadditive(benchmark::State& state) { ownsize(state, add); }
void BM_spritestore(benchmark::State& state) { ownsize(state, replace); }
void BM_pixmanover(benchmark::State& state) { pixmanownsize(state, PIXMAN_OP_OVER); }
void BM_pixmanadd(benchmark::State& state) { pixmanownsize(state, PIXMAN_OP_ADD); }
void BM_pixmansrc(benchmark::State& state) { pixmanownsize(state, PIXMAN_OP_SRC); }
BENCHMARK(BM_spritealpha);
BENCHMARK(BM_spritealphanarrow);
BENCHMARK(BM_pixmanover);
BENCHMARK(BM_spriteadditive);
BENCHMARK(BM_pixmanadd);
BENCHMARK(BM_spritestore);
BENCHMARK(BM_pixmansrc);

void scaled(benchmark::State& state) {
    scene s;
    for (auto _ : state) {
        drawscaled(s.t, s.image(), 10, 10, scaledwidth, scaledheight, 1, 0, blend);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * scaledwidth * scaledheight);
}

void BM_spritescaledalpha(benchmark::State& state) { scaled(state); }
void BM_spritescaledalphanarrow(benchmark::State& state) {
    narrowonly n;
    scaled(state);
}
BENCHMARK(BM_spritescaledalpha);
BENCHMARK(BM_spritescaledalphanarrow);

void BM_pixmanscaledover(benchmark::State& state) {
    scene s;
    pixman_transform_t scale;
    pixman_transform_init_scale(&scale, pixman_double_to_fixed(double(side) / scaledwidth),
                                pixman_double_to_fixed(double(side) / scaledheight));
    pixman_image_set_transform(s.source, &scale);
    pixman_image_set_filter(s.source, PIXMAN_FILTER_NEAREST, nullptr, 0);
    for (auto _ : state) {
        pixman_image_composite32(PIXMAN_OP_OVER, s.source, nullptr, s.target, 0, 0, 0, 0, 10, 10, scaledwidth,
                                 scaledheight);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * scaledwidth * scaledheight);
}
BENCHMARK(BM_pixmanscaledover);

[[maybe_unused]] const bool compared = [] {
    compareto("BM_spritealpha", "BM_pixmanover");
    compareto("BM_spritealphanarrow", "BM_pixmanover");
    compareto("BM_spriteadditive", "BM_pixmanadd");
    compareto("BM_spritestore", "BM_pixmansrc");
    compareto("BM_spritescaledalpha", "BM_pixmanscaledover");
    compareto("BM_spritescaledalphanarrow", "BM_pixmanscaledover");
    return true;
}();

}  // namespace
