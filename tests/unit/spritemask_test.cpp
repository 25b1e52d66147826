// The sprite through a span mask: each row runs where the sprite, the clip rectangle, the mask's
// rectangle and the row's span overlap, alpha-blended in groups from the run's own start.
#include <gtest/gtest.h>

#include <vector>

#include "sprite/drawsprite.h"
#include "spritereference.h"
#include "testmask.h"

namespace {

TEST(spritemask, matchesspansclippedbythemaskrectangle) {
    testrng rng(21);
    auto widths = runnablewidths();
    for (int round = 0; round < 2000; ++round) {
        lanewidth lanes = widths[round % widths.size()];
        testtarget g(30, 20);
        fillrandom(g, rng);
        setcliprect(g.t, int(rng() % 8), int(rng() % 6), 30 - int(rng() % 8), 20 - int(rng() % 6));
        int width = 1 + int(rng() % 24), height = 1 + int(rng() % 12);
        std::vector<uint32_t> pixels(width * height);
        for (uint32_t& p : pixels) p = randompixel(rng);
        spriteimage image{pixels.data(), width, height, width, int(rng() % 5) - 2, int(rng() % 5) - 2, 0, 0};
        testmask m;
        m.randomise(rng, 16, 30);
        m.mask.width = int(rng() % 34);
        m.mask.height = int(rng() % 24);
        int x = int(rng() % 40) - 10, y = int(rng() % 30) - 8, maskx = int(rng() % 30) - 8, masky = int(rng() % 20) - 6;

        std::vector<uint32_t> expect(g.colour.get(), g.colour.get() + g.pixels());
        const int* clip = g.t.cliprect;
        int left = std::max(clip[0], maskx), right = std::min(clip[2], maskx + m.mask.width);
        int bottom = std::min(clip[3], masky + m.mask.height);
        for (int py = std::max(clip[1], masky); py < bottom; ++py) {
            int row = py - y - image.padtop, maskrow = py - masky;
            if (row < 0 || row >= height || maskrow >= std::min(m.mask.offsetcount, m.mask.widthcount)) continue;
            int span = maskx + m.mask.offsets[maskrow];
            int from = std::max({left, x + image.padleft, span});
            int to = std::min({right, x + image.padleft + width, span + m.mask.widths[maskrow]});
            for (int px = from; px < to; ++px) {
                uint32_t& d = expect[py * 30 + px];
                bool group = px - from < ((to - from) & ~3);
                d = spritereference::pixel(1, 1, group, pixels[row * width + px - x - image.padleft], 0, d);
            }
        }
        drawthroughmask(g.t, image, x, y, m.mask, maskx, masky, lanes);
        ASSERT_EQ(firstdifference(g, expect), -1) << "round " << round;
        ASSERT_TRUE(g.colour.intact());
    }
}

}  // namespace
