// The 2D shapes written plainly from their rules, for the drawing code's clipped walks to be held
// against: a line's points in closed form, and a disc's rows by the step-by-step walk.
#pragma once
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>
#include <vector>

namespace shapereference {

using point = std::pair<long long, long long>;

// Ends ordered so that dx + dy >= 0; the longer axis (y on a tie) counts up from the first end,
// and point i lies i steps of round-half-up((minor << 16) / major) from the centre of the first
// pixel. Only points whose major coordinate lies in [-100, 100] are listed.
inline std::vector<point> linepoints(long long x1, long long y1, long long x2, long long y2) {
    long long dx = x2 - x1, dy = y2 - y1;
    if (dx + dy < 0) {
        std::swap(x1, x2);
        std::swap(y1, y2);
        dx = -dx;
        dy = -dy;
    }
    bool ymajor = dx <= dy;
    long long major = ymajor ? dy : dx, minor = ymajor ? dx : dy, first = ymajor ? y1 : x1;
    long long step = major ? static_cast<long long>(std::floor(static_cast<double>(minor * 65536) / major + 0.5)) : 0;
    std::vector<point> out;
    for (long long i = std::max(0LL, -100 - first); i <= std::min(major, 100 - first); ++i) {
        long long along = (ymajor ? x1 : y1) * 65536 + 0x8000 + i * step;
        out.push_back(ymajor ? point{along >> 16, y1 + i} : point{x1 + i, along >> 16});
    }
    return out;
}

struct span {
    long long row, from, to;  // both ends included
};

// The rows of a disc inside the clip's rows, one half-width step at a time, each row cut to the
// clip's columns at its end rather than by its bounds.
inline std::vector<span> discspans(const int* clip, long long x, long long y, int radius) {
    std::vector<span> out;
    const long long left = clip[0], right = clip[2];
    long long r = std::llabs(radius), c = r * r;
    long long top = std::max(y - r, static_cast<long long>(clip[1]));
    long long bottom = std::min(y + r + 1, static_cast<long long>(clip[3]));
    long long mid = std::min(y, bottom), row = top;
    long long dy = y - top, a = dy * dy, b = a - dy, hw = 0;
    for (; row < mid; ++row) {
        while (b <= c || a <= c) {
            a += 2 * hw;
            b += 2 * hw;
            hw += 1;
        }
        out.push_back({row, std::max(x - hw + 1, left), std::min(x + hw, right) - 1});
        a -= 2 * dy;
        dy -= 1;
        b -= 2 * dy;
    }
    hw = r;
    long long p = dy * dy + c, q = p - hw, s = p + dy, st = -2 * dy;
    for (; row < bottom; ++row) {
        if (s > c) {
            long long e = 2 * hw;
            while (s > c && q > c) {
                s -= e;
                e -= 2;
                q -= e;
                hw -= 1;
            }
        }
        out.push_back({row, std::max(x - hw, left), std::min(x + hw, right - 1)});
        q += st;
        s += st;
        st += 2;
    }
    return out;
}

}  // namespace shapereference
