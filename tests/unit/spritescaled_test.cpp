// The scaled draws against the step-by-step reference, with pads, clipping and depth.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "sprite/drawscaled.h"
#include "sprite/drawsprite.h"
#include "spritereference.h"

namespace {

struct scene {
    static constexpr int width = 48, height = 40;
    std::vector<uint32_t> colour = std::vector<uint32_t>(width * height);
    std::vector<float> depth = std::vector<float>(width * height);
    toolkit t{};
    scene() {
        t.width = width;
        t.height = height;
        t.colourbuffer = colour.data();
    }
};

// Every rule, both lane widths.
TEST(scaleddraw, matchesthereferenceforeveryruleunderpadsclipanddepth) {
    std::mt19937 random(11);
    auto between = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(random); };
    std::vector<uint32_t> pixels(32 * 32);
    auto tables = spritereference::rowtablesavailable();
    for (int round = 0; round < 1500; ++round) {
        spritereference::drawingwith rows(tables[round / 2 % tables.size()]);
        scene s;
        for (uint32_t& p : s.colour) p = random();
        for (float& d : s.depth) d = float(between(0, 8));
        bool withdepth = round % 2;
        if (withdepth) s.t.depthbuffer = s.depth.data();
        int width = between(1, 12), height = between(1, 12);
        long pitch = width + between(0, 3);
        for (uint32_t& p : pixels) p = random();
        int pads[4] = {between(-2, 5), between(-2, 5), between(-2, 5), between(-2, 5)};
        if (pads[0] + pads[2] + width < 1) pads[0] = pads[2] = 0;
        if (pads[1] + pads[3] + height < 1) pads[1] = pads[3] = 0;
        int x = between(-20, 40), y = between(-20, 36), w = between(0, 60), h = between(0, 50);
        int clip[4] = {between(0, 20), between(0, 20), between(20, scene::width), between(20, scene::height)};
        setcliprect(s.t, clip[0], clip[1], clip[2], clip[3]);
        int rule = round % 15;
        uint32_t colour = random();
        float z = float(between(0, 8));

        std::vector<uint32_t> expect = s.colour;
        spritereference::view v{expect.data(), withdepth ? s.depth.data() : nullptr, scene::width,
                                {clip[0], clip[1], clip[2], clip[3]}};
        spritereference::scaled(v, pixels.data(), width, height, pitch, pads, x, y, w, h, rule / 3, colour, rule % 3, z);
        spriteimage image{pixels.data(), width, height, pitch, pads[0], pads[1], pads[2], pads[3]};
        drawscaledatdepth(s.t, image, x, y, z, w, h, rule / 3, colour, rule % 3);
        ASSERT_EQ(s.colour, expect) << "round " << round;
    }
}


// Scaling 2 pixels to 82: pixel 41 is 41 / 41 = 1 by division but truncates to 0 through the
// rounded reciprocal. Only the plain tint with depth divides, and only leftovers show it.
TEST(scaleddraw, plainwithdepthdividesinleftovers) {
    scene s;
    s.t.depthbuffer = s.depth.data();
    setcliprect(s.t, 0, 0, 43, 1);
    uint32_t pixels[2] = {0xFF000000u, 0xFFFFFFFFu};
    drawscaledatdepth(s.t, {pixels, 2, 1, 2, 0, 0, 0, 0}, 0, 0, 0.0f, 82, 1, 1, 0, 0);
    EXPECT_EQ(s.colour[41], 0xFFFFFFFFu);
    s.t.depthbuffer = nullptr;
    drawscaledatdepth(s.t, {pixels, 2, 1, 2, 0, 0, 0, 0}, 0, 0, 0.0f, 82, 1, 1, 0, 0);
    EXPECT_EQ(s.colour[41], 0xFF000000u);
}

// Rows longer than the column table's stretch, with and without depth.
TEST(scaleddraw, longrowsmatchthereference) {
    constexpr int width = 1100;
    std::mt19937 random(13);
    std::vector<uint32_t> pixels(7 * 3), colour(width * 3);
    std::vector<float> depth(width * 3);
    for (uint32_t& p : pixels) p = random();
    for (float& d : depth) d = float(random() % 3);
    const int pads[4] = {0, 0, 0, 0};
    for (const rowtables* table : spritereference::rowtablesavailable())
        for (bool withdepth : {false, true}) {
            spritereference::drawingwith rows(table);
            for (uint32_t& p : colour) p = random();
            std::vector<uint32_t> expect = colour;
            toolkit t{};
            t.width = width;
            t.height = 3;
            t.colourbuffer = colour.data();
            t.depthbuffer = withdepth ? depth.data() : nullptr;
            setcliprect(t, 3, 0, width, 3);
            spritereference::view v{expect.data(), t.depthbuffer, width, {3, 0, width, 3}};
            spritereference::scaled(v, pixels.data(), 7, 3, 7, pads, -5, 0, width + 2, 3, 1, 0, 1, 1.0f);
            drawscaledatdepth(t, {pixels.data(), 7, 3, 7, 0, 0, 0, 0}, -5, 0, 1.0f, width + 2, 3, 1, 0, 1);
            ASSERT_EQ(colour, expect) << "depth " << withdepth;
        }
}

// A sprite that is also the target, drawn into itself over its own pixels: the wide rows must
// not read ahead of what the four-pixel rows have written.
TEST(scaleddraw, animagedrawnintoitselfgivesthesamebitsateverywidth) {
    std::vector<std::vector<uint32_t>> results;
    for (const rowtables* table : spritereference::rowtablesavailable()) {
        spritereference::drawingwith rows(table);
        std::vector<uint32_t> pixels(40 * 4);
        for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = uint32_t(i * 0x01030507u);
        toolkit t{};
        t.width = 40;
        t.height = 4;
        t.colourbuffer = pixels.data();
        setcliprect(t, 0, 0, 40, 4);
        spriteimage image{pixels.data(), 40, 4, 40, 0, 0, 0, 0};
        drawsprite(t, image, 4, 0, 1, 0, 0);
        drawscaled(t, image, 0, 1, 60, 3, 1, 0, 1);
        results.push_back(pixels);
    }
    EXPECT_EQ(results.front(), results.back());
}

}  // namespace
