// The scaled draws where the fuzz family "sprites" does not reach: the division of the plain tint
// at depth, rows longer than the column table's stretch, and an image drawn into itself.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "sprite/drawscaled.h"
#include "sprite/drawsprite.h"
#include "spritereference.h"

namespace {

// A toolkit drawing into the given buffers; toolkits are not copied, so it is filled in place.
void target(toolkit& t, uint32_t* colour, float* depth, int width, int height) {
    t.width = width;
    t.height = height;
    t.colourbuffer = colour;
    t.depthbuffer = depth;
}

// Draws at depth z by the library and by the reference into copies of the target; true when
// they agree.
bool matchesreference(const toolkit& t, const spriteimage& image, int x, int y, int w, int h, pixelrule rule,
                      uint32_t colour, float z, lanewidth lanes) {
    int tint = int(rule.get<tintmode>()), blend = int(rule.get<blendmode>());
    std::vector<uint32_t> expect(t.colourbuffer, t.colourbuffer + t.width * t.height);
    const int* clip = t.cliprect;
    const int pads[4] = {image.padleft, image.padtop, image.padright, image.padbottom};
    spritereference::scaled({expect.data(), t.depthbuffer, t.width, {clip[0], clip[1], clip[2], clip[3]}},
                            image.pixels, image.width, image.height, image.pitch, pads, x, y, w, h, tint, colour,
                            blend, z);
    drawscaledatdepth(t, image, x, y, z, w, h, tint, colour, blend, lanes);
    return std::equal(expect.begin(), expect.end(), t.colourbuffer);
}

// Scaling 2 pixels to 82: pixel 41 is 41 / 41 = 1 by division but truncates to 0 through the
// rounded reciprocal. Only the plain tint with depth divides, and only leftovers show it.
TEST(scaleddraw, plainwithdepthdividesinleftovers) {
    std::vector<uint32_t> colour(43);
    std::vector<float> depth(43);
    uint32_t pixels[2] = {0xFF000000u, 0xFFFFFFFFu};
    for (float* d : {depth.data(), static_cast<float*>(nullptr)}) {
        toolkit t{};
        target(t, colour.data(), d, 43, 1);
        setcliprect(t, 0, 0, 43, 1);
        drawscaledatdepth(t, {pixels, 2, 1, 2, 0, 0, 0, 0}, 0, 0, 0.0f, 82, 1, 1, 0, 0, lanewidth::four);
        EXPECT_EQ(colour[41], d ? 0xFFFFFFFFu : 0xFF000000u);
    }
}

// Rows longer than the column table's stretch, with and without depth.
TEST(scaleddraw, longrowsmatchthereference) {
    constexpr int width = 1100;
    std::mt19937 random(13);
    std::vector<uint32_t> pixels(7 * 3), colour(width * 3);
    std::vector<float> depth(width * 3);
    for (uint32_t& p : pixels) p = random();
    for (float& d : depth) d = float(random() % 3);
    for (lanewidth lanes : runnablewidths())
        for (float* d : {depth.data(), static_cast<float*>(nullptr)}) {
            for (uint32_t& p : colour) p = random();
            toolkit t{};
            target(t, colour.data(), d, width, 3);
            setcliprect(t, 3, 0, width, 3);
            EXPECT_TRUE(matchesreference(t, {pixels.data(), 7, 3, 7, 0, 0, 0, 0}, -5, 0, width + 2, 3,
                                         pixelrule(tintmode::plain, blend), 0, 1.0f, lanes));
        }
}

// A sprite that is also the target, drawn into itself over its own pixels: the wide rows must
// not read ahead of what the four-pixel rows have written.
TEST(scaleddraw, animagedrawnintoitselfgivesthesamebitsateverywidth) {
    std::vector<std::vector<uint32_t>> results;
    for (lanewidth lanes : runnablewidths()) {
        std::vector<uint32_t> pixels(40 * 4);
        for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = uint32_t(i * 0x01030507u);
        toolkit t{};
        target(t, pixels.data(), nullptr, 40, 4);
        setcliprect(t, 0, 0, 40, 4);
        spriteimage image{pixels.data(), 40, 4, 40, 0, 0, 0, 0};
        drawsprite(t, image, 4, 0, 1, 0, 0, lanes);
        drawscaled(t, image, 0, 1, 60, 3, 1, 0, 1, lanes);
        results.push_back(pixels);
    }
    EXPECT_EQ(results.front(), results.back());
}

}  // namespace
