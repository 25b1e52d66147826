// Model colour against references written from the rules: normals, base colours and the light
// pass over random models; the sun and point light terms over random corners, through the same
// approximate reciprocals as the library; and the colour changes with their mask bits.
#include <cmath>

#include "model/lighting.h"
#include "model/recolour.h"
#include "modelreference.h"
#include "modeltest.h"
#include "util/exception.h"

namespace {

class modellight : public modeltest {
protected:
    float randomfloat(float range) { return (float(rng()) / 4294967296.0f - 0.5f) * 2.0f * range; }
};

TEST_F(modellight, normalsandthelightpassfollowtherules) {
    for (int round = 0; round < 200 && !HasFailure(); ++round) {
        randomhostmodel h(rng, texturecount);
        std::unique_ptr<model> m = buildmodel(h.s, pool);
        lightpass(*m);
        std::vector<quad> sums(m->usedvertexcount, quad{});
        for (int f = 0; f < m->facecount; ++f) {
            const quad &a = m->vertices[m->facea[f]], &b = m->vertices[m->faceb[f]], &c = m->vertices[m->facec[f]];
            float u[3] = {b.x - a.x, b.y - a.y, b.z - a.z}, v[3] = {c.x - a.x, c.y - a.y, c.z - a.z};
            float n[3] = {u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]};
            float len = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]), r = len != 0 ? 1.0f / len : 1.0f;
            quad unit = {n[0] * r, n[1] * r, n[2] * r, 1.0f};
            int type = m->facetypes.empty() ? 0 : m->facetypes[f];
            EXPECT_TRUE(type != 1 || std::memcmp(&m->facenormals[f], &unit, sizeof unit) == 0) << f;
            for (uint16_t corner : {m->facea[f], m->faceb[f], m->facec[f]})
                if (type == 0) sums[corner] = {sums[corner].x + unit.x, sums[corner].y + unit.y, sums[corner].z + unit.z, sums[corner].w + 1};
            if (type == 2 || m->fhsl.empty()) continue;
            const texturedescriptor* d = f < m->texturedfacecount ? &descriptors[m->facetextures[f]] : nullptr;
            uint32_t word = (m->facealphas.empty() ? 255u : 255u - m->facealphas[f]) << 24 |
                            modelreference::base(m->fhsl[f], d, m->ambient);
            for (int k = 0; k < 3; ++k) EXPECT_EQ(m->litcolours[f].corner[k], word) << f;
        }
        for (int i = 0; i < m->usedvertexcount; ++i) {
            quad s = sums[i];
            if (s.w != 0) s = {s.x * (1.0f / s.w), s.y * (1.0f / s.w), s.z * (1.0f / s.w), 1.0f};
            EXPECT_EQ(std::memcmp(&m->normals[i], &s, sizeof s), 0) << i;
        }
        EXPECT_EQ(m->fhsl.empty(), !(h.s.functionmask & FM_KEEPCOLOURS));
    }
}

TEST_F(modellight, sunandpointlighttermsfollowtherules) {
    pointlights lights{};
    for (int round = 0; round < 20000 && !HasFailure(); ++round) {
        for (int k = 0; k < 3; ++k) t.sundirection[k] = randomfloat(1), t.suncolour[k] = uint8_t(rng());
        t.ambient = randomfloat(2), t.diffuse = randomfloat(2), t.lightfactor = randomfloat(2);
        uint32_t colour = randompixel(rng);
        alignas(16) quad n = {randomfloat(1), randomfloat(1), randomfloat(1), rng() % 8 == 0 ? 0.0f : float(1 + rng() % 3)};
        float scale = rng() % 50 == 0 ? INFINITY : 768.0f / float(1 + rng() % 2000);

        uint32_t sun = modelreference::sun(colour, n, scale, t);
        ASSERT_EQ(sunterm(colour, n, scale, t), sun) << round;

        lights.count = int(rng() % 5);
        float p[3] = {randomfloat(500), randomfloat(500), randomfloat(500)};
        for (int l = 0; l < lights.count; ++l) {
            for (int k = 0; k < 4; ++k) lights.position[l][k] = randomfloat(600), lights.colour[l][k] = float(rng() & 255);
            lights.radius[l] = float(rng() % 100000) * 256.0f;
        }
        uint32_t lit = modelreference::point(sun, p, n, lights);
        ASSERT_EQ(pointlightterm(sun, _mm_setr_ps(p[0], p[1], p[2], 0.0f), _mm_load_ps(&n.x), lights), lit) << round;
    }
}

// Each change refuses without its mask bit, with the words where there are any.
TEST_F(modellight, colourchangesneedtheirmaskbits) {
    struct change {
        uint32_t bit;
        const char* words;
        void (*run)(model&);
    };
    const change changes[] = {
        {FM_RECOLOUR, "", [](model& m) { recolour(m, 1, 2); }},
        {FM_RETEXTURE, "", [](model& m) { retexture(m, 1, 2); }},
        {FM_TINT, "Can't tint if functionmask does not contain FM_TINT", [](model& m) { tint(m, -1, -1, -1, 0); }},
    };
    for (const change& c : changes) {
        model m;
        m.functionmask = ~c.bit;
        try {
            c.run(m);
            ADD_FAILURE() << c.words;
        } catch (Exception* e) {
            EXPECT_NE(dynamic_cast<IllegalStateException*>(e), nullptr);
            EXPECT_STREQ(e->message(), c.words);
            delete e;
        }
    }
}

TEST_F(modellight, recolourretextureandtintchangecodesandreleasestalecolours) {
    randomhostmodel h(rng, texturecount);
    while (h.s.facecount < 10 || h.textures.empty()) h = randomhostmodel(rng, texturecount);
    h.s.functionmask = FM_RECOLOUR | FM_RETEXTURE | FM_TINT;
    std::unique_ptr<model> m = buildmodel(h.s, pool);
    std::vector<uint16_t> before(m->fhsl.get(), m->fhsl.get() + m->facecount);
    tint(*m, 40, -1, 100, 96);
    EXPECT_FALSE(m->litcolours.empty());
    for (int f = 0; f < m->facecount; ++f) {
        int hue = before[f] >> 10, s = before[f] >> 7 & 7, l = before[f] & 127;
        EXPECT_EQ(m->fhsl[f], uint16_t(((hue + (((40 - hue) * 96) >> 7)) * 8 | s) << 7 | (l + (((100 - l) * 96) >> 7))));
    }
    for (int i = 0; i < m->billboards.length(); ++i)
        EXPECT_EQ(m->billboardstates[i].colour & 0xFFFFFF, uint32_t(hsltorgb[m->fhsl[m->billboards[i].face]]));
    uint16_t code = m->fhsl[0];
    recolour(*m, code, 0x1234);
    EXPECT_TRUE(m->litcolours.empty());
    EXPECT_EQ(m->fhsl[0], 0x1234);
    descriptors[2].blend = descriptors[3].blend, descriptors[2].bright = descriptors[3].bright;
    for (int to : {3, 4}) {
        lightpass(*m);
        retexture(*m, 2, uint16_t(to));
        bool same = descriptors[4].blend == descriptors[3].blend && descriptors[4].bright == descriptors[3].bright;
        EXPECT_EQ(m->litcolours.empty(), to == 4 && !same) << to;
    }
}

}  // namespace
