// A 64x64 image with varied alpha turned by 30 degrees about its centre and alpha-blended, against
// pixman's OVER of the same pixels (premultiplied for it) through the same turn with nearest
// sampling, in the same run. Both count the image's 64 * 64 pixels per draw.
#include <benchmark/benchmark.h>
#include <pixman.h>

#include <cmath>
#include <cstdlib>
#include <vector>

#include "ratio.h"
#include "sprite/drawturned.h"
#include "toolkit/blend.h"

namespace {

constexpr int side = 64, targetside = 256;
constexpr double angle = M_PI / 6;
// The turned image's bounding box, and its centre on the target.
constexpr int box = 88, boxcorner = 40;
constexpr double centre = boxcorner + box / 2.0;

struct turnedscene {
    std::vector<uint32_t> straight, premultiplied, colour;
    toolkit t{};

    turnedscene() : straight(side * side), premultiplied(side * side), colour(targetside * targetside, 0xFF204060u) {
        for (int i = 0; i < side * side; ++i) {
            uint32_t a = uint32_t(i * 7) & 0xFF, c = uint32_t(i * 2654435761u) & 0xFFFFFF;
            straight[i] = a << 24 | c;
            premultiplied[i] = a << 24;
            for (int s = 0; s < 24; s += 8) premultiplied[i] |= ((c >> s & 0xFF) * a / 255) << s;
        }
        t.width = t.height = targetside;
        t.colourbuffer = colour.data();
        setcliprect(t, 0, 0, targetside, targetside);
    }
};

void BM_turnedalpha(benchmark::State& state) {
    turnedscene s;
    spriteimage image{s.straight.data(), side, side, side, 0, 0, 0, 0};
    double co = std::cos(angle), si = std::sin(angle);
    auto at = [&](double x, double y, float& outx, float& outy) {
        outx = float(centre + x * co - y * si);
        outy = float(centre + x * si + y * co);
    };
    corners c;
    at(-side / 2.0, -side / 2.0, c.x0, c.y0);
    at(side / 2.0, -side / 2.0, c.x1, c.y1);
    at(-side / 2.0, side / 2.0, c.x2, c.y2);
    for (auto _ : state) {
        drawturned(s.t, image, c, 1, 0, blend);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * side * side);
}
BENCHMARK(BM_turnedalpha);

void BM_pixmanturnedover(benchmark::State& state) {
    turnedscene s;
    pixman_image_t* source = pixman_image_create_bits(PIXMAN_a8r8g8b8, side, side, s.premultiplied.data(), side * 4);
    pixman_image_t* target =
        pixman_image_create_bits(PIXMAN_a8r8g8b8, targetside, targetside, s.colour.data(), targetside * 4);
    // From the target back to the image: about the box's centre, turned back, onto the image's centre.
    pixman_f_transform back;
    pixman_f_transform_init_identity(&back);
    pixman_f_transform_translate(&back, nullptr, -centre, -centre);
    pixman_f_transform_rotate(&back, nullptr, std::cos(-angle), std::sin(-angle));
    pixman_f_transform_translate(&back, nullptr, side / 2.0, side / 2.0);
    pixman_transform_t fixed;
    pixman_transform_from_pixman_f_transform(&fixed, &back);
    pixman_image_set_transform(source, &fixed);
    pixman_image_set_filter(source, PIXMAN_FILTER_NEAREST, nullptr, 0);
    for (auto _ : state) {
        pixman_image_composite32(PIXMAN_OP_OVER, source, nullptr, target, boxcorner, boxcorner, 0, 0, boxcorner,
                                 boxcorner, box, box);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * side * side);
    pixman_image_unref(source);
    pixman_image_unref(target);
}
BENCHMARK(BM_pixmanturnedover);

[[maybe_unused]] const bool compared = [] {
    compareto("BM_turnedalpha", "BM_pixmanturnedover");
    return true;
}();

}  // namespace
