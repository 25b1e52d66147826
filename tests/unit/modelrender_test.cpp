// Whole model draws against the reference face road through the rasteriser's scalar reference,
// bit for bit, over random models under random cameras and matrices (degenerate ones too), lights,
// fog and shade, in all 18 members, into fenced targets; and no allocation once a model is lit.
#include <cstdlib>
#include <new>
#include <set>

#include "model/recolour.h"
#include "model/render.h"
#include "modelreference.h"
#include "modeltest.h"
#include "toolkit/light.h"
#include "toolkit/view.h"

namespace {
int newcount;
}  // namespace

// Every heap allocation of the test program is counted.
void* operator new(size_t size) {
    ++newcount;
    if (void* p = std::malloc(size ? size : 1)) return p;
    throw std::bad_alloc();
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, size_t) noexcept { std::free(p); }

namespace {

constexpr int width = 64, height = 48;

class modelrender : public modeltest {
protected:
    guarded<uint32_t> colour[2] = {guarded<uint32_t>(width * height), guarded<uint32_t>(width * height)};
    guarded<float> depth[2] = {guarded<float>(width * height), guarded<float>(width * height)};
    renderworkspace* workspace = makeworkspace(t, 0, 0);
    rasterstatedata saved = rasterstate;
    alignas(16) float matrix[16];

    void TearDown() override {
        destroyworkspace(workspace);
        rasterstate = saved;
        modeltest::TearDown();
    }
    float uniform(float low, float high) { return low + (high - low) * float(rng() % 65536) / 65536.0f; }

