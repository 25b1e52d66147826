// Sun, point lights, shadow cell, fog and shade colour as the setters leave them.
#include "toolkit/light.h"

#include <climits>

#include "projectionreference.h"
#include "statetest.h"
#include "toolkit/view.h"

namespace {

// Truncation toward zero, with the processor's answer for values out of range.
int truncated(float v) { return std::fabs(v) < 2147483648.0f ? static_cast<int>(v) : INT_MIN; }

class light : public statetest {};

TEST_F(light, sunisnormalisedwithacorrectlyroundedlength) {
    setsun(t, 0x7F102030, 0.25f, 0.75f, 3.0f, -4.0f, 12.0f);
    EXPECT_EQ(t.suncolour[0], 0x10);
    EXPECT_EQ(t.suncolour[1], 0x20);
    EXPECT_EQ(t.suncolour[2], 0x30);
    EXPECT_EQ(t.ambient, 0.25f);
    EXPECT_EQ(t.diffuse, 0.75f);
    for (int round = 0; round < 200; ++round) {
        float x = randomfloat(), y = randomfloat(), z = randomfloat();
        setsun(t, 0, 0, 0, x, y, z);
        float f = 1.0f / std::sqrt(x * x + y * y + z * z);
        float dir[3] = {f * x, f * y, f * z};
        for (int k = 0; k < 3; ++k) ASSERT_EQ(bitsof(dir[k]), bitsof(t.sundirection[k]));
        ASSERT_EQ(t.shadowslopex, truncated(dir[0] * 256.0f / dir[1]));
        ASSERT_EQ(t.shadowslopez, truncated(dir[2] * 256.0f / dir[1]));
    }
}

// A level sun casts endless shadows: the slope is the conversion's out-of-range answer.
TEST_F(light, levelsungivestheintegerindefiniteslope) {
    setsun(t, 0, 0, 0, 1.0f, 0.0f, 0.0f);
    EXPECT_EQ(t.shadowslopex, INT_MIN);
    EXPECT_EQ(t.shadowslopez, INT_MIN);
}

TEST_F(light, pointlightskeepfourandclamptheintensity) {
    int lights[6][5];
    for (int i = 0; i < 6; ++i) {
        int values[5] = {-100 * i, 7 + i, 1 << (20 + i), 30 + i, 0x01020304 * (i + 1)};
        for (int k = 0; k < 5; ++k) lights[i][k] = values[k];
    }
    const float intensities[6] = {2.5f, 0.5f, 1.0f, 0.3f, 0.7f, 0.9f};
    setpointlights(t, 6, lights[0], intensities);
    ASSERT_EQ(t.lightcount, 4);
    const float k[4] = {1.0f, 0.5f, 1.0f, 0.3f};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(t.lightposition[i][0], static_cast<float>(lights[i][0]));
        EXPECT_EQ(t.lightposition[i][1], static_cast<float>(lights[i][1]));
        EXPECT_EQ(t.lightposition[i][2], static_cast<float>(lights[i][2]));
        // The intensity scales the squared radius.
        float r = static_cast<float>(lights[i][3] * lights[i][3]);
        EXPECT_EQ(bitsof(t.lightradius[i]), bitsof(r * k[i] * 256.0f));
        EXPECT_EQ(t.lightcolour[i], lights[i][4]);
    }
}

TEST_F(light, fewerlightsleavetheotherslotsunusedandasquaredradiuswraps) {
    const int lights[5] = {1, 2, 3, 70000, 0x00FF00};
    const float intensity = 1.0f;
    setpointlights(t, 1, lights, &intensity);
    EXPECT_EQ(t.lightcount, 1);
    // 70000 squared is 4,900,000,000, which wraps to 605,032,704.
    EXPECT_EQ(t.lightradius[0], 605032704.0f * 256.0f);
    for (int i = 1; i < 4; ++i) EXPECT_EQ(t.lightradius[i], 0.0f);

    setpointlights(t, -3, nullptr, nullptr);
    EXPECT_EQ(t.lightcount, -3);
}

TEST_F(light, shadowcellroundsdowntoapoweroftwo) {
    const int cases[][3] = {{9, 8, 3}, {8, 8, 3}, {0, 1, 0},        {1, 1, 0},
                            {2, 2, 1}, {3, 2, 1}, {-7, 1, 0},       {1025, 1024, 10},
                            {INT_MAX, 1 << 30, 30}};
    for (const auto& c : cases) {
        setshadowcell(t, c[0]);
        EXPECT_EQ(t.shadowcell, c[1]) << c[0];
        EXPECT_EQ(t.shadowshift, c[2]) << c[0];
    }
}

TEST_F(light, onlythebyteonemeansfogon) {
    for (uint8_t value : {0, 1, 2, 255}) {
        setfogenabled(t, value);
        EXPECT_EQ(t.fogenabled, value == 1);
        EXPECT_EQ(fogflag, value == 1 ? 1 : 0);
    }
}

