// Thick lines: the corners of the quad, worked out by hand from the corner formulas, and the
// pixels of whole lines.
#include "toolkit/thickline.h"

#include <gtest/gtest.h>

#include <climits>

#include "target.h"

namespace {

struct cornercase {
    const char* what;
    int clipleft, cliptop, x1, y1, x2, y2, width;
    bool drawn;
    thickquad corners;
};

const cornercase cornercases[] = {
    {"horizontal, width 4", 0, 0, 10, 10, 20, 10, 4, true, {{10, 10, 20, 20}, {8, 12, 12, 8}}},
    {"odd width rounds both sides outward", 0, 0, 10, 10, 20, 10, 3, true, {{10, 10, 20, 20}, {8, 12, 12, 8}}},
    {"vertical upward", 0, 0, 5, 5, 5, 0, 2, true, {{4, 6, 6, 4}, {5, 5, 0, 0}}},
    {"vertical downward turns the other side", 0, 0, 0, 0, 0, 4, 2, true, {{-1, 1, 1, -1}, {0, 0, 4, 4}}},
    {"diagonal", 0, 0, 0, 0, 3, -3, 2, true, {{-1, 1, 4, 2}, {-1, 1, -2, -4}}},
    {"shallow: the step truncates", 0, 0, 0, 0, 3, 1, 6, true, {{0, 0, 3, 3}, {-3, 3, 4, -2}}},
    {"negative: division truncates toward zero", 0, 0, 0, 0, -3, -1, 6, true, {{0, 0, -3, -3}, {-3, 3, 2, -4}}},
    {"relative to the clip corner", 100, 50, 110, 60, 120, 60, 4, true, {{10, 10, 20, 20}, {8, 12, 12, 8}}},
    {"equal ends", 0, 0, 7, 7, 7, 7, 5, false, {}},
    // dx of INT_MIN has |dx| INT_MIN in 32 bits, so the longer axis has length 0.
    {"ends apart by INT_MIN", 0, 0, 0, 3, INT_MIN, 3, 5, false, {}},
};

TEST(thickline, cornersfollowtheformulas) {
    for (const cornercase& c : cornercases) {
        toolkit t{};
        setcliprect(t, c.clipleft, c.cliptop, 1000, 1000);
        thickquad q{};
        ASSERT_EQ(thicklinecorners(t, c.x1, c.y1, c.x2, c.y2, c.width, q), c.drawn) << c.what;
        if (!c.drawn) continue;
        for (int k = 0; k < 4; ++k) {
            EXPECT_EQ(q.x[k], c.corners.x[k]) << c.what << ", corner " << k;
            EXPECT_EQ(q.y[k], c.corners.y[k]) << c.what << ", corner " << k;
        }
    }
}

}  // namespace
