#include "sprite/drawsprite.h"

#include <algorithm>

#include "sprite/spriterows.h"
#include "toolkit/spanmask.h"
#include "util/frame.h"
#include "util/peer.h"

namespace {

using int64 = long long;

// The first and last of `count` repeats, `step` apart from `from`, whose image (starting `lead`
// into the repeat, `size` long) meets [low, high). Repeats outside it would draw nothing.
struct repeatrange {
    int64 first, last;
    repeatrange(int64 from, int64 step, int64 count, int64 lead, int64 size, int64 low, int64 high) {
        auto floordiv = [](int64 a, int64 b) { return a / b - (a % b != 0 && (a < 0) != (b < 0)); };
        first = std::max<int64>(0, floordiv(low - from - lead - size, step) + 1);
        last = std::min<int64>(count - 1, floordiv(high - from - lead - 1, step));
    }
};

// The image at (x, y) cut to the rectangle [left, right) by [top, bottom): the first buffer
// position, the first source position, and the size. In 64 bits, so that a position far off the
// target cannot wrap back onto it.
struct ownsizeclip {
    int64 sx, sy, n, rows;
    const uint32_t* source;  // null when nothing is drawn
    ownsizeclip(const spriteimage& image, int64 x, int64 y, int64 left, int64 top, int64 right, int64 bottom) {
        int64 X = x + image.padleft, Y = y + image.padtop;
        sx = std::max(X, left);
        sy = std::max(Y, top);
        n = std::min(image.width - (sx - X), right - sx);
        rows = std::min(image.height - (sy - Y), bottom - sy);
        source = empty() ? nullptr : image.pixels + (sy - Y) * image.pitch + (sx - X);
    }
    bool empty() const { return n < 1 || rows < 1; }
};

// One repeat of a valid selection, its corner at (x, y).
void drawat(const toolkit& t, const spriteimage& image, int64 x, int64 y, int rule, const tintconstants& k,
            lanewidth lanes) {
    const int* clip = t.cliprect;
    ownsizeclip c(image, x, y, clip[0], clip[1], clip[2], clip[3]);
    if (c.empty()) return;
    rowsfor(t, image, lanes).ownsize[rule](t.colourbuffer + c.sy * t.width + c.sx, t.width, c.source, image.pitch,
                                   static_cast<int>(c.n), static_cast<int>(c.rows), k);
}

}  // namespace

void drawsprite(const toolkit& t, const spriteimage& image, int x, int y, int tint, uint32_t colour, int blend,
                lanewidth lanes) {
    int rule = selectindex<spriterules>(tint, blend);
    if (!t.colourbuffer || rule < 0) return;
    drawat(t, image, x, y, rule, tintconstants(colour), lanes);
}

void tilesprite(toolkit& t, const spriteimage& image, int x, int y, int w, int h, int tint, uint32_t colour,
                int blend, lanewidth lanes) {
    if (!t.colourbuffer) return;
    int saved[4] = {t.cliprect[0], t.cliprect[1], t.cliprect[2], t.cliprect[3]};
    narrowcliprect(t, x, y, x + w, y + h);
    int rule = selectindex<spriterules>(tint, blend);
    int fw = image.fullwidth(), fh = image.fullheight();
    // A full rectangle of no size cannot be repeated: nothing is drawn.
    if (rule >= 0 && fw > 0 && fh > 0) {
        tintconstants k(colour);
        int64 cols = (int64{w} + fw - 1) / fw, lines = (int64{h} + fh - 1) / fh;
        repeatrange across(x, fw, cols, image.padleft, image.width, t.cliprect[0], t.cliprect[2]);
        repeatrange down(y, fh, lines, image.padtop, image.height, t.cliprect[1], t.cliprect[3]);
        for (int64 line = down.first; line <= down.last; ++line)
            for (int64 col = across.first; col <= across.last; ++col)
                drawat(t, image, x + col * fw, y + line * fh, rule, k, lanes);
    }
    clampcliprect(t, saved[0], saved[1], saved[2], saved[3]);
}

void drawthroughmask(const toolkit& t, const spriteimage& image, int x, int y, const spanmask& mask, int maskx,
                     int masky, lanewidth lanes) {
    if (!t.colourbuffer) return;
    // The clip rectangle narrowed to the mask's rectangle, then the single draw's clipping.
    const int* clip = t.cliprect;
    int64 right = std::min<int64>(clip[2], int64{maskx} + mask.width);
    int64 bottom = std::min<int64>(clip[3], int64{masky} + mask.height);
    ownsizeclip c(image, x, y, std::max(clip[0], maskx), std::max(clip[1], masky), right, bottom);
    if (c.empty()) return;
    int64 mx = std::max<int64>(0, c.sx - maskx), my = std::max<int64>(0, c.sy - masky);
    int64 rows = std::min(c.rows, mask.rows() - my);
    const int* offsets = mask.offsets.get();
    const int* widths = mask.widths.get();
    constexpr int plainblend = indexof(spriterules, pixelrule(tintmode::plain, blend));
    ownsizedraw blendrow = rowsfor(t, image, lanes).ownsize[plainblend];
    const tintconstants k(0);
    uint32_t* dst = t.colourbuffer + c.sy * t.width + c.sx;
    const uint32_t* src = c.source;
    for (int64 j = 0; j < rows; ++j, dst += t.width, src += image.pitch) {
        // A span that starts right of the run skips pixels of both; one that starts left of it
        // loses that much of its width.
        int64 e = offsets[my + j] - mx;
        int64 count = std::min(c.n - std::max<int64>(e, 0), widths[my + j] - std::max<int64>(-e, 0));
        if (count < 1) continue;
        int64 skip = std::max<int64>(e, 0);
        blendrow(dst + skip, 0, src + skip, 0, static_cast<int>(count), 1, k);
    }
}

extern "C" {

JNIEXPORT void JNICALL Java_fa_Y(JNIEnv* env, jobject, jlong handle, jint x, jint y, jint tint, jint colour,
                                 jint blend) {
    runexport(env, [&] {
        drawsprite(*currenttoolkit, imageof(*peerat<sprite>(handle)), x, y, tint, static_cast<uint32_t>(colour), blend,
                   currenttoolkit->lanes);
    });
}

JNIEXPORT void JNICALL Java_fa_aa(JNIEnv* env, jobject, jlong handle, jint x, jint y, jint w, jint h, jint tint,
                                  jint colour, jint blend) {
    runexport(env, [&] {
        tilesprite(*currenttoolkit, imageof(*peerat<sprite>(handle)), x, y, w, h, tint, static_cast<uint32_t>(colour),
                   blend, currenttoolkit->lanes);
    });
}

// The mask comes as the long that holds its address.
JNIEXPORT void JNICALL Java_fa_o(JNIEnv* env, jobject, jlong handle, jint x, jint y, jlong mask, jint maskx,
                                 jint masky) {
    runexport(env, [&] {
        drawthroughmask(*currenttoolkit, imageof(*peerat<sprite>(handle)), x, y, *peerat<const spanmask>(mask), maskx,
                        masky, currenttoolkit->lanes);
    });
}

}  // extern "C"
