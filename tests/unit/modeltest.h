// Models for tests: a toolkit with the tables and a few texture descriptors, a pool small enough
// that building moves its arena again and again, and seeded random host arrays.
#pragma once
#include <gtest/gtest.h>
#include <xmmintrin.h>

#include <cstring>
#include <vector>

#include "model/build.h"
#include "target.h"
#include "toolkit/tables.h"
#include "toolkit/texturestore.h"
#include "util/frame.h"

inline uint32_t floatbits(float f) {
    uint32_t u;
    std::memcpy(&u, &f, 4);
    return u;
}

// The host's arrays of one model, random within what the host keeps to.
struct randomhostmodel {
    std::vector<int32_t> x, y, z, vertexgroups, facegroups, markers, billboardints;
    std::vector<int32_t> scalex, scaley, scalez, shift0, shift1, shift2;
    std::vector<int16_t> a, b, c, colours, textures, vertexmasks, facemasks, mapp, mapm, mapn;
    std::vector<int8_t> types, priorities, alphas, mappings, maptype, rotation, direction;
    modelsource s;

    randomhostmodel(testrng& rng, int texturecount) {
        auto pick = [&](int n) { return static_cast<int>(rng() % static_cast<uint32_t>(n)); };
        auto maybe = [&](auto& v, int n, auto value) {
            if (pick(3) == 0) return;
            for (int i = 0; i < n; ++i) v.push_back(static_cast<std::decay_t<decltype(v[0])>>(value()));
        };
        int vertices = 1 + pick(40), faces = pick(60);
        s.vertexcount = vertices;
        s.usedvertexcount = vertices - pick(std::min(vertices, 3));
        for (auto* axis : {&x, &y, &z}) maybe(*axis, vertices, [&] { return pick(4001) - 2000; });
        if (x.empty() || y.empty() || z.empty()) x = y = z = std::vector<int32_t>(vertices, 5);
        maybe(vertexgroups, vertices, [&] { return pick(12) - 2; });
        maybe(vertexmasks, vertices, [&] { return rng(); });
        int used = std::max(s.usedvertexcount, 1);
        for (auto* corner : {&a, &b, &c})
            for (int i = 0; i < faces; ++i) corner->push_back(static_cast<int16_t>(pick(used)));
        maybe(types, faces, [&] { return pick(5) % 3; });
        maybe(priorities, faces, [&] { return rng(); });
        maybe(alphas, faces, [&] { return pick(3) ? 0 : rng(); });
        for (int i = 0; i < faces; ++i) colours.push_back(static_cast<int16_t>(rng()));
        maybe(textures, faces, [&] { return pick(4) == 0 ? -1 : pick(texturecount); });
        maybe(facegroups, faces, [&] { return pick(12) - 2; });
        maybe(facemasks, faces, [&] { return rng(); });
        int mappingcount = 1 + pick(5);
        maybe(mappings, faces, [&] { return pick(4) == 0 ? 0xFF : pick(mappingcount); });
        for (int m = 0; m < mappingcount; ++m) {
            int type = pick(9) == 0 ? 5 : pick(4);
            maptype.push_back(static_cast<int8_t>(type));
            for (auto* d : {&mapp, &mapm, &mapn})
                d->push_back(static_cast<int16_t>(type == 0 ? pick(vertices) : pick(65536) - 32768));
            for (auto* k : {&scalex, &scaley, &scalez}) k->push_back((pick(4096) + 1) * (pick(2) ? 1 : -1) * (pick(6) ? 1 : 0));
            rotation.push_back(static_cast<int8_t>(rng()));
            direction.push_back(static_cast<int8_t>(pick(4)));
            for (auto* k : {&shift0, &shift1, &shift2}) k->push_back(pick(1024) - 512);
        }
        maybe(markers, pick(8), [&] { return pick(vertices); });
        int billboards = faces ? pick(4) : 0;
        if (billboards || pick(2)) {
            for (int i = 0; i < billboards; ++i)
                for (int v : {pick(faces), pick(300), pick(300), pick(texturecount), pick(6), pick(4), pick(3)})
                    billboardints.push_back(v);
            for (int i = 0; i < billboards; ++i) billboardints.push_back(pick(6) - 1);
        }
        s.facecount = faces;
        s.functionmask = rng() & (pick(4) ? 0xFFFFF : 0xFFFFF & ~FM_KEEPCOLOURS);
        s.modelflags = rng() & 0x7F;
        s.ambient = pick(4) ? 64 + pick(128) : 128;
        s.contrast = 256 + pick(1024);
        s.renderorder = static_cast<uint8_t>(rng());
        s.markertriangles = pick(3);
        s.markerpoints = pick(3);
        s.x = view(x), s.y = view(y), s.z = view(z), s.vertexgroupids = view(vertexgroups);
        s.vertexmasks = view(vertexmasks), s.a = view(a), s.b = view(b), s.c = view(c), s.types = view(types);
        s.priorities = view(priorities), s.alphas = view(alphas), s.mappings = view(mappings);
        s.colours = view(colours), s.textures = view(textures), s.facegroupids = view(facegroups);
        s.facemasks = view(facemasks), s.markers = view(markers), s.billboardints = view(billboardints);
        s.mapping = {mappingcount, view(maptype), view(mapp), view(mapm), view(mapn), view(scalex), view(scaley),
                     view(scalez), view(rotation), view(direction), view(shift0), view(shift1), view(shift2)};
    }

    template <class T>
    static hostarray<T> view(const std::vector<T>& v) {
        // An empty vector stands for a null array, but a host array of length 0 is still there.
        return {v.empty() ? nullptr : v.data(), static_cast<int>(v.size())};
    }
};

class modeltest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        buildtrigtables();
        buildhsltorgb();
    }
    void SetUp() override {
        savedtoolkit = currenttoolkit;
        currenttoolkit = &t;
        t.textures = &store;
        store.descriptors = descriptors;
        hostmxcsr = _mm_getcsr();
        _mm_setcsr(librarymxcsr);
        for (texturedescriptor& d : descriptors) {
            d.value = static_cast<int>(rng() % 3);
            d.speedu = static_cast<int8_t>(rng() % 4 == 0 ? rng() : 0);
            d.speedv = static_cast<int8_t>(rng() % 4 == 0 ? rng() : 0);
            d.hidden = rng() % 3 == 0;
            d.flagthree = rng() % 4 == 0;
            d.blend = static_cast<uint8_t>(rng() % 2 ? rng() : 0);
            d.bright = static_cast<uint8_t>(rng() % 2 ? rng() : 0);
        }
    }
    void TearDown() override {
        _mm_setcsr(hostmxcsr);
        currenttoolkit = savedtoolkit;
    }

    static constexpr int texturecount = 8;
    testrng rng{20261123};
    toolkit t{};
    texturestore store{};
    texturedescriptor descriptors[texturecount]{};
    // Small, so that building grows the arena, which moves every block, many times over.
    memorymanager pool{1024};

private:
    toolkit* savedtoolkit;
    unsigned hostmxcsr;
};
