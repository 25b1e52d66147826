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
        s.rows = std::min(static_cast<int>(rng() % 4), bottom - s.y);
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

}  // namespace
