// Lines against a reference that lists each line's points in closed form and then keeps those
// inside the clip: the drawing code's clipped walk must give exactly those pixels, by each mode's
// rule.
#include "toolkit/line.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <set>
#include <utility>
#include <vector>

#include "target.h"
#include "testmask.h"

namespace {

using point = std::pair<long long, long long>;

// Ends ordered so that dx + dy >= 0; the longer axis counts up from the first end, and point i
// lies i steps of round-half-up((minor << 16) / major) from the centre of the first pixel. Only
// points whose major coordinate lies in [lo, hi] are listed.
std::vector<point> linepoints(long long x1, long long y1, long long x2, long long y2, long long lo = -100,
                              long long hi = 100) {
    std::vector<point> out;
    long long dx = x2 - x1, dy = y2 - y1;
    if (dy == 0) {
        for (long long x = std::max(std::min(x1, x2), lo); x <= std::min(std::max(x1, x2), hi); ++x)
            out.push_back({x, y1});
        return out;
    }
    if (dx == 0) {
        for (long long y = std::max(std::min(y1, y2), lo); y <= std::min(std::max(y1, y2), hi); ++y)
            out.push_back({x1, y});
        return out;
    }
    if (dx + dy < 0) {
        std::swap(x1, x2);
        std::swap(y1, y2);
        dx = -dx;
        dy = -dy;
    }
    bool ymajor = dx <= dy;
    long long major = ymajor ? dy : dx, minor = ymajor ? dx : dy;
    long long step = static_cast<long long>(std::floor(static_cast<double>(minor * 65536) / major + 0.5));
    long long first = ymajor ? y1 : x1;
    for (long long i = std::max(0LL, lo - first); i <= std::min(major, hi - first); ++i) {
        long long along = (ymajor ? x1 : y1) * 65536 + 0x8000 + i * step;
        out.push_back(ymajor ? point{along >> 16, y1 + i} : point{x1 + i, along >> 16});
    }
    return out;
}

std::set<point> drawn(testtarget& g, const std::vector<uint32_t>& before) {
    std::set<point> out;
    for (int y = 0; y < g.t.height; ++y)
        for (int x = 0; x < g.t.width; ++x)
            if (g.at(x, y) != before[y * g.t.width + x]) out.insert({x, y});
    return out;
}

// Draws with drawline and checks every pixel of the target against the reference points.
void expectline(testtarget& g, int x1, int y1, int x2, int y2, uint32_t colour, int mode) {
    std::vector<uint32_t> expected(g.colour.get(), g.colour.get() + g.pixels());
    for (auto [x, y] : linepoints(x1, y1, x2, y2))
        if (g.insideclip(x, y)) expected[y * g.t.width + x] = ruledpixel(mode, expected[y * g.t.width + x], colour);
    drawline(g.t, x1, y1, x2, y2, colour, mode);
    int i = firstdifference(g, expected);
    ASSERT_EQ(i, -1) << "line " << x1 << "," << y1 << " " << x2 << "," << y2 << " mode " << mode << " pixel "
                     << i % g.t.width << "," << i / g.t.width << std::hex << " " << g.colour[i] << " expected "
                     << expected[i];
}

std::set<point> linepixels(int x1, int y1, int x2, int y2) {
    testtarget g(16, 16);
    std::vector<uint32_t> before(g.pixels(), 0);
    for (int i = 0; i < g.pixels(); ++i) g.colour[i] = 0;
    drawline(g.t, x1, y1, x2, y2, 0xFFFFFFFF, replace);
    return drawn(g, before);
}

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
}

