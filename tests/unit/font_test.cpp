// The draw entries of the three font classes: which form each class and entry takes. The fuzz
// family "fonts" holds every entry to the plain reference.
#include <gtest/gtest.h>

#include "fontreference.h"
#include "testmask.h"

namespace {

using glyphreference::entry;

// One 3 by 2 glyph, all set, a row below the pen.
const glyphreference::font smallfont{{{9, 9, 9, 9, 9, 9}}, {}, {3}, {2}, {1}, {0}};

// A mono glyph of no opacity is skipped when plain, blended at 255 / 256 through a mask (alpha
// cleared), and stored when turned.
TEST(font, monoopacityzerodependsontheentry) {
    fontscene s(8, 8, smallfont);
    for (int i = 0; i < 64; ++i) s.target.colour[i] = 0xFFC8C8C8u;
    testmask mask;
    mask.set({0, 0, 0, 0, 0, 0, 0, 0}, {8, 8, 8, 8, 8, 8, 8, 8});
    EXPECT_TRUE(s.same(fontkind::mono, entry::plain, 0, 0, 0, 0x00102030, false));
    EXPECT_EQ(s.target.at(0, 1), 0xFFC8C8C8u);
    EXPECT_TRUE(s.same(fontkind::mono, entry::masked, 0, 0, 0, 0x00102030, false, &mask.mask));
    EXPECT_EQ(s.target.at(0, 1), 0x00C7C7C7u);
    EXPECT_TRUE(s.same(fontkind::mono, entry::turned, 0, 4, 4, 0x00102030, false));
    EXPECT_EQ(s.target.at(4, 4), 0x00102030u);
}

// With the clip's left at 2, a mask span at mask column 1 lands on buffer column 3 for a coverage
// glyph, but on column 1, left of the clip, for an opaque mono glyph.
TEST(font, maskspanscountfromtheclipleftbutforopaquemono) {
    fontscene s(10, 4, smallfont);
    for (int i = 0; i < 40; ++i) s.target.colour[i] = 0;
    setcliprect(s.target.t, 2, 0, 10, 4);
    testmask mask;
    mask.set({1, 1, 1, 1}, {1, 1, 1, 1});
    EXPECT_TRUE(s.same(fontkind::coverage, entry::masked, 0, 1, -1, 0xFF0000FF, false, &mask.mask));
    EXPECT_EQ(s.target.at(3, 0), 0x00000008u);  // (255 * 9) >> 8
    EXPECT_EQ(s.target.at(2, 0), 0u);
    EXPECT_TRUE(s.same(fontkind::mono, entry::masked, 0, 1, 1, 0xFF00FF00, false, &mask.mask));
    EXPECT_EQ(s.target.at(2, 2), 0u);
    mask.set({2, 2, 2, 2}, {1, 1, 1, 1});
    EXPECT_TRUE(s.same(fontkind::mono, entry::masked, 0, 1, 1, 0xFF00FF00, false, &mask.mask));
    EXPECT_EQ(s.target.at(2, 2), 0xFF00FF00u);
}

}  // namespace
