// The shadow map against its references over seeded random grounds and footprints: footprints
// added and taken back with the tiles they mark, the slices and their places in the shared atlas
// blocks.
#include <algorithm>

#include "ground/footprint.h"
#include "ground/shadows.h"
#include "ground/slice.h"
#include "groundtest.h"
#include "toolkit/shadowfill.h"

namespace {

// The footprint standing at (x, y, z) added cell by cell to a copy of the map, or taken off it,
// and the marks of the tiles its clipped rectangle touches.
void changereference(const ground& g, std::vector<uint8_t>& cells, std::vector<uint8_t>& dirty,
                     const shadowmask& m, int x, int y, int z, bool take) {
    const toolkit& t = *g.owner;
    const int width = g.shadows->width, height = g.shadows->height;
    const int left = ((x - ((t.shadowslopex * y) >> 8)) >> t.shadowshift) + 1 + m.x;
    const int top = ((z - ((t.shadowslopez * y) >> 8)) >> t.shadowshift) + 1 + m.y;
    for (int r = 0; r < m.usedheight; ++r)
        for (int c = 0; c < m.usedwidth; ++c) {
            const int col = left + c, row = top + r;
            const long at = long(r) * m.width + c;
            if (col >= 1 && col <= width - 2 && row >= 1 && row <= height - 2 && at >= 0 && at < m.cells.length())
                cells[size_t(row * width + col)] += uint8_t(take ? -m.cells[at] : m.cells[at]);
        }
    auto clip = [](int& first, int& length, int cells) {
        if (first < 1) length -= 1 - first, first = 1;
        if (first + length - 1 > cells - 2) length = cells - 1 - first;
    };
    int l = left, w = m.usedwidth, tp = top, h = m.usedheight;
    clip(l, w, width), clip(tp, h, height);
    for (int a = (l - 1) >> 4; a <= (l + w - 2) >> 4; ++a)
        for (int b = (tp - 1) >> 4; b <= (tp + h - 2) >> 4; ++b)
            if (a * g.sizex + b >= 0 && a * g.sizex + b < int(dirty.size())) dirty[size_t(a * g.sizex + b)] = 1;
}

// The slice of tile (x, z), `cellspertile` rows of as many bytes: 255 less 9 for each shaded one of
// the cell and its four neighbours in the map.
std::vector<uint8_t> slicereference(const groundshadows& s, int x, int z) {
    const int n = s.cellspertile;
    std::vector<uint8_t> out;
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i) {
            const int col = 1 + x * n + i, row = 1 + z * n + j;
            int k = 0;
            for (auto [dc, dr] : {std::pair{0, 0}, {-1, 0}, {1, 0}, {0, -1}, {0, 1}})
                k += s.cells[(row + dr) * s.width + col + dc] != 0;
            out.push_back(uint8_t(255 - 9 * k));
        }
    return out;
}

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

// A tile's footprint: its lower-left half, given in both windings, paints in cells what the mask
// fill paints for those corners; a mask given back that holds the tile is cleared and reused.
TEST_F(groundtest, atilesfootprintisitsfacesincells) {
    t.shadowshift = 3;
    // The fill keeps to the rows of the screen's viewport and clip.
    rasterstate.viewport[1] = rasterstate.rasterclip[1] = 0, rasterstate.viewport[3] = rasterstate.rasterclip[3] = 16;
    std::unique_ptr<ground> g = randomground(2, 2, 128, GF_SHADOWMAP);
    std::vector<int32_t> xs = {0, 128, 0, 0, 0, 128}, zs = {0, 0, 128, 0, 128, 0}, depths(6), colours(6, 0x1234),
                         textures(6, -1);
    const tilesource s = {6, xs.data(), nullptr, zs.data(), depths.data(), colours.data(), nullptr, textures.data(),
                          nullptr, 0, false, true};
    std::unique_ptr<complexground> tile(buildtile(*g, 1, 1, s));
    shadowmask expected(tilepool, 16, 16);
    expected.usedwidth = expected.usedheight = expected.width = expected.height = 16;
    const int up[3][2] = {{0, 0}, {16, 0}, {0, 16}}, down[3][2] = {{0, 0}, {0, 16}, {16, 0}};
    fillfacingtriangle(expected, up), fillfacingtriangle(expected, down);
    ASSERT_GT(std::count(expected.cells.get(), expected.cells.get() + 256, 0), 16);
    ASSERT_LT(std::count(expected.cells.get(), expected.cells.get() + 256, 0), 240);
    std::unique_ptr<shadowmask> painted(tilefootprint(*g, *tile, 1, 1, nullptr));
    ASSERT_EQ(painted->cells.length(), 256);
    EXPECT_TRUE(std::equal(painted->cells.get(), painted->cells.get() + 256, expected.cells.get()));
    std::fill_n(painted->cells.get(), 256, uint8_t{7});
    EXPECT_EQ(tilefootprint(*g, *tile, 1, 1, painted.get()), painted.get());
    EXPECT_TRUE(std::equal(painted->cells.get(), painted->cells.get() + 256, expected.cells.get()));
}

}  // namespace
