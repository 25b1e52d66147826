// Thick-line corners, worked out by hand from the corner formulas.
#include "toolkit/thickline.h"

#include <gtest/gtest.h>

#include <climits>

TEST(thickline, cornersfollowtheformulas) {
    struct { int clipleft, cliptop, x1, y1, x2, y2, width; bool drawn; thickquad q; } cases[] = {
        {0, 0, 10, 10, 20, 10, 4, true, {{10, 10, 20, 20}, {8, 12, 12, 8}}},
        {0, 0, 10, 10, 20, 10, 3, true, {{10, 10, 20, 20}, {8, 12, 12, 8}}},  // both halves round outward
        {0, 0, 0, 0, 0, 4, 2, true, {{-1, 1, 1, -1}, {0, 0, 4, 4}}},          // a < b: the other side first
        {0, 0, 0, 0, 3, -3, 2, true, {{-1, 1, 4, 2}, {-1, 1, -2, -4}}},
        {0, 0, 0, 0, 3, 3, 2, true, {{1, -1, 2, 4}, {-1, 1, 4, 2}}},          // a = b turns a
        {0, 0, 0, 0, -3, -1, 6, true, {{0, 0, -3, -3}, {-3, 3, 2, -4}}},      // the division truncates toward 0
        {100, 50, 110, 60, 120, 60, 4, true, {{10, 10, 20, 20}, {8, 12, 12, 8}}},  // from the clip corner
        {0, 0, 7, 7, 7, 7, 5, false, {}},
        {0, 0, 0, 3, INT_MIN, 3, 5, false, {}},  // |INT_MIN| is INT_MIN in 32 bits, so m is 0
    };
    for (const auto& c : cases) {
        toolkit t{};
        t.cliprect[0] = c.clipleft, t.cliprect[1] = c.cliptop;
        thickquad q{};
        ASSERT_EQ(thicklinecorners(t, c.x1, c.y1, c.x2, c.y2, c.width, q), c.drawn) << c.x2 << "," << c.y2;
        EXPECT_TRUE(!c.drawn || (std::equal(q.x, q.x + 4, c.q.x) && std::equal(q.y, q.y + 4, c.q.y))) << c.x2 << "," << c.y2;
    }
}
