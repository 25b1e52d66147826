#include "sprite/drawturned.h"

#include "sprite/inversewalk.h"
#include "sprite/rules.h"
#include "toolkit/spanmask.h"
#include "util/frame.h"
#include "util/peer.h"

namespace {

using inversewalk::int64;
using inversewalk::maskrow;

// A pixel operation of the axis-aligned draws in its leftover form, given four pixels at a time
// when the run has them.
template <pixelrule R>
struct leftoverop {
    const tintconstants k;  // a copy, which the stores cannot alias
    [[gnu::always_inline]] void four(uint32_t* dst, __m128i s) {
        lanes4::store(dst, pixelop<lanes4, R, false>(s, lanes4::load(dst), k));
    }
    [[gnu::always_inline]] void one(uint32_t* dst, uint32_t s) { *dst = leftoverpixel<R>(s, *dst, k); }
};

template <pixelrule R>
void turned(const toolkit& t, const spriteimage& image, const parallelogram& p, const tintconstants& k) {
    leftoverop<R> op{k};
    walkparallelogram(p, image, t.colourbuffer, t.width, t.height, inversewalk::nomask{}, op);
}

constexpr auto turnedmembers = dispatchtable<spriterules>([]<pixelrule R>() { return &turned<R>; });

// The mask rows met by the box's rows, from truncate(miny) - masky on: rows above the mask draw
// nothing, the first row below it ends the draw. Rows past what the mask stores end it too.
struct spanrows {
    const maskspans& spans;
    int64 firstrow;  // mask row of the box's first row
    int64 column;    // mask column of the box's first column

    maskrow row(int j) const {
        int64 m = firstrow + j;
        return m < 0 ? maskrow::skip : m >= spans.rows ? maskrow::end : maskrow::draw;
    }

    // Keeps the pixels from `offset` into the row on that lie in the row's span.
    bool narrow(inversewalk::run& r, int j, int64 offset) const {
        int64 m = firstrow + j;
        int64 gap = spans.offsets[m] - offset - column;
        int64 limit = -int64{spans.widths[m]};
        if (gap >= 1) {
            if (!r.skip(gap)) return false;
        } else {
            limit -= gap;
        }
        r.n = std::max(r.n, limit);
        return r.n < 0;
    }
};

}  // namespace

void drawturned(const toolkit& t, const spriteimage& image, corners c, int tint, uint32_t colour, int blend) {
    int rule = selectindex<spriterules>(tint, blend);
    parallelogram p;
    if (!t.colourbuffer || rule < 0 || !placeparallelogram(image, c, t.cliprect, t.width, p)) return;
    turnedmembers[rule](t, image, p, tintconstants(colour));
}

void drawturnedmasked(const toolkit& t, const spriteimage& image, corners c, const maskspans& mask, int maskx,
                      int masky, bool opaque) {
    parallelogram p;
    if (!t.colourbuffer || !placeparallelogram(image, c, t.cliprect, t.width, p)) return;
    spanrows rows{mask, int64{p.firstrow} - masky, int64{p.firstcolumn} - maskx};
    tintconstants k(0);
    if (opaque) {
        leftoverop<pixelrule(tintmode::plain, replace)> op{k};
        walkparallelogram(p, image, t.colourbuffer, t.width, t.height, rows, op);
    } else {
        leftoverop<pixelrule(tintmode::plain, blend)> op{k};
        walkparallelogram(p, image, t.colourbuffer, t.width, t.height, rows, op);
    }
}

extern "C" {

JNIEXPORT void JNICALL Java_fa_e(JNIEnv* env, jobject, jlong handle, jfloat x0, jfloat y0, jfloat x1, jfloat y1,
                                 jfloat x2, jfloat y2, jint tint, jint colour, jint blend) {
    runexport(env, [&] {
        drawturned(*currenttoolkit, imageof(*peerat<sprite>(handle)), {x0, y0, x1, y1, x2, y2}, tint,
                   static_cast<uint32_t>(colour), blend);
    });
}

JNIEXPORT void JNICALL Java_fa_FA(JNIEnv* env, jobject, jlong handle, jfloat x0, jfloat y0, jfloat x1, jfloat y1,
                                  jfloat x2, jfloat y2, jint, jlong maskhandle, jint maskx, jint masky,
                                  jboolean opaque) {
    runexport(env, [&] {
        const spanmask& mask = *peerat<const spanmask>(maskhandle);
        // Rows past what the tables hold end the draw, as rows past the mask's height do.
        maskspans spans{mask.offsets.get(), mask.widths.get(), std::min(mask.height, mask.rows())};
        drawturnedmasked(*currenttoolkit, imageof(*peerat<sprite>(handle)), {x0, y0, x1, y1, x2, y2}, spans, maskx, masky,
                         opaque);
    });
}

}  // extern "C"
