#include "sprite/drawsprite.h"

#include <algorithm>

#include "sprite/rules.h"
#include "util/frame.h"

namespace {

using int64 = long long;

// n pixels of a row: groups of four from the left end, then the leftovers.
template <tintmode T, blendmode B>
[[gnu::always_inline]] inline void pixelrow(uint32_t* dst, const uint32_t* src, int n, const tintconstants& k) {
    int i = 0;
    for (; i + 4 <= n; i += 4) {
        __m128i s = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + i));
        __m128i d = _mm_loadu_si128(reinterpret_cast<const __m128i*>(dst + i));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + i), pixelop<T, B, true>(s, d, k));
    }
    for (; i < n; ++i) dst[i] = leftoverpixel<T, B>(src[i], dst[i], k);
}

template <tintmode T, blendmode B>
struct ownsize {
    static void draw(uint32_t* dst, long dstpitch, const uint32_t* src, long srcpitch, int n, int rows,
                     const tintconstants& k) {
        for (int j = 0; j < rows; ++j, dst += dstpitch, src += srcpitch) pixelrow<T, B>(dst, src, n, k);
    }
};

constexpr auto ownsizemembers = ruletable<ownsize>();

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

}  // namespace

namespace {

// One repeat of a valid selection, its corner at (x, y).
// In 64 bits, so that a position far off the target cannot wrap back onto it.
void drawat(const toolkit& t, const spriteimage& image, int64 x, int64 y, int rule, const tintconstants& k) {
    const int* clip = t.cliprect;
    int64 X = x + image.padleft, Y = y + image.padtop;
    int64 sx = std::max<int64>(X, clip[0]), sy = std::max<int64>(Y, clip[1]);
    int64 n = std::min<int64>(image.width - (sx - X), clip[2] - sx);
    int64 rows = std::min<int64>(image.height - (sy - Y), clip[3] - sy);
    if (n < 1 || rows < 1) return;
    ownsizemembers[rule](t.colourbuffer + sy * t.width + sx, t.width, image.pixels + (sy - Y) * image.pitch + (sx - X),
                         image.pitch, static_cast<int>(n), static_cast<int>(rows), k);
}

}  // namespace

void drawsprite(const toolkit& t, const spriteimage& image, int x, int y, int tint, uint32_t colour, int blend) {
    int rule = ruleindex(tint, blend);
    if (!t.colourbuffer || rule < 0) return;
    drawat(t, image, x, y, rule, tintconstants(colour));
}

void tilesprite(toolkit& t, const spriteimage& image, int x, int y, int w, int h, int tint, uint32_t colour,
                int blend) {
    if (!t.colourbuffer) return;
    int saved[4] = {t.cliprect[0], t.cliprect[1], t.cliprect[2], t.cliprect[3]};
    narrowcliprect(t, x, y, x + w, y + h);
    int rule = ruleindex(tint, blend);
    int fw = image.fullwidth(), fh = image.fullheight();
    // A full rectangle of no size cannot be repeated: nothing is drawn.
    if (rule >= 0 && fw > 0 && fh > 0) {
        tintconstants k(colour);
        int64 cols = (int64{w} + fw - 1) / fw, lines = (int64{h} + fh - 1) / fh;
        repeatrange across(x, fw, cols, image.padleft, image.width, t.cliprect[0], t.cliprect[2]);
        repeatrange down(y, fh, lines, image.padtop, image.height, t.cliprect[1], t.cliprect[3]);
        for (int64 line = down.first; line <= down.last; ++line)
            for (int64 col = across.first; col <= across.last; ++col) drawat(t, image, x + col * fw, y + line * fh, rule, k);
    }
    clampcliprect(t, saved[0], saved[1], saved[2], saved[3]);
}

extern "C" {

JNIEXPORT void JNICALL Java_fa_Y(JNIEnv* env, jobject, jlong handle, jint x, jint y, jint tint, jint colour,
                                 jint blend) {
    runexport(env, [&] { drawsprite(*currenttoolkit, imageof(*spriteat(handle)), x, y, tint, static_cast<uint32_t>(colour), blend); });
}

JNIEXPORT void JNICALL Java_fa_aa(JNIEnv* env, jobject, jlong handle, jint x, jint y, jint w, jint h, jint tint,
                                  jint colour, jint blend) {
    runexport(env, [&] {
        tilesprite(*currenttoolkit, imageof(*spriteat(handle)), x, y, w, h, tint, static_cast<uint32_t>(colour), blend);
    });
}

}  // extern "C"
