// Whole glyphs against the step-by-step definition of their clipping, mask narrowing and quarter
// turn: every clip edge crossed, masks placed all around a clip whose left is not 0, turned
// glyphs cut on every side. Glyph bytes sit in guarded buffers, so reading one byte too many
// faults.
#include <gtest/gtest.h>

#include <vector>

#include "glyphreference.h"
#include "sprite/glyphdraw.h"
#include "target.h"

namespace {

constexpr int targetwidth = 16, targetheight = 12;
constexpr int clipleft = 3, cliptop = 2, clipright = 13, clipbottom = 9;

struct testglyph {
    guarded<uint8_t> bytes;
    glyph g;
    testglyph(int w, int h, int left, int top, testrng& rng) : bytes(static_cast<size_t>(w) * h) {
        for (size_t i = 0; i < bytes.size(); ++i) {
            uint32_t pick = rng() % 3;
            bytes[i] = static_cast<uint8_t>(pick == 0 ? 0 : pick == 1 ? 255 : rng());
        }
        g = {bytes.get(), w, h, left, top};
    }
    std::vector<uint8_t> copy() const { return {bytes.get(), bytes.get() + bytes.size()}; }
};

struct scene {
    testrng rng{11};
    testtarget target{targetwidth, targetheight};
    std::vector<uint32_t> palette = std::vector<uint32_t>(256);
    scene() {
        setcliprect(target.t, clipleft, cliptop, clipright, clipbottom);
        for (auto& p : palette) p = randompixel(rng);
    }
    glyphreference::target reference() const {
        glyphreference::target r{{}, targetwidth, targetheight, {clipleft, cliptop, clipright, clipbottom}};
        r.pixels.assign(target.colour.get(), target.colour.get() + target.pixels());
        return r;
    }
    std::vector<glyphpaint> paints() const {
        return {{glyphform::coverage, 0x80C08040u, nullptr},
                {glyphform::fade, 0x60FF2010u, nullptr},
                {glyphform::fade, 0x00FF2010u, nullptr},
                {glyphform::colour, 0x00ABCDEFu, nullptr},
                {glyphform::palette, 0, palette.data()}};
    }
    // Draws on a fresh random buffer, and the reference on a copy of it; the two must agree and
    // nothing outside the buffer may change.
    template <class Draw, class Walk>
    void compare(const glyphpaint& paint, const std::vector<uint8_t>& bytes, Draw draw, Walk walk) {
        fillrandom(target, rng);
        glyphreference::target expected = reference();
        walk(expected, [&](long long at, long long src) {
            if (uint8_t c = bytes[src])
                expected.pixels[at] = glyphreference::pixel(paint.form, expected.pixels[at], c, paint.colour, palette);
        });
        draw();
        ASSERT_EQ(firstdifference(target, expected.pixels), -1);
        ASSERT_TRUE(target.colour.intact());
    }
};

TEST(glyphdraw, plaindrawsmatchtheclipstepsacrosseveryedge) {
    scene s;
    for (auto [w, h] : {std::pair{5, 4}, {1, 1}, {7, 3}, {12, 12}, {0, 3}, {3, -1}}) {
        testglyph tg(std::max(w, 0), std::max(h, 0), -2, 1, s.rng);
        tg.g.width = w, tg.g.height = h;
        auto bytes = tg.copy();
        for (const glyphpaint& paint : s.paints())
            for (int y = cliptop - h - 2; y <= clipbottom + 1; ++y)
                for (int x = clipleft - w - 1; x <= clipright + 3; ++x)
                    s.compare(
                        paint, bytes, [&] { drawglyph(s.target.t, tg.g, x, y, paint); },
                        [&](glyphreference::target& r, const glyphreference::visitor& v) {
                            glyphreference::walk(r, w, h, x - 2, y + 1, v);
                        });
    }
}

TEST(glyphdraw, aninvertedoremptyclipdrawsnothing) {
    scene s;
    testglyph tg(5, 4, 0, 0, s.rng);
    for (auto [l, t, r, b] : {std::array{8, 2, 4, 9}, {3, 7, 13, 5}, {6, 6, 6, 9}, {20, 20, 16, 12}}) {
        setcliprect(s.target.t, l, t, r, b);
        fillrandom(s.target, s.rng);
        std::vector<uint32_t> before(s.target.colour.get(), s.target.colour.get() + s.target.pixels());
        for (int y = -5; y < targetheight; ++y)
            for (int x = -6; x < targetwidth; ++x) {
                drawglyph(s.target.t, tg.g, x, y, s.paints()[3]);
                glyphmask m{nullptr, nullptr, 0, 0, 0};
                drawglyphmasked(s.target.t, tg.g, x, y, s.paints()[0], m, 0);
                drawglyphturned(s.target.t, tg.g, x, y, s.paints()[3]);
            }
        EXPECT_EQ(firstdifference(s.target, before), -1) << l << " " << t << " " << r << " " << b;
    }
}

// Mask rows that start before, inside and beyond the glyph, of width 0 and below, longer than
// the glyph; the mask placed all around the glyph and the clip, counted from the clip's left and
// from column 0.
TEST(glyphdraw, maskednarrowingmatchesthedefinition) {
    scene s;
    std::vector<int> offsets = {-3, 0, 2, 5, 1, 0, 7, -10, 3, 9};
    std::vector<int> widths = {4, 0, 3, 100, -2, 1, 2, 30, 5, 1};
    guarded<int> offsetrows(offsets.size()), widthrows(widths.size());
    std::copy(offsets.begin(), offsets.end(), offsetrows.get());
    std::copy(widths.begin(), widths.end(), widthrows.get());
    testglyph tg(7, 6, 1, -1, s.rng);
    auto bytes = tg.copy();
    for (const glyphpaint& paint : s.paints())
        for (int origin : {0, clipleft})
            for (int masky = -4; masky <= clipbottom; masky += 2)
                for (int maskx = -12; maskx <= 12; ++maskx)
                    for (auto [x, y] : {std::pair{4, 4}, {0, 0}, {8, 5}, {-3, 3}, {10, -1}}) {
                        glyphmask m{offsetrows.get(), widthrows.get(), static_cast<int>(offsets.size()), maskx, masky};
                        glyphreference::mask rm{offsets, widths, maskx, masky};
                        s.compare(
                            paint, bytes, [&] { drawglyphmasked(s.target.t, tg.g, x, y, paint, m, origin); },
                            [&](glyphreference::target& r, const glyphreference::visitor& v) {
                                glyphreference::maskwalk(r, 7, 6, x + 1, y - 1, rm, origin, v);
                            });
                    }
}

TEST(glyphdraw, turnedglyphsmatchthemappingcutoneveryside) {
    scene s;
    for (auto [w, h] : {std::pair{5, 3}, {1, 6}, {9, 2}, {4, 4}}) {
        testglyph tg(w, h, 50, 50, s.rng);  // a turned glyph ignores its offsets
        auto bytes = tg.copy();
        for (const glyphpaint& paint : s.paints())
            for (int y = cliptop - w - 1; y <= clipbottom + 1; ++y)
                for (int x = clipleft - h - 1; x <= clipright + 1; ++x)
                    s.compare(
                        paint, bytes, [&] { drawglyphturned(s.target.t, tg.g, x, y, paint); },
                        [&](glyphreference::target& r, const glyphreference::visitor& v) {
                            glyphreference::turnwalk(r, w, h, x, y, v);
                        });
    }
}

// The mapping itself: rows 1 2 3 / 4 5 6 turn counter-clockwise into 3 6 / 2 5 / 1 4.
TEST(glyphdraw, aquarterturniscounterclockwise) {
    testtarget g(4, 4);
    std::vector<uint32_t> identity(256);
    for (uint32_t i = 0; i < 256; ++i) identity[i] = i;
    const uint8_t bytes[] = {1, 2, 3, 4, 5, 6};
    drawglyphturned(g.t, {bytes, 3, 2, 9, 9}, 1, 0, {glyphform::palette, 0, identity.data()});
    std::vector<uint32_t> rows;
    for (int y = 0; y < 3; ++y)
        for (int x = 1; x < 3; ++x) rows.push_back(g.at(x, y));
    EXPECT_EQ(rows, (std::vector<uint32_t>{3, 6, 2, 5, 1, 4}));
}

}  // namespace
