// Process-wide tables, the viewport and the canvas's precondition.
#include <gtest/gtest.h>

#include <cmath>

#include "statetest.h"
#include "toolkit/canvas.h"
#include "toolkit/tables.h"
#include "toolkit/toolkit.h"

namespace {

// FNV-1a over the bytes of the table, lowest first.
uint32_t checksum(const int32_t* table, int n) {
    uint32_t sum = 2166136261u;
    for (int i = 0; i < n; ++i)
        for (int k = 0; k < 32; k += 8) sum = (sum ^ (static_cast<uint32_t>(table[i]) >> k & 0xFF)) * 16777619u;
    return sum;
}

// The whole table is pinned; the values below were worked from the rule in single precision, with
// pow in double, one for each branch of the hue: index 127 (saturation and hue smallest) is near
// white but not white, its green takes 6t < 1 and its red 2t < 1; 0x8040's green takes 3t < 2
// and its red the last branch.
TEST(tables, hsltorgbisthetableoftherule) {
    buildhsltorgb();
    EXPECT_EQ(checksum(hsltorgb, 65536), 0x6337F409u);
    const int32_t worked[][2] = {{0, 0}, {127, 0xFEFEFE}, {0x8040, 0x96A3A4}, {0x1440, 0xA49D96}, {0xFFFF, 0xFFFDFD}};
    for (auto [i, rgb] : worked) EXPECT_EQ(hsltorgb[i], rgb) << i;
}

// Each entry is the sine or cosine of i steps, the step the float nearest 2 pi / 16384, taken in
// extended precision and rounded to float once.
TEST(tables, sineandcosineofbinaryangles) {
    buildtrigtables();
    const float step = static_cast<float>(2 * 3.141592653589793238462643383279502884L / angles);
    EXPECT_EQ(step, 0.0003834952f);
    for (int i = 0; i < angles; ++i) {
        const long double a = i * static_cast<long double>(step);
        ASSERT_EQ(bitsof(sintable[i]), bitsof(static_cast<float>(sinl(a)))) << i;
        ASSERT_EQ(bitsof(costable[i]), bitsof(static_cast<float>(cosl(a)))) << i;
    }
    EXPECT_EQ(sintable[4096], 1.0f);
    EXPECT_EQ(costable[0], 1.0f);
}

TEST(viewport, scaleoffsetandpackedbounds) {
    setviewport(10, 20, 300, 201, 0.25f, 0.75f);
    const rasterstatedata& r = rasterstate;
    EXPECT_EQ(r.viewport[0], 10);
    EXPECT_EQ(r.viewport[3], 201);
    EXPECT_EQ(r.viewportscale[0], 150.0f);
    EXPECT_EQ(r.viewportscale[1], 100.5f);
    EXPECT_EQ(r.viewportscale[2], 0.25f);
    EXPECT_EQ(r.viewportscale[3], 1.0f);
    EXPECT_EQ(r.viewportoffset[0], 160.0f);
    EXPECT_EQ(r.viewportoffset[1], 120.5f);
    EXPECT_EQ(r.viewportoffset[2], 0.5f);
    EXPECT_EQ(r.viewportoffset[3], 0.0f);
    const int16_t bounds[8] = {310, 221, static_cast<int16_t>(0.75f * 32767.0f), static_cast<int16_t>(0.25f * 32767.0f),
                               10, 20, 0, 0};
    for (int i = 0; i < 8; ++i) EXPECT_EQ(r.screenbounds[i], bounds[i]) << i;
    // Before any depth range, the z scale is 0.
    setviewport(0, 0, 8, 8, 0.0f, 0.0f);
    EXPECT_EQ(r.viewportscale[2], 0.0f);
}

TEST(canvasdeath, showingwithoutacomponentfailsitsassertion) {
    java_canvas c{};
    EXPECT_DEATH(showcanvas(nullptr, c, 0, 0, 1, 1), "Assertion failed: java_canvas, file toolkit/canvas, line 194");
}

}  // namespace
