#include "toolkit/disc.h"

#include <emmintrin.h>

#include <algorithm>

#include "toolkit/blend.h"
#include "toolkit/fill.h"
#include "util/frame.h"

namespace {

// The row terms grow as the square of the radius, which for the largest int radii leaves 64 bits.
using wide = __int128;

// The smallest k in [0, limit] for which reached(k) holds, reached being monotone and true at
// limit. It gallops up from 0, so the usual handful of steps costs a handful of tests, and a
// radius far larger than the target costs no more than a few dozen.
template <class Reached>
wide firstreached(wide limit, Reached reached) {
    if (reached(0)) return 0;
    wide lo = 0, hi = 1;
    while (hi < limit && !reached(hi)) {
        lo = hi;
        hi = std::min(hi * 2, limit);
    }
    while (hi - lo > 1) {
        wide mid = lo + (hi - lo) / 2;
        (reached(mid) ? hi : lo) = mid;
    }
    return hi;
}

// Columns from through to - 1 of one row, cut to the clip, where the depth test passes; four
// pixels a turn and the rest singly.
template <class Rule>
void span(toolkit& t, int row, wide from, wide to, float z, Rule rule) {
    long long l = static_cast<long long>(std::max<wide>(from, t.cliprect[0]));
    long long r = static_cast<long long>(std::min<wide>(to, t.cliprect[2]));
    if (l >= r) return;
    long long at = static_cast<long long>(row) * t.width + l;
    int n = static_cast<int>(r - l);
    uint32_t* p = t.colourbuffer + at;
    if (!t.depthbuffer) return writerun(p, n, rule);
    const float* d = t.depthbuffer + at;
    const __m128 depth = _mm_set1_ps(z);
    int i = 0;
    for (; i + 4 <= n; i += 4) {
        auto* four = reinterpret_cast<__m128i*>(p + i);
        __m128i old = _mm_loadu_si128(four);
        __m128i pass = _mm_castps_si128(_mm_cmpgt_ps(_mm_loadu_ps(d + i), depth));
        _mm_storeu_si128(four, _mm_or_si128(_mm_and_si128(pass, rule4(rule, old)), _mm_andnot_si128(pass, old)));
    }
    for (; i < n; ++i)
        if (d[i] > z) p[i] = rule(p[i]);
}

}  // namespace

// Rows above the centre widen while either of two running terms is within the squared radius;
// the centre row and those below narrow while both are beyond it. Each loop of single steps on
// the half-width is taken in one go by firstreached: k steps add k * (2 hw + k - 1) to the upper
// terms, and take k * (2 hw - k + 1) and k * (2 hw - k - 1) off the lower ones.
void drawdisc(toolkit& t, int x, int y, int radius, float z, uint32_t colour, int mode) {
    if (!t.colourbuffer) return;
    const wide r = radius < 0 ? -wide{radius} : wide{radius}, c = r * r;
    const int top = static_cast<int>(std::max<wide>(y - r, t.cliprect[1]));
    const int bottom = static_cast<int>(std::min<wide>(y + r + 1, t.cliprect[3]));
    const int mid = std::min(y, bottom);
    checkblendmode(mode);
    withblendrule(mode, colour, [&](auto rule) {
        int row = top;
        wide dy = y - top, a = dy * dy, b = a - dy, hw = 0;
        for (; row < mid; ++row) {
            const wide low = std::min(a, b);
            auto grown = [&](wide k) { return k * (2 * hw + k - 1); };
            const wide k = firstreached(r + 2, [&](wide k) { return low + grown(k) > c; });
            a += grown(k);
            b += grown(k);
            hw += k;
            span(t, row, x - hw + 1, x + hw, z, rule);
            a -= 2 * dy;
            dy -= 1;
            b -= 2 * dy;
        }
        hw = r;
        const wide p = dy * dy + c;
        wide q = p - hw, s = p + dy, st = -2 * dy;
        for (; row < bottom; ++row) {
            auto shrunks = [&](wide k) { return k * (2 * hw - k + 1); };
            auto shrunkq = [&](wide k) { return k * (2 * hw - k - 1); };
            const wide k = firstreached(hw, [&](wide k) { return s - shrunks(k) <= c || q - shrunkq(k) <= c; });
            s -= shrunks(k);
            q -= shrunkq(k);
            hw -= k;
            span(t, row, x - hw, x + hw + 1, z, rule);
            q += st;
            s += st;
            st += 2;
        }
    });
}

extern "C" {

JNIEXPORT void JNICALL Java_ja_CA(JNIEnv* env, jobject, jint x, jint y, jint radius, jint colour, jint mode) {
    runexport(env, [&] { drawdisc(*currenttoolkit, x, y, radius, 0.0f, static_cast<uint32_t>(colour), mode); });
}

}  // extern "C"
