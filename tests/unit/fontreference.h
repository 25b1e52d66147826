// The draw entries of the three font classes written plainly from their definition, over the
// glyph reference.
#pragma once
#include <cstdint>
#include <vector>

#include "glyphreference.h"
#include "sprite/fontdraw.h"

namespace glyphreference {

struct font {
    std::vector<std::vector<uint8_t>> glyphs;
    std::vector<uint32_t> palette;
    std::vector<int> widths, heights, tops, lefts;
};

// One draw entry of a font class: plain, through a mask, or turned.
enum class entry { plain, masked, turned };

inline void draw(target& t, const font& f, fontkind kind, entry e, int index, int x, int y, uint32_t colour, bool mono,
                 const mask* m) {
    int g = static_cast<int16_t>(index);
    for (size_t size : {f.glyphs.size(), f.widths.size(), f.heights.size(), f.tops.size(), f.lefts.size()})
        if (g < 0 || g >= static_cast<int>(size)) return;
    int w = f.widths[g], h = f.heights[g];
    const std::vector<uint8_t>& bytes = f.glyphs[g];
    // A glyph with fewer bytes than its size is left out rather than read past its end.
    if (w > 0 && h > 0 && static_cast<long long>(w) * h > static_cast<long long>(bytes.size())) return;
    uint32_t a = colour >> 24;
    glyphform form = kind == fontkind::coverage                 ? glyphform::coverage
                     : kind == fontkind::palette && !mono       ? glyphform::palette
                     : kind == fontkind::mono && a != 255 && e != entry::turned ? glyphform::fade
                                                                : glyphform::colour;
    if (form == glyphform::palette && f.palette.empty()) return;
    auto paint = [&](long long at, long long src) {
        if (uint8_t c = bytes[src]) t.pixels[at] = pixel(form, t.pixels[at], c, colour, f.palette);
    };
    if (e == entry::turned) return turnwalk(t, w, h, x, y, paint);
    int dx = x + f.lefts[g], dy = y + f.tops[g];
    if (e == entry::masked && m) {
        bool opaquemono = kind == fontkind::mono && a == 255;
        return walk(t, w, h, dx, dy, paint, m, opaquemono ? 0 : t.clip[0]);
    }
    if (kind == fontkind::mono && a == 0) return;
    walk(t, w, h, dx, dy, paint);
}

}  // namespace glyphreference
