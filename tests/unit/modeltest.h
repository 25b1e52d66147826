// Models for tests: the tables, a texture store whose first textures are loaded and whose others
// the host declines, a pool small enough that building moves its arena again and again, and
// seeded random host arrays.
#pragma once
#include <gtest/gtest.h>
#include <xmmintrin.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "model/build.h"
#include "target.h"
#include "testhost.h"
#include "toolkit/light.h"
#include "toolkit/view.h"
#include "toolkit/tables.h"
#include "toolkit/texturestore.h"
#include "util/frame.h"

template <class T>
hostarray<T> viewof(const std::vector<T>& v) {
    return {v.empty() ? nullptr : v.data(), static_cast<int>(v.size())};  // empty stands for null
}

// The host's arrays of one model, random within what the host keeps to.
struct randomhostmodel {
    std::vector<int32_t> x, y, z, vertexgroups, facegroups, markers, billboardints, scale[3], shift[3];
    std::vector<int16_t> a, b, c, colours, textures, masks, map[3];
    std::vector<int8_t> types, alphas, mappings, maptype, rotation, direction;
    modelsource s;

    randomhostmodel(testrng& rng, int texturecount) {
        auto pick = [&](int n) { return static_cast<int>(rng() % static_cast<uint32_t>(n)); };
        auto fill = [&](auto& v, int n, auto value) {
            for (int i = 0; i < n; ++i) v.push_back(static_cast<std::decay_t<decltype(v[0])>>(value()));
        };
        auto maybe = [&](auto& v, int n, auto value) { pick(3) ? fill(v, n, value) : void(); };
        const int vertices = 1 + pick(40), faces = pick(60), used = vertices - pick(std::min(vertices, 3));
        for (auto* axis : {&x, &y, &z}) fill(*axis, vertices, [&] { return pick(4001) - 2000; });
        maybe(vertexgroups, vertices, [&] { return pick(12) - 2; });
        for (auto* corner : {&a, &b, &c}) fill(*corner, faces, [&] { return pick(std::max(used, 1)); });
        maybe(types, faces, [&] { return pick(5) % 3; });
        maybe(alphas, faces, [&] { return pick(3) ? 0 : pick(4) ? rng() : 255; });
        fill(colours, faces, [&] { return rng(); });
        maybe(textures, faces, [&] { return pick(4) == 0 ? -1 : pick(texturecount); });
        maybe(facegroups, faces, [&] { return pick(12) - 2; });
        const int mappingcount = 1 + pick(5);
        maybe(mappings, faces, [&] { return pick(4) == 0 ? 0xFF : pick(mappingcount); });
        fill(maptype, mappingcount, [&] { return pick(9) == 0 ? 5 : pick(4); });
        for (int m = 0; m < mappingcount; ++m)
            for (auto& d : map) d.push_back(int16_t(maptype[m] == 0 ? pick(vertices) : pick(65536) - 32768));
        for (auto& k : scale) fill(k, mappingcount, [&] { return (pick(4096) + 1) * (pick(2) ? 1 : -1) * !!pick(6); });
        for (auto& k : shift) fill(k, mappingcount, [&] { return pick(1024) - 512; });
        fill(rotation, mappingcount, [&] { return rng(); });
        fill(direction, mappingcount, [&] { return pick(4); });
        const int billboards = faces ? pick(4) : 0;
        for (int i = 0; i < billboards; ++i)
            for (int v : {pick(faces), pick(300), pick(300), pick(texturecount), pick(6), pick(4), pick(3)})
                billboardints.push_back(v);
        fill(billboardints, billboards, [&] { return pick(6) - 1; });
        s = {vertices, used, viewof(x), viewof(y), viewof(z), viewof(vertexgroups), viewof(masks), faces, viewof(a),
             viewof(b), viewof(c), viewof(types), viewof(alphas), viewof(alphas), viewof(mappings), viewof(colours),
             viewof(textures), viewof(facegroups), static_cast<uint8_t>(rng()), viewof(masks),
             {mappingcount, viewof(maptype), viewof(map[0]), viewof(map[1]), viewof(map[2]), viewof(scale[0]),
              viewof(scale[1]), viewof(scale[2]), viewof(rotation), viewof(direction), viewof(shift[0]),
              viewof(shift[1]), viewof(shift[2])},
             viewof(markers), pick(3), pick(3), rng() & (pick(4) ? 0xFFFFF : 0xFFFFF & ~FM_KEEPCOLOURS),
             rng() & 0x7F, pick(4) ? 64 + pick(128) : 128, pick(16) ? 256 + pick(1024) : 0, viewof(billboardints)};
    }
};

