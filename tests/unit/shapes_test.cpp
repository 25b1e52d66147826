// Lines and discs small enough to work out by hand, which hold the references in
// shapereference.h to the rules, and where an invalid mode is noticed. The fuzz family "shapes"
// holds every 2D primitive to those references.
#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "shapereference.h"
#include "target.h"
#include "testmask.h"
#include "toolkit/disc.h"
#include "toolkit/fill.h"
#include "toolkit/line.h"

namespace {

using shapereference::point;

// The pixels a draw sets on a cleared 16 by 16 target.
std::set<point> drawn(const std::function<void(toolkit&)>& draw) {
    testtarget g(16, 16);
    std::fill(g.colour.get(), g.colour.get() + g.pixels(), 0u);
    draw(g.t);
    std::set<point> out;
    for (int i = 0; i < g.pixels(); ++i)
        if (g.colour[i]) out.insert({i % 16, i / 16});
    return out;
}

std::set<point> line(int x1, int y1, int x2, int y2) {
    std::set<point> reference;
    for (point p : shapereference::linepoints(x1, y1, x2, y2)) reference.insert(p);
    std::set<point> pixels = drawn([&](toolkit& t) { drawline(t, x1, y1, x2, y2, 1, replace); });
    EXPECT_EQ(pixels, reference);
    return pixels;
}

// The rows of a disc around (7, 7) that it reaches, '#' where it draws.
std::vector<std::string> disc(int radius) {
    std::set<point> pixels = drawn([&](toolkit& t) { drawdisc(t, 7, 7, radius, 0, 1, replace); });
    std::vector<std::string> rows;
    for (int y = 0; y < 16; ++y) {
        std::string s;
        for (int x = 0; x < 15; ++x) s += pixels.count({x, y}) ? '#' : '.';
        if (s.find('#') != std::string::npos) rows.push_back(s);
    }
    const int clip[4] = {0, 0, 16, 16};
    std::set<point> reference;
    for (const auto& span : shapereference::discspans(clip, 7, 7, radius))
        for (long long x = span.from; x <= span.to; ++x) reference.insert({x, span.row});
    EXPECT_EQ(pixels, reference) << "radius " << radius;
    return rows;
}

TEST(line, stepsroundhalfupfromthecentreofthefirstpixel) {
    // 1/3 of a pixel per column: 21845 after rounding; rows change after the second column.
    EXPECT_EQ(line(0, 0, 3, 1), (std::set<point>{{0, 0}, {1, 0}, {2, 1}, {3, 1}}));
    EXPECT_EQ(line(0, 1, 3, 0), (std::set<point>{{0, 1}, {1, 1}, {2, 0}, {3, 0}}));
    // Exactly half a pixel per row: -0.5 rounds up to 0 and +0.5 to 1, so the two mirror images
    // are not mirrored pixel for pixel.
    EXPECT_EQ(line(4, 0, 5, 2), (std::set<point>{{4, 0}, {5, 1}, {5, 2}}));
    EXPECT_EQ(line(4, 0, 3, 2), (std::set<point>{{4, 0}, {4, 1}, {3, 2}}));
    // Equal axes run as y major, one pixel per row.
    EXPECT_EQ(line(2, 2, 5, 5), (std::set<point>{{2, 2}, {3, 3}, {4, 4}, {5, 5}}));
    // dx = -4, dy = 3 starts from the second end and runs x major with a negative step:
    // round(-3/4 px) = -49152.
    EXPECT_EQ(line(8, 2, 4, 5), (std::set<point>{{4, 5}, {5, 4}, {6, 4}, {7, 3}, {8, 2}}));
}

// Radius 2: the top row at distance 2 widens to a half-width of 3, as the sum of the two terms
// allows, so the disc is a 5 by 5 square; radius 0 is one pixel of the lower part.
TEST(disc, smallradii) {
    EXPECT_EQ(disc(0), (std::vector<std::string>{".......#......."}));
    EXPECT_EQ(disc(1), (std::vector<std::string>(3, "......###......")));
    EXPECT_EQ(disc(2), (std::vector<std::string>(5, ".....#####.....")));
    EXPECT_EQ(disc(3), (std::vector<std::string>{".....#####.....", "....#######....", "....#######....",
                                                 "....#######....", "....#######....", "....#######....",
                                                 ".....#####....."}));
    EXPECT_EQ(disc(-3), disc(3));
}

// A shape whose row or column misses the clip returns before the mode is looked at; everything
// else looks at it after clipping, even when nothing is left to draw.
TEST(shapes, themodeistestedafterclipping) {
    testtarget g(8, 8);
    setcliprect(g.t, 2, 2, 6, 6);
    testmask m;
    m.set({0, 0}, {8, 8});
    struct {
        const char* what;
        std::function<void()> draw;
        bool raises;
    } cases[] = {
        {"a row above the clip", [&] { drawrow(g.t, 0, 7, 1, 0, 7); }, false},
        {"a column right of it", [&] { drawcolumn(g.t, 6, 0, 7, 0, 7); }, false},
        {"a line along the row below it", [&] { drawline(g.t, 0, 6, 7, 6, 0, 7); }, false},
        {"an empty run inside", [&] { drawrow(g.t, 0, 1, 3, 0, 3); }, true},
        {"a column of negative length", [&] { drawcolumn(g.t, 3, 7, 6, 0, -1); }, true},
        {"a line that misses the clip", [&] { drawline(g.t, 0, 0, 1, 7, 0, 3); }, true},
        {"a masked row, which takes the general walk", [&] { drawmaskedline(g.t, 0, 0, 7, 0, 0, 3, m.mask, 0, 0); }, true},
        {"a disc far off", [&] { drawdisc(g.t, -100, -100, 3, 0, 0, 3); }, true},
        {"a rectangle far off", [&] { drawrectangle(g.t, 50, 50, 1, 1, 0, 3); }, true},
    };
    for (auto& c : cases) EXPECT_EQ(raisesillegalargument(c.draw), c.raises) << c.what;
}

}  // namespace
