// Members chosen by raw selectors from a list with gaps: -1 for a value outside its axis and for a
// combination that is not a member.
#include <gtest/gtest.h>

#include "pixel/variants.h"

namespace {

enum class shape { dot, line, box };
constexpr std::array<std::string_view, 3> axisnames(shape) { return {"dot", "line", "box"}; }
enum class fill { none, solid };
constexpr std::array<std::string_view, 2> axisnames(fill) { return {"none", "solid"}; }

constexpr auto all = allcombinations<shape, fill>();
constexpr auto solid = slice<all, fill, fill::solid>();

TEST(variants, selectorsfindthememberofalistwithgaps) {
    for (int s = -1; s <= 3; ++s)
        for (int f = -1; f <= 2; ++f)
            EXPECT_EQ(selectindex<solid>(s, f), s >= 0 && s < 3 && f == 1 ? s : -1) << s << " " << f;
    EXPECT_EQ(solid[2].name('_'), "box_solid");
}

}  // namespace
