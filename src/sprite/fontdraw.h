// The draws of the three font classes: each turns its glyph bytes into pixels its own way.
#pragma once
#include <cstdint>

#include "sprite/font.h"
#include "sprite/glyphdraw.h"

struct toolkit;

// Coverage bytes blended with a colour (ea); on-off bytes in a colour whose alpha is the
// opacity (m); palette indices, or on-off bytes in a colour when `mono` (ia).
enum class fontkind { coverage, mono, palette };

// Glyph `index`, cut to 16 bits with its sign, at the pen position (x, y); through `mask` when it
// is given. Nothing without a colour buffer or for a glyph the font does not hold.
void drawtext(const toolkit& t, const font& f, fontkind kind, int index, int x, int y, uint32_t colour, bool mono,
              const glyphmask* mask);

// The same glyph turned a quarter turn, with its corner at (x, y). Mono glyphs store the colour
// whatever its alpha.
void drawturnedtext(const toolkit& t, const font& f, fontkind kind, int index, int x, int y, uint32_t colour,
                    bool mono);
