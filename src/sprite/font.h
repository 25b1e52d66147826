// A set of glyph bitmaps that the host hands over once and then draws one glyph at a time; the
// peer of the host's ea, m and ia. Its tables and glyph bytes live in the toolkit's pool.
#pragma once
#include <cstdint>

#include "sprite/glyphdraw.h"
#include "util/memory/allocatedmemory.h"
#include "util/memory/handlearray.h"

struct toolkit;

struct font {
    toolkit* owner;  // the toolkit whose pool owns the blocks; nothing reads it
    handlearray<int8_t> glyphs;
    allocatedmemory<int32_t> palette;  // colours by byte value; palette fonts only
    allocatedmemory<int32_t> widths, heights, tops, lefts;

    font(toolkit* owner, int count) : owner(owner), glyphs(count) {}

    // Glyph `index` as the tables describe it. False, so that nothing is drawn, for an index the
    // font or one of its tables does not hold, or a glyph with fewer bytes than its size needs.
    bool find(int index, glyph& out) const;
};
