// Particles: where they land and when they are skipped, worked out by hand from the rules on a
// camera that makes the arithmetic exact, and what they draw.
#include "toolkit/particles.h"

#include <gtest/gtest.h>

#include "statetest.h"

namespace {

constexpr int unit = 1 << 12;  // one world unit in a particle position

struct placecase {
    const char* what;
    int position[3];
    int size;
    bool drawn;
    int x = 0, y = 0, d = 0;
    float z = 0.0f;
};

// On a 128 by 128 viewport, depth 0 to 1, with the world scaled by 1/64: a point (px, py, pz)
// lands at (px + 64, py + 64) at depth (pz / 64 + 1) / 2, and a size of 2048 is one pixel.
const placecase placecases[] = {
    {"centre", {0, 0, 0}, 4096, true, 64, 64, 2, 0.5f},
    {"size 0", {0, 0, 0}, 0, false},
    {"half a pixel rounds to even 0", {0, 0, 0}, 1024, false},
    {"just over half a pixel", {0, 0, 0}, 1025, true, 64, 64, 1, 0.5f},
    {"2.5 rounds to 2", {0, 0, 0}, 5120, true, 64, 64, 2, 0.5f},
    {"3.5 rounds to 4", {0, 0, 0}, 7168, true, 64, 64, 4, 0.5f},
    {"a negative size counts by its magnitude", {0, 0, 0}, -5120, true, 64, 64, 2, 0.5f},
    {"the fraction bits are dropped", {10 * unit + 4095, -1, 0}, 4096, true, 74, 63, 2, 0.5f},
    {"the right and bottom edges are inside", {64 * unit, 64 * unit, 0}, 4096, true, 128, 128, 2, 0.5f},
    {"past the right edge", {65 * unit, 0, 0}, 4096, false},
    {"past the bottom edge", {0, 65 * unit, 0}, 4096, false},
    {"the left edge is inside", {-64 * unit, 0, 0}, 4096, true, 0, 64, 2, 0.5f},
    {"left of it", {-65 * unit, 0, 0}, 4096, false},
    {"above the top", {0, -65 * unit, 0}, 4096, false},
    {"a huge particle with its centre off the screen", {100 * unit, 0, 0}, 2048 * 1000, false},
    {"at the near depth", {0, 0, -64 * unit}, 4096, false},
    {"just beyond near", {0, 0, -63 * unit}, 4096, true, 64, 64, 2, 0.0078125f},
    {"in front of near", {0, 0, -65 * unit}, 4096, false},
    {"at the far depth", {0, 0, 64 * unit}, 4096, true, 64, 64, 2, 1.0f},
    {"beyond far, saturated to the far bound", {0, 0, 66 * unit}, 4096, true, 64, 64, 2, 1.015625f},
};

class particles : public statetest {
protected:
    void SetUp() override {
        statetest::SetUp();
        setviewport(0, 0, 128, 128, 0.0f, 1.0f);
        for (int i : {0, 5, 10}) t.viewprojection[i] = 1.0f / 64;
    }
};

TEST_F(particles, placementfollowstherules) {
    for (const placecase& c : placecases) {
        particleplace at{};
        ASSERT_EQ(placeparticle(t, c.position, c.size, at), c.drawn) << c.what;
        if (!c.drawn) continue;
        EXPECT_EQ(at.x, c.x) << c.what;
        EXPECT_EQ(at.y, c.y) << c.what;
        EXPECT_EQ(at.d, c.d) << c.what;
        EXPECT_EQ(bitsof(at.z), bitsof(c.z)) << c.what;
    }
}

// The size is measured along the camera's x axis, the first column of the view matrix: with a
// camera whose x axis is the world's y and a projection that puts world y across the screen, a
// particle grows by its size in screen x.
TEST_F(particles, sizegoesalongthefirstcolumnoftheviewmatrix) {
    t.viewmatrix[0] = 0.0f;
    t.viewmatrix[4] = 1.0f;
    for (int i : {0, 5}) t.viewprojection[i] = 0.0f;
    t.viewprojection[1] = t.viewprojection[4] = 1.0f / 64;
    particleplace at{};
    const int position[3] = {3 * unit, 7 * unit, 0};
    ASSERT_TRUE(placeparticle(t, position, 6144, at));
    EXPECT_EQ(at.x, 71);
    EXPECT_EQ(at.y, 67);
    EXPECT_EQ(at.d, 3);
}

}  // namespace
