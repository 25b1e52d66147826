// The draw entries of the three font classes written plainly from their definition, over the
// glyph reference, and a scene that draws the same glyph through the library and the reference.
#pragma once
#include <cstdint>
#include <cstring>
#include <vector>

#include "glyphreference.h"
#include "sprite/fontdraw.h"
#include "target.h"
#include "toolkit/spanmask.h"
#include "util/memory/memorypool.h"

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

// The font's tables and glyphs copied into a pool of their own.
struct testfont {
    memorypool pool{1 << 16, nullptr};
    font f;

    explicit testfont(const glyphreference::font& r) : f(nullptr, static_cast<int>(r.glyphs.size())) {
        copy(f.palette, r.palette);
        copy(f.widths, r.widths);
        copy(f.heights, r.heights);
        copy(f.tops, r.tops);
        copy(f.lefts, r.lefts);
        for (size_t i = 0; i < r.glyphs.size(); ++i) copy(f.glyphs[static_cast<int>(i)], r.glyphs[i]);
    }
    template <class T, class S>
    void copy(allocatedmemory<T>& into, const std::vector<S>& from) {
        if (from.empty()) return;
        pool.allocate(into, static_cast<int>(from.size()));
        memcpy(into.get(), from.data(), from.size() * sizeof(S));
    }
};

// Draws through the entry and through the reference on the same start; true when they agree.
struct fontscene {
    testtarget target;
    glyphreference::font reference;
    testfont real;

    fontscene(int w, int h, const glyphreference::font& f) : target(w, h), reference(f), real(f) {}

    ::testing::AssertionResult same(fontkind kind, glyphreference::entry e, int index, int x, int y, uint32_t colour,
                                    bool mono, const spanmask* mask = nullptr, int maskx = 0, int masky = 0) {
        using glyphreference::entry;
        const int* c = target.t.cliprect;
        glyphreference::target expected{{target.colour.get(), target.colour.get() + target.pixels()}, target.t.width,
                                        target.t.height, {c[0], c[1], c[2], c[3]}};
        glyphreference::mask rm{{}, {}, maskx, masky};
        glyphmask m{nullptr, nullptr, 0, maskx, masky};
        if (mask) {
            m = {mask->offsets.get(), mask->widths.get(), mask->rows(), maskx, masky};
            rm.offsets.assign(mask->offsets.get(), mask->offsets.get() + mask->rows());
            rm.widths.assign(mask->widths.get(), mask->widths.get() + mask->rows());
        }
        glyphreference::draw(expected, reference, kind, e, index, x, y, colour, mono, mask ? &rm : nullptr);
        if (e == entry::turned) drawturnedtext(target.t, real.f, kind, index, x, y, colour, mono);
        else drawtext(target.t, real.f, kind, index, x, y, colour, mono, e == entry::masked && mask ? &m : nullptr);
        if (!target.colour.intact()) return ::testing::AssertionFailure() << "wrote outside the target";
        return samepixels(target, expected.pixels);
    }
};
