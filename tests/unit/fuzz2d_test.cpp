// Random calls of every clipping 2D primitive, with positions, sizes and clip rectangles from
// the ordinary to the extreme, into a target fenced by sentinels and inaccessible pages: nothing
// outside the clip rectangle may change, and nothing at all outside the target. Each case draws
// from its own seed, so a failing case reruns alone:
//   WEXEL_FUZZ_CASE=n unit_tests --gtest_filter='fuzz2d.*'
#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "target.h"
#include "testmask.h"
#include "toolkit/disc.h"
#include "toolkit/fill.h"
#include "toolkit/line.h"
#include "toolkit/maskfill.h"

namespace {

constexpr int casecount = 8 * 100000;  // 100,000 calls of each of the eight kinds

// Coordinates and sizes biased to where arithmetic breaks: mostly near the target, some far off,
// some at the limits of an int.
int anyint(testrng& rng, int extent) {
    static constexpr std::array<int, 14> limits = {
        INT_MIN, INT_MIN + 1, INT_MAX, INT_MAX - 1, 1 << 30, -(1 << 30), 32767, 32768, -32768, 65536, -65537, 0, -1, 1};
    switch (rng() % 8) {
        case 0:
            return limits[rng() % limits.size()];
        case 1:
            return static_cast<int>(rng() % 200001) - 100000;
        default:
            return static_cast<int>(rng() % (3 * extent + 1)) - extent;
    }
}

// Mostly a valid mode; now and then one that must raise, even after nothing was drawn.
int anymode(testrng& rng) { return rng() % 16 ? static_cast<int>(rng() % 3) : (rng() % 2 ? 3 : -1); }

// A clip rectangle as the host's setters can leave it: cut to the target's left, top, right and
// bottom edges, and possibly empty or inverted, or lying off to the right or below.
void randomclip(toolkit& t, testrng& rng) {
    if (rng() % 8 == 0) return setcliprect(t, 0, 0, t.width, t.height);
    int l = anyint(rng, t.width), tp = anyint(rng, t.height), r = anyint(rng, t.width), b = anyint(rng, t.height);
    setcliprect(t, std::max(l, 0), std::max(tp, 0), std::min(r, t.width), std::min(b, t.height));
}

void randommask(testmask& m, testrng& rng, int extent) {
    std::vector<int> offsets(rng() % 40), widths(offsets.size());
    for (size_t r = 0; r < offsets.size(); ++r) {
        offsets[r] = rng() % 4 ? static_cast<int>(rng() % (2 * extent)) - extent / 2 : anyint(rng, extent);
        widths[r] = rng() % 4 ? static_cast<int>(rng() % (2 * extent)) - 2 : anyint(rng, extent);
    }
    if (!widths.empty() && rng() % 8 == 0) widths.pop_back();
    m.set(offsets, widths);
}

// Appends to the description of a case, when one is asked for: building it for every case would
// cost more than the drawing.
template <class... A>
void note(std::string* what, const A&... parts) {
    if (!what) return;
    std::ostringstream s;
    (s << ... << parts);
    *what += s.str();
}

class fuzz2d : public ::testing::Test {
protected:
    // Targets of widths 1 to 33 and heights 1 to 21, a new one for each block of cases.
    static constexpr int blocksize = 2000;

