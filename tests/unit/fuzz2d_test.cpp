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
        try {
            switch (index % 8) {
                case 0: {
                    int x = anyint(rng, w), y = anyint(rng, h), rw = anyint(rng, w), rh = anyint(rng, h);
                    note(what, "rectangle ", x, ",", y, " ", rw, "x", rh, " mode ", mode);
                    drawrectangle(t, x, y, rw, rh, colour, mode);
                    break;
                }
                case 1: {
                    int x = anyint(rng, w), y = anyint(rng, h), n = anyint(rng, w);
                    note(what, "row ", x, ",", y, " length ", n, " mode ", mode);
                    drawrow(t, x, static_cast<long long>(x) + n - 1, y, colour, mode);
                    break;
                }
                case 2: {
                    int x = anyint(rng, w), y = anyint(rng, h), n = anyint(rng, h);
                    note(what, "column ", x, ",", y, " length ", n, " mode ", mode);
                    drawcolumn(t, x, y, static_cast<long long>(y) + n - 1, colour, mode);
                    break;
                }
                case 3: {
                    int x1 = anyint(rng, w), y1 = anyint(rng, h), x2 = anyint(rng, w), y2 = anyint(rng, h);
                    note(what, "line ", x1, ",", y1, " ", x2, ",", y2, " mode ", mode);
                    drawline(t, x1, y1, x2, y2, colour, mode);
                    break;
                }
                case 4: {
                    randommask(m, rng, w);
                    int x1 = anyint(rng, w), y1 = anyint(rng, h), x2 = anyint(rng, w), y2 = anyint(rng, h);
                    int mx = anyint(rng, w), my = anyint(rng, h);
                    note(what, "masked line ", x1, ",", y1, " ", x2, ",", y2, " mask at ", mx, ",", my, " mode ", mode);
                    drawmaskedline(t, x1, y1, x2, y2, colour, mode, m.mask, mx, my);
                    break;
                }
                case 5: {
                    randommask(m, rng, w);
                    int x = anyint(rng, w), y = anyint(rng, h);
                    note(what, "mask fill at ", x, ",", y);
                    fillmask(t, colour, m.mask, x, y);
                    break;
                }
                default: {
                    if (index % 8 == 7) t.depthbuffer = g.depth.get();
                    int x = anyint(rng, w), y = anyint(rng, h);
                    int radius = rng() % 4 ? static_cast<int>(rng() % (2 * std::max(w, h))) - 3 : anyint(rng, w);
                    note(what, "disc ", x, ",", y, " radius ", radius, " depth ", (t.depthbuffer != nullptr), " mode ",
                         mode);
                    drawdisc(t, x, y, radius, static_cast<float>(rng() % 3), colour, mode);
                    break;
                }
            }
        } catch (IllegalArgumentException* e) {
            delete e;
            note(what, " (raised)");
        }
    }

    // Pixels outside the clip are as they were.
    static int changedoutsideclip(const testtarget& g, const std::vector<uint32_t>& before) {
        const int* c = g.t.cliprect;
        for (int y = 0, i = 0; y < g.t.height; ++y)
            for (int x = 0; x < g.t.width; ++x, ++i)
                if (g.colour[i] != before[i] && !(x >= c[0] && x < c[2] && y >= c[1] && y < c[3])) return i;
        return -1;
    }

    static std::string describe(int index, int w, int h, testmask& m) {
        std::string what;
        testtarget again(w, h, true);
        runcase(index, again, m, &what);
        return what;
    }

    // The fences are checked after every few cases, which is most of the cost of a check; when one
    // has changed, the cases since the last check run again one by one on fresh targets.
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
                const int at = changedoutsideclip(g, before);
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
    if (const char* one = getenv("WEXEL_FUZZ_CASE")) {
        int index = atoi(one);
        run(index, index + 1);
        return;
    }
    run(0, casecount);
}

}  // namespace
