// Random sprite draws, at own size, tiled, scaled, at a depth and through a span mask, into a
// fenced target: nothing outside the clip rectangle changes, nothing
// outside the target is touched, and no pixel outside the image is read. Images sit flush against
// an inaccessible page at their end or at their start, and the gaps between their rows are
// refilled between two runs of the same call, which must agree. Each case has its own seed; set
// WEXEL_FUZZ_CASE=n to run case n alone and see its arguments.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <random>
#include <sstream>
#include <vector>

#include "sprite/drawscaled.h"
#include "sprite/drawsprite.h"
#include "spritereference.h"
#include "testmask.h"

namespace {

#ifdef __SANITIZE_ADDRESS__
constexpr int casecount = 12000;
#else
constexpr int casecount = 100000;
#endif

// An image whose first or last pixel touches an inaccessible page.
class fencedimage {
public:
    fencedimage(int width, int height, long pitch, bool fenceatstart, std::mt19937& random)
        : width(width), height(height), pitch(pitch) {
        page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        size_t count = height > 0 && width > 0 ? (height - 1) * pitch + width : 0;
        size_t bytes = count * 4;
        inner = (bytes + page - 1) / page * page;
        region = static_cast<uint8_t*>(mmap(nullptr, inner + 2 * page, PROT_READ | PROT_WRITE,
                                            MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        mprotect(region, page, PROT_NONE);
        mprotect(region + page + inner, page, PROT_NONE);
        pixels = reinterpret_cast<uint32_t*>(fenceatstart ? region + page : region + page + inner - bytes);
        for (size_t i = 0; i < count; ++i) pixels[i] = random();
    }
    ~fencedimage() { munmap(region, inner + 2 * page); }

    // Fills the columns between the end of one row and the start of the next.
    void fillgaps(uint32_t value) {
        for (int y = 0; y + 1 < height; ++y)
            for (long x = width; x < pitch; ++x) pixels[y * pitch + x] = value;
    }
    spriteimage image(const int pads[4]) const {
        return {pixels, width, height, pitch, pads[0], pads[1], pads[2], pads[3]};
    }

    const int width, height;
    const long pitch;

private:
    size_t page, inner;
    uint8_t* region;
    uint32_t* pixels;
};

enum entry { single, tiled, scaled, scaledatdepth, masked, entrycount };

struct fuzzcase {
    int target, image, pads[4], clip[4];
    entry call;
    int x, y, w, h, tint, blend, maskx, masky;
    uint32_t colour;
    float z;
    bool depth;

    std::string describe() const {
        std::ostringstream o;
        o << "target " << target << " image " << image << " entry " << call << " at " << x << "," << y << " size " << w
          << "," << h << " tint " << tint << " blend " << blend << " colour " << std::hex << colour << std::dec
          << " z " << z << " depth " << depth << " mask at " << maskx << "," << masky << " pads, clip";
        for (int v : {pads[0], pads[1], pads[2], pads[3], clip[0], clip[1], clip[2], clip[3]}) o << " " << v;
        return o.str();
    }
};

// Values biased towards the edges of the target, small sizes and the ends of the int range.
fuzzcase makecase(uint64_t seed, const std::vector<std::unique_ptr<testtarget>>& targets,
                  const std::vector<std::unique_ptr<fencedimage>>& images) {
    std::mt19937_64 random(seed);
    auto between = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(random); };
    auto coordinate = [&](int low, int high, int reach) {
        switch (between(0, 15)) {
            case 0: return between(INT32_MIN, INT32_MAX);
            case 1: return between(-3, 3) + (between(0, 1) ? INT32_MIN + 64 : INT32_MAX - 64);
            default: return between(std::min(low, high) - reach / 2 - 2, std::max(low, high));
        }
    };
    auto extent = [&](int size) {
        switch (between(0, 15)) {
            case 0: return between(INT32_MIN, INT32_MAX);
            case 1: return between(-5, 0);
            default: return between(0, 3 * size + 10);
        }
    };
    auto pad = [&] { return between(0, 31) ? between(-2, 4) : between(-60, 60); };
    fuzzcase c{};
    c.target = between(0, int(targets.size()) - 1);
    c.image = between(0, int(images.size()) - 1);
    for (int& p : c.pads) p = pad();
    const int width = targets[c.target]->t.width, height = targets[c.target]->t.height;
    const fencedimage& image = *images[c.image];
    // Mostly a proper rectangle; sometimes any four values, empty, inverted or off the target.
    bool proper = between(0, 3);
    c.clip[0] = proper ? between(-10, width / 2) : between(-10, width + 10);
    c.clip[1] = proper ? between(-10, height / 2) : between(-10, height + 10);
    c.clip[2] = proper ? between(width / 2 + 1, width + 10) : between(-10, width + 10);
    c.clip[3] = proper ? between(height / 2 + 1, height + 10) : between(-10, height + 10);
    c.call = entry(between(0, entrycount - 1));
    c.x = coordinate(std::max(c.clip[0], 0), std::min(c.clip[2], width), std::max(image.width, 2));
    c.y = coordinate(std::max(c.clip[1], 0), std::min(c.clip[3], height), std::max(image.height, 2));
    c.w = extent(width);
    c.h = extent(height);
    c.tint = between(0, 9) ? between(0, 4) : between(-2, 6);
    c.blend = between(0, 9) ? between(0, 2) : between(-2, 4);
    c.colour = static_cast<uint32_t>(random());
    c.z = float(between(-1, 9));
    c.depth = between(0, 1);
    c.maskx = coordinate(0, width, 8);
    c.masky = coordinate(0, height, 8);
    return c;
}

void run(const fuzzcase& c, toolkit& t, const spriteimage& image, const spanmask& mask, lanewidth lanes) {
    switch (c.call) {
        case masked: drawthroughmask(t, image, c.x, c.y, mask, c.maskx, c.masky, lanes); break;
        case single: drawsprite(t, image, c.x, c.y, c.tint, c.colour, c.blend, lanes); break;
        case tiled: tilesprite(t, image, c.x, c.y, c.w, c.h, c.tint, c.colour, c.blend, lanes); break;
        case scaled: drawscaled(t, image, c.x, c.y, c.w, c.h, c.tint, c.colour, c.blend, lanes); break;
        default: drawscaledatdepth(t, image, c.x, c.y, c.z, c.w, c.h, c.tint, c.colour, c.blend, lanes); break;
    }
}

// The tiling as first described: every repeat in turn under the narrowed clip rectangle.
void naivetiles(const fuzzcase& c, toolkit& t, const spriteimage& image, lanewidth lanes) {
    int saved[4] = {t.cliprect[0], t.cliprect[1], t.cliprect[2], t.cliprect[3]};
    narrowcliprect(t, c.x, c.y, c.x + c.w, c.y + c.h);
    int fw = image.fullwidth(), fh = image.fullheight();
    int cols = (c.w + fw - 1) / fw, lines = (c.h + fh - 1) / fh;
    for (int line = 0; line < lines; ++line)
        for (int col = 0; col < cols; ++col)
            drawsprite(t, image, c.x + col * fw, c.y + line * fh, c.tint, c.colour, c.blend, lanes);
    clampcliprect(t, saved[0], saved[1], saved[2], saved[3]);
}

TEST(spritefuzz, drawsstayinsidetheclipandreadonlytheimage) {
    std::mt19937 random(1234);
    std::vector<std::unique_ptr<testtarget>> targets;
    for (auto [w, h] : {std::pair{1, 1}, {3, 2}, {17, 5}, {33, 9}, {40, 24}}) {
        targets.push_back(std::make_unique<testtarget>(w, h));
        testtarget& g = *targets.back();
        for (int i = 0; i < w * h; ++i) g.colour[i] = random(), g.depth[i] = float(random() % 9);
    }
    std::vector<std::unique_ptr<fencedimage>> images;
    for (auto [w, h, gap] : {std::tuple{0, 0, 0}, {1, 1, 0}, {1, 4, 2}, {3, 5, 1}, {7, 2, 3}, {16, 16, 0}, {33, 3, 2},
                             {5, 0, 0}, {64, 64, 1}, {2, 3, 0}})
        for (bool atstart : {false, true})
            images.push_back(std::make_unique<fencedimage>(w, h, w + gap, atstart, random));

    const char* only = getenv("WEXEL_FUZZ_CASE");
    int first = only ? atoi(only) : 0, last = only ? first + 1 : casecount;
    int tilescompared = 0, drawn = 0;
    auto widths = runnablewidths();
    testmask m;
    for (int index = first; index < last; ++index) {
        fuzzcase c = makecase(0x5EED0000u + index, targets, images);
        if (only) printf("case %d: %s\n", index, c.describe().c_str());
        lanewidth lanes = widths[index % widths.size()];
        if (c.call == masked) {
            // Spans around the mask's corner, its tables sometimes short of its height.
            testrng rng(index);
            m.randomise(rng, 30, 50);
            m.mask.width = int(rng() % 60) - 5;
            m.mask.height = int(rng() % 40) - 5;
        }
        testtarget& g = *targets[c.target];
        fencedimage& source = *images[c.image];
        spriteimage image = source.image(c.pads);
        toolkit& t = g.t;
        t.depthbuffer = c.depth ? g.depth.get() : nullptr;
        clampcliprect(t, c.clip[0], c.clip[1], c.clip[2], c.clip[3]);
        if (index % 5 == 0) narrowcliprect(t, c.clip[2] - 7, c.clip[3] - 5, c.clip[0] + 9, c.clip[1] + 6);
        int clip[4] = {t.cliprect[0], t.cliprect[1], t.cliprect[2], t.cliprect[3]};
        const int width = t.width, height = t.height;
        std::vector<uint32_t> before(g.colour.get(), g.colour.get() + g.pixels());
        std::vector<float> depthbefore(g.depth.get(), g.depth.get() + g.pixels());

        source.fillgaps(0x00000000);
        run(c, t, image, m.mask, lanes);
        std::vector<uint32_t> after(g.colour.get(), g.colour.get() + g.pixels());
        ASSERT_TRUE(g.colour.intact() && g.depth.intact()) << "case " << index;
        ASSERT_TRUE(std::equal(depthbefore.begin(), depthbefore.end(), g.depth.get())) << "case " << index;
        ASSERT_EQ(std::vector<int>(t.cliprect, t.cliprect + 4), std::vector<int>(clip, clip + 4)) << "case " << index;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                bool inside = x >= clip[0] && x < clip[2] && y >= clip[1] && y < clip[3];
                ASSERT_TRUE(inside || after[y * width + x] == before[y * width + x])
                    << "case " << index << " at " << x << "," << y;
            }
        drawn += after != before;

        // The same call with other values between the image's rows gives the same pixels.
        std::copy(before.begin(), before.end(), g.colour.get());
        source.fillgaps(0xFFFFFFFF);
        run(c, t, image, m.mask, lanes);
        ASSERT_TRUE(std::equal(after.begin(), after.end(), g.colour.get())) << "case " << index << " read between rows";

        // Tiles with few repeats at ordinary positions against every repeat drawn in turn.
        int fw = image.fullwidth(), fh = image.fullheight();
        if (c.call == tiled && fw > 0 && fh > 0 && std::abs(c.x) < 1000 && std::abs(c.y) < 1000 && c.w >= 0 &&
            c.h >= 0 && c.w < 1000 && c.h < 1000) {
            std::copy(before.begin(), before.end(), g.colour.get());
            naivetiles(c, t, image, lanes);
            ASSERT_TRUE(std::equal(after.begin(), after.end(), g.colour.get())) << "case " << index << " tiles differ";
            ++tilescompared;
        }
    }
    if (!only) {
        EXPECT_GT(tilescompared, casecount / 25);
        EXPECT_GT(drawn, casecount / 12);  // the rest test the clipping of calls that draw nothing
    }
}

}  // namespace
