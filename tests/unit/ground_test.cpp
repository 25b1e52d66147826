// The ground against its references over seeded random grounds, tiles, cameras and targets: the
// grid and its heights, the upload block by block, and the draws of tiles and maps pixel by pixel
// into fenced buffers.
#include <cstring>

#include "ground/tile.h"
#include "groundreference.h"
#include "groundtest.h"
#include "guarded.h"
#include "toolkit/light.h"
#include "toolkit/view.h"

namespace {

template <class T, class U>
::testing::AssertionResult sameblock(const allocatedmemory<T>& block, const std::vector<U>& expected) {
    if (block.length() != int(expected.size()))
        return ::testing::AssertionFailure() << block.length() << " entries, expected " << expected.size();
    for (size_t i = 0; i < expected.size(); ++i)
        if (memcmp(&block[long(i)], &expected[i], sizeof(T)))
            return ::testing::AssertionFailure() << "entry " << i << " differs";
    return ::testing::AssertionSuccess();
}

TEST_F(groundtest, gridfollowstherules) {
    for (auto [size, shift] : {std::pair{128, 7}, {100, 6}, {1, 0}, {0, 0}, {-5, 0}, {255, 7}}) {
        std::unique_ptr<ground> g(makeground(t, 2, 3, size, 0, 0));
        EXPECT_EQ(g->tileshift, shift);
        EXPECT_EQ(g->tilesize, 1 << shift);
    }
    std::unique_ptr<ground> square(makeground(t, 3, 3, 64, 0, GF_PLAIN | GF_SHADOWMAP));
    EXPECT_EQ(square->flags, GF_PLAIN);
    for (int round = 0; round < 20; ++round) {
        const int sizex = 1 + rng.below(6), sizez = 1 + rng.below(6);
        std::unique_ptr<ground> g = randomground(t, rng, sizex, sizez, 64, GF_SHADOWMAP);
        for (int a = 0; a < sizex; ++a)
            for (int b = 0; b < sizez; ++b) EXPECT_EQ(groundheight(*g, a * 64, b * 64), gridheight(*g, a, b));
        for (auto [a, b] : {std::pair{-1, 0}, {0, -1}, {sizex * 64, 0}, {0, sizez * 64}, {INT_MIN, 5}})
            EXPECT_EQ(groundheight(*g, a, b), 0);
        // Whatever the rows' pitch, every read and write of the grid stays in its blocks.
        EXPECT_EQ(tilepool.verify(), nullptr);
        EXPECT_EQ(gridheight(*g, sizex + 7, sizez * 9), 0);
        EXPECT_EQ(g->slot(sizex, 0), nullptr);
        EXPECT_EQ(g->slot(0, -1), nullptr);
        for (int a = 1; a < sizex && sizex == sizez; ++a)
            for (int b = 1; b < sizez; ++b) {
                const groundpoint& n = g->normals[g->point(a, b)];
                EXPECT_FLOAT_EQ(n.y * n.y + n.x * n.x + n.z * n.z, 1.0f);
                EXPECT_LT(n.y, 0.0f);
            }
    }
}

TEST_F(groundtest, uploadmatchesthereference) {
    for (int round = 0; round < 300 && !HasFailure(); ++round) {
        const int tilesize = rng.onein(2) ? 128 : 64, x = rng.below(4), z = rng.below(4);
        std::unique_ptr<ground> g =
            randomground(t, rng, 4, 4, tilesize, rng.below(2) * GF_BLENDMARK | rng.below(2) * GF_PLAIN);
        randomhosttile h(rng, tilesize, rng.below(rng.onein(8) ? 150 : 20), texturecount);
        std::unique_ptr<complexground> tile(buildtile(*g, x, z, h.s));
        const groundreference::tile e = groundreference::upload(t, *g, x, z, h.s);
        SCOPED_TRACE(testing::Message() << "round " << round);
        EXPECT_TRUE(sameblock(tile->vertices, e.vertices));
        EXPECT_TRUE(sameblock(tile->depths, e.depths));
        EXPECT_TRUE(sameblock(tile->faces, e.faces));
        EXPECT_TRUE(sameblock(tile->colours, e.colours));
        EXPECT_TRUE(sameblock(tile->mapcolours, e.mapcolours));
        EXPECT_TRUE(sameblock(tile->textures, e.textures));
        EXPECT_TRUE(sameblock(tile->uvs, e.uvs));
        EXPECT_TRUE(sameblock(tile->texscales, e.scales));
        EXPECT_EQ(memcmp(tile->facecounts, e.counts, 6), 0);
        EXPECT_EQ(tile->tileflags, e.flags);
    }
}

class grounddraw : public groundtest {
protected:
    static constexpr int width = 53, height = 41;
    guarded<uint32_t> colour[2] = {guarded<uint32_t>(width * height), guarded<uint32_t>(width* height)};
    guarded<float> depth[2] = {guarded<float>(width * height), guarded<float>(width* height)};
    rasterstatedata saved = rasterstate;
    void TearDown() override { rasterstate = saved, groundtest::TearDown(); }

