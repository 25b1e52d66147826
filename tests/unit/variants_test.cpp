// Variant lists: every combination in selector order, slices in list order, names, and members
// chosen by raw selectors, on a full list and on one with gaps.
#include <gtest/gtest.h>

#include "pixel/variants.h"

namespace {

enum class shape { dot, line, box };
constexpr std::array<std::string_view, 3> axisnames(shape) { return {"dot", "line", "box"}; }
enum class fill { none, solid };
constexpr std::array<std::string_view, 2> axisnames(fill) { return {"none", "solid"}; }

using member = variant<shape, fill>;
constexpr auto all = allcombinations<shape, fill>();
static_assert(all.size() == 6 && all[3] == member(shape::line, fill::solid));
constexpr auto solid = slice<all, fill, fill::solid>();
static_assert(solid.size() == 3 && solid[2] == member(shape::box, fill::solid));

TEST(variants, selectorschooseamemberoritsabsence) {
    for (int s = -1; s <= 3; ++s)
        for (int f = -1; f <= 2; ++f) {
            bool inside = s >= 0 && s < 3 && f >= 0 && f < 2;
            EXPECT_EQ(selectindex<all>(s, f), inside ? s * 2 + f : -1) << s << " " << f;
            EXPECT_EQ(selectindex<solid>(s, f), inside && f == 1 ? s : -1) << s << " " << f;
        }
    EXPECT_EQ(solid[1].name(), "line.solid");
    EXPECT_EQ(solid[1].name('_'), "line_solid");
}

}  // namespace
