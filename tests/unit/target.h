// A toolkit drawing into guarded buffers, for the tests of the 2D primitives.
#pragma once
#include <cstdint>
#include <sstream>
#include <vector>

#include "fuzz.h"
#include "guarded.h"
#include "toolkit/blend.h"
#include "toolkit/toolkit.h"
#include "util/exception.h"

struct testtarget {
    guarded<uint32_t> colour;
    guarded<float> depth;
    toolkit t{};

    testtarget(int w, int h, bool withdepth = false)
        : colour(static_cast<size_t>(w) * h), depth(static_cast<size_t>(w) * h) {
        t.width = w;
        t.height = h;
        t.colourbuffer = colour.get();
        t.depthbuffer = withdepth ? depth.get() : nullptr;
        setcliprect(t, 0, 0, w, h);
    }
    uint32_t& at(int x, int y) { return colour[static_cast<size_t>(y) * t.width + x]; }
    int pixels() const { return t.width * t.height; }
    bool insideclip(long long x, long long y) const {
        return x >= t.cliprect[0] && x < t.cliprect[2] && y >= t.cliprect[1] && y < t.cliprect[3] && x >= 0 && y >= 0 &&
               x < t.width && y < t.height;
    }
};

// The first pixel that differs from expected, or -1.
inline int firstdifference(const testtarget& g, const std::vector<uint32_t>& expected) {
    for (int i = 0; i < g.pixels(); ++i)
        if (g.colour[i] != expected[i]) return i;
    return -1;
}

inline ::testing::AssertionResult samepixels(const testtarget& g, const std::vector<uint32_t>& expected) {
    int i = firstdifference(g, expected);
    if (i < 0) return ::testing::AssertionSuccess();
    std::ostringstream o;
    o << "pixel " << i % g.t.width << "," << i / g.t.width << " is " << std::hex << g.colour[i] << ", expected "
      << expected[i];
    return ::testing::AssertionFailure() << o.str();
}

inline void fillrandom(testtarget& g, testrng& rng) {
    for (int i = 0; i < g.pixels(); ++i) g.colour[i] = rng.pixel();
}

// True when draw fails with IllegalArgumentException (an invalid mode, for shapes); the failure
// object is freed.
template <class Draw>
bool raisesillegalargument(Draw draw) {
    try {
        draw();
    } catch (IllegalArgumentException* e) {
        delete e;
        return true;
    }
    return false;
}

// One pixel by a mode's rule; the rules themselves are checked channel by channel elsewhere.
inline uint32_t ruledpixel(int mode, uint32_t d, uint32_t c) {
    if (isstore(mode, c)) return c;
    return mode == blend ? blendsource(c)(d) : addsaturate(d, c);
}