    // A camera over tile (x, z), tilted, near or far, with random light, fog and target.
    void scene(int x, int z, int tilesize, bool withcolour, bool withdepth) {
        t.width = width, t.height = height;
        setviewport(rng.below(6), rng.below(6), width - rng.below(12), height - rng.below(12), 0.0f, 1.0f);
        setcliprect(t, rng.below(8) - 2, rng.below(8) - 2, width - rng.below(8), height - rng.below(8));
        rasterstate.targetstride = width;
        const float cx = (float(x) + rng.real(-0.5f, 1.5f)) * float(tilesize),
                    cz = (float(z) + rng.real(-0.5f, 1.5f)) * float(tilesize);
        const float distance = rng.real(15, 250);
        alignas(16) float view[16] = {
            1, 0, 0, 0, 0, 0.6f, -0.8f, 0, 0, 0.8f, 0.6f, 0, -cx, -0.8f * cz, distance - 0.6f * cz, 1};
        alignas(16) float projection[16] = {1.5f, 0, 0, 0, 0, 1.5f, 0, 0, 0, 0, 1.001f, 1, 0, 0, -2.001f, 0};
        setviewmatrix(t, view), setprojectionmatrix(t, projection);
        setsun(t, int(rng()), rng.real(0, 1), rng.real(0, 1), rng.real(-1, 1), rng.real(-1, 1), rng.real(-1, 1));
        setfog(t, int(rng()), rng.onein(3) ? 0 : int(rasterstate.farplane) - rng.between(0, 800));
        t.fogoverride = rng.below(2);
        for (int b = 0; b < 2; ++b)
            for (int i = 0; i < width * height; ++i)
                colour[b][i] = colour[0][i] = i ? colour[0][i - 1] * 2654435761u : rng(),
                depth[b][i] = i % 4 ? 2.0f : 0.98f;
        rasterstate.targetcolour = withcolour ? colour[0].get() : nullptr;
        rasterstate.targetdepth = withdepth ? depth[0].get() : nullptr;
    }
    void target(int b) {
        if (rasterstate.targetcolour) rasterstate.targetcolour = colour[b].get();
        if (rasterstate.targetdepth) rasterstate.targetdepth = depth[b].get();
    }
    ::testing::AssertionResult samebuffers() {
        for (int b = 0; b < 2; ++b)
            if (!colour[b].intact() || !depth[b].intact())
                return ::testing::AssertionFailure() << "buffer " << b << " written outside";
        for (int i = 0; i < width * height; ++i)
            if (colour[0][i] != colour[1][i] || memcmp(&depth[0][i], &depth[1][i], 4))
                return ::testing::AssertionFailure() << "pixel " << i % width << ", " << i / width << std::hex << ": "
                                                     << colour[0][i] << ", expected " << colour[1][i];
        return ::testing::AssertionSuccess();
    }
};

// Every group and layer kind, textures the host declines, fog and the distance's shade on and off,
// sinking vertices, every target kind, tiles clipped on every side; and the map of the same tile.
TEST_F(grounddraw, tilesandmapsmatchthereference) {
    int drawn = 0;
    for (int round = 0; round < 600 && !HasFailure(); ++round) {
        const int tilesize = rng.onein(2) ? 128 : 64, sizex = rng.onein(8) ? 1 : 4 + rng.below(6), x = rng.below(sizex),
                  z = rng.below(sizex);
        std::unique_ptr<ground> g =
            randomground(t, rng, sizex, sizex, tilesize, rng.below(2) * GF_BLENDMARK | rng.below(2) * GF_PLAIN);
        randomhosttile h(rng, tilesize, 1 + rng.below(30), texturecount);
        std::unique_ptr<complexground> tile(buildtile(*g, x, z, h.s));
        const int kind = rng.onein(3) ? 1 + rng.below(2) : 0;
        scene(x, z, tilesize, kind != 1, kind != 2);
        const std::vector<uint32_t> before(colour[0].get(), colour[0].get() + width * height);
        bool threw = false;
        try {
            tile->draw(t, *g, x, z);
        } catch (Exception* e) {
            threw = true, delete e;
        }
        target(1);
        const bool whole = groundreference::draw(t, *g, *tile, x, z);
        SCOPED_TRACE(testing::Message() << "round " << round << " target " << kind);
        EXPECT_EQ(threw, !whole);
        EXPECT_TRUE(samebuffers());
        drawn += !std::equal(before.begin(), before.end(), colour[0].get());
        const float mx = rng.real(-20, 60), fy = rng.real(-20, 60), step = float(rng.below(40));
        target(0), tile->drawmap(*g, x, z, mx, fy, step);
        target(1), groundreference::drawmap(*g, *tile, x, z, mx, fy, step);
        EXPECT_TRUE(samebuffers());
    }
    EXPECT_GT(drawn, 200);
}

}  // namespace
