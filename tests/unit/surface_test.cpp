// Off-screen targets and the block copies between a target and a sprite and surface.
#include "toolkit/surface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <vector>

#include "sprite/sprite.h"
#include "target.h"
#include "toolkit/copy.h"

namespace {

struct offscreen {
    guarded<uint32_t> pixels;
    sprite image{};
    surface* depth;
    offscreen(int w, int h, int dw, int dh) : pixels(static_cast<size_t>(w) * h), depth(makesurface(dw, dh)) {
        image.width = image.stride = w;
        image.height = h;
        image.pixels = pixels.get();
    }
    ~offscreen() { destroysurface(depth); }
};

std::array<int, 4> clipof(const toolkit& t) { return {t.cliprect[0], t.cliprect[1], t.cliprect[2], t.cliprect[3]}; }

// The sprite gives the size, else the surface; selecting neither keeps the size. Nothing is
// cleared, and the depth range is kept.
TEST(offscreen, thespriteorelsethesurfacegivesthesize) {
    testtarget g(10, 10);
    offscreen o(6, 4, 8, 5);
    o.pixels[0] = 0x12345678;
    o.depth->buffer[0] = 7.0f;
    rasterstate.depthrange[0] = 0.25f;
    selectoffscreen(g.t, &o.image, o.depth);
    EXPECT_EQ(g.t.colourbuffer, o.pixels.get());
    EXPECT_EQ(g.t.depthbuffer, o.depth->buffer);
    EXPECT_EQ(g.t.coloursurface, &o.image);
    EXPECT_EQ(g.t.depthsurface, o.depth);
    EXPECT_EQ((std::array{g.t.width, g.t.height, rasterstate.targetstride}), (std::array{6, 4, 6}));
    EXPECT_EQ(rasterstate.targetcolour, o.pixels.get());
    EXPECT_EQ(rasterstate.targetdepth, o.depth->buffer);
    EXPECT_EQ(clipof(g.t), (std::array{0, 0, 6, 4}));
    EXPECT_EQ((std::array{rasterstate.rasterclip[2], rasterstate.viewport[3]}), (std::array{6, 4}));
    EXPECT_EQ(rasterstate.depthrange[0], 0.25f);
    EXPECT_EQ(o.pixels[0], 0x12345678u);
    EXPECT_EQ(o.depth->buffer[0], 7.0f);
    rasterstate.depthrange[0] = 0;

    selectoffscreen(g.t, nullptr, o.depth);
    EXPECT_EQ(g.t.colourbuffer, nullptr);
    EXPECT_EQ((std::array{g.t.width, g.t.height, rasterstate.targetstride}), (std::array{8, 5, 8}));
    selectoffscreen(g.t, nullptr, nullptr);
    EXPECT_EQ(g.t.depthbuffer, nullptr);
    EXPECT_EQ(g.t.depthsurface, nullptr);
    EXPECT_EQ(rasterstate.targetstride, 0);
    EXPECT_EQ(clipof(g.t), (std::array{0, 0, 8, 5}));
}

TEST(offscreen, refusesasurfacesmallerthanthespritebeforechanginganything) {
    testtarget g(10, 10);
    offscreen o(6, 4, 5, 9);
    EXPECT_TRUE(raisesillegalargument([&] { selectoffscreen(g.t, &o.image, o.depth); }));
    EXPECT_EQ(g.t.colourbuffer, g.colour.get());
    EXPECT_EQ(g.t.width, 10);
}

TEST(copy, flagsdropwhenthetargetlacksthebuffer) {
    testtarget g(4, 4);
    offscreen o(4, 4, 4, 4);
    o.depth->buffer[0] = -1.0f;
    g.colour[0] = 9;
    copytargetblock(g.t, &o.image, o.depth, 0, 0, 1, 1, 0, 0, true, true, copyway::fromtarget);
    EXPECT_EQ(o.pixels[0], 9u);
    EXPECT_EQ(o.depth->buffer[0], -1.0f);
    // Depth alone with no sprite goes by the surface's own width.
    g.t.colourbuffer = nullptr;
    g.t.depthbuffer = g.depth.get();
    g.depth[5] = 3.0f;
    copytargetblock(g.t, nullptr, o.depth, 1, 1, 1, 1, 1, 1, true, true, copyway::fromtarget);
    EXPECT_EQ(o.depth->buffer[5], 3.0f);
}

// Random blocks that lie inside both sides, both ways, against a plain element loop; the fences of
// all four buffers must stay as they were.
TEST(copy, randomblocksinsidebothsides) {
    testrng rng(41);
    for (int round = 0; round < 20; ++round) {
        const int tw = 1 + rng() % 33, th = 1 + rng() % 17, sw = 1 + rng() % 33, sh = 1 + rng() % 17;
        testtarget g(tw, th, true);
        offscreen o(sw, sh, sw, sh);
        for (int i = 0; i < 300; ++i) {
            const int w = 1 + static_cast<int>(rng() % std::min(tw, sw));
            const int h = 1 + static_cast<int>(rng() % std::min(th, sh));
            const int sx = rng() % (tw - w + 1), sy = rng() % (th - h + 1);
            const int dx = rng() % (sw - w + 1), dy = rng() % (sh - h + 1);
            const bool colour = rng() % 2, depth = rng() % 2;
            const copyway way = rng() % 2 ? copyway::fromtarget : copyway::totarget;
            for (int k = 0; k < g.pixels(); ++k) g.colour[k] = rng(), g.depth[k] = static_cast<float>(rng() % 1000);
            for (int k = 0; k < sw * sh; ++k)
                o.pixels[k] = rng(), o.depth->buffer[k] = static_cast<float>(rng() % 1000);
            std::vector<uint32_t> tc(g.colour.get(), g.colour.get() + g.pixels());
            std::vector<uint32_t> oc(o.pixels.get(), o.pixels.get() + sw * sh);
            std::vector<float> td(g.depth.get(), g.depth.get() + g.pixels());
            std::vector<float> od(o.depth->buffer, o.depth->buffer + sw * sh);
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x) {
                    int a = (sy + y) * tw + sx + x, b = (dy + y) * sw + dx + x;
                    bool from = way == copyway::fromtarget;
                    if (colour) (from ? oc[b] : tc[a]) = from ? tc[a] : oc[b];
                    if (depth) (from ? od[b] : td[a]) = from ? td[a] : od[b];
                }
            copytargetblock(g.t, &o.image, o.depth, sx, sy, w, h, dx, dy, colour, depth, way);
            ASSERT_TRUE(
                std::equal(tc.begin(), tc.end(), g.colour.get()) && std::equal(oc.begin(), oc.end(), o.pixels.get()) &&
                std::equal(td.begin(), td.end(), g.depth.get()) && std::equal(od.begin(), od.end(), o.depth->buffer))
                << "round " << round << " block " << i;
        }
        ASSERT_TRUE(g.colour.intact() && g.depth.intact() && o.pixels.intact());
    }
}

}  // namespace
