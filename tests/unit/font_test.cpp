// The draw entries of the three font classes: which form each class and entry takes, and a
// seeded fuzz of every entry against the plain reference, into a guarded target.
// One fuzz case alone: WEXEL_FUZZ_CASE=<n> ./unit_tests --gtest_filter='font.fuzz*'
#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <tuple>
#include <vector>

#include "fontreference.h"
#include "sprite/fontdraw.h"
#include "target.h"
#include "testmask.h"
#include "util/memory/memorypool.h"

namespace {

using glyphreference::entry;

// The font's tables and glyphs copied into a pool of their own.
struct testfont {
    memorypool pool{1 << 16, nullptr};
    font f;

    explicit testfont(const glyphreference::font& r) : f(nullptr, static_cast<int>(r.glyphs.size())) {
        copy(f.palette, r.palette);
        copy(f.widths, r.widths);
        copy(f.heights, r.heights);
        copy(f.tops, r.tops);
        copy(f.lefts, r.lefts);
        for (size_t i = 0; i < r.glyphs.size(); ++i) copy(f.glyphs[static_cast<int>(i)], r.glyphs[i]);
    }
    template <class T, class S>
    void copy(allocatedmemory<T>& into, const std::vector<S>& from) {
        if (from.empty()) return;
        pool.allocate(into, static_cast<int>(from.size()));
        memcpy(into.get(), from.data(), from.size() * sizeof(S));
    }
};

// Draws through the entry and through the reference on the same start; true when they agree.
struct fontscene {
    testtarget target;
    glyphreference::font reference;
    testfont real;

    fontscene(int w, int h, const glyphreference::font& f) : target(w, h), reference(f), real(f) {}

