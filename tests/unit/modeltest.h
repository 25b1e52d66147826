// Models for tests: the tables, a texture store whose first textures are loaded and whose others
// the host declines, a pool small enough that building moves its arena again and again, and
// seeded random host arrays.
#pragma once
#include <gtest/gtest.h>
#include <xmmintrin.h>

#include <cstring>
#include <vector>

#include "model/build.h"
#include "target.h"
#include "testhost.h"
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
             rng() & 0x7F, pick(4) ? 64 + pick(128) : 128, 256 + pick(1024), viewof(billboardints)};
    }
};

class modeltest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { buildtrigtables(), buildhsltorgb(); }
    void SetUp() override {
        _mm_setcsr(librarymxcsr);
        t.textures = store;
        std::vector<uint32_t> pixels(texturesize * texturesize);
        for (int id = 0; id < texturecount; ++id) {
            texturedescriptor& d = descriptors[id] = {};
            d.value = int(rng() % 3), d.type = rng() % 4 ? 0 : 6, d.speedu = int8_t(rng() % 4 ? 0 : rng());
            d.hidden = rng() % 3 == 0, d.flagthree = rng() % 4 == 0;
            d.blend = uint8_t(rng() % 2 ? rng() : 0), d.bright = uint8_t(rng() % 2 ? rng() : 0);
            for (uint32_t& p : pixels) p = rng() % 4 ? rng.pixel() : 0;
            if (id < loadedtextures) loadtexture(*store, id, d, pixels.data());
        }
    }
    void TearDown() override { _mm_setcsr(hostmxcsr), destroytexturestore(store); }

    static constexpr int texturecount = 8, loadedtextures = 6;  // the host declines the others
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
