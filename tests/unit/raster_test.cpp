// Every member of the rasteriser against the scalar reference, bit for bit, over seeded random
// triangles and spans in fenced buffers: spans of 1 to 33 pixels at every alignment, triangles of
// integer, half and tiny coordinates, both clipped on every side by the viewport and the clip
// rectangle, depth passing, equal and failing in every lane, texels biased to the values the write
// rules treat apart. A failing case names its member and seed.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

#include "rasterreference.h"
#include "target.h"
#include "util/frame.h"

namespace {

constexpr int width = 45, height = 37, cases = 150;

float anyof(testrng& rng, std::initializer_list<float> values) { return values.begin()[rng() % values.size()]; }
float uniform(testrng& rng, float low, float high) { return low + (high - low) * static_cast<float>(rng() % 65536) / 65536.0f; }
// Whole, half, or with a fraction down to the last bits of a float.
float coordinate(testrng& rng, float low, float high) {
    float whole = std::floor(uniform(rng, low, high));
    return whole + anyof(rng, {0.0f, 0.5f, 0.000001f, 0.999999f, uniform(rng, 0.0f, 1.0f)});
}
// Depths where the buffer holds the same values, so that equal z occurs.
float depth(testrng& rng) { return anyof(rng, {0.25f, 0.5f, 0.75f, uniform(rng, 0.0f, 1.0f)}); }
uint16_t lane(testrng& rng) { return static_cast<uint16_t>(rng() % 4 ? (randompixel(rng) & 0xFF) << 8 : rng()); }

class raster : public testing::Test {
protected:
    guarded<uint32_t> colour[2] = {guarded<uint32_t>(width * height), guarded<uint32_t>(width * height)};
    guarded<float> depths[2] = {guarded<float>(width * height), guarded<float>(width * height)};
    guarded<uint32_t> texels{128 * 256};
    rasterstatedata saved = rasterstate;
    unsigned mxcsr = _mm_getcsr();

    void SetUp() override {
        _mm_setcsr(librarymxcsr);
        testrng rng(7);
        for (int i = 0; i < 128 * 256; ++i) {
            uint32_t p = randompixel(rng), pick = rng() % 8;
            texels[i] = pick == 0 ? 0u : pick == 1 ? 0xFF000000u : pick == 2 ? p & 0xFFFFFF : p;
        }
    }
    void TearDown() override {
        _mm_setcsr(mxcsr);
        rasterstate = saved;
    }

    // Buffers, texels, viewport, clip and fog of one case, the same in both targets.
    void scene(testrng& rng) {
        for (int i = 0; i < width * height; ++i) {
            colour[0][i] = colour[1][i] = randompixel(rng);
            depths[0][i] = depths[1][i] = rng() % 64 ? depth(rng) : std::numeric_limits<float>::quiet_NaN();
        }
        auto rectangle = [&](int* r) {
            r[0] = static_cast<int>(rng() % 12) - 2, r[1] = static_cast<int>(rng() % 12) - 2;
            r[2] = width - r[0] - static_cast<int>(rng() % 12), r[3] = height - r[1] - static_cast<int>(rng() % 12);
        };
        setviewport(0, 0, width, height, 0.0f, 1.0f);
        rectangle(rasterstate.viewport);
        rectangle(rasterstate.rasterclip);
        rasterstate.rasterclip[0] = std::max(rasterstate.rasterclip[0], 0);
        rasterstate.rasterclip[1] = std::max(rasterstate.rasterclip[1], 0);
        rasterstate.targetstride = width;
        rasterstate.fogstart = uniform(rng, 0.0f, 0.8f);
        rasterstate.fogscale = 1.0f / (1.0f - rasterstate.fogstart);
        for (float& c : rasterstate.fogcolour) c = static_cast<float>(lane(rng));
    }
    void target(int which) {
        rasterstate.targetcolour = colour[which].get();
        rasterstate.targetdepth = depths[which].get();
    }
    testing::AssertionResult same() {
        if (!colour[0].intact() || !depths[0].intact()) return testing::AssertionFailure() << "wrote outside";
        for (int i = 0; i < width * height; ++i)
            if (colour[0][i] != colour[1][i] || memcmp(&depths[0][i], &depths[1][i], 4)) {
                char text[120];
                snprintf(text, sizeof text, "pixel %d, %d: %08x %.9g, expected %08x %.9g", i % width, i / width,
                         colour[0][i], depths[0][i], colour[1][i], depths[1][i]);
                return testing::AssertionFailure() << text;
            }
        return testing::AssertionSuccess();
    }