    ::testing::AssertionResult same(fontkind kind, entry e, int index, int x, int y, uint32_t colour, bool mono,
                                    const spanmask* mask = nullptr, int maskx = 0, int masky = 0) {
        const int* c = target.t.cliprect;
        glyphreference::target expected{{target.colour.get(), target.colour.get() + target.pixels()}, target.t.width,
                                        target.t.height, {c[0], c[1], c[2], c[3]}};
        glyphreference::mask rm{{}, {}, maskx, masky};
        glyphmask m{nullptr, nullptr, 0, maskx, masky};
        if (mask) {
            m = {mask->offsets.get(), mask->widths.get(), mask->rows(), maskx, masky};
            rm.offsets.assign(mask->offsets.get(), mask->offsets.get() + mask->rows());
            rm.widths.assign(mask->widths.get(), mask->widths.get() + mask->rows());
        }
        glyphreference::draw(expected, reference, kind, e, index, x, y, colour, mono, mask ? &rm : nullptr);
        if (e == entry::turned) drawturnedtext(target.t, real.f, kind, index, x, y, colour, mono);
        else drawtext(target.t, real.f, kind, index, x, y, colour, mono, e == entry::masked && mask ? &m : nullptr);
        if (!target.colour.intact()) return ::testing::AssertionFailure() << "wrote outside the target";
        int at = firstdifference(target, expected.pixels);
        if (at < 0) return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << "pixel " << at % target.t.width << "," << at / target.t.width << " is "
                                             << std::hex << target.colour[at] << ", expected " << expected.pixels[at];
    }
};

// One 3 by 2 glyph, all set, a row below the pen.
const glyphreference::font smallfont{{{9, 9, 9, 9, 9, 9}}, {}, {3}, {2}, {1}, {0}};

// A mono glyph of no opacity is skipped when plain, blended at 255 / 256 through a mask (alpha
// cleared), and stored when turned.
TEST(font, monoopacityzerodependsontheentry) {
    fontscene s(8, 8, smallfont);
    for (int i = 0; i < 64; ++i) s.target.colour[i] = 0xFFC8C8C8u;
    testmask mask;
    mask.set({0, 0, 0, 0, 0, 0, 0, 0}, {8, 8, 8, 8, 8, 8, 8, 8});
    EXPECT_TRUE(s.same(fontkind::mono, entry::plain, 0, 0, 0, 0x00102030, false));
    EXPECT_EQ(s.target.at(0, 1), 0xFFC8C8C8u);
    EXPECT_TRUE(s.same(fontkind::mono, entry::masked, 0, 0, 0, 0x00102030, false, &mask.mask));
    EXPECT_EQ(s.target.at(0, 1), 0x00C7C7C7u);
    EXPECT_TRUE(s.same(fontkind::mono, entry::turned, 0, 4, 4, 0x00102030, false));
    EXPECT_EQ(s.target.at(4, 4), 0x00102030u);
}

// With the clip's left at 2, a mask span at mask column 1 lands on buffer column 3 for a coverage
// glyph, but on column 1, left of the clip, for an opaque mono glyph.
TEST(font, maskspanscountfromtheclipleftbutforopaquemono) {
    fontscene s(10, 4, smallfont);
    for (int i = 0; i < 40; ++i) s.target.colour[i] = 0;
    setcliprect(s.target.t, 2, 0, 10, 4);
    testmask mask;
    mask.set({1, 1, 1, 1}, {1, 1, 1, 1});
    EXPECT_TRUE(s.same(fontkind::coverage, entry::masked, 0, 1, -1, 0xFF0000FF, false, &mask.mask));
    EXPECT_EQ(s.target.at(3, 0), 0x00000008u);  // (255 * 9) >> 8
    EXPECT_EQ(s.target.at(2, 0), 0u);
    EXPECT_TRUE(s.same(fontkind::mono, entry::masked, 0, 1, 1, 0xFF00FF00, false, &mask.mask));
    EXPECT_EQ(s.target.at(2, 2), 0u);
    mask.set({2, 2, 2, 2}, {1, 1, 1, 1});
    EXPECT_TRUE(s.same(fontkind::mono, entry::masked, 0, 1, 1, 0xFF00FF00, false, &mask.mask));
    EXPECT_EQ(s.target.at(2, 2), 0xFF00FF00u);
}

// Bytes biased to 0 and 255; now and then a glyph short of bytes, empty or of negative size.
glyphreference::font randomfont(testrng& rng) {
    glyphreference::font f;
    int count = 1 + static_cast<int>(rng() % 5);
    for (int i = 0; i < count; ++i) {
        int w = 1 + static_cast<int>(rng() % 13), h = 1 + static_cast<int>(rng() % 13);
        if (rng() % 16 == 0) w = rng() % 2 ? 0 : -w;
        if (rng() % 16 == 0) h = rng() % 2 ? 0 : -h;
        std::vector<uint8_t> bytes(static_cast<size_t>(std::max(w, 0) * std::max(h, 0)));
        for (auto& b : bytes) {
            uint32_t pick = rng() % 4;
            b = static_cast<uint8_t>(pick < 2 ? 0 : pick == 2 ? 255 : rng());
        }
        if (!bytes.empty() && rng() % 16 == 0) bytes.pop_back();
        f.glyphs.push_back(bytes);
        f.widths.push_back(w);
        f.heights.push_back(h);
        f.tops.push_back(static_cast<int>(rng() % 13) - 6);
        f.lefts.push_back(static_cast<int>(rng() % 13) - 6);
    }
    // A table a glyph short leaves that glyph out.
    if (rng() % 8 == 0) (rng() % 2 ? f.tops : f.widths).pop_back();
    if (rng() % 8) {
        f.palette.resize(256);
        for (auto& p : f.palette) p = randompixel(rng);
    }
    return f;
}

// Mostly over the target, sometimes far beside it, now and then at the ends of the range.
int randomposition(testrng& rng, int extent) {
    const uint32_t pick = rng() % 32, offset = rng() % 8;
    if (pick < 2) return pick ? INT_MAX - static_cast<int>(offset) : INT_MIN + static_cast<int>(offset);
    return pick < 5 ? static_cast<int>(rng() % (extent + 60)) - 30 : static_cast<int>(rng() % (extent + 4)) - 4;
}

// Clips as the host can leave them: the whole target, a part of it, or cut to the target on each
// side from anywhere around it, so that they come out empty, inverted or wholly beside it.
void randomclip(testtarget& g, testrng& rng) {
    int w = g.t.width, h = g.t.height;
    auto pick = [&](int extent) { return static_cast<int>(rng() % (extent + 20)) - 10; };
    int l = std::max(pick(w), 0), t = std::max(pick(h), 0), r = std::min(pick(w), w), b = std::min(pick(h), h);
    const uint32_t shape = rng() % 4;
    if (shape < 2) l = 0, t = 0, r = w, b = h;
    else if (shape == 2) std::tie(l, r) = std::minmax(l, r), std::tie(t, b) = std::minmax(t, b);
    setcliprect(g.t, l, t, r, b);
}

void fuzzcase(uint64_t seed) {
    testrng rng(seed);
    int w = 1 + static_cast<int>(rng() % 40), h = 1 + static_cast<int>(rng() % 30);
    if (rng() % 4) w = std::max(w, 12), h = std::max(h, 12);
    fontscene s(w, h, randomfont(rng));
    fillrandom(s.target, rng);
    testmask mask;
    for (int draw = 0; draw < 8; ++draw) {
        randomclip(s.target, rng);
        auto kind = static_cast<fontkind>(rng() % 3);
        auto e = static_cast<entry>(rng() % 3);
        int count = static_cast<int>(s.reference.glyphs.size());
        int index = rng() % 8 ? static_cast<int>(rng() % count) : static_cast<int>(rng() % (count + 4)) - 2;
        if (rng() % 4 == 0) index += 65536 * static_cast<int>(rng() % 3);
        uint32_t colour = randompixel(rng);
        bool mono = rng() & 1;
        int x = randomposition(rng, w), y = randomposition(rng, h);
        const spanmask* m = nullptr;
        if (e == entry::masked && rng() % 8) {
            mask.randomise(rng, h + 4, w + 4);
            m = &mask.mask;
        }
        int maskx = static_cast<int>(rng() % (w + 10)) - 8, masky = static_cast<int>(rng() % (h + 10)) - 8;
        ASSERT_TRUE(s.same(kind, e, index, x, y, colour, mono, m, maskx, masky))
            << "kind " << static_cast<int>(kind) << " entry " << static_cast<int>(e) << " glyph " << index << " at " << x
            << "," << y << " colour " << std::hex << colour << " draw " << std::dec << draw;
    }
}

TEST(font, fuzzeveryentryagainstthereference) {
    if (const char* one = getenv("WEXEL_FUZZ_CASE")) {
        fuzzcase(strtoull(one, nullptr, 10));
        return;
    }
    for (uint64_t seed = 1; seed <= 1500; ++seed) {
        SCOPED_TRACE("case " + std::to_string(seed));
        fuzzcase(seed);
        if (::testing::Test::HasFatalFailure()) return;
    }
}

}  // namespace
