// The shadow map against its references over seeded random grounds, footprints and tiles:
// footprints added and taken back with the tiles they mark, the slices and their places in the
// shared atlas blocks, and the footprints that tiles paint.
#include <algorithm>
#include <numeric>

#include "ground/footprint.h"
#include "ground/shadows.h"
#include "ground/slice.h"
#include "groundtest.h"
#include "shadowreference.h"

namespace {

using namespace shadowreference;

TEST_F(groundtest, footprintsandslicesfollowtherules) {
    for (int round = 0; round < 200 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        t.shadowshift = 2 + rng.below(3), t.shadowslopex = rng.between(-300, 300), t.shadowslopez = rng.between(-300, 300);
        const int sizex = 1 + rng.below(6), sizez = 1 + rng.below(6);
        std::unique_ptr<ground> g = randomground(sizex, sizez, 64 << rng.below(2), GF_SHADOWMAP);
        const groundshadows& s = *g->shadows;
        std::vector<uint8_t> cells(size_t(s.cells.length())), dirty(size_t(g->dirty.length()));
        std::vector<standing> added;
        for (int k = rng.below(12); k > 0; --k) {
            standing f = randomfootprint(rng, tilepool, *g);
            changereference(*g, cells, dirty, *f.mask, f.x, f.y, f.z, false);
            changeshadows(*g, *f.mask, f.x, f.y, f.z, false);
            added.push_back(std::move(f));
        }
        ASSERT_TRUE(std::equal(cells.begin(), cells.end(), s.cells.get()) && std::equal(dirty.begin(), dirty.end(), g->dirty.get()));
        // Marked tiles take slices in the order they draw, from blocks shared until one is full.
        std::vector<complexground> tiles(size_t(g->slotcount));
        int cursor = 4;
        for (int i = 0; i < g->slotcount; ++i) {
            const int x = i / sizex, z = i % sizex;
            if (z >= sizez) continue;
            complexground& tile = tiles[size_t(i)];
            refreshslice(t, *g, tile, x, z);
            EXPECT_FALSE(g->dirty[i]);
            if (!dirty[size_t(i)]) {
                EXPECT_TRUE(!tile.shadowmap && !tile.shadowshift);
                continue;
            }
            EXPECT_EQ(tile.sliceoffset, cursor);
            EXPECT_EQ(tile.shadowshift, t.shadowshift - g->tileshift + 7);
            EXPECT_EQ(tile.shadowmap, tile.shadowslice.get() + tile.sliceoffset);
            const std::vector<uint8_t> slice = slicereference(s, x, z);
            for (int j = 0; j < s.cellspertile * s.cellspertile; ++j)
                EXPECT_EQ(tile.shadowmap[j / s.cellspertile * 256 + j % s.cellspertile], slice[size_t(j)]);
            cursor += s.cellspertile;
            if (256 - s.cellspertile <= cursor - 1) cursor = 4;
        }
        // Taken back in any order, the footprints leave the map as it was, frame and all.
        std::shuffle(added.begin(), added.end(), rng);
        for (standing& f : added) changeshadows(*g, *f.mask, f.x, f.y, f.z, true);
        EXPECT_TRUE(std::all_of(s.cells.get(), s.cells.get() + s.cells.length(), [](uint8_t c) { return !c; }));
        EXPECT_EQ(tilepool.verify(), nullptr);
    }
}

TEST_F(groundtest, tilefootprintsfollowtherules) {
    for (int round = 0; round < 200 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        t.shadowshift = rng.below(5);
        const int ts = 64 << rng.below(2), x = rng.below(3), z = rng.below(3), n = ts >> t.shadowshift;
        std::unique_ptr<ground> g = randomground(3, 3, ts, rng.below(2) * GF_SHADOWMAP);
        randomhosttile h(rng, ts, rng.below(30), texturecount);
        std::unique_ptr<complexground> tile(buildtile(*g, x, z, h.s));
        shadowmask* given = rng.onein(2) ? new shadowmask(tilepool, rng.below(n + 3), rng.below(n + 3)) : nullptr;
        shadowmask* made = tilefootprint(*g, *tile, x, z, given);
        if (!tile->tileflags) {
            EXPECT_EQ(made, nullptr);
            delete given;
            continue;
        }
        ASSERT_EQ(made == given, given && given->cells.length() >= n * n);
        EXPECT_TRUE(!made->x && !made->y && made->width == n && made->height == n && made->usedwidth == n && made->usedheight == n);
        std::vector<uint8_t> expected(size_t(made->cells.length()));
        for (int f = 0; f < std::accumulate(tile->facecounts, tile->facecounts + 5, 0); ++f) {
            int c[3][2];
            for (int j = 0; j < 3; ++j) {
                const groundpoint& v = tile->vertices[tile->faces[3 * f + j]];
                c[j][0] = (int(v.x) - ts * x) >> t.shadowshift, c[j][1] = (int(v.z) - ts * z) >> t.shadowshift;
            }
            if ((c[1][1] - c[2][1]) * (c[0][0] - c[1][0]) - (c[1][1] - c[0][1]) * (c[2][0] - c[1][0]) > 0)
                fillreference(expected, n, c);
        }
        EXPECT_TRUE(std::equal(expected.begin(), expected.end(), made->cells.get()));
        if (made != given) delete made;
        delete given;
    }
}

}  // namespace