    // Runs one case on g, describing it in `what` if given.
    static void runcase(int index, testtarget& g, testmask& m, std::string* what = nullptr) {
        testrng rng(0x5EED0000ull + static_cast<uint64_t>(index) * 0x9E3779B97F4A7C15ull);
        toolkit& t = g.t;
        t.depthbuffer = nullptr;
        randomclip(t, rng);
        const int w = t.width, h = t.height;
        note(what, "case ", index, " on ", w, "x", h, ", clip ", t.cliprect[0], ",", t.cliprect[1], ",", t.cliprect[2],
             ",", t.cliprect[3], ": ");
        const uint32_t colour = randompixel(rng);
        const int mode = anymode(rng);
        // A corner or end (x, y), and a size or the other end (u, v).
        const int x = anyint(rng, w), y = anyint(rng, h), u = anyint(rng, w), v = anyint(rng, h);
        note(what, x, ",", y, " ", u, ",", v, " mode ", mode, ": ");
        try {
            switch (index % 8) {
            case 0: note(what, "rectangle"), drawrectangle(t, x, y, u, v, colour, mode); break;
            case 1: note(what, "row"), drawrow(t, x, static_cast<long long>(x) + u - 1, y, colour, mode); break;
            case 2: note(what, "column"), drawcolumn(t, x, y, static_cast<long long>(y) + v - 1, colour, mode); break;
            case 3: note(what, "line"), drawline(t, x, y, u, v, colour, mode); break;
            case 4: {
                randommask(m, rng, w);
                const int mx = anyint(rng, w), my = anyint(rng, h);
                note(what, "masked line, mask at ", mx, ",", my);
                drawmaskedline(t, x, y, u, v, colour, mode, m.mask, mx, my);
                break;
            }
            case 5: randommask(m, rng, w), note(what, "mask fill"), fillmask(t, colour, m.mask, x, y); break;
            default: {
                if (index % 8 == 7) t.depthbuffer = g.depth.get();
                const int radius = rng() % 4 ? static_cast<int>(rng() % (2 * std::max(w, h))) - 3 : u;
                note(what, "disc of radius ", radius, t.depthbuffer ? " with depth" : "");
                drawdisc(t, x, y, radius, static_cast<float>(rng() % 3), colour, mode);
            }
            }
        } catch (IllegalArgumentException* e) {
            delete e;
            note(what, " (raised)");
        }
    }

    static std::string describe(int index, int w, int h, testmask& m) {
        std::string what;
        testtarget again(w, h, true);
        runcase(index, again, m, &what);
        return what;
    }

    // Every case checks the pixels outside the clip; the fences cost most of a check, so they are
    // looked at after every few cases, and when one has changed, the cases since the last look run
    // again one by one on fresh targets.
    static constexpr int fencecheck = 64;

    static void run(int first, int last) {
        testmask m;
        for (int block = first / blocksize; block <= (last - 1) / blocksize; ++block) {
            testrng shape(static_cast<uint64_t>(block));
            const int w = 1 + static_cast<int>(shape() % 33), h = 1 + static_cast<int>(shape() % 21);
            testtarget g(w, h, true);
            fillrandom(g, shape);
            for (int i = 0; i < g.pixels(); ++i) g.depth[i] = static_cast<float>(shape() % 4);
            std::vector<uint32_t> before(g.pixels());
            const int begin = std::max(first, block * blocksize), end = std::min(last, (block + 1) * blocksize);
            for (int index = begin; index < end; ++index) {
                std::copy(g.colour.get(), g.colour.get() + g.pixels(), before.begin());
                runcase(index, g, m);
                int at = -1;
                for (int i = 0; i < g.pixels(); ++i)
                    if (g.colour[i] != before[i] && !g.insideclip(i % w, i / w)) at = i;
                ASSERT_EQ(at, -1) << describe(index, w, h, m) << ": changed pixel " << at % w << "," << at / w
                                  << " outside the clip";
                if ((index - begin) % fencecheck != fencecheck - 1 && index != end - 1) continue;
                if (g.colour.intact() && g.depth.intact()) continue;
                for (int again = index - (index - begin) % fencecheck; again <= index; ++again) {
                    testtarget fresh(w, h, true);
                    runcase(again, fresh, m);
                    ASSERT_TRUE(fresh.colour.intact() && fresh.depth.intact())
                        << describe(again, w, h, m) << ": wrote outside the target";
                }
                FAIL() << "a fence changed in cases up to " << index << ", but none of them changes it alone";
            }
        }
    }
};

TEST_F(fuzz2d, nowriteoutsidetheclip) {
    const char* one = getenv("WEXEL_FUZZ_CASE");
    if (one) run(atoi(one), atoi(one) + 1);
    else run(0, casecount);
}

}  // namespace
