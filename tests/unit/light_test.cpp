// Sun, point lights, shadow cell, fog and shade colour as the setters leave them.
#include "toolkit/light.h"

#include <algorithm>
#include <climits>

#include "projectionreference.h"
#include "statetest.h"
#include "toolkit/view.h"

namespace {

// Truncation toward zero, with the processor's answer for values out of range.
int truncated(float v) { return std::fabs(v) < 2147483648.0f ? static_cast<int>(v) : INT_MIN; }

class light : public statetest {};

// The direction is divided by a correctly rounded length, not an approximate reciprocal one.
TEST_F(light, sunisnormalisedwithacorrectlyroundedlength) {
    setsun(t, 0x7F102030, 0.25f, 0.75f, 3.0f, -4.0f, 12.0f);
    EXPECT_EQ(t.suncolour[0] << 16 | t.suncolour[1] << 8 | t.suncolour[2], 0x102030);
    for (int round = 0; round < 200 && !HasFailure(); ++round) {
        float x = randomfloat(), y = randomfloat(), z = randomfloat();
        setsun(t, 0, 0, 0, x, y, z);
        float f = 1.0f / std::sqrt(x * x + y * y + z * z), dir[3] = {f * x, f * y, f * z};
        for (int k = 0; k < 3; ++k) EXPECT_EQ(bitsof(dir[k]), bitsof(t.sundirection[k]));
        EXPECT_EQ(t.shadowslopex, truncated(dir[0] * 256.0f / dir[1]));
        EXPECT_EQ(t.shadowslopez, truncated(dir[2] * 256.0f / dir[1]));
    }
    setsun(t, 0, 0, 0, 1.0f, 0.0f, 0.0f);  // a level sun divides by zero
    EXPECT_EQ(t.shadowslopex, INT_MIN);
}

TEST_F(light, pointlightskeepfourclamptheintensityandwraptheradiussquared) {
    int lights[6][5];
    for (int i = 0; i < 6; ++i) {
        const int values[5] = {-100 * i, 7 + i, 1 << (20 + i), i == 3 ? 70000 : 30 + i, 0x01020304 * (i + 1)};
        std::copy(values, values + 5, lights[i]);
    }
    const float intensities[6] = {2.5f, 0.5f, 1.0f, 0.3f, 0.7f, 0.9f}, k[4] = {1.0f, 0.5f, 1.0f, 0.3f};
    setpointlights(t, 6, lights[0], intensities);
    ASSERT_EQ(t.lightcount, 4);
    for (int i = 0; i < 4; ++i) {
        for (int axis = 0; axis < 3; ++axis) EXPECT_EQ(t.lightposition[i][axis], static_cast<float>(lights[i][axis]));
        // 70000 squared wraps to 605,032,704.
        float squared = i == 3 ? 605032704.0f : static_cast<float>(lights[i][3] * lights[i][3]);
        EXPECT_EQ(bitsof(t.lightradius[i]), bitsof(squared * k[i] * 256.0f));
        EXPECT_EQ(t.lightcolour[i], lights[i][4]);
    }
    setpointlights(t, 1, lights[0], intensities);
    EXPECT_EQ(t.lightradius[1], 0.0f);
    setpointlights(t, -3, nullptr, nullptr);
    EXPECT_EQ(t.lightcount, -3);
}

TEST_F(light, shadowcellroundsdowntoapoweroftwoandonlythebyteonemeansfogon) {
    const int cases[][3] = {{9, 8, 3}, {8, 8, 3}, {0, 1, 0}, {1, 1, 0}, {3, 2, 1}, {-7, 1, 0}, {INT_MAX, 1 << 30, 30}};
    for (const auto& c : cases) {
        setshadowcell(t, c[0]);
        EXPECT_EQ(t.shadowcell, c[1]) << c[0];
        EXPECT_EQ(t.shadowshift, c[2]) << c[0];
    }
    for (uint8_t value : {0, 1, 2, 255}) {
        setfogenabled(t, value);
        EXPECT_EQ(t.fogenabled, value == 1);
        EXPECT_EQ(fogflag, value == 1 ? 1 : 0);
    }
}

// The fog starts where the point at eye depth far - distance lands on the screen; a new
// projection or viewport moves it, with the distance and colour already set.
TEST_F(light, fogfollowsdistanceprojectionandviewport) {
    auto expectfog = [&](uint32_t colour) {
        const float p[4] = {0.0f, 0.0f, rasterstate.farplane - t.fogdistance, 1.0f};
        float screen[4];
        referenceproject(p, t.projectionmatrix, screen);
        EXPECT_EQ(bitsof(rasterstate.fogstart), bitsof(screen[2]));
        EXPECT_EQ(bitsof(rasterstate.fogscale), bitsof(1.0f / (1.0f - screen[2])));
        for (int k = 0; k < 4; ++k) EXPECT_EQ(rasterstate.fogcolour[k], static_cast<float>((colour >> 8 * k & 0xFF) * 256));
    };
    // Eye depth 1 maps to 0 and 1000 to 1, with w the eye depth.
    const float q = 1000.0f / 999.0f;
    alignas(16) float p[16] = {1.5f, 0, 0, 0, 0, 2.0f, 0, 0, 0, 0, q, 1.0f, 0, 0, -q, 0};
    setviewport(0, 0, 640, 480, 0.0f, 1.0f);
    setprojectionmatrix(t, p);
    setfog(t, static_cast<int>(0x80FF0102), 300);
    EXPECT_EQ(t.fogdistance, 300.0f);
    expectfog(0x80FF0102);
    EXPECT_GT(rasterstate.fogstart, 0.0f);  // eye depth 700 lies between the planes
    EXPECT_LT(rasterstate.fogstart, 1.0f);
    setviewport(0, 0, 640, 480, 0.25f, 0.75f);
    p[10] *= 0.5f;
    setprojectionmatrix(t, p);
    expectfog(0x80FF0102);
    for (int distance : {0, -20}) {
        setfog(t, 0x00FFFFFF, distance);
        EXPECT_EQ(bitsof(t.fogdistance), 0u);
        expectfog(0x00FFFFFF);
    }
}

// The shade colour shares the toolkit's fog colour word but has its own raster form. The
// override nests one deep, and restoring leaves the shade as the last override set it.
TEST_F(light, shadeandoverride) {
    setfog(t, 0x0000AA, 100);
    setshade(t, 500, static_cast<int>(0xFF804020), 250);
    EXPECT_EQ(t.shadestartf, 500.0f);
    EXPECT_EQ(t.shadescale, -1.0f / 250.0f);
    EXPECT_EQ(t.fogcolour, static_cast<int>(0xFF804020));
    const float shade[4] = {0x20 * 256.0f, 0x40 * 256.0f, 0x80 * 256.0f, 0xFF * 256.0f};
    for (int k = 0; k < 4; ++k) EXPECT_EQ(rasterstate.shadecolour[k], shade[k]);
    EXPECT_EQ(rasterstate.fogcolour[0], 0xAA * 256.0f);
    overrideshade(t, 10, 0x0000BB, 20);
    overrideshade(t, 30, 0x0000CC, 40);
    EXPECT_EQ(t.fogoverride, 1);
    restoreshade(t);
    EXPECT_EQ(t.fogoverride, 0);
    EXPECT_EQ(t.fogcolour, 0x0000BB);
    EXPECT_EQ(t.shadestart, 30);
    EXPECT_EQ(t.shaderange, 40);
    EXPECT_EQ(rasterstate.shadecolour[0], 0xCC * 256.0f);
}

}  // namespace