    // A camera looking down z at a model about 30 units away, with random light, fog and shade.
    void scene(bool withcolour, bool withdepth) {
        t.width = width, t.height = height;
        setviewport(0, 0, width, height, 0.0f, 1.0f);
        setcliprect(t, 0, 0, width, height);
        rasterstate.targetstride = width;
        alignas(16) float view[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
        alignas(16) float projection[16] = {1.5f, 0, 0, 0, 0, 1.5f, 0, 0, 0, 0, 1.001f, 1, 0, 0, -2.001f, 0};
        setviewmatrix(t, view);
        setprojectionmatrix(t, projection);
        setsun(t, int(rng()), uniform(0, 1), uniform(0, 1), uniform(-1, 1), uniform(-1, 1), uniform(-1, 1));
        t.lightfactor = uniform(0, 1.2f);
        int lights[4 * 5];  // x and y from -20 to 20, z and radius from 0 to 40, colour
        for (int i = 0; i < 20; ++i) lights[i] = i % 5 == 4 ? int(rng()) : int(rng() % 41) - (i % 5 < 2 ? 20 : 0);
        const float intensities[4] = {uniform(0, 1), uniform(0, 1), uniform(0, 1), uniform(0, 1)};
        setpointlights(t, int(rng() % 3) * 2, lights, intensities);
        setfog(t, int(rng()), rng() % 3 ? 1960 + int(rng() % 40) : 0);
        setshade(t, int(rng() % 41) - 20, int(rng()), 1 + int(rng() % 40));
        t.fogoverride = rng() % 2;
        // The loaded textures as animation and a reload may leave them, unlike their descriptors.
        for (texturerecord& r : store->records) {
            std::fill(r.offsetu, r.offsetu + 4, uniform(0, 128)), std::fill(r.offsetv, r.offsetv + 4, uniform(0, 128));
            r.value = int(rng() % 3), r.type = rng() % 4 ? 0 : 6;
            r.flagfive = rng() % 4 == 0, r.flagsix = rng() % 4 == 0;
        }
        for (int i = 0; i < width * height; ++i) {
            colour[0][i] = colour[1][i] = randompixel(rng);
            depth[0][i] = depth[1][i] = rng() % 4 ? uniform(0.9f, 1.0f) : 1.0f;
        }
        // Scaled down about a hundred times, turned any way, and now and then far off to the side.
        for (int i = 0; i < 12; ++i) matrix[i] = i % 4 == 3 ? 0.0f : uniform(-0.012f, 0.012f);
        matrix[12] = uniform(-5, 5) + (rng() % 8 ? 0.0f : 10000.0f), matrix[13] = uniform(-5, 5);
        matrix[14] = uniform(22, 40), matrix[15] = 1.0f;
        target(0, withcolour, withdepth);
    }
    void target(int which, bool withcolour, bool withdepth) {
        t.colourbuffer = rasterstate.targetcolour = withcolour ? colour[which].get() : nullptr;
        t.depthbuffer = rasterstate.targetdepth = withdepth ? depth[which].get() : nullptr;
    }
};

TEST_F(modelrender, everymemberdrawsasthereferencefaceroad) {
    std::set<int> members;
    for (int round = 0; round < 600 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        randomhostmodel h(rng, texturecount);
        h.s.billboardints = {};
        h.s.functionmask |= FM_KEEPCOLOURS;
        std::unique_ptr<model> m = buildmodel(h.s, pool);
        const int buffers = int(rng() % 3);
        scene(buffers != 2, buffers != 1);
        // Now and then a matrix with NaN, huge, tiny or zero entries.
        const float extremes[] = {NAN, INFINITY, -1e30f, 1e-30f, 0.0f, 1e20f};
        for (int k = rng() % 16 ? 0 : 1 + int(rng() % 3); k > 0; --k) matrix[rng() % 16] = extremes[rng() % 6];
        if (m->facecount == 0) continue;
        // Shared normals replace a smooth corner's own where their weight is not 0.
        if (rng() % 2) pool.allocate(m->sharednormals, m->usedvertexcount);
        for (int i = 0; i < m->sharednormals.length(); ++i)
            m->sharednormals[i] = {uniform(-2, 2), uniform(-2, 2), uniform(-2, 2), rng() % 3 ? uniform(0.5f, 3) : 0.0f};
        const bool translucent = m->hastranslucency;
        int result[6] = {}, untouched[6] = {};
        const int member = drawmodel(*m, *workspace, matrix, result);
        target(1, buffers != 2, buffers != 1);
        bool seen = translucent;
        const bool drawn = modelreference::draw(*m, t, matrix, translucent, seen);
        EXPECT_EQ(m->hastranslucency != 0, seen);
        EXPECT_EQ(member >= 0, drawn);
        EXPECT_EQ(std::memcmp(result, untouched, sizeof result) != 0, drawn);
        EXPECT_EQ(result[5], drawn);
        members.insert(member);
        ASSERT_TRUE(colour[0].intact() && depth[0].intact());
        for (int i = 0; i < width * height; ++i)
            ASSERT_TRUE(colour[0][i] == colour[1][i] && floatbits(depth[0][i]) == floatbits(depth[1][i])) << i;
    }
    EXPECT_EQ(members.size(), 19u);  // and -1 for the culled
}

// Once a model is lit a draw takes nothing from the heap or the pool, textures declined or not.
TEST_F(modelrender, drawsallocatenothingoncethemodelislit) {
    randomhostmodel h(rng, texturecount);
    while (h.s.facecount < 40 || h.billboardints.empty()) h = randomhostmodel(rng, texturecount);
    std::unique_ptr<model> m = buildmodel(h.s, pool);
    scene(true, true);
    matrix[12] = 0.0f;  // in view
    host.loads.reserve(100);
    for (int draw = 0; draw < 4; ++draw) {
        int before = newcount, bytes = allocatedbytes;
        drawmodel(*m, *workspace, matrix, nullptr);
        EXPECT_TRUE(draw == 0 || (newcount == before && allocatedbytes == bytes)) << draw;
    }
    EXPECT_FALSE(m->litcolours.empty());
}

// Tint by its arithmetic, recolour and retexture with the colours they make stale, and a mask that
// drops sharelight.
TEST_F(modelrender, colourchangesandthecoloursthattheymakestale) {
    randomhostmodel h(rng, texturecount);
    while (h.s.facecount < 10 || h.textures.empty()) h = randomhostmodel(rng, texturecount);
    h.s.functionmask = FM_RECOLOUR | FM_RETEXTURE | FM_TINT;
    std::unique_ptr<model> m = buildmodel(h.s, pool);
    std::vector<uint16_t> before(m->fhsl.get(), m->fhsl.get() + m->facecount);
    tint(*m, 40, -1, 100, 96);
    EXPECT_FALSE(m->litcolours.empty());
    for (int f = 0; f < m->facecount; ++f) {
        int hue = before[f] >> 10, s = before[f] >> 7 & 7, l = before[f] & 127;
        int tinted = ((hue + (((40 - hue) * 96) >> 7)) * 8 | s) << 7 | (l + (((100 - l) * 96) >> 7));
        EXPECT_EQ(m->fhsl[f], uint16_t(tinted));
    }
    for (int i = 0; i < m->billboards.length(); ++i)
        EXPECT_EQ(m->billboardstates[i].colour & 0xFFFFFF, uint32_t(hsltorgb[m->fhsl[m->billboards[i].face]]));
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
    // Dropping sharelight shows the faces it hid and makes the colours again, stale or not.
    m->functionmask |= FM_SHARELIGHT;
    pool.allocate(m->facetypes, m->facecount);
    for (int f = 0; f < m->facecount; ++f) m->facetypes[f] = uint8_t(f % 3);
    lightpass(*m);
    std::fill(m->litcolours.get(), m->litcolours.get() + m->facecount, facecolours{{1, 2, 3}});
    narrowmask(*m, FM_TINT);
    for (int f = 0; f < m->facecount; ++f) EXPECT_TRUE(m->facetypes[f] == f % 3 % 2 && m->litcolours[f].corner[0] != 1);
}

}  // namespace
