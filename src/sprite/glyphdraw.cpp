#include "sprite/glyphdraw.h"

#include <algorithm>

#include "sprite/glyphpixels.h"
#include "toolkit/fill.h"

namespace {

// Picks the pixel form once, before any row.
template <class Draw>
void withform(const glyphpaint& paint, Draw&& draw) {
    switch (paint.form) {
    case glyphform::coverage: draw(coverageform{paint.colour}); break;
    case glyphform::fade: draw(fadeform(paint.colour)); break;
    case glyphform::colour: draw(colourform{paint.colour}); break;
    case glyphform::palette: draw(paletteform{paint.palette}); break;
    }
}

// The glyph's rectangle cut to the clip, (x, y, w, h) in the buffer, with its first byte and pixel.
struct glyphwindow {
    cliprectangle area;
    const uint8_t* source = nullptr;
    uint32_t* target = nullptr;

    glyphwindow(const toolkit& t, const glyph& g, int x, int y) : area(t, x + g.left, y + g.top, g.width, g.height) {
        if (empty()) return;
        long skipx = static_cast<long>(area.x) - (x + g.left), skipy = static_cast<long>(area.y) - (y + g.top);
        source = g.bytes + skipy * g.width + skipx;
        target = t.colourbuffer + static_cast<long>(area.y) * t.width + area.x;
    }
    bool empty() const { return area.w < 1 || area.h < 1; }
};

}  // namespace

void drawglyph(const toolkit& t, const glyph& g, int x, int y, const glyphpaint& paint) {
    glyphwindow wnd(t, g, x, y);
    if (wnd.empty()) return;
    withform(paint, [&](const auto& form) {
        const uint8_t* s = wnd.source;
        uint32_t* d = wnd.target;
        for (int j = 0; j < wnd.area.h; ++j, s += g.width, d += t.width) paintrow(d, s, wnd.area.w, form);
    });
}

maskrun narrowmaskrow(long long start, int length, long long px, int w) {
    long long first, count, len = length;
    if (start < px) {
        if (px - start >= len) return {0, 0};
        len -= px - start;
        first = 0;
        count = w;
    } else {
        if (start - px >= w) return {0, 0};
        first = start - px;
        count = w - first;
    }
    return {static_cast<int>(first), static_cast<int>(std::max(std::min(count, len), 0LL))};
}

void drawglyphmasked(const toolkit& t, const glyph& g, int x, int y, const glyphpaint& paint, const glyphmask& mask,
                     int origin) {
    glyphwindow wnd(t, g, x, y);
    if (wnd.empty()) return;
    const cliprectangle& c = wnd.area;
    // Only the rows that the mask has.
    long long top = std::max<long long>(c.y, mask.y);
    long long bottom = std::min<long long>(static_cast<long long>(c.y) + c.h, static_cast<long long>(mask.y) + mask.rows);
    if (top >= bottom) return;
    long long px = static_cast<long long>(c.x) - origin;
    withform(paint, [&](const auto& form) {
        const uint8_t* s = wnd.source + (top - c.y) * g.width;
        uint32_t* d = wnd.target + (top - c.y) * t.width;
        for (long long row = top; row < bottom; ++row, s += g.width, d += t.width) {
            long long r = row - mask.y;
            maskrun run = narrowmaskrow(static_cast<long long>(mask.offsets[r]) + mask.x, mask.widths[r], px, c.w);
            if (run.count > 0) paintrow(d + run.first, s + run.first, run.count, form);
        }
    });
}

void drawglyphturned(const toolkit& t, const glyph& g, int x, int y, const glyphpaint& paint) {
    cliprectangle c(t, x, y, g.height, g.width);
    if (c.w < 1 || c.h < 1) return;
    // Buffer column i and row j of the turned glyph show glyph row i, column width - 1 - j.
    long skipi = static_cast<long>(c.x) - x, skipj = static_cast<long>(c.y) - y;
    const uint8_t* first = g.bytes + skipi * g.width + (g.width - 1 - skipj);
    uint32_t* target = t.colourbuffer + static_cast<long>(c.y) * t.width + c.x;
    withform(paint, [&](const auto& form) {
        const uint8_t* s = first;
        uint32_t* d = target;
        for (int j = 0; j < c.h; ++j, --s, d += t.width)
            for (int i = 0; i < c.w; ++i) paintpixel(d[i], s[static_cast<long>(i) * g.width], form);
    });
}
