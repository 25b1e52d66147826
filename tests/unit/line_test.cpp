// Lines against a reference that lists each line's points in closed form and then keeps those
// inside the clip (and the mask): the drawing code's clipped walk must give exactly those pixels,
// by each mode's rule.
#include "toolkit/line.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <set>
#include <utility>
#include <vector>

#include "shapereference.h"
#include "target.h"
#include "testmask.h"

namespace {

using shapereference::linepoints;
using shapereference::point;

// Draws the line, through the mask if one is given, and checks every pixel of the target.
void expectline(testtarget& g, int x1, int y1, int x2, int y2, uint32_t colour, int mode,
                const testmask* m = nullptr, int maskx = 0, int masky = 0) {
    std::vector<uint32_t> expected(g.colour.get(), g.colour.get() + g.pixels());
    for (auto [x, y] : linepoints(x1, y1, x2, y2))
        if (g.insideclip(x, y) && (!m || m->admits(x, y, maskx, masky)))
            expected[y * g.t.width + x] = ruledpixel(mode, expected[y * g.t.width + x], colour);
    if (m) drawmaskedline(g.t, x1, y1, x2, y2, colour, mode, m->mask, maskx, masky);
    else drawline(g.t, x1, y1, x2, y2, colour, mode);
    int i = firstdifference(g, expected);
    ASSERT_EQ(i, -1) << "line " << x1 << "," << y1 << " " << x2 << "," << y2 << " mode " << mode << " mask at "
                     << maskx << "," << masky << " pixel " << i % g.t.width << "," << i / g.t.width;
}

std::set<point> linepixels(int x1, int y1, int x2, int y2) {
    testtarget g(16, 16);
    for (int i = 0; i < g.pixels(); ++i) g.colour[i] = 0;
    drawline(g.t, x1, y1, x2, y2, 1, replace);
    std::set<point> out;
    for (int i = 0; i < g.pixels(); ++i)
        if (g.colour[i]) out.insert({i % 16, i / 16});
    return out;
}

// A few lines worked by hand, which hold the reference above to the stepping rule.
TEST(line, stepsroundhalfupfromthecentreofthefirstpixel) {
    // 1/3 of a pixel per column: 21845 after rounding; rows change after the second column.
    EXPECT_EQ(linepixels(0, 0, 3, 1), (std::set<point>{{0, 0}, {1, 0}, {2, 1}, {3, 1}}));
    EXPECT_EQ(linepixels(0, 1, 3, 0), (std::set<point>{{0, 1}, {1, 1}, {2, 0}, {3, 0}}));
    // Exactly half a pixel per row: -0.5 rounds up to 0 and +0.5 to 1, so the two mirror images
    // are not mirrored pixel for pixel.
    EXPECT_EQ(linepixels(4, 0, 5, 2), (std::set<point>{{4, 0}, {5, 1}, {5, 2}}));
    EXPECT_EQ(linepixels(4, 0, 3, 2), (std::set<point>{{4, 0}, {4, 1}, {3, 2}}));
    // Equal axes run as y major, one pixel per row.
    EXPECT_EQ(linepixels(2, 2, 5, 5), (std::set<point>{{2, 2}, {3, 3}, {4, 4}, {5, 5}}));
    // dx = -4, dy = 3 starts from the second end and runs x major with a negative step:
    // round(-3/4 px) = -49152.
    EXPECT_EQ(linepixels(8, 2, 4, 5), (std::set<point>{{4, 5}, {5, 4}, {6, 4}, {7, 3}, {8, 2}}));
}

// Both orders of every pair of ends, rows, columns and points included.
TEST(line, matchesthereferenceoveradensegridofendsandclips) {
    testtarget g(11, 9);
    testrng rng(7);
    int mode = 0;
    const std::array<std::array<int, 4>, 4> clips = {{{0, 0, 11, 9}, {2, 1, 9, 7}, {5, 4, 6, 5}, {7, 6, 3, 2}}};
    for (auto [l, tp, r, b] : clips) {
        setcliprect(g.t, l, tp, r, b);
        for (int x1 = -3; x1 <= 13; x1 += 2)
            for (int y1 = -3; y1 <= 11; y1 += 2)
                for (int x2 = -2; x2 <= 13; ++x2)
                    for (int y2 = -3; y2 <= 11; y2 += 2) {
                        if (y2 % 8 == 1) fillrandom(g, rng);
                        expectline(g, x1, y1, x2, y2, rng.pixel(), mode);
                        mode = (mode + 1) % 3;
                        if (HasFatalFailure()) return;
                    }
    }
}

// Long lines from far outside: the walk starts where the clip begins, with the minor coordinate
// advanced by exactly the steps it skipped.
TEST(line, farendsareadvancedtotheclipexactly) {
    testtarget g(64, 48);
    testrng rng(11);
    std::uniform_int_distribution<int> far(-300000, 300000), near(-10, 70);
    for (int i = 0; i < 400; ++i) {
        setcliprect(g.t, rng() % 20, rng() % 20, 64 - rng() % 20, 48 - rng() % 20);
        fillrandom(g, rng);
        int x1 = far(rng), y1 = far(rng), x2 = near(rng), y2 = near(rng);
        if (i % 2) std::swap(x1, x2), std::swap(y1, y2);
        expectline(g, x1, y1, x2, y2, rng.pixel(), i % 3);
        if (HasFatalFailure()) return;
    }
}

// Through a mask the same walk draws only what the mask admits: rows, columns and single points
// take the general walk, whose step along the shorter axis is then 0.
TEST(line, maskedlinesdrawwherethemaskadmits) {
    testtarget g(29, 21);
    testmask m;
    testrng rng(23);
    for (int i = 0; i < 6000; ++i) {
        if (i % 20 == 0) m.randomise(rng, 25, 30);
        if (i % 40 == 0) fillrandom(g, rng);
        int l = static_cast<int>(rng() % 12), tp = static_cast<int>(rng() % 12);
        setcliprect(g.t, l, tp, 29 - static_cast<int>(rng() % 12), 21 - static_cast<int>(rng() % 12));
        int x1 = static_cast<int>(rng() % 45) - 8, y1 = static_cast<int>(rng() % 37) - 8;
        int x2 = i % 7 == 0 ? x1 : static_cast<int>(rng() % 45) - 8;
        int y2 = i % 5 == 0 ? y1 : static_cast<int>(rng() % 37) - 8;
        int maskx = static_cast<int>(rng() % 20) - 5, masky = static_cast<int>(rng() % 20) - 5;
        expectline(g, x1, y1, x2, y2, rng.pixel(), i % 3, &m, maskx, masky);
        ASSERT_FALSE(HasFatalFailure()) << "case " << i;
    }
}

TEST(line, themodeistestedafterclippingandonlywithacolourbuffer) {
    testtarget g(8, 8);
    setcliprect(g.t, 2, 2, 6, 6);
    testmask m;
    m.set({0, 0}, {8, 8});
    // A row or column outside the clip returns before the mode is looked at.
    EXPECT_FALSE(raisesillegalargument([&] { drawrow(g.t, 0, 7, 1, 0, 7); }));
    EXPECT_FALSE(raisesillegalargument([&] { drawcolumn(g.t, 6, 0, 7, 0, 7); }));
    EXPECT_FALSE(raisesillegalargument([&] { drawline(g.t, 0, 6, 7, 6, 0, 7); }));
    // Inside, an empty run still raises, and so do a general line that misses the clip and a
    // masked row, which takes the general walk.
    EXPECT_TRUE(raisesillegalargument([&] { drawrow(g.t, 0, 1, 3, 0, 3); }));
    EXPECT_TRUE(raisesillegalargument([&] { drawcolumn(g.t, 3, 7, 6, 0, -1); }));
    EXPECT_TRUE(raisesillegalargument([&] { drawline(g.t, 0, 0, 1, 7, 0, 3); }));
    EXPECT_TRUE(raisesillegalargument([&] { drawmaskedline(g.t, 0, 0, 7, 0, 0, 3, m.mask, 0, 0); }));
    g.t.colourbuffer = nullptr;
    EXPECT_FALSE(raisesillegalargument([&] { drawline(g.t, 0, 0, 5, 7, 0, 9); }));
    EXPECT_FALSE(raisesillegalargument([&] { drawrow(g.t, 0, 5, 3, 0, 9); }));
}

}  // namespace
