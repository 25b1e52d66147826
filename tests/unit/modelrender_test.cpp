// Model colour against references written from the rules: normals and base colours of the light
// pass, the sun and point light terms, the colour changes, the mask's narrowing; and no
// allocation once a model is lit.
#include <cstdlib>
#include <new>

#include "model/recolour.h"
#include "model/render.h"
#include "modelreference.h"
#include "modeltest.h"

// Every heap allocation of the test program is counted.
static int newcount;
void* operator new(size_t size) {
    if (void* p = std::malloc(size ? size : 1)) return ++newcount, p;
    throw std::bad_alloc();
}
void* operator new(size_t size, const std::nothrow_t&) noexcept { return ++newcount, std::malloc(size ? size : 1); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, size_t) noexcept { std::free(p); }

namespace {

constexpr int width = 64, height = 48;

class modelrender : public modeltest {
protected:
    guarded<uint32_t> colour{width * height};
    guarded<float> depth{width * height};
    renderworkspace* workspace = makeworkspace(t, 0, 0);
    rasterstatedata saved = rasterstate;
    alignas(16) float matrix[16];

    void TearDown() override { destroyworkspace(workspace), rasterstate = saved, modeltest::TearDown(); }
    // The model's scene on a target of random pixels and depths, with and without its buffers.
    void scene(bool withcolour, bool withdepth) {
        t.width = width, t.height = height;
        setviewport(0, 0, width, height, 0.0f, 1.0f);
        setcliprect(t, 0, 0, width, height);
        rasterstate.targetstride = width;
        randomscene(t, *store, rng);
        for (int i = 0; i < width * height; ++i) colour[i] = rng.pixel(), depth[i] = rng.real(0.9f, 1.0f);
        randommatrix(matrix, rng, false);
        t.colourbuffer = rasterstate.targetcolour = withcolour ? colour.get() : nullptr;
        t.depthbuffer = rasterstate.targetdepth = withdepth ? depth.get() : nullptr;
    }
};

// Normals and base colours as the light pass leaves them, over random models.
TEST_F(modelrender, normalsandthelightpassfollowtherules) {
    for (int round = 0; round < 200 && !HasFailure(); ++round) {
        randomhostmodel h(rng, texturecount);
        std::unique_ptr<model> m = buildmodel(h.s, pool);
        const std::vector<uint16_t> codes(m->fhsl.get(), m->fhsl.get() + m->facecount);
        lightpass(*m);
        std::vector<quad> normal, flat;
        modelreference::normals(*m, normal, flat);
        for (int i = 0; i < m->usedvertexcount; ++i) ASSERT_EQ(std::memcmp(&normal[i], &m->normals[i], 16), 0) << i;
        for (int f = 0; f < m->facecount; ++f) {
            const int type = m->facetypes.empty() ? 0 : m->facetypes[f];
            EXPECT_TRUE(type != 1 || !std::memcmp(&flat[f], &m->facenormals[f], 16)) << f;
            const texturedescriptor* d = f < m->texturedfacecount ? &descriptors[m->facetextures[f]] : nullptr;
            const uint32_t word = (m->facealphas.empty() ? 255u : 255u - m->facealphas[f]) << 24 |
                                  modelreference::base(codes[f], d, m->ambient);
            for (int k = 0; k < 3 && type != 2; ++k) EXPECT_EQ(m->litcolours[f].corner[k], word) << f;
        }
        EXPECT_EQ(m->fhsl.empty(), !(h.s.functionmask & FM_KEEPCOLOURS));
    }
}

// Normals of weight 0, infinite scales, lights close to the corner and far from it.
TEST_F(modelrender, sunandpointlighttermsfollowtherules) {
    pointlights lights{};
    for (int round = 0; round < 20000 && !HasFailure(); ++round) {
        for (int k = 0; k < 3; ++k) t.sundirection[k] = rng.real(-1, 1), t.suncolour[k] = uint8_t(rng());
        t.ambient = rng.real(-2, 2), t.diffuse = rng.real(-2, 2), t.lightfactor = rng.real(-2, 2);
        alignas(16) quad n = {rng.real(-1, 1), rng.real(-1, 1), rng.real(-1, 1), float(rng() % 4)};
        float scale = rng() % 50 ? 768.0f / float(1 + rng() % 2000) : INFINITY, p[3] = {rng.real(-9, 9), 1, 1};
        uint32_t colour = rng.pixel(), sun = modelreference::sun(colour, n, scale, t);
        ASSERT_EQ(sunterm(colour, n, scale, t), sun) << round;
        lights.count = int(rng() % 5);
        for (int l = 0; l < 16; ++l)
            lights.position[l / 4][l % 4] = rng.real(-600, 600), lights.colour[l / 4][l % 4] = float(rng() & 255);
        for (float& r : lights.radius) r = float(rng() % 100000) * 256.0f;
        ASSERT_EQ(pointlightterm(sun, _mm_setr_ps(p[0], p[1], p[2], 0), _mm_load_ps(&n.x), lights),
                  modelreference::point(sun, p, n, lights)) << round;
    }
}

// Once a model is lit a draw takes nothing from the heap or the pool, textures declined or not.
TEST_F(modelrender, drawsallocatenothingoncethemodelislit) {
    randomhostmodel h(rng, texturecount);
    while (h.s.facecount < 40 || h.billboardints.empty()) h = randomhostmodel(rng, texturecount);
    std::unique_ptr<model> m = buildmodel(h.s, pool);
    scene(true, true);
    matrix[12] = 0.0f;  // in view
    host.loads.reserve(1 << 14);  // the asks of declined textures, recorded without growing
    drawmodel(*m, *workspace, matrix, nullptr);
    ASSERT_FALSE(m->litcolours.empty());
    for (int draw = 0, before = newcount, bytes = allocatedbytes; draw < 3; ++draw) {
        drawmodel(*m, *workspace, matrix, nullptr);
        EXPECT_TRUE(newcount == before && allocatedbytes == bytes) << draw;
    }
}

// A mask only narrows: a wider one is refused and the model keeps its own; dropping FM_SHARELIGHT
// shows the faces that sharing hid, and colours them even though the colours existed.
TEST_F(modelrender, masksonlynarrowanddroppingsharelightshowshiddenfaces) {
    randomhostmodel h(rng, texturecount);
    while (h.types.empty() || h.s.facecount < 10) h = randomhostmodel(rng, texturecount);
    h.s.functionmask = FM_SHARELIGHT | FM_TINT;
    std::unique_ptr<model> m = buildmodel(h.s, pool);
    lightpass(*m);
    for (int f = 0; f < m->facecount; f += 2) m->facetypes[f] = 2, m->litcolours[f] = {};
    try {
        narrowmask(*m, FM_SHARELIGHT | FM_TINT | FM_MOVE_X);
        ADD_FAILURE() << "a wider mask was taken";
    } catch (IllegalArgumentException* e) {
        EXPECT_STREQ(e->message(), "Can't re-enable previously disabled functions");
        delete e;
    }
    EXPECT_EQ(m->functionmask, FM_SHARELIGHT | FM_TINT);
    EXPECT_EQ(m->facetypes[0], 2);
    narrowmask(*m, FM_TINT);
    EXPECT_EQ(m->functionmask, FM_TINT);
    for (int f = 0; f < m->facecount; f += 2) EXPECT_TRUE(m->facetypes[f] != 2 && m->litcolours[f].corner[0]) << f;
}

// Tint by its arithmetic, recolour and retexture with the colours they make stale.
TEST_F(modelrender, colourchangesandthecoloursthattheymakestale) {
    randomhostmodel h(rng, texturecount);
    while (h.s.facecount < 10 || h.textures.empty()) h = randomhostmodel(rng, texturecount);
    h.s.functionmask = FM_RECOLOUR | FM_RETEXTURE | FM_TINT;
    std::unique_ptr<model> m = buildmodel(h.s, pool);
    std::vector<uint16_t> before(m->fhsl.get(), m->fhsl.get() + m->facecount);
    tint(*m, 40, -1, 100, 96);
    EXPECT_FALSE(m->litcolours.empty());
    for (int f = 0; f < m->facecount; ++f) {
        int hue = before[f] >> 10, l = before[f] & 127;  // the fields are put back unmasked
        EXPECT_EQ(m->fhsl[f], uint16_t(((hue + (((40 - hue) * 96) >> 7)) * 8 | (before[f] >> 7 & 7)) << 7 |
                                       (l + (((100 - l) * 96) >> 7))));
    }
    recolour(*m, m->fhsl[0], 0x1234);
    EXPECT_TRUE(m->litcolours.empty() && m->fhsl[0] == 0x1234);
    // Only a change of what the light pass reads of a texture lets the colours go.
    descriptors[2].blend = descriptors[3].blend, descriptors[2].bright = descriptors[3].bright;
    for (int to : {3, 4}) {
        lightpass(*m);
        retexture(*m, 2, uint16_t(to));
        bool same = descriptors[4].blend == descriptors[3].blend && descriptors[4].bright == descriptors[3].bright;
        EXPECT_EQ(m->litcolours.empty(), to == 4 && !same) << to;
    }
}

}  // namespace
