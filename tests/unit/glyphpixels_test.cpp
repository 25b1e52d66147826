// The glyph pixel forms against their channel-by-channel definitions: the blends over every
// glyph byte and opacity, and every form's row walk in every position of rows up to 13 long.
#include <gtest/gtest.h>

#include <vector>

#include "glyphreference.h"
#include "sprite/glyphpixels.h"
#include "target.h"

namespace {

TEST(glyphpixels, blendsmatchthedefinitionforeverybyteandopacity) {
    std::vector<uint32_t> values = {0, 1, 2, 127, 128, 129, 254, 255};
    for (uint32_t b = 3; b < 254; b += 23) values.push_back(b);
    for (uint32_t k = 0; k < 256; ++k)
        for (uint32_t p : values)
            for (uint32_t q : values) {
                uint32_t d = (p ^ 0x5A) << 24 | p << 16 | q << 8 | (p ^ q ^ 0x33);
                uint32_t colour = k << 24 | q << 16 | (255 - p) << 8 | p;
                // The coverage blend takes the byte and never the colour's alpha; the fade the reverse.
                if (k > 0) {
                    ASSERT_EQ(coverageform{colour}(d, static_cast<uint8_t>(k)), glyphreference::weighted(d, colour, 256 - k, k));
                }
                ASSERT_EQ(fadeform(colour)(d, 1), glyphreference::weighted(d, colour, 255 - k, k)) << std::hex << d << " " << colour;
                ASSERT_EQ(fadeform(colour)(d, 255), fadeform(colour)(d, 1));
            }
}

TEST(glyphpixels, rowsmatchthereferenceineverypositionofeverylength) {
    testrng rng(7);
    std::vector<uint32_t> palette(256);
    for (auto& p : palette) p = rng.pixel();
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
                    for (auto& p : before) p = rng.pixel();
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
                    check(glyphform::palette, paletteform{palette.data()});
                }
}

}  // namespace
