// The glyph pixel forms against their channel-by-channel definitions, over every glyph byte and
// opacity. The fuzz family "fonts" runs every form's rows through the same definitions.
#include <gtest/gtest.h>

#include <vector>

#include "glyphreference.h"
#include "sprite/glyphpixels.h"

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

}  // namespace