    rastertriangle triangle(testrng& rng) {
        rastertriangle t{};
        const float spread = rng() % 8 ? 12.0f : 400.0f, flat = depth(rng);
        for (int v = 0; v < 3; ++v) {
            t.position[v][0] = coordinate(rng, -spread, width + spread);
            t.position[v][1] = coordinate(rng, -spread, height + spread);
            t.position[v][2] = t.position[v][3] = rng() % 4 ? depth(rng) : flat;
            for (int ch = 0; ch < 4; ++ch) t.colour[v][ch] = lane(rng), t.shadetint[ch] = static_cast<float>(lane(rng));
            t.uv[v][0] = t.uv[v][2] = uniform(rng, -200.0f, 330.0f);
            t.uv[v][1] = t.uv[v][3] = uniform(rng, -200.0f, 330.0f);
            t.shadefactor[v] = anyof(rng, {0.0f, 1.0f, uniform(rng, 0.0f, 1.0f)});
        }
        uint32_t a = randompixel(rng) & 0xFF;
        t.blendfactor = a | a << 16;
        t.texels[0] = texels.get();
        return t;
    }

    // Rows inside the viewport and clip, as the triangle level hands them on.
    rasterspan span(testrng& rng) {
        rasterspan s{};
        const rasterstatedata& r = rasterstate;
        int top = std::max(r.viewport[1], r.rasterclip[1]);
        int bottom = std::min(r.viewport[1] + r.viewport[3], r.rasterclip[1] + r.rasterclip[3]);
        s.y = top + static_cast<int>(rng() % static_cast<unsigned>(std::max(bottom - top, 1)));
        s.rows = std::min(static_cast<int>(rng() % 5) - 1, bottom - s.y);
        float left = coordinate(rng, -6.0f, width + 2.0f), z = depth(rng), right = depth(rng);
        float edge[4] = {left, z, left + static_cast<float>(rng() % 34) + uniform(rng, 0.0f, 1.0f), rng() % 4 ? right : z};
        for (int i = 0; i < 4; ++i) {
            s.edge[i] = edge[i];
            s.edgestep[i] = i % 2 ? uniform(rng, -0.01f, 0.01f) : uniform(rng, -3.0f, 3.0f);
            s.uv[i] = uniform(rng, -300.0f, 600.0f), s.uvstep[i] = uniform(rng, -20.0f, 20.0f);
        }
        for (int i = 0; i < 8; ++i) {
            s.modulate[i] = lane(rng), s.addcolour[i] = lane(rng);
            s.modulatestep[i] = static_cast<int16_t>(rng() % 2 ? rng() : rng() % 512 - 256);
            s.addcolourstep[i] = static_cast<int16_t>(rng() % 512 - 256);
        }
        uint32_t a = randompixel(rng) & 0xFF;
        s.blendfactor = a | a << 16;
        s.texels[0] = texels.get();
        return s;
    }
};

// The advanced fields that the member keeps.
bool sameadvanced(const spanmember& m, const rasterspan& a, const rasterspan& b) {
    return a.y == b.y && !memcmp(a.edge, b.edge, 16) &&
           (m.get<shading>() == shading::colourless || !memcmp(a.modulate, b.modulate, 16)) &&
           (m.get<addterm>() == addterm::no || !memcmp(a.addcolour, b.addcolour, 16)) &&
           (m.get<shading>() != shading::textured || !memcmp(a.uv, b.uv, 16));
}

TEST_F(raster, everymembermatchesthereference) {
    for (const trianglemember& m : trianglemembers)
        for (int c = 0; c < cases; ++c) {
            testrng rng(static_cast<uint64_t>(c) * 1000 + indexof(trianglemembers, m));
            scene(rng);
            const rastertriangle t = triangle(rng);
            target(0), trianglefor(m)(&t);
            target(1), rasterreference::triangle(m, t);
            ASSERT_TRUE(same()) << m.name() << " triangle, case " << c;
        }
    for (const spanmember& m : spanmembers)
        for (int c = 0; c < cases; ++c) {
            testrng rng(static_cast<uint64_t>(c) * 1000 + 500 + indexof(spanmembers, m));
            scene(rng);
            rasterspan a = span(rng), b = a;
            target(0), spanfor(m)(&a);
            target(1), rasterreference::span(m, b);
            ASSERT_TRUE(same()) << m.name() << " span, case " << c;
            ASSERT_TRUE(sameadvanced(m, a, b)) << m.name() << " span record, case " << c;
        }
}

// Faces around every side of the screen, out to where x and y saturate, and on both sides of the
// near and far depths; one counter-clockwise face is kept and its mirror image dropped.
TEST_F(raster, accepttestmatchesthereference) {
    testrng rng(3);
    setviewport(3, 2, 40, 30, 0.1f, 0.9f);
    for (int c = 0; c < 100000; ++c) {
        alignas(16) float v[3][4];
        const float far = c % 16 ? 30.0f : 40000.0f;
        for (float* p : v) {
            p[0] = coordinate(rng, -far, 40.0f + far), p[1] = coordinate(rng, -far, 30.0f + far);
            p[2] = p[3] = anyof(rng, {0.1f, 0.9f, uniform(rng, -0.2f, 1.2f)});
        }
        ASSERT_EQ(accepttriangle(v[0], v[1], v[2]), rasterreference::accept(v[0], v[1], v[2])) << "case " << c;
    }
    const float a[4] = {0, 0, 0.5f, 0.5f}, b[4] = {0, 1, 0.5f, 0.5f}, c[4] = {1, 0, 0.5f, 0.5f};
    EXPECT_TRUE(accepttriangle(a, b, c));
    EXPECT_FALSE(accepttriangle(a, c, b));
}

// The table of model faces as it stands, row by row: each cell's depth work, column 1 to 5 (with
// depth: shade, fog only, plain; without depth: fog or shade, plain), or the cell it shares a
// function with. A cell's recipe: fogshade or shadeonly, fogonly, plain, any with fog or shade.
TEST(rasterselection, followsthetableofmembers) {
    struct row {
        shading s;
        alphamode a;
        blended b;
        const char* cells;  // o testonly, w testwrite, n none, 1 as column 1, = as the column before
    };
    const row table[] = {{shading::textured, alphamode::alpha, blended::no, "owwnn"},
                         {shading::textured, alphamode::key, blended::no, "w1wnn"},
                         {shading::textured, alphamode::opaque, blended::no, "w1wnn"},
                         {shading::textured, alphamode::key, blended::yes, "w1wnn"},
                         {shading::textured, alphamode::opaque, blended::yes, "w1wnn"},
                         {shading::gouraud, alphamode::opaque, blended::no, "w==n="},
                         {shading::gouraud, alphamode::opaque, blended::yes, "o==n="}};
    const recipe recipes[5][3] = {{recipe::fogshade, recipe::shadeonly, recipe::fogshade},
                                  {recipe::fogonly, recipe::fogonly, recipe::fogonly},
                                  {recipe::plain, recipe::plain, recipe::plain},
                                  {recipe::fogshade, recipe::fogonly, recipe::shadeonly},
                                  {recipe::plain, recipe::plain, recipe::plain}};
    for (const row& r : table)
        for (wrapmode w : {wrapmode::repeat, wrapmode::clamp})
            for (int column = 0; column < 5; ++column)
                for (recipe fold : recipes[column]) {
                    const bool depth = column < 3;
                    const spanfunction chosen = choosespan(fold, r.s, r.a, w, r.b, true, depth);
                    char cell = r.cells[column];
                    if (cell == '1' || cell == '=') {
                        const int other = cell == '1' ? 0 : column - 1;
                        EXPECT_EQ(chosen, choosespan(recipes[other][0], r.s, r.a, w, r.b, true, other < 3));
                        continue;
                    }
                    const depthmode d = cell == 'o' ? depthmode::testonly : cell == 'w' ? depthmode::testwrite
                                                                                        : depthmode::none;
                    const bool textured = r.s == shading::textured;
                    spanmember m(r.s, d, r.a, textured ? w : wrapmode::repeat, r.b,
                                 textured && fold != recipe::plain ? addterm::yes : addterm::no, layers::single,
                                 shadowed::no);
                    EXPECT_EQ(chosen, spanfor(m)) << m.name() << ", column " << column + 1;
                    EXPECT_EQ(choosetriangle(fold, r.s, r.a, w, r.b, true, depth), trianglefor(withrecipe(fold, m)));
                }
    // An alpha-mode face is never blended; a target without colour has one member, without either none.
    EXPECT_EQ(choosespan(recipe::plain, shading::textured, alphamode::alpha, wrapmode::clamp, blended::yes, true, true),
              choosespan(recipe::plain, shading::textured, alphamode::alpha, wrapmode::clamp, blended::no, true, true));
    const trianglemember depthonly(recipe::plain, shading::colourless, depthmode::testwrite, alphamode::opaque,
                                   wrapmode::repeat, blended::no, addterm::no, layers::single, shadowed::no);
    EXPECT_EQ(choosetriangle(recipe::fogshade, shading::textured, alphamode::key, wrapmode::clamp, blended::yes, false,
                             true),
              trianglefor(depthonly));
    EXPECT_EQ(choosetriangle(recipe::plain, shading::gouraud, alphamode::opaque, wrapmode::repeat, blended::no, false,
                             false),
              nullptr);
    // The host's free triangle.
    EXPECT_EQ(rawtriangle(true, true), trianglefor(withrecipe(recipe::plain, gouraudspan(depthmode::testonly, blended::no))));
    EXPECT_EQ(rawtriangle(true, false), choosetriangle(recipe::plain, shading::gouraud, alphamode::opaque,
                                                       wrapmode::repeat, blended::no, true, false));
    EXPECT_EQ(rawtriangle(false, true), trianglefor(depthonly.with(depthmode::none)));
    EXPECT_EQ(rawtriangle(false, false), nullptr);
}

// A particle's square covers exactly its part of the viewport and clip rectangle, in colour through
// a textured member and in depth through the depth-only one.
TEST_F(raster, squarecoversitsclippedarea) {
    std::fill_n(texels.get(), 128 * 256, 0xFF808080u);
    const spanfunction coloured = choosespan(recipe::plain, shading::textured, alphamode::key, wrapmode::repeat,
                                             blended::no, true, false);
    const spanfunction depthonly = choosespan(recipe::plain, shading::textured, alphamode::key, wrapmode::repeat,
                                              blended::no, false, true);
    for (int c = 0; c < 2000; ++c) {
        testrng rng(c);
        scene(rng);
        target(0);
        const int x = static_cast<int>(rng() % 80) - 20, y = static_cast<int>(rng() % 70) - 20, side = 1 + rng() % 40;
        for (int i = 0; i < width * height; ++i) colour[0][i] = 0, depths[0][i] = 1.0f;
        drawsquare(coloured, x, y, side, 0.5f, 0xFFFFFFFF, texels.get());
        drawsquare(depthonly, x, y, side, 0.5f, 0xFFFFFFFF, texels.get());
        const rasterstatedata& r = rasterstate;
        for (int py = 0; py < height; ++py)
            for (int px = 0; px < width; ++px) {
                auto inside = [](int v, int from, int size) { return v >= from && v < from + size; };
                bool in = inside(px, x, side) && inside(py, y, side) && inside(px, r.viewport[0], r.viewport[2]) &&
                          inside(py, r.viewport[1], r.viewport[3]) && inside(px, r.rasterclip[0], r.rasterclip[2]) &&
                          inside(py, r.rasterclip[1], r.rasterclip[3]);
                ASSERT_EQ(colour[0][py * width + px] != 0, in) << "case " << c << ", pixel " << px << ", " << py;
                ASSERT_EQ(depths[0][py * width + px], in ? 0.5f : 1.0f) << "case " << c;
            }
    }
}

}  // namespace
