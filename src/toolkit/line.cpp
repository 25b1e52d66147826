#include "toolkit/line.h"

#include <emmintrin.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "toolkit/blend.h"
#include "toolkit/fill.h"
#include "toolkit/spanmask.h"
#include "util/frame.h"
#include "util/peer.h"

namespace {

struct range {
    long long lo, hi;  // hi exclusive
};

// The minor axis's move per pixel of the major axis in 16.16, rounded half up in doubles. Only a
// line of length zero through a mask divides 0 by 0; the processor's answer for that stands.
long long linestep(long long minor, long long major) {
    double q = static_cast<double>(minor * 65536) / static_cast<double>(major);
    return _mm_cvttsd_si32(_mm_set_sd(std::floor(q + 0.5)));
}

// Walks the major axis from m1 through m2 inside `major`; the minor coordinate starts at the centre
// of pixel n1 and moves by step. Calls plot(m, n) for each point whose n lies inside `minor`.
template <class Plot>
void walk(long long m1, long long m2, long long n1, long long step, range major, range minor, Plot plot) {
    long long n = n1 * 65536 + 0x8000, m = m1;
    if (m < major.lo) {
        n += (major.lo - m) * step;
        m = major.lo;
    }
    long long end = std::min(m2, major.hi - 1);
    for (; m <= end; ++m, n += step) {
        long long p = n >> 16;
        if (p >= minor.lo && p < minor.hi) plot(m, p);
    }
}

// The general line within the given rows, drawing where admit(x, y) holds. The ends are put in
// the order that makes dx + dy non-negative; then the longer axis runs upward, and the step along
// the shorter one may have either sign.
template <class Admit>
void walkline(toolkit& t, long long x1, long long y1, long long x2, long long y2, range rows, uint32_t colour, int mode,
              Admit admit) {
    long long dx = x2 - x1, dy = y2 - y1;
    if (dx + dy < 0) {
        std::swap(x1, x2);
        std::swap(y1, y2);
        dx = -dx;
        dy = -dy;
    }
    const range columns{t.cliprect[0], t.cliprect[2]};
    checkblendmode(mode);
    withblendrule(mode, colour, [&](auto rule) {
        auto plot = [&](long long x, long long y) {
            if (!admit(x, y)) return;
            uint32_t& p = t.colourbuffer[y * t.width + x];
            p = rule(p);
        };
        if (dx <= dy)
            walk(y1, y2, x1, linestep(dx, dy), rows, columns, [&](long long y, long long x) { plot(x, y); });
        else
            walk(x1, x2, y1, linestep(dy, dx), columns, rows, plot);
    });
}

}  // namespace

void drawrow(toolkit& t, long long x0, long long x1, int y, uint32_t colour, int mode) {
    if (!t.colourbuffer || y < t.cliprect[1] || y >= t.cliprect[3]) return;
    long long l = std::max<long long>(x0, t.cliprect[0]), r = std::min<long long>(x1 + 1, t.cliprect[2]);
    checkblendmode(mode);
    if (l >= r) return;
    uint32_t* p = t.colourbuffer + static_cast<long long>(y) * t.width + l;
    withblendrule(mode, colour, [&](auto rule) { writerun(p, static_cast<int>(r - l), rule); });
}

void drawcolumn(toolkit& t, int x, long long y0, long long y1, uint32_t colour, int mode) {
    if (!t.colourbuffer || x < t.cliprect[0] || x >= t.cliprect[2]) return;
    long long top = std::max<long long>(y0, t.cliprect[1]), bottom = std::min<long long>(y1 + 1, t.cliprect[3]);
    checkblendmode(mode);
    withblendrule(mode, colour, [&](auto rule) {
        for (long long y = top; y < bottom; ++y) {
            uint32_t& p = t.colourbuffer[y * t.width + x];
            p = rule(p);
        }
    });
}

void drawline(toolkit& t, int x1, int y1, int x2, int y2, uint32_t colour, int mode) {
    if (!t.colourbuffer) return;
    if (y1 == y2) return drawrow(t, std::min(x1, x2), std::max(x1, x2), y1, colour, mode);
    if (x1 == x2) return drawcolumn(t, x1, std::min(y1, y2), std::max(y1, y2), colour, mode);
    walkline(t, x1, y1, x2, y2, {t.cliprect[1], t.cliprect[3]}, colour, mode,
             [](long long, long long) { return true; });
}

// The rows are also limited to the mask's, so every row the walk reaches has a row of the mask.
void drawmaskedline(toolkit& t, int x1, int y1, int x2, int y2, uint32_t colour, int mode, const spanmask& mask,
                    int maskx, int masky) {
    if (!t.colourbuffer) return;
    const int* offsets = mask.offsets.get();
    const int* widths = mask.widths.get();
    const range rows{std::max<long long>(t.cliprect[1], masky),
                     std::min<long long>(t.cliprect[3], static_cast<long long>(masky) + mask.rows())};
    walkline(t, x1, y1, x2, y2, rows, colour, mode, [&](long long x, long long y) {
        long long r = y - masky, start = static_cast<long long>(offsets[r]) + maskx;
        return x >= start && x < start + widths[r];
    });
}

extern "C" {

JNIEXPORT void JNICALL Java_ja_XA(JNIEnv* env, jobject, jint x, jint y, jint length, jint colour, jint mode) {
    runexport(env, [&] {
        drawrow(*currenttoolkit, x, static_cast<long long>(x) + length - 1, y, static_cast<uint32_t>(colour), mode);
    });
}

JNIEXPORT void JNICALL Java_ja_G(JNIEnv* env, jobject, jint x, jint y, jint length, jint colour, jint mode) {
    runexport(env, [&] {
        drawcolumn(*currenttoolkit, x, y, static_cast<long long>(y) + length - 1, static_cast<uint32_t>(colour), mode);
    });
}

JNIEXPORT void JNICALL Java_ja_YA(JNIEnv* env, jobject, jint x1, jint y1, jint x2, jint y2, jint colour, jint mode) {
    runexport(env, [&] { drawline(*currenttoolkit, x1, y1, x2, y2, static_cast<uint32_t>(colour), mode); });
}

JNIEXPORT void JNICALL Java_ja_R(JNIEnv* env, jobject, jint x1, jint y1, jint x2, jint y2, jint colour, jint mode,
                                 jobject mask, jint maskx, jint masky) {
    runexport(env, [&] {
        const spanmask& m = *getpeer<spanmask>(env, hostclass::wa, mask);
        drawmaskedline(*currenttoolkit, x1, y1, x2, y2, static_cast<uint32_t>(colour), mode, m, maskx, masky);
    });
}

}  // extern "C"
