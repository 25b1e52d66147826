// Discs against a reference that follows the row walk step by step, one half-width step at a
// time, clipped at the end of each row rather than by its bounds.
#include "toolkit/disc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "shapereference.h"
#include "target.h"

namespace {

void expectdisc(testtarget& g, int x, int y, int radius, float z, uint32_t colour, int mode) {
    std::vector<uint32_t> expected(g.colour.get(), g.colour.get() + g.pixels());
    for (const auto& s : shapereference::discspans(g.t.cliprect, x, y, radius))
        for (long long px = s.from; px <= s.to; ++px) {
            long long i = s.row * g.t.width + px;
            if (!g.t.depthbuffer || g.t.depthbuffer[i] > z) expected[i] = ruledpixel(mode, expected[i], colour);
        }
    drawdisc(g.t, x, y, radius, z, colour, mode);
    int i = firstdifference(g, expected);
    ASSERT_EQ(i, -1) << "disc " << x << "," << y << " radius " << radius << " mode " << mode << " pixel "
                     << i % g.t.width << "," << i / g.t.width;
}

std::vector<std::string> picture(int radius) {
    testtarget g(15, 15);
    for (int i = 0; i < g.pixels(); ++i) g.colour[i] = 0;
    drawdisc(g.t, 7, 7, radius, 0, 1, replace);
    std::vector<std::string> rows;
    for (int y = 0; y < 15; ++y) {
        std::string s;
        for (int x = 0; x < 15; ++x) s += g.at(x, y) ? '#' : '.';
        if (s.find('#') != std::string::npos) rows.push_back(s);
    }
    return rows;
}

// Small discs by hand, which hold the walk above to the row rule. Radius 2: the top row at
// distance 2 widens to a half-width of 3, as the sum of the two terms allows, so the disc is a 5
// by 5 square; radius 0 is one pixel of the lower part.
TEST(disc, smallradii) {
    EXPECT_EQ(picture(0), (std::vector<std::string>{".......#......."}));
    EXPECT_EQ(picture(1), (std::vector<std::string>(3, "......###......")));
    EXPECT_EQ(picture(2), (std::vector<std::string>(5, ".....#####.....")));
    EXPECT_EQ(picture(3),
              (std::vector<std::string>{".....#####.....", "....#######....", "....#######....", "....#######....",
                                        "....#######....", "....#######....", ".....#####....."}));
    EXPECT_EQ(picture(-3), picture(3));
}

// Every centre across and around the target, radii of both signs, clips that cut the upper part,
// the lower part or both, inverted clips, with and without a depth test, in all three modes.
TEST(disc, matchesthestepwisewalk) {
    testrng rng(3);
    for (bool depth : {false, true}) {
        testtarget g(40, 30, depth);
        const std::array<std::array<int, 4>, 4> clips = {
            {{0, 0, 40, 30}, {3, 5, 31, 22}, {10, 12, 11, 13}, {20, 20, 10, 10}}};
        int mode = 0;
        for (auto [l, tp, r, b] : clips) {
            setcliprect(g.t, l, tp, r, b);
            for (int y = -18; y < 48; y += 4)
                for (int x = -18; x < 58; x += 7)
                    for (int radius = -20; radius <= 20; radius += 3) {
                        if (radius == -20) {
                            fillrandom(g, rng);
                            for (int i = 0; i < g.pixels(); ++i) g.depth[i] = static_cast<float>(rng() % 7) - 1.0f;
                        }
                        const float z = static_cast<float>(rng() % 5);
                        expectdisc(g, x, y, radius, z, rng.pixel(), mode);
                        mode = (mode + 1) % 3;
                        if (HasFatalFailure()) return;
                    }
        }
    }
}

// Radii far beyond the target, whose first rows widen or narrow by thousands of steps at once.
TEST(disc, largeradiimatchthestepwisewalk) {
    testtarget g(40, 30);
    testrng rng(5);
    for (int i = 0; i < 300; ++i) {
        int radius = static_cast<int>(rng() % 20000);
        // Centres near the edge of the disc reaching into the target, from every side.
        double angle = (rng() % 6283) / 1000.0;
        int x = 20 + static_cast<int>(std::lround(std::cos(angle) * (radius + static_cast<int>(rng() % 40) - 20)));
        int y = 15 + static_cast<int>(std::lround(std::sin(angle) * (radius + static_cast<int>(rng() % 40) - 20)));
        setcliprect(g.t, rng() % 10, rng() % 10, 40 - rng() % 10, 30 - rng() % 10);
        expectdisc(g, x, y, radius, 0, rng.pixel(), i % 3);
        if (HasFatalFailure()) return;
    }
}

TEST(disc, teststhemodeafterclippingandonlywithacolourbuffer) {
    testtarget g(8, 8);
    EXPECT_TRUE(raisesillegalargument([&] { drawdisc(g.t, -100, -100, 3, 0, 0, 3); }));
    g.t.colourbuffer = nullptr;
    EXPECT_FALSE(raisesillegalargument([&] { drawdisc(g.t, 4, 4, 3, 0, 0, 3); }));
}

}  // namespace