// A depth-mapping projection: eye depth 1 maps to 0 and 1000 to 1, with w the eye depth.
void perspective(float* m) {
    const float nearz = 1.0f, farz = 1000.0f, q = farz / (farz - nearz);
    const float values[16] = {1.5f, 0, 0, 0, 0, 2.0f, 0, 0, 0, 0, q, 1.0f, 0, 0, -nearz * q, 0};
    for (int i = 0; i < 16; ++i) m[i] = values[i];
}

// The fog starts where the point at eye depth far - distance lands on the screen.
void expectfogfor(const toolkit& t, int colour) {
    const float p[4] = {0.0f, 0.0f, rasterstate.farplane - t.fogdistance, 1.0f};
    float screen[4];
    referenceproject(p, t.projectionmatrix, screen);
    float start = screen[2];
    EXPECT_EQ(bitsof(rasterstate.fogstart), bitsof(start));
    EXPECT_EQ(bitsof(rasterstate.fogscale), bitsof(1.0f / (1.0f - start)));
    for (int k = 0; k < 4; ++k)
        EXPECT_EQ(rasterstate.fogcolour[k], static_cast<float>((static_cast<uint32_t>(colour) >> (8 * k) & 0xFF) * 256));
}

TEST_F(light, fogfollowsdistanceprojectionandviewport) {
    setviewport(0, 0, 640, 480, 0.0f, 1.0f);
    alignas(16) float p[16];
    perspective(p);
    setprojectionmatrix(t, p);
    setfog(t, 0x80FF0102, 300);
    EXPECT_EQ(t.fogcolour, static_cast<int>(0x80FF0102));
    EXPECT_EQ(t.fogdistance, 300.0f);
    expectfogfor(t, 0x80FF0102);
    EXPECT_GT(rasterstate.fogstart, 0.0f);
    EXPECT_LT(rasterstate.fogstart, 1.0f);

    // A new projection moves the start with the distance and colour already set.
    setviewport(0, 0, 640, 480, 0.25f, 0.75f);
    p[0] = 3.0f;
    p[10] *= 0.5f;
    setprojectionmatrix(t, p);
    expectfogfor(t, 0x80FF0102);
}

TEST_F(light, negativefogdistanceswitchesfogoff) {
    setviewport(0, 0, 640, 480, 0.0f, 1.0f);
    alignas(16) float p[16];
    perspective(p);
    setprojectionmatrix(t, p);
    setfog(t, 0x00FFFFFF, -20);
    EXPECT_EQ(t.fogdistance, 0.0f);
    expectfogfor(t, 0x00FFFFFF);
}

TEST_F(light, shadecolourhasitsownrasterformandsharesthefogcolourword) {
    setfog(t, 0x11223344, 100);
    float fogfloats[4];
    std::memcpy(fogfloats, rasterstate.fogcolour, sizeof fogfloats);

    setshade(t, 500, static_cast<int>(0xFF804020), 250);
    EXPECT_EQ(t.shadestart, 500);
    EXPECT_EQ(t.shaderange, 250);
    EXPECT_EQ(t.shadestartf, 500.0f);
    EXPECT_EQ(t.shadescale, -1.0f / 250.0f);
    EXPECT_EQ(t.fogcolour, static_cast<int>(0xFF804020));
    const float shade[4] = {0x20 * 256.0f, 0x40 * 256.0f, 0x80 * 256.0f, 0xFF * 256.0f};
    for (int k = 0; k < 4; ++k) {
        EXPECT_EQ(rasterstate.shadecolour[k], shade[k]);
        // The rasterisers keep the fog's colour until the fog is next brought up to date.
        EXPECT_EQ(rasterstate.fogcolour[k], fogfloats[k]);
    }
    EXPECT_EQ(t.fogoverride, 0);
}

// The override nests one deep: restoring after two overrides gives back the first override's
// colour, and the shade stays as the last override left it.
TEST_F(light, overridenestsonedeep) {
    setfog(t, 0x0000AA, 100);
    overrideshade(t, 10, 0x0000BB, 20);
    EXPECT_EQ(t.fogoverride, 1);
    EXPECT_EQ(t.fogcolour, 0x0000BB);
    restoreshade(t);
    EXPECT_EQ(t.fogoverride, 0);
    EXPECT_EQ(t.fogcolour, 0x0000AA);

    overrideshade(t, 10, 0x0000BB, 20);
    overrideshade(t, 30, 0x0000CC, 40);
    restoreshade(t);
    EXPECT_EQ(t.fogcolour, 0x0000BB);
    EXPECT_EQ(t.fogoverride, 0);
    EXPECT_EQ(t.shadestart, 30);
    EXPECT_EQ(t.shaderange, 40);
    EXPECT_EQ(rasterstate.shadecolour[0], 0xCC * 256.0f);
}

}  // namespace
