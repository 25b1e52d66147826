// Whole glyphs in every form against the step-by-step definition of their clipping, mask
// narrowing and quarter turn: swept across every edge of a clip whose left is not 0, with masks
// placed all around it. Glyph bytes sit in guarded buffers, so reading one byte too many faults.
#include <gtest/gtest.h>

#include <vector>

#include "glyphreference.h"
#include "sprite/glyphdraw.h"
#include "target.h"

namespace {

constexpr int clipleft = 3, cliptop = 2, clipright = 13, clipbottom = 9;

struct scene {
    testrng rng{11};
    testtarget target{16, 12};
    std::vector<uint32_t> palette = std::vector<uint32_t>(256);
    std::vector<glyphpaint> paints;
    guarded<uint8_t>* bytes = nullptr;
    glyph g{};

    scene() {
        setcliprect(target.t, clipleft, cliptop, clipright, clipbottom);
        for (auto& p : palette) p = rng.pixel();
        paints = {{glyphform::coverage, 0x80C08040u, nullptr},
                  {glyphform::fade, 0x60FF2010u, nullptr},
                  {glyphform::fade, 0x00FF2010u, nullptr},
                  {glyphform::colour, 0x00ABCDEFu, nullptr},
                  {glyphform::palette, 0, palette.data()}};
    }
    ~scene() { delete bytes; }

    void makeglyph(int w, int h, int left, int top) {
        delete bytes;
        bytes = new guarded<uint8_t>(static_cast<size_t>(w) * h);
        for (size_t i = 0; i < bytes->size(); ++i) {
            uint32_t pick = rng() % 3;
            (*bytes)[i] = static_cast<uint8_t>(pick == 0 ? 0 : pick == 1 ? 255 : rng());
        }
        g = {bytes->get(), w, h, left, top};
    }

    // The draw on a fresh random buffer, and the reference walk painting a copy of it.
    template <class Draw, class Walk>
    void compare(const glyphpaint& paint, Draw draw, Walk walk) {
        fillrandom(target, rng);
        glyphreference::target expected{{target.colour.get(), target.colour.get() + target.pixels()},
                                        target.t.width, target.t.height, {clipleft, cliptop, clipright, clipbottom}};
        walk(expected, [&](long long at, long long src) {
            if (uint8_t c = g.bytes[src])
                expected.pixels[at] = glyphreference::pixel(paint.form, expected.pixels[at], c, paint.colour, palette);
        });
        draw();
        ASSERT_EQ(firstdifference(target, expected.pixels), -1) << static_cast<int>(paint.form);
        ASSERT_TRUE(target.colour.intact());
    }
};

TEST(glyphdraw, plainandturnedglyphsacrosseveryclipedge) {
    scene s;
    for (auto [w, h] : {std::pair{1, 1}, {7, 3}, {12, 12}, {2, 9}}) {
        s.makeglyph(w, h, -2, 1);
        for (const glyphpaint& paint : s.paints)
            for (int y = cliptop - 14; y <= clipbottom + 1; ++y)
                for (int x = clipleft - 14; x <= clipright + 1; ++x) {
                    s.compare(paint, [&] { drawglyph(s.target.t, s.g, x, y, paint); },
                              [&](auto& r, const auto& v) { glyphreference::walk(r, w, h, x - 2, y + 1, v); });
                    s.compare(paint, [&] { drawglyphturned(s.target.t, s.g, x, y, paint); },
                              [&](auto& r, const auto& v) { glyphreference::turnwalk(r, w, h, x, y, v); });
                }
    }
}

// Mask rows that start before, inside and beyond the glyph, of width 0 and below, longer than
// the glyph; spans counted from the clip's left and from column 0.
TEST(glyphdraw, masksnarroweachrowtoitsspan) {
    scene s;
    std::vector<int> offsets = {-3, 0, 2, 5, 1, 0, 7, -10, 3, 9}, widths = {4, 0, 3, 100, -2, 1, 2, 30, 5, 1};
    guarded<int> offsetrows(offsets.size()), widthrows(widths.size());
    std::copy(offsets.begin(), offsets.end(), offsetrows.get());
    std::copy(widths.begin(), widths.end(), widthrows.get());
    s.makeglyph(7, 6, 1, -1);
    for (const glyphpaint& paint : s.paints)
        for (int origin : {0, clipleft})
            for (int masky = -4; masky <= clipbottom; masky += 2)
                for (int maskx = -12; maskx <= 12; ++maskx)
                    for (auto [x, y] : {std::pair{4, 4}, {0, 0}, {8, 5}, {-3, 3}, {10, -1}}) {
                        glyphmask m{offsetrows.get(), widthrows.get(), static_cast<int>(offsets.size()), maskx, masky};
                        glyphreference::mask rm{offsets, widths, maskx, masky};
                        s.compare(paint, [&] { drawglyphmasked(s.target.t, s.g, x, y, paint, m, origin); },
                                  [&](auto& r, const auto& v) {
                                      glyphreference::walk(r, 7, 6, x + 1, y - 1, v, &rm, origin);
                                  });
                    }
}

}  // namespace
