// The mask fill against the mask's own admission test, pixel by pixel over the target.
#include "toolkit/maskfill.h"

#include <gtest/gtest.h>

#include "target.h"
#include "testmask.h"

namespace {

// Random masks, some with a widths table a row short, and clips that are whole, partial or empty.
TEST(maskfill, storesexactlytheadmittedpixelsinsidetheclip) {
    testtarget g(37, 23);
    testmask m;
    testrng rng(17);
    for (int i = 0; i < 3000; ++i) {
        m.randomise(rng, 30, 40);
        int l = static_cast<int>(rng() % 40), tp = static_cast<int>(rng() % 26);
        setcliprect(g.t, l, tp, std::max(l, static_cast<int>(rng() % 38)), std::max(tp, static_cast<int>(rng() % 24)));
        if (i % 10 == 0) setcliprect(g.t, 0, 0, 37, 23);
        int x = static_cast<int>(rng() % 60) - 20, y = static_cast<int>(rng() % 50) - 25;
        uint32_t colour = rng.pixel();
        if (i % 50 == 0) fillrandom(g, rng);
        std::vector<uint32_t> expected(g.colour.get(), g.colour.get() + g.pixels());
        for (int at = 0; at < g.pixels(); ++at)
            if (g.insideclip(at % 37, at / 37) && m.admits(at % 37, at / 37, x, y)) expected[at] = colour;
        fillmask(g.t, colour, m.mask, x, y);
        int at = firstdifference(g, expected);
        ASSERT_EQ(at, -1) << "case " << i << " pixel " << at % 37 << "," << at / 37;
    }
}

TEST(maskfill, nothingwithoutacolourbuffer) {
    testtarget g(8, 8);
    for (int i = 0; i < g.pixels(); ++i) g.colour[i] = 5;
    testmask m;
    m.set({0}, {8});
    g.t.colourbuffer = nullptr;
    fillmask(g.t, 1, m.mask, 0, 0);
    EXPECT_EQ(firstdifference(g, std::vector<uint32_t>(64, 5)), -1);
}

}  // namespace
