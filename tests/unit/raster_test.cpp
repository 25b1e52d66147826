// Every triangle member, and through it every span member, against the scalar reference, bit for
// bit, over seeded random triangles in fenced buffers: integer, half and tiny coordinates, rows of
// every length at every alignment, clipped on every side by the viewport and the clip rectangle,
// depth passing, equal and failing in every lane, texels biased to the values the write rules
// treat apart. A failing case names its member and case.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "rasterreference.h"
#include "statetest.h"
#include "target.h"

namespace {

constexpr int width = 45, height = 37, pixels = width * height;

float anyof(testrng& rng, std::initializer_list<float> values) { return values.begin()[rng() % values.size()]; }
float uniform(testrng& rng, float low, float high) { return low + (high - low) * float(rng() % 65536) / 65536.0f; }
// Whole, half, or with a fraction down to the last bits of a float.
float coordinate(testrng& rng, float low, float high) {
    return std::floor(uniform(rng, low, high)) + anyof(rng, {0.0f, 0.5f, 1e-6f, 0.999999f, uniform(rng, 0, 1)});
}
// Depths that the buffer holds too, so that equal z occurs.
float depth(testrng& rng) { return anyof(rng, {0.25f, 0.5f, 0.75f, uniform(rng, 0.0f, 1.0f)}); }
uint16_t lane(testrng& rng) { return static_cast<uint16_t>(rng() % 4 ? (rng.pixel() & 0xFF) << 8 : rng()); }

// The buffers, viewport, clip and fog of one case, the same in both targets, and a triangle.
// Ground faces read three layers 128 rows apart and a shadow map of rows of 256.
rastertriangle scene(testrng& rng, guarded<uint32_t>* colour, guarded<float>* depths, const uint32_t* texels,
                     const uint8_t* shadowmap = nullptr) {
    for (int i = 0; i < pixels; ++i) {
        colour[0][i] = colour[1][i] = rng.pixel();
        depths[0][i] = depths[1][i] = rng() % 64 ? depth(rng) : NAN;
    }
    setviewport(0, 0, width, height, anyof(rng, {0.0f, 0.3f}), anyof(rng, {1.0f, 0.7f}));
    for (int* r : {rasterstate.viewport, rasterstate.rasterclip}) {
        r[0] = static_cast<int>(rng() % 12) - (r == rasterstate.viewport ? 2 : 0), r[1] = r[0] / 2;
        r[2] = width - r[0] - static_cast<int>(rng() % 12), r[3] = height - r[1] - static_cast<int>(rng() % 12);
    }
    rasterstate.targetstride = width;
    rasterstate.fogstart = uniform(rng, 0.0f, 0.8f);
    rasterstate.fogscale = 1.0f / (1.0f - rasterstate.fogstart);
    for (float& c : rasterstate.fogcolour) c = lane(rng);
    rastertriangle t{};
    const float spread = anyof(rng, {12.0f, 12.0f, 400.0f, 40000.0f}), flat = depth(rng);
    for (int v = 0; v < 3; ++v) {
        t.position[v][0] = coordinate(rng, -spread, width + spread);
        t.position[v][1] = coordinate(rng, -spread, height + spread);
        t.position[v][2] = t.position[v][3] = rng() % 4 ? depth(rng) : flat;
        for (int ch = 0; ch < 4; ++ch) t.colour[v][ch] = lane(rng), t.shadetint[ch] = lane(rng);
        t.uv[v][0] = t.uv[v][2] = uniform(rng, -200.0f, 330.0f);
        t.uv[v][1] = t.uv[v][3] = uniform(rng, -200.0f, 330.0f);
        t.shadefactor[v] = anyof(rng, {0.0f, 1.0f, uniform(rng, 0.0f, 1.0f)});
    }
    t.blendfactor = (rng.pixel() & 0xFF) * 0x10001;
    for (int k = 0; k < 3; ++k) {
        t.texels[k] = texels + k * 128 * 256;
        const float su = anyof(rng, {1.0f, 0.5f, uniform(rng, 0.1f, 4.0f)}), sv = anyof(rng, {su, 2.0f});
        const float ou = uniform(rng, -300.0f, 300.0f), ov = uniform(rng, -300.0f, 300.0f);
        for (int i = 0; i < 4; i += 2)
            t.uvscale[k][i] = su, t.uvscale[k][i + 1] = sv, t.uvoffset[k][i] = ou, t.uvoffset[k][i + 1] = ov;
    }
    t.shadowmap = shadowmap;
    t.shadowshift[0] = anyof(rng, {0, 1, 3, 7, 16});
    return t;
}

class raster : public statetest {};

TEST_F(raster, everymembermatchesthereference) {
    guarded<uint32_t> colour[2] = {guarded<uint32_t>(pixels), guarded<uint32_t>(pixels)}, texels(3 * 128 * 256);
    guarded<float> depths[2] = {guarded<float>(pixels), guarded<float>(pixels)};
    guarded<uint8_t> shadowmap(256 * 256);
    testrng rng(7);
    for (int i = 0; i < 3 * 128 * 256; ++i)
        texels[i] = rng() % 2 ? rng.pixel() : anyof(rng, {0, 0xFF000000u, 0x00FFFFFF});
    for (int i = 0; i < 256 * 256; ++i) shadowmap[i] = static_cast<uint8_t>(rng() % 4 ? rng() : anyof(rng, {0, 255}));
    for (lanewidth lanes : runnablewidths())
        for (const trianglemember& m : trianglemembers)
            for (int c = 0; c < 100; ++c) {
                testrng rng(static_cast<uint64_t>(c) * 1000 + indexof(trianglemembers, m));
                const rastertriangle t = scene(rng, colour, depths, texels.get(), shadowmap.get());
                const float *a = t.position[0], *b = t.position[1], *d = t.position[2];
                ASSERT_EQ(accepttriangle(a, b, d), rasterreference::accept(a, b, d)) << "case " << c;
                rasterstate.targetcolour = colour[0].get(), rasterstate.targetdepth = depths[0].get();
                trianglefor(m, lanes)(&t);
                rasterstate.targetcolour = colour[1].get(), rasterstate.targetdepth = depths[1].get();
                rasterreference::triangle(m, t);
                ASSERT_TRUE(colour[0].intact() && depths[0].intact()) << m.name() << ", case " << c;
                for (int i = 0; i < pixels; ++i)
                    ASSERT_TRUE(colour[0][i] == colour[1][i] && !memcmp(&depths[0][i], &depths[1][i], 4))
                        << m.name() << " in " << axisnames(lanes)[size_t(lanes)] << ", case " << c << ", pixel " << i % width << ", " << i / width << std::hex << ": "
                        << colour[0][i] << " " << depths[0][i] << ", expected " << colour[1][i] << " " << depths[1][i];
            }
}

// A particle's square covers exactly its part of the viewport and clip, in colour through a
// textured member and in depth through the depth-only one.
TEST_F(raster, squarecoversitsclippedpart) {
    guarded<uint32_t> colour[2] = {guarded<uint32_t>(pixels), guarded<uint32_t>(pixels)}, texels(128 * 256);
    guarded<float> depths[2] = {guarded<float>(pixels), guarded<float>(pixels)};
    std::fill_n(texels.get(), 128 * 256, 0xFF808080u);
    for (int c = 0; c < 2000; ++c) {
        testrng rng(c);
        scene(rng, colour, depths, texels.get());
        std::fill_n(colour[0].get(), pixels, 0), std::fill_n(depths[0].get(), pixels, 1.0f);
        rasterstate.targetcolour = colour[0].get(), rasterstate.targetdepth = depths[0].get();
        const int x = int(rng() % 80) - 20, y = int(rng() % 70) - 20, side = 1 + int(rng() % 40);
        for (bool rgb : {true, false})
            drawsquare(
                choosespan(widestlanes(), recipe::plain, shading::textured, alphamode::key, wrapmode::repeat, blended::no,
                           rgb, !rgb),
                x, y, side, 0.5f, 0xFFFFFFFF, texels.get());
        const int *v = rasterstate.viewport, *r = rasterstate.rasterclip;
        for (int i = 0; i < pixels; ++i) {
            const int px = i % width, py = i / width,
                      in = std::min({px - x, py - y, px - v[0], py - v[1], px - r[0], py - r[1]}) >= 0 &&
                           std::max({px - x - side, py - y - side, px - v[0] - v[2], py - v[1] - v[3], px - r[0] - r[2],
                                     py - r[1] - r[3]}) < 0;
            ASSERT_TRUE((colour[0][i] != 0) == in && depths[0][i] == (in ? 0.5f : 1.0f))
                << c << ": " << px << ", " << py;
        }
    }
}

// The choice of a face's functions follows the rule of the member table at the width asked for,
// and the host's free triangle has its own three.
TEST_F(raster, choicefollowsthemembertable) {
    for (lanewidth w : runnablewidths()) {
        everyface([w](const faceselection& f) {
            EXPECT_EQ(choosetriangle(w, f.fold, f.kind, f.alpha, f.wrap, f.blend, f.colour, f.depth),
                      trianglefor(modeltriangle(f), w));
            EXPECT_EQ(choosespan(w, f.fold, f.kind, f.alpha, f.wrap, f.blend, f.colour, f.depth),
                      spanfor(modelspan(f), w));
        });
        EXPECT_EQ(rawtriangle(w, true, true),
                  trianglefor(withrecipe(recipe::plain, gouraudspan(depthmode::testonly, blended::no)), w));
        EXPECT_EQ(rawtriangle(w, false, true), trianglefor(withrecipe(recipe::plain, colourlessspan(depthmode::none)), w));
        EXPECT_EQ(rawtriangle(w, false, false), nullptr);
        everygroundface([w](const groundselection& g) {
            EXPECT_EQ(choosegroundtriangle(w, g.fold, g.layer, g.blend, g.shadow), trianglefor(groundtriangle(g), w));
        });
    }
}

}  // namespace