// Random descriptors for every texture of `store`, and random images loaded for the first
// `loaded`; the host declines the others.
inline void filltextures(texturestore& store, int count, int loaded, testrng& rng) {
    std::vector<uint32_t> pixels(texturesize * texturesize);
    for (int id = 0; id < count; ++id) {
        texturedescriptor& d = store.descriptors[id] = {};
        d.value = int(rng() % 3), d.type = rng() % 4 ? 0 : 6, d.speedu = int8_t(rng() % 4 ? 0 : rng());
        d.hidden = rng() % 3 == 0, d.flagthree = rng() % 4 == 0;
        d.blend = uint8_t(rng() % 2 ? rng() : 0), d.bright = uint8_t(rng() % 2 ? rng() : 0);
        for (uint32_t& p : pixels) p = rng() % 4 ? rng.pixel() : 0;
        if (id < loaded) loadtexture(store, id, d, pixels.data());
    }
}

// A camera looking about down z, turned a little on every axis so that no axis of its matrix is
// trivial, at a model about 30 units away, with random sun, point lights, fog and shade, on toolkit
// `t`; the loaded textures as a reload may leave them, unlike their descriptors.
inline void randomscene(toolkit& t, texturestore& store, testrng& rng) {
    const float a = rng.real(-0.3f, 0.3f), b = rng.real(-0.3f, 0.3f), c = rng.real(-0.3f, 0.3f);
    const float ca = std::cos(a), sa = std::sin(a), cb = std::cos(b), sb = std::sin(b), cc = std::cos(c), sc = std::sin(c);
    alignas(16) float view[16] = {cb * cc, sa * sb * cc - ca * sc, ca * sb * cc + sa * sc, 0,
                                  cb * sc, sa * sb * sc + ca * cc, ca * sb * sc - sa * cc, 0,
                                  -sb,     sa * cb,                ca * cb,                0,
                                  0,       0,                      0,                      1};
    alignas(16) float projection[16] = {1.5f, 0, 0, 0, 0, 1.5f, 0, 0, 0, 0, 1.001f, 1, 0, 0, -2.001f, 0};
    setviewmatrix(t, view);
    setprojectionmatrix(t, projection);
    setsun(t, int(rng()), rng.real(0, 1), rng.real(0, 1), rng.real(-1, 1), rng.real(-1, 1), rng.real(-1, 1));
    t.lightfactor = rng.real(0, 1.2f);
    int lights[4 * 5];
    for (int& v : lights) v = int(rng() % 41) - 20;
    const float intensities[4] = {1, 1, 1, 1};
    setpointlights(t, int(rng() % 3) * 2, lights, intensities);
    setfog(t, int(rng()), rng() % 3 ? 1960 + int(rng() % 40) : 0);
    setshade(t, int(rng() % 41) - 20, int(rng()), 1 + int(rng() % 40));
    t.fogoverride = rng() % 2;
    for (texturerecord& r : store.records) r.value = int(rng() % 3), r.flagfive = rng() % 2;
}

// A model matrix that scales the host's coordinates down about a hundred times, turns them any
// way and sets them in view, now and then far off to the side; and with `degenerate`, now and then
// with entries that are not numbers, infinite, huge, tiny or zero.
inline void randommatrix(float* matrix, testrng& rng, bool degenerate) {
    for (int i = 0; i < 12; ++i) matrix[i] = i % 4 == 3 ? 0.0f : rng.real(-0.012f, 0.012f);
    matrix[12] = rng.real(-5, 5) + (rng() % 8 ? 0.0f : 10000.0f), matrix[13] = rng.real(-5, 5);
    matrix[14] = rng.real(22, 40), matrix[15] = 1.0f;
    const float extremes[] = {NAN, INFINITY, -1e30f, 1e-30f, 0.0f, 1e20f};
    for (int k = degenerate && rng() % 4 == 0 ? 1 + int(rng() % 3) : 0; k > 0; --k)
        matrix[rng() % 16] = extremes[rng() % 6];
}

class modeltest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { buildtrigtables(), buildhsltorgb(); }
    void SetUp() override {
        _mm_setcsr(librarymxcsr);
        t.textures = store;
        filltextures(*store, texturecount, loadedtextures, rng);
    }
    void TearDown() override { _mm_setcsr(hostmxcsr), destroytexturestore(store); }

    static constexpr int texturecount = 8, loadedtextures = 6;
    testrng rng{20261123};
    testhost host;  // its toolkit is current
    toolkit& t = host.t;
    texturestore* store = maketexturestore(texturecount);
    texturedescriptor* descriptors = store->descriptors;
    // Small, so that building grows the arena, which moves every block, many times over.
    memorymanager pool{1024};

private:
    unsigned hostmxcsr = _mm_getcsr();
};
