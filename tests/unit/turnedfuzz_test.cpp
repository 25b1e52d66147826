// Random draws onto parallelograms, with and without a mask, into targets fenced by sentinels and
// inaccessible pages, from sprites and masks fenced the same way or from the target itself:
// corners huge, degenerate, thin, turned rectangles at any angle or ordinary, pads of any size,
// clip rectangles empty, inverted or off the target. Nothing may be written outside the target,
// nothing read outside the sprite, and every draw of every rule must match the pixel-by-pixel
// reference. Case n is seeded by n; WEXEL_FUZZ_CASE=n reruns that case alone, as
// in the other fuzz tests.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdlib>
#include <random>

#include "guarded.h"
#include "sprite/drawturned.h"
#include "toolkit/blend.h"
#include "turnedreference.h"

namespace {

struct fuzzcase {
    std::mt19937 random;
    explicit fuzzcase(int n) : random(n) {}

    int between(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(random); }
    float real(float lo, float hi) { return std::uniform_real_distribution<float>(lo, hi)(random); }

    // Mostly near the target, sometimes far or at the edge of what a float holds.
    float coordinate() {
        switch (between(0, 29)) {
            case 0: return real(-1e7f, 1e7f);
            case 1: return (between(0, 1) ? 1 : -1) * std::ldexp(real(1, 2), between(20, 127));
            case 2: case 3: case 4: return float(between(-3, 50));
            default: return real(-10, 45);
        }
    }
    int pad() {
        switch (between(0, 39)) {
            case 0: return between(INT_MIN, INT_MAX);
            case 1: return between(-1000, 1000);
            case 2: case 3: case 4: case 5: case 6: return between(-8, 8);
            default: return 0;
        }
    }
    int anyint() { return between(0, 9) ? between(-40, 60) : between(INT_MIN, INT_MAX); }

    corners shape() {
        corners c{coordinate(), coordinate(), coordinate(), coordinate(), coordinate(), coordinate()};
        switch (between(0, 9)) {
            case 0: {  // the three corners on one line
                float t = real(-2, 2);
                c.x2 = c.x0 + t * (c.x1 - c.x0), c.y2 = c.y0 + t * (c.y1 - c.y0);
                break;
            }
            case 1:  // thinner than a pixel
                c.x2 = c.x0 + real(-0.9f, 0.9f), c.y2 = c.y0 + real(-0.9f, 0.9f);
                break;
            case 2:  // all in one point
                c.x1 = c.x2 = c.x0, c.y1 = c.y2 = c.y0;
                break;
            case 3: case 4: case 5: {  // a rectangle turned, scaled and maybe flipped or made thin
                float a = real(0, 6.3f), sx = real(-40, 40), sy = real(-40, 40) * (between(0, 5) ? 1 : 0.02f);
                float ex = std::cos(a) * sx, ey = std::sin(a) * sx, gx = -std::sin(a) * sy, gy = std::cos(a) * sy;
                if (between(0, 2) == 0) c.x0 = std::round(c.x0), c.y0 = std::round(c.y0);
                c.x1 = c.x0 + ex, c.y1 = c.y0 + ey, c.x2 = c.x0 + gx, c.y2 = c.y0 + gy;
                break;
            }
            default: break;
        }
        return c;
    }
};

int drawn;  // cases that changed the target

void run(int n) {
    fuzzcase f(n);
    const int width = f.between(0, 9) ? f.between(8, 40) : f.between(1, 7);
    const int height = f.between(0, 9) ? f.between(8, 40) : f.between(1, 7);
    guarded<uint32_t> colour(size_t(width) * height);
    for (size_t i = 0; i < colour.size(); ++i) colour[i] = uint32_t(f.random());
    toolkit t{};
    t.width = width;
    t.height = height;
    t.colourbuffer = colour.get();
    if (f.between(0, 5)) clampcliprect(t, f.between(-5, 6), f.between(-5, 6), f.between(10, 45), f.between(10, 45));
    else clampcliprect(t, f.anyint(), f.anyint(), f.anyint(), f.anyint());

    const int w = f.between(0, 3) ? f.between(1, 20) : 0, h = f.between(0, 3) ? f.between(1, 20) : 0;
    guarded<uint32_t> pixels(size_t(w) * h);
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = uint32_t(f.random());
    spriteimage image{pixels.get(), w, h, w, f.pad(), f.pad(), f.pad(), f.pad()};
    corners c = f.shape();

    std::vector<uint32_t> expect(colour.get(), colour.get() + colour.size());
    std::vector<uint32_t> before = expect;
    // Sometimes the target is its own sprite: each pixel is then written before the next is read.
    spriteimage sampled = image;
    if (f.between(0, 9) == 0) {
        image = {colour.get(), width, height, width, 0, 0, 0, 0};
        sampled = {expect.data(), width, height, width, 0, 0, 0, 0};
    }
    parallelogram p;
    bool placed = placeparallelogram(image, c, t.cliprect, width, p);
    if (f.between(0, 1)) {
        int tint = f.between(0, 19) ? f.between(0, 4) : f.between(-1, 5);
        int blend = f.between(0, 19) ? f.between(0, 2) : f.between(-1, 3);
        uint32_t tone = f.random();
        if (placed && tint >= 0 && tint < 5 && blend >= 0 && blend < 3)
            turnedreference::walk(p, sampled, expect.data(), width, tint, tone, blend);
        drawturned(t, image, c, tint, tone, blend);
    } else {
        const int rows = f.between(0, 50);
        guarded<int> offsets(rows), widths(rows);
        for (int r = 0; r < rows; ++r) offsets[r] = f.anyint() / 2, widths[r] = f.anyint();
        int maskx = f.anyint() / 2, masky = f.anyint() / 4;
        bool opaque = f.between(0, 1);
        turnedreference::mask m{offsets.get(), widths.get(), rows, maskx, masky};
        if (placed) turnedreference::walk(p, sampled, expect.data(), width, 1, 0, opaque ? replace : blend, &m);
        drawturnedmasked(t, image, c, {offsets.get(), widths.get(), rows}, maskx, masky, opaque);
        ASSERT_TRUE(offsets.intact() && widths.intact()) << "case " << n;
    }
    ASSERT_TRUE(colour.intact()) << "case " << n << ": written outside the target";
    ASSERT_TRUE(pixels.intact()) << "case " << n << ": written into the sprite";
    bool changed = false;
    for (size_t i = 0; i < colour.size(); ++i) {
        ASSERT_EQ(colour[i], expect[i]) << "case " << n << " at pixel " << i;
        changed |= colour[i] != before[i];
    }
    drawn += changed;
}

TEST(turnedfuzz, drawsstayinsidetargetandsprite) {
    if (const char* one = std::getenv("WEXEL_FUZZ_CASE")) return run(std::atoi(one));
    drawn = 0;
#ifdef __SANITIZE_ADDRESS__
    constexpr int cases = 2000;
#else
    constexpr int cases = 8000;
#endif
    for (int n = 0; n < cases; ++n) {
        run(n);
        if (HasFatalFailure()) return;
    }
    EXPECT_GT(drawn, cases / 20);  // enough of them reach the target to matter
}

}  // namespace
