// The model record: its mask that only loses bits, the bounds of its used vertices, and the
// arrays it shares with other models.
#include <cmath>
#include <string>

#include "model/lighting.h"
#include "modeltest.h"
#include "util/exception.h"

namespace {

class modeldata : public modeltest {};

TEST_F(modeldata, amaskonlylosesbitsandarefusalkeepstheoldone) {
    const uint32_t cases[][3] = {{0xFF, 0x0F, 1}, {0xFF, 0xFF, 1}, {0xFF, 0, 1}, {0x0F, 0x1F, 0}, {0, 1, 0}, {0x10000, 0x20000, 0}};
    for (const auto& c : cases) {
        model m;
        m.functionmask = c[0];
        try {
            narrowmask(m, c[1]);
            EXPECT_TRUE(c[2]) << std::hex << c[0] << " to " << c[1];
        } catch (Exception* e) {
            EXPECT_FALSE(c[2]);
            EXPECT_NE(dynamic_cast<IllegalArgumentException*>(e), nullptr);
            EXPECT_STREQ(e->message(), "Can't re-enable previously disabled functions");
            delete e;
        }
        EXPECT_EQ(m.functionmask, c[2] ? c[1] : c[0]);
    }
}

// Dropping sharelight shows the faces it hid and makes the colours again, stale or not.
TEST_F(modeldata, droppingsharelightshowshiddenfacesandrelights) {
    randomhostmodel h(rng, texturecount);
    while (h.types.empty() || h.s.facecount < 8) h = randomhostmodel(rng, texturecount);
    h.s.functionmask = FM_SHARELIGHT | FM_TINT;
    std::unique_ptr<model> m = buildmodel(h.s, pool);
    lightpass(*m);
    for (int f = 0; f < m->facecount; ++f) m->facetypes[f] = f % 3, m->litcolours[f] = {{1, 2, 3}};
    narrowmask(*m, FM_TINT);
    for (int f = 0; f < m->facecount; ++f) {
        EXPECT_EQ(m->facetypes[f], f % 3 == 1 ? 1 : 0);
        EXPECT_NE(m->litcolours[f].corner[0], 1u);
    }
}

TEST_F(modeldata, boundsboxtheusedverticesandroundtheradiiup) {
    for (int round = 0; round < 50; ++round) {
        randomhostmodel h(rng, texturecount);
        h.s.billboardints = {};  // they move vertices
        std::unique_ptr<model> m = buildmodel(h.s, pool);
        computebounds(*m);
        float lo[3] = {32767, 32767, 32767}, hi[3] = {-32768, -32768, -32768}, xz = 0, xyz = 0;
        for (int i = 0; i < h.s.usedvertexcount; ++i) {
            float p[3] = {float(h.x[i]), float(h.y[i]), float(h.z[i])};
            for (int k = 0; k < 3; ++k) lo[k] = std::min(lo[k], p[k]), hi[k] = std::max(hi[k], p[k]);
            xz = std::max(xz, p[0] * p[0] + p[2] * p[2]);
            xyz = std::max(xyz, p[0] * p[0] + p[2] * p[2] + p[1] * p[1]);
        }
        EXPECT_TRUE(m->boundsvalid);
        const int16_t got[6] = {m->minx, m->miny, m->minz, m->maxx, m->maxy, m->maxz};
        for (int k = 0; k < 6; ++k) EXPECT_EQ(got[k], k < 3 ? lo[k] : hi[k - 3]);
        EXPECT_EQ(m->radius, int(std::sqrt(xz) + 0.99f));
        EXPECT_EQ(m->sphereradius, int(std::sqrt(xyz) + 0.99f));
    }
}

// A block shared by two models outlives the one destroyed first, and goes with the second.
TEST_F(modeldata, destroyingamodelleavessharedarraystotheirlasthandle) {
    randomhostmodel h(rng, texturecount);
    h.s.billboardints = {};
    int before = allocatedbytes;
    auto first = buildmodel(h.s, pool);
    model second;
    second.vertices.copyfrom(first->vertices);
    int bytes = second.vertices.bytes();
    first.reset();
    EXPECT_EQ(allocatedbytes - before, bytes);
    for (int i = 0; i < h.s.vertexcount; ++i) EXPECT_EQ(second.vertices[i].y, float(h.y[i]));
    second.vertices.release();
    EXPECT_EQ(allocatedbytes, before);
}

}  // namespace
