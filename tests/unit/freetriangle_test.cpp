// The host's free triangle on each target: with depth it draws as without wherever 0 is not above
// the stored depth, and leaves the depths exactly as they were; on depth alone, or on nothing, it
// changes nothing.
#include "toolkit/freetriangle.h"

#include <cmath>
#include <cstring>
#include <vector>

#include "statetest.h"
#include "target.h"

class freetriangle : public statetest {};

TEST_F(freetriangle, eachtargetgetsitsmember) {
    testtarget g(12, 8, true);
    testrng rng(7);
    fillrandom(g, rng);
    const float depths[] = {-1.0f, -0.0f, 0.0f, 2.0f, NAN};
    for (int i = 0; i < g.pixels(); ++i) g.depth[i] = depths[rng() % 5];
    const std::vector<uint32_t> before(g.colour.get(), g.colour.get() + g.pixels());
    const std::vector<float> stored(g.depth.get(), g.depth.get() + g.pixels());
    rasterstate.targetstride = 12;
    setviewport(0, 0, 12, 8, 0.0f, 1.0f);
    const float xy[6] = {1.5f, 0.5f, 10.25f, 3.0f, 3.0f, 7.5f};
    const uint32_t corners[3] = {0xFF102030, 0x80FFFFFF, 0x00FF0000};
    std::vector<uint32_t> alone;
    for (int form = 0; form < 4; ++form) {  // colour alone, colour and depth, depth alone, neither
        std::copy(before.begin(), before.end(), g.colour.get());
        rasterstate.targetcolour = form < 2 ? g.colour.get() : nullptr;
        rasterstate.targetdepth = form == 1 || form == 2 ? g.depth.get() : nullptr;
        drawfreetriangle(xy, corners);
        if (form == 0) alone.assign(g.colour.get(), g.colour.get() + g.pixels());
        for (int i = 0; i < g.pixels(); ++i)
            ASSERT_EQ(g.colour[i], form == 0 || (form == 1 && 0.0f <= g.depth[i]) ? alone[i] : before[i]) << form;
        ASSERT_EQ(memcmp(g.depth.get(), stored.data(), stored.size() * 4), 0) << form;
    }
    EXPECT_NE(alone, before);
    EXPECT_TRUE(g.colour.intact() && g.depth.intact());
}
