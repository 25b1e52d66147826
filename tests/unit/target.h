// A toolkit drawing into guarded buffers, for the tests of the 2D primitives.
#pragma once
#include <cstdint>
#include <vector>

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

// A small, fast generator for test data (splitmix64); a given seed always gives the same run.
struct testrng {
    using result_type = uint32_t;
    uint64_t state;
    explicit testrng(uint64_t seed) : state(seed) {}
    static constexpr result_type min() { return 0; }
    static constexpr result_type max() { return 0xFFFFFFFFu; }
    result_type operator()() {
        uint64_t z = (state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return static_cast<result_type>((z ^ (z >> 31)) >> 32);
    }
};

// Pixel words with bytes biased towards 0x00 and 0xFF, where the rules carry and saturate.
inline uint32_t randompixel(testrng& rng) {
    uint32_t v = 0;
    for (int i = 0; i < 4; ++i) {
        uint32_t pick = rng() % 4;
        uint32_t byte = pick == 0 ? 0 : pick == 1 ? 255 : rng() & 255;
        v = v << 8 | byte;
    }
    return v;
}

// The first pixel that differs from expected, or -1.
inline int firstdifference(const testtarget& g, const std::vector<uint32_t>& expected) {
    for (int i = 0; i < g.pixels(); ++i)
        if (g.colour[i] != expected[i]) return i;
    return -1;
}

inline void fillrandom(testtarget& g, testrng& rng) {
    for (int i = 0; i < g.pixels(); ++i) g.colour[i] = randompixel(rng);
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
