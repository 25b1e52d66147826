// The glyph pixel forms against their channel-by-channel definitions, over every glyph byte and
// opacity, in every position of a row, for the four-at-a-time stores and the one-by-one blends.
#include <gtest/gtest.h>

#include <vector>

#include "glyphreference.h"
#include "sprite/glyphpixels.h"
#include "target.h"

namespace {

// Channel values biased to the ends, where products carry.
std::vector<uint32_t> channels() {
    std::vector<uint32_t> v = {0, 1, 2, 127, 128, 129, 254, 255};
    for (uint32_t b = 3; b < 254; b += 23) v.push_back(b);
    return v;
}

// A pixel word whose four channels all differ, alpha included.
uint32_t word(uint32_t a, uint32_t b) { return (a ^ 0x5A) << 24 | a << 16 | b << 8 | (a ^ b ^ 0x33); }

TEST(glyphpixels, coverageblendseverybyteanddropsthecolouralpha) {
    auto values = channels();
    for (uint32_t alpha : {0u, 0x80u, 255u})
        for (uint32_t c = 1; c < 256; ++c)
            for (uint32_t p : values)
                for (uint32_t q : values) {
                    uint32_t d = word(p, q), colour = alpha << 24 | (q << 16) | (p << 8) | (255 - q);
                    uint32_t expected = glyphreference::weighted(d, colour, 256 - c, c);
                    ASSERT_EQ(coverageform{colour}(d, static_cast<uint8_t>(c)), expected) << std::hex << d << " " << colour << " " << c;
                }
}

TEST(glyphpixels, fadeweighsbythecoloursalphaandignoresthebyte) {
    auto values = channels();
    for (uint32_t a = 0; a < 256; ++a)
        for (uint32_t p : values)
            for (uint32_t q : values) {
                uint32_t d = word(p, q), colour = a << 24 | (q << 16) | (255 - p) << 8 | p;
                uint32_t expected = glyphreference::weighted(d, colour, 255 - a, a);
                fadeform form(colour);
                ASSERT_EQ(form(d, 1), expected) << std::hex << d << " " << colour;
                ASSERT_EQ(form(d, 255), expected);
            }
}

TEST(glyphpixels, blendends) {
    // Full coverage of black over white keeps (255 * 1) >> 8 of white: nothing.
    EXPECT_EQ(coverageform{0xFF000000u}(0xFFFFFFFFu, 255), 0u);
    // Faint coverage of black darkens by a step where a channel is high enough, and clears alpha.
    EXPECT_EQ(coverageform{0}(0xFF80FF01u, 1), 0x007FFE00u);
    // No opacity still keeps only 255 of 256 parts of the old pixel.
    EXPECT_EQ(fadeform(0x00FFFFFFu)(0xFFC8C801u, 1), 0x00C7C700u);
}

// Rows of every length up to 13 from every start offset, with bytes that mix 0, 255 and others,
// through each form's row walk against the reference pixel by pixel.
TEST(glyphpixels, rowsmatchthereferenceineverypositionofeverylength) {
    testrng rng(7);
    std::vector<uint32_t> palette(256);
    for (auto& p : palette) p = randompixel(rng);
    palette[0] = 0xDEADBEEF;
    const paletteform paletted{palette.data()};
    for (uint32_t colour : {0xFF336699u, 0x00336699u, 0x80FFFF00u})
        for (int n = 0; n <= 13; ++n)
            for (int start = 0; start < 4; ++start)
                for (int trial = 0; trial < 40; ++trial) {
                    std::vector<uint8_t> bytes(start + n);
                    for (auto& b : bytes) {
                        uint32_t pick = rng() % 3;
                        b = static_cast<uint8_t>(pick == 0 ? 0 : pick == 1 ? 255 : rng());
                    }
                    std::vector<uint32_t> before(start + n + 1);
                    for (auto& p : before) p = randompixel(rng);
                    auto check = [&](glyphform form, const auto& kernel) {
                        std::vector<uint32_t> out = before, expected = before;
                        paintrow(out.data() + start, bytes.data() + start, n, kernel);
                        for (int i = start; i < start + n; ++i)
                            if (bytes[i]) expected[i] = glyphreference::pixel(form, before[i], bytes[i], colour, palette);
                        ASSERT_EQ(out, expected) << static_cast<int>(form) << " n " << n << " start " << start;
                    };
                    check(glyphform::coverage, coverageform{colour});
                    check(glyphform::fade, fadeform(colour));
                    check(glyphform::colour, colourform{colour});
                    check(glyphform::palette, paletted);
                }
}

}  // namespace
