// Sprite draws against pixman compositing the same pixels into a target of the same size, in the
// same run: a 64x64 image with varied alpha at its own size under each write rule, and scaled to
// 128x96 with nearest sampling. pixman takes premultiplied colour, so it gets a premultiplied copy.
#include <benchmark/benchmark.h>
#include <pixman.h>

#include <cstdlib>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "ratio.h"
#include "sprite/drawscaled.h"
#include "sprite/drawsprite.h"
#include "sprite/rules.h"

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

// The plain members under each write rule; the other tints cost about the same.
constexpr auto plainrules = slice<spriterules, tintmode, tintmode::plain>();

// pixman's operator for each write rule, in the order of `blendmode`.
struct peer {
    const char* name;
    pixman_op_t op;
};
constexpr peer peers[] = {
    {"pixman/src", PIXMAN_OP_SRC}, {"pixman/over", PIXMAN_OP_OVER}, {"pixman/add", PIXMAN_OP_ADD}};
static_assert(std::size(peers) == axiscount<blendmode>);

// "family/member/width".
std::string benchname(const char* family, pixelrule rule, lanewidth lanes) {
    return std::string(family) + "/" + rule.name() + "/" + std::string(axisname(lanes));
}

void ownsize(benchmark::State& state, pixelrule rule, lanewidth lanes) {
    scene s;
    for (auto _ : state) {
        drawsprite(s.t, s.image(), 10, 10, int(rule.get<tintmode>()), 0, rule.get<blendmode>(), lanes);
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

void scaled(benchmark::State& state, pixelrule rule, lanewidth lanes) {
    scene s;
    for (auto _ : state) {
        drawscaled(s.t, s.image(), 10, 10, scaledwidth, scaledheight, int(rule.get<tintmode>()), 0,
                   rule.get<blendmode>(), lanes);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * scaledwidth * scaledheight);
}

// Each plain member at every lane width this processor runs (four, as on processors without
// AVX2, and eight where it can), named by member and width, beside pixman's operator.
[[maybe_unused]] const bool registered = [] {
    for (pixelrule rule : plainrules) {
        const peer& p = peers[rule.get<blendmode>()];
        for (lanewidth lanes : runnablewidths()) {
            std::string ours = benchname("sprite", rule, lanes);
            benchmark::RegisterBenchmark(ours.c_str(), ownsize, rule, lanes);
            compareto(ours.c_str(), p.name);
        }
        benchmark::RegisterBenchmark(p.name, pixmanownsize, p.op);
    }
    constexpr pixelrule alpha(tintmode::plain, blend);
    for (lanewidth lanes : runnablewidths()) {
        std::string ours = benchname("spritescaled", alpha, lanes);
        benchmark::RegisterBenchmark(ours.c_str(), scaled, alpha, lanes);
        compareto(ours.c_str(), "BM_pixmanscaledover");
    }
    return true;
}();

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

}  // namespace
