#include "ground/slice.h"

#include <algorithm>

#include "util/memory/memorypool.h"

namespace {

// The spans read a slice at (v << 8 | u) with each coordinate saturated to a byte, whatever the
// face: a block spans every row and column they reach from any slice in it, and every row of a
// slice wider than the block's rows; what lies past the slices is 0.
int atlasbytes(int cellspertile) { return (std::max(cellspertile, 256) + 1) * 256 + cellspertile; }

// Takes `cellspertile` columns of the atlas block being filled, starting one if there is none and
// giving it up once it holds no room for another slice.
void placeslice(ground& g, genericground& tile, int cellspertile) {
    if (g.shadowatlas.empty()) {
        g.owner->pool->allocate(g.shadowatlas, atlasbytes(cellspertile));
        std::fill_n(g.shadowatlas.get(), g.shadowatlas.length(), 0);
        g.atlascursor = 4;
    }
    tile.shadowslice.copyfrom(g.shadowatlas);
    tile.sliceoffset = g.atlascursor;
    g.atlascursor += cellspertile;
    if (256 - cellspertile <= g.atlascursor - 1) g.shadowatlas.release();
}

// Each cell of the tile becomes 255 less 9 for each of itself and its four neighbours that is
// shaded: 255 to 210.
void softenslice(const groundshadows& s, int x, int z, uint8_t* slice) {
    const int n = s.cellspertile, w = s.width;
    for (int j = 0; j < n; ++j) {
        const uint8_t* c = s.cells.get() + static_cast<long>(1 + z * n + j) * w + 1 + x * n;
        for (int i = 0; i < n; ++i, ++c) {
            const int k = (c[0] != 0) + (c[-1] != 0) + (c[1] != 0) + (c[-w] != 0) + (c[w] != 0);
            slice[j * 256 + i] = static_cast<uint8_t>(255 - 9 * k);
        }
    }
}

}  // namespace

void refreshslice(const toolkit& t, ground& g, genericground& tile, int x, int z) {
    const long long at = static_cast<long long>(x) * g.sizex + z;
    if (g.shadows && at >= 0 && at < g.dirty.length() && g.dirty[at]) {
        g.dirty[at] = 0;
        if (tile.shadowslice.empty()) placeslice(g, tile, g.shadows->cellspertile);
        softenslice(*g.shadows, x, z, tile.shadowslice.get() + tile.sliceoffset);
    }
    const bool sliced = !tile.shadowslice.empty();
    tile.shadowmap = sliced ? tile.shadowslice.get() + tile.sliceoffset : nullptr;
    tile.shadowshift = sliced ? t.shadowshift - g.tileshift + 7 : 0;
}
