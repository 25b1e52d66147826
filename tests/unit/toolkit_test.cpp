// Process-wide tables, the viewport and the canvas's precondition.
#include <gtest/gtest.h>

#include <cmath>

#include "toolkit/canvas.h"
#include "toolkit/tables.h"
#include "toolkit/toolkit.h"

namespace {

// HSL to RGB as the table's definition reads, one channel at a time, in single precision.
int32_t hslreference(int i) {
    const float h = static_cast<float>(i >> 10 & 63) / 64.0f + 0.0078125f;
    const float s = static_cast<float>(i >> 7 & 7) / 8.0f + 0.0625f;
    const float l = static_cast<float>(i & 127) / 128.0f;
    float q;
    if (l < 0.5f) q = l * (1.0f + s);
    else q = l + s - l * s;
    const float p = 2.0f * l - q;
    const float third = 0.33333334f;
    float t[3] = {h + third, h, h - third};
    if (t[0] > 1.0f) t[0] -= 1.0f;
    if (t[2] < 0.0f) t[2] += 1.0f;
    int32_t rgb = 0;
    for (float c : t) {
        float v;
        if (6.0f * c < 1.0f) v = p + (q - p) * 6.0f * c;
        else if (2.0f * c < 1.0f) v = q;
        else if (3.0f * c < 2.0f) v = p + (q - p) * (0.6666667f - c) * 6.0f;
        else v = p;
        rgb = rgb * 256 + static_cast<int>(std::pow(static_cast<double>(v), 0.699999988079071) * 256.0);
    }
    return rgb;
}

TEST(tables, hsltorgbmatchesthedefinition) {
    buildhsltorgb();
    for (int i = 0; i < 65536; ++i) ASSERT_EQ(hsltorgb[i], hslreference(i)) << i;
    EXPECT_EQ(hsltorgb[0], 0);
    // Lightness at its top, the smallest hue and saturation: near white, never white.
    EXPECT_NE(hsltorgb[127], 0xFFFFFF);
    EXPECT_GT(hsltorgb[127] & 0xFF, 0xF0);
    for (int i = 0; i < 65536; ++i) ASSERT_EQ(hsltorgb[i] >> 24, 0) << i;
}

TEST(tables, sineandcosinearebinaryangles) {
    buildtrigtables();
    EXPECT_EQ(sintable[0], 0.0f);
    EXPECT_EQ(costable[0], 1.0f);
    EXPECT_EQ(sintable[4096], 1.0f);
    EXPECT_NEAR(costable[4096], 0.0f, 1e-6f);
    EXPECT_NEAR(sintable[8192], 0.0f, 1e-6f);
    for (int i = 0; i < angles; i += 97) {
        EXPECT_NEAR(sintable[i], std::sin(i * 2.0 * M_PI / angles), 1e-6) << i;
        EXPECT_NEAR(costable[i], std::cos(i * 2.0 * M_PI / angles), 1e-6) << i;
    }
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
