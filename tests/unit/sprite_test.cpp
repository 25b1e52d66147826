// The sprite record and the operations that fill it: keyed and straight block copies, paletted
// builds, the alpha rewrite; and the own-size draws' clipping and tiling.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "sprite/drawsprite.h"
#include "sprite/sprite.h"
#include "target.h"

namespace {

struct ownedsprite {
    sprite* s;
    ownedsprite(int w, int h) : s(makesprite(w, h)) {}
    ~ownedsprite() { destroysprite(s); }
    sprite& operator*() const { return *s; }
    sprite* operator->() const { return s; }
};

TEST(spriteobject, emptyspritehasablockandpadscountinthefullsize) {
    ownedsprite s(0, 3);
    EXPECT_NE(s->pixels, nullptr);
    EXPECT_EQ(s->stride, 0);
    s->padleft = 2;
    s->padright = -5;
    s->padtop = 1;
    EXPECT_EQ(s->fullwidth(), -3);
    EXPECT_EQ(s->fullheight(), 4);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(ownedsprite(3, 3)->pixels) % 16, 0u);
}

TEST(spriteobject, paletteindexzeroistransparentonlywithoutalpha) {
    ownedsprite s(3, 2);
    int32_t palette[256] = {0x11223344, 0x00ABCDEF};
    palette[255] = 0x7F654321;
    const uint8_t indices[] = {0, 1, 255, 9, 1, 0, 0, 9};
    buildfrompalette(*s, palette, indices, nullptr, 4);
    EXPECT_EQ(std::vector<uint32_t>(s->pixels, s->pixels + 6),
              (std::vector<uint32_t>{0, 0xFFABCDEF, 0xFF654321, 0xFFABCDEF, 0, 0}));
    const uint8_t alpha[] = {0x80, 0x01, 0xFF, 9, 0x00, 0x40, 0x00, 9};
    buildfrompalette(*s, palette, indices, alpha, 4);
    EXPECT_EQ(std::vector<uint32_t>(s->pixels, s->pixels + 6),
              (std::vector<uint32_t>{0x80223344, 0x01ABCDEF, 0xFF654321, 0x00ABCDEF, 0x40223344, 0x00223344}));
}

TEST(spriteobject, alpharewritetakesachannelormasksnonzerowords) {
    ownedsprite s(2, 2);
    const uint32_t buffer[] = {0x00A1B2C3, 0x00000000, 0xEE, 0x01000000, 0x12345678, 0xEE};
    const uint32_t alphas[4][4] = {
        {0xA1, 0, 0, 0x34}, {0xB2, 0, 0, 0x56}, {0xC3, 0, 0, 0x78}, {0xFF, 0, 0xFF, 0xFF}};
    for (int channel = 0; channel < 4; ++channel) {
        std::fill(s->pixels, s->pixels + 4, 0x55123456u);
        rewritealpha(*s, buffer, 3, channel);
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(s->pixels[i], alphas[channel][i] << 24 | 0x123456) << "channel " << channel << " pixel " << i;
    }
}

// Pads move the image inside its full rectangle and are the gaps between repeats; the tile area
// clips the last repeats, and the clip rectangle comes back clamped to the target. Selections out
// of range draw nothing.
TEST(spritetiling, padsspacetherepeatsandtheareaclips) {
    testtarget g(16, 8);
    std::fill(g.colour.get(), g.colour.get() + g.pixels(), 0u);
    uint32_t pixels[2] = {0xFF0000AA, 0xFF0000BB};
    for (auto [tint, blend] : {std::pair{5, 0}, {-1, 0}, {1, 3}, {1, -1}})
        drawsprite(g.t, {pixels, 2, 1, 2, 0, 0, 0, 0}, 0, 6, tint, 0, blend, lanewidth::four);
    spriteimage image{pixels, 2, 1, 2, 1, 1, 0, 1};  // full 3 by 3, image at (1, 1)
    g.t.cliprect[2] = 40;  // wider than the target, as a resize would leave it
    tilesprite(g.t, image, 0, 0, 8, 5, 1, 0, 0, lanewidth::four);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 16; ++x) {
            uint32_t expect = 0;
            if (y < 5 && y % 3 == 1 && x < 8 && x % 3 != 0) expect = x % 3 == 1 ? 0xFF0000AA : 0xFF0000BB;
            EXPECT_EQ(g.at(x, y), expect) << x << ", " << y;
        }
    EXPECT_EQ(g.t.cliprect[2], 16);
}

// Random copies inside the sprite, keyed or not: the block and nothing else changes. Keyed, only
// a zero word stays transparent: 0x00000001 becomes opaque.
TEST(spriteobject, randomblockcopieswriteexactlytheblock) {
    testrng rng(5);
    for (int round = 0; round < 500; ++round) {
        int width = 1 + int(rng() % 20), height = 1 + int(rng() % 10);
        ownedsprite s(width, height);
        for (int i = 0; i < width * height; ++i) s->pixels[i] = rng();
        std::vector<uint32_t> before(s->pixels, s->pixels + width * height);
        int x = int(rng() % width), y = int(rng() % height);
        int w = int(rng() % (width - x + 1)), h = int(rng() % (height - y + 1));
        long pitch = w + rng() % 4;
        std::vector<uint32_t> source(pitch * h + 1);
        for (uint32_t& p : source) p = rng() % 3 ? rng.pixel() : rng() % 2;
        bool key = rng() % 2;
        copyblock(*s, x, y, w, h, source.data(), pitch, key);
        for (int j = 0; j < height; ++j)
            for (int i = 0; i < width; ++i) {
                uint32_t expect = before[j * width + i];
                if (i >= x && i < x + w && j >= y && j < y + h) {
                    uint32_t v = source[(j - y) * pitch + (i - x)];
                    expect = key && v ? v | 0xFF000000u : v;
                }
                ASSERT_EQ(s->pixels[j * width + i], expect) << "round " << round;
            }
    }
}

}  // namespace