TEST(line, endsareorderedbythesumofthedifferences) {
    // dx + dy < 0 starts from the second end, whichever axis is longer: the pixels do not depend on
    // the order the host gives the ends in.
    for (auto [x1, y1, x2, y2] : {std::array{9, 1, 2, 4}, std::array{3, 12, 5, 2}, std::array{12, 9, 1, 3},
                                  std::array{10, 3, 4, 4}, std::array{7, 7, 2, 12}})
        EXPECT_EQ(linepixels(x1, y1, x2, y2), linepixels(x2, y2, x1, y1)) << x1 << "," << y1;
    // dx = -4, dy = 3 swaps and runs x major with a negative step: round(-3/4 px) = -49152.
    EXPECT_EQ(linepixels(8, 2, 4, 5), (std::set<point>{{4, 5}, {5, 4}, {6, 4}, {7, 3}, {8, 2}}));
}

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
                        uint32_t colour = randompixel(rng);
                        expectline(g, x1, y1, x2, y2, colour, mode);
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
        expectline(g, x1, y1, x2, y2, randompixel(rng), i % 3);
        if (HasFatalFailure()) return;
    }
}

TEST(line, rowsandcolumnsclipandtestthemodeafterclipping) {
    testtarget g(8, 8);
    setcliprect(g.t, 2, 2, 6, 6);
    // A row or column outside the clip returns before the mode is looked at.
    EXPECT_FALSE(raisesillegalargument([&] { drawrow(g.t, 0, 7, 1, 0, 7); }));
    EXPECT_FALSE(raisesillegalargument([&] { drawcolumn(g.t, 6, 0, 7, 0, 7); }));
    EXPECT_FALSE(raisesillegalargument([&] { drawline(g.t, 0, 6, 7, 6, 0, 7); }));
    // Inside, an empty run still raises, and so does a general line that misses the clip.
    EXPECT_TRUE(raisesillegalargument([&] { drawrow(g.t, 0, 1, 3, 0, 3); }));
    EXPECT_TRUE(raisesillegalargument([&] { drawcolumn(g.t, 3, 7, 6, 0, -1); }));
    EXPECT_TRUE(raisesillegalargument([&] { drawline(g.t, 0, 0, 1, 7, 0, 3); }));
    // Without a colour buffer nothing raises.
    g.t.colourbuffer = nullptr;
    EXPECT_FALSE(raisesillegalargument([&] { drawline(g.t, 0, 0, 5, 7, 0, 9); }));
    EXPECT_FALSE(raisesillegalargument([&] { drawrow(g.t, 0, 5, 3, 0, 9); }));
}

// Through a mask the same walk draws only what the mask admits: rows, columns and single points
// take the general walk, whose step along the shorter axis is then 0.
TEST(maskedline, drawsthelinewherethemaskadmitsit) {
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
        uint32_t colour = randompixel(rng);
        int mode = i % 3;
        std::vector<uint32_t> expected(g.colour.get(), g.colour.get() + g.pixels());
        for (auto [x, y] : linepoints(x1, y1, x2, y2))
            if (g.insideclip(x, y) && m.admits(x, y, maskx, masky))
                expected[y * g.t.width + x] = ruledpixel(mode, expected[y * g.t.width + x], colour);
        drawmaskedline(g.t, x1, y1, x2, y2, colour, mode, m.mask, maskx, masky);
        int at = firstdifference(g, expected);
        ASSERT_EQ(at, -1) << "case " << i << " line " << x1 << "," << y1 << " " << x2 << "," << y2 << " mask at "
                          << maskx << "," << masky << " pixel " << at % g.t.width << "," << at / g.t.width;
    }
}

TEST(maskedline, hasnoshortcutsbeforethemodetest) {
    testtarget g(8, 8);
    setcliprect(g.t, 2, 2, 6, 6);
    testmask m;
    m.set({0, 0}, {8, 8});
    EXPECT_TRUE(raisesillegalargument([&] { drawmaskedline(g.t, 0, 0, 7, 0, 0, 3, m.mask, 0, 0); }));
    EXPECT_FALSE(raisesillegalargument([&] { drawline(g.t, 0, 0, 7, 0, 0, 3); }));
}

}  // namespace
