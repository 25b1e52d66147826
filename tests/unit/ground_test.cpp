// The ground against its references over seeded random grounds, tiles, cameras and targets: the
// grid, the upload block by block, and the draws of tiles and maps pixel by pixel into fenced
// buffers.
#include <cstring>

#include "groundreference.h"
#include "ground/shadows.h"
#include "groundtest.h"
#include "guarded.h"
#include "toolkit/view.h"

namespace {

template <class T, class U>
bool sameblock(const allocatedmemory<T>& block, const std::vector<U>& expected) {
    return block.length() == int(expected.size()) &&
           (expected.empty() || !memcmp(block.get(), expected.data(), expected.size() * sizeof(T)));
}

TEST_F(groundtest, gridfollowstherules) {
    for (auto [size, shift] : {std::pair{128, 7}, {100, 6}, {1, 0}, {0, 0}, {-5, 0}, {255, 7}})
        EXPECT_EQ(std::unique_ptr<ground>(makeground(t, 2, 3, size, 0, 0))->tilesize, 1 << shift);
    EXPECT_EQ(std::unique_ptr<ground>(makeground(t, 3, 3, 64, 0, GF_PLAIN | GF_SHADOWMAP))->flags, GF_PLAIN);
    for (int round = 0; round < 20; ++round) {
        // Whatever the rows' pitch, every read and write of the grid stays in its blocks.
        const int sizex = 1 + rng.below(6), sizez = 1 + rng.below(6);
        std::unique_ptr<ground> g = randomground(sizex, sizez, 64, GF_SHADOWMAP);
        for (int a = 0; a < sizex; ++a)
            for (int b = 0; b < sizez; ++b) EXPECT_EQ(groundheight(*g, a * 64, b * 64), gridheight(*g, a, b));
        for (auto [a, b] : {std::pair{-1, 0}, {0, -1}, {sizex * 64, 0}, {0, sizez * 64}, {INT_MIN, 5}})
            EXPECT_EQ(groundheight(*g, a, b), 0);
        EXPECT_TRUE(!tilepool.verify() && !gridheight(*g, sizex + 7, sizez * 9) && !g->slot(sizex, 0));
    }
}

TEST_F(groundtest, uploadmatchesthereference) {
    for (int round = 0; round < 300 && !HasFailure(); ++round) {
        const int tilesize = rng.onein(2) ? 128 : 64, x = rng.below(4), z = rng.below(4);
        std::unique_ptr<ground> g = randomground(4, 4, tilesize, rng.below(2) * GF_BLENDMARK | rng.below(2) * GF_PLAIN);
        randomhosttile h(rng, tilesize, rng.below(rng.onein(8) ? 150 : 20), texturecount);
        std::unique_ptr<complexground> tile(buildtile(*g, x, z, h.s));
        const groundreference::tile e = groundreference::upload(t, *g, x, z, h.s);
        EXPECT_TRUE(sameblock(tile->vertices, e.vertices) && sameblock(tile->depths, e.depths) &&
                    sameblock(tile->faces, e.faces) && sameblock(tile->colours, e.colours) &&
                    sameblock(tile->mapcolours, e.mapcolours) && sameblock(tile->textures, e.textures) &&
                    sameblock(tile->uvs, e.uvs) && sameblock(tile->texscales, e.scales) &&
                    !memcmp(tile->facecounts, e.counts, 6) && tile->tileflags == e.flags)
            << "round " << round;
    }
}

// Every group and layer kind, lit or not, textures the host declines, fog and the distance's shade on and off,
// sinking vertices, every target kind, tiles clipped on every side; and the map of the same tile.
TEST_F(groundtest, tilesandmapsmatchthereference) {
    constexpr int width = 53, height = 41;
    guarded<uint32_t> colour[2] = {guarded<uint32_t>(width * height), guarded<uint32_t>(width * height)};
    guarded<float> depth[2] = {guarded<float>(width * height), guarded<float>(width * height)};
    const rasterstatedata saved = rasterstate;
    int drawn = 0;
    for (int round = 0; round < 600 && !HasFailure(); ++round) {
        const int ts = 64 << rng.below(2), sizex = rng.onein(8) ? 1 : 4 + rng.below(6);
        const int x = rng.below(sizex), z = rng.below(sizex), kind = rng.onein(3) ? 1 + rng.below(2) : 0;
        std::unique_ptr<ground> g = randomground(sizex, sizex, ts, rng.below(2) * GF_BLENDMARK | rng.below(2) * GF_PLAIN | GF_SHADOWMAP);
        // Footprints about the tile, or none, so that it draws with a slice or without.
        for (int k = rng.below(2) * 6; k > 0; --k) {
            const standing f = randomfootprint(rng, tilepool, *g);
            changeshadows(*g, *f.mask, x * ts + f.x % ts, f.y, z * ts + f.z % ts, false);
        }
        randomhosttile h(rng, ts, 1 + rng.below(30), texturecount);
        complexground* uploaded = buildtile(*g, x, z, h.s);
        genericground*& slot = *g->slot(x, z) = uploaded;
        // Lights round the tile of any mode, some off, some cutting it; now and then all taken off.
        std::vector<int32_t> modes(9, 1);
        const std::vector<float> levels{0, 0.7f, 1.3f, -0.1f, 0.4f, 1};
        for (int i = rng.below(6), ts2 = 2 * ts; i > 0; --i, modes[rng.below(9)] = rng.below(6))
            addlight(*g, i, x * ts + rng.between(-ts, ts2), rng.between(-300, 50), z * ts + rng.between(-ts, ts2),
                     rng.between(ts / 2, 3 * ts), int(rng()), modes.data(), 9);
        setintensities(*g, levels.data(), 6);
        for (int i = 6 * rng.onein(4); i > 0; --i) removelight(*g, i);
        complexground& tile = static_cast<complexground&>(*slot);
        // A camera tilted over the tile, near or far, with random light, fog, clip and target.
        t.width = width, t.height = height, rasterstate.targetstride = width;
        setviewport(rng.below(6), rng.below(6), width - rng.below(12), height - rng.below(12), 0.0f, 1.0f);
        setcliprect(t, rng.below(8) - 2, rng.below(8) - 2, width - rng.below(8), height - rng.below(8));
        const float cx = (float(x) + rng.real(-0.5f, 1.5f)) * float(ts), cz = (float(z) + rng.real(-0.5f, 1.5f)) * float(ts);
        alignas(16) float view[16] = {1, 0, 0, 0, 0, 0.6f, -0.8f, 0, 0, 0.8f, 0.6f, 0, -cx, -0.8f * cz, rng.real(15, 250) - 0.6f * cz, 1};
        alignas(16) float projection[16] = {1.5f, 0, 0, 0, 0, 1.5f, 0, 0, 0, 0, 1.001f, 1, 0, 0, -2.001f, 0};
        setviewmatrix(t, view), setprojectionmatrix(t, projection);
        setsun(t, int(rng()), rng.real(0, 1), rng.real(0, 1), rng.real(-1, 1), rng.real(-1, 1), rng.real(-1, 1));
        setfog(t, int(rng()), rng.onein(3) ? 0 : int(rasterstate.farplane) - rng.between(0, 800));
        t.fogoverride = rng.below(2);
        for (int i = 0; i < width * height; ++i)
            colour[0][i] = colour[1][i] = rng.pixel(), depth[0][i] = depth[1][i] = i % 4 ? 2.0f : 0.98f;
        auto target = [&](int b) {
            rasterstate.targetcolour = kind != 1 ? colour[b].get() : nullptr;
            rasterstate.targetdepth = kind != 2 ? depth[b].get() : nullptr;
        };
        auto same = [&] {
            for (int i = 0; i < width * height; ++i)
                if (colour[0][i] != colour[1][i] || memcmp(&depth[0][i], &depth[1][i], 4)) return false;
            return colour[0].intact() && colour[1].intact() && depth[0].intact() && depth[1].intact();
        };
        const std::vector<uint32_t> before(colour[0].get(), colour[0].get() + width * height);
        bool threw = false;
        target(0);
        try {
            tile.draw(t, *g, x, z);
        } catch (Exception* e) {
            threw = true, delete e;
        }
        target(1);
        EXPECT_NE(threw, groundreference::draw(t, *g, tile, x, z)) << "round " << round;
        EXPECT_TRUE(same()) << "round " << round;
        drawn += !std::equal(before.begin(), before.end(), colour[0].get());
        const float mx = rng.real(-20, 60), fy = rng.real(-20, 60), step = float(rng.below(40));
        target(0), slot->drawmap(*g, x, z, mx, fy, step);
        target(1), groundreference::drawmap(*g, *uploaded, x, z, mx, fy, step);
        EXPECT_TRUE(same()) << "map, round " << round;
    }
    EXPECT_GT(drawn, 200);
    rasterstate = saved;
}

}  // namespace
