// Where particles land and when they are skipped, worked out by hand from the rules on a camera
// that keeps the arithmetic exact.
#include "toolkit/particles.h"

#include "statetest.h"

constexpr int unit = 1 << 12;  // one world unit in a particle position

class particles : public statetest {};

// On a 128 by 128 viewport, depth 0 to 1, (px, py, pz) lands at (px + py + 64, py + 64) at depth
// (pz / 64 + 1) / 2. The camera's x axis, the first column of the view matrix, is (1, 1, 0): a
// size of 1024 is one pixel, where the first row would make it 2048.
TEST_F(particles, placementfollowstherules) {
    setviewport(0, 0, 128, 128, 0.0f, 1.0f);
    for (int i : {0, 4, 5, 10}) t.viewprojection[i] = 1.0f / 64;
    t.viewmatrix[4] = 1.0f;
    struct { int position[3], size; bool drawn; int x = 0, y = 0, d = 0; float z = 0.0f; } cases[] = {
        {{0, 0, 0}, 2048, true, 64, 64, 2, 0.5f},
        {{0, 0, 0}, 512, false},  // half a pixel rounds to even 0
        {{0, 0, 0}, -3584, true, 64, 64, 4, 0.5f},  // 3.5 rounds to even 4
        {{10 * unit + 4095, -1, 0}, 2048, true, 73, 63, 2, 0.5f},  // the fraction bits go
        {{64 * unit, 0, 0}, 2048, true, 128, 64, 2, 0.5f},         // right and bottom are inside
        {{-64 * unit, 64 * unit, 0}, 2048, true, 64, 128, 2, 0.5f},
        {{65 * unit, 0, 0}, 2048, false},
        {{65 * unit, -65 * unit, 0}, 2048, false},  // above the top
        {{100 * unit, 0, 0}, 2048 * 1000, false},  // the centre decides, whatever the size
        {{0, 0, -64 * unit}, 2048, false},         // at near
        {{0, 0, 66 * unit}, 2048, true, 64, 64, 2, 1.015625f},  // beyond far, saturated to far
    };
    for (const auto& c : cases) {
        particleplace at{};
        ASSERT_EQ(placeparticle(t, c.position, c.size, at), c.drawn) << c.position[0] << " size " << c.size;
        EXPECT_TRUE(!c.drawn || (at.x == c.x && at.y == c.y && at.d == c.d && bitsof(at.z) == bitsof(c.z)))
            << c.position[0] << " size " << c.size << ": " << at.x << "," << at.y << " " << at.d << " " << at.z;
    }
}
