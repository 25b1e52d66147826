// One glyph into the toolkit's colour buffer: at its place, through a span mask, or turned a
// quarter turn. All three draw only inside the clip rectangle.
#pragma once
#include <cstdint>

#include "toolkit/toolkit.h"

// A glyph as its font's tables describe it: `width` * `height` row-major bytes, placed `left`
// columns and `top` rows from the pen position.
struct glyph {
    const uint8_t* bytes;
    int width, height, left, top;
};

enum class glyphform { coverage, fade, colour, palette };

// What the bytes of one draw turn into; see glyphpixels.h. `fade` takes its opacity from the
// colour's alpha.
struct glyphpaint {
    glyphform form;
    uint32_t colour;
    const uint32_t* palette;
};

// A span mask placed with its corner at (x, y): row r admits `widths[r]` columns from
// `offsets[r]`.
struct glyphmask {
    const int* offsets;
    const int* widths;
    int rows;
    int x, y;
};

void drawglyph(const toolkit& t, const glyph& g, int x, int y, const glyphpaint& paint);

// The mask's columns count from `origin`: the clip rectangle's left for every form but the
// opaque store of a mono font, which counts from the buffer's column 0.
void drawglyphmasked(const toolkit& t, const glyph& g, int x, int y, const glyphpaint& paint, const glyphmask& mask,
                     int origin);

// Turned a quarter turn counter-clockwise, with its corner at (x, y): `height` columns wide and
// `width` rows high. The glyph's own offsets do not apply.
void drawglyphturned(const toolkit& t, const glyph& g, int x, int y, const glyphpaint& paint);

// The part of a clipped glyph row of `w` pixels at buffer column `px` that a mask row admits,
// `count` pixels from `first` on; nothing when `count` is below 1. `start` and `length` are the
// mask row's start column, in the same count as `px`, and its width.
struct maskrun {
    int first, count;
};
maskrun narrowmaskrow(long long start, int length, long long px, int w);
