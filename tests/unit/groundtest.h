// Grounds for tests: a toolkit with a texture store whose first textures are loaded and whose
// others the host declines, a small pool that moves its blocks as it grows, and seeded random
// grounds and host tiles.
#pragma once
#include <gtest/gtest.h>
#include <xmmintrin.h>

#include <memory>
#include <vector>

#include "fuzz.h"
#include "ground/ground.h"
#include "ground/upload.h"
#include "modeltest.h"
#include "toolkit/tables.h"
#include "toolkit/texturestore.h"
#include "util/frame.h"
#include "util/memory/memorypool.h"

// A ground of random heights, normals and shades; `sizex` by `sizez` tiles.
inline std::unique_ptr<ground> randomground(toolkit& t, testrng& rng, int sizex, int sizez, int tilesize,
                                            uint32_t flags) {
    std::unique_ptr<ground> g(makeground(t, sizex, sizez, tilesize, 0, flags));
    std::vector<int32_t> normalheights(static_cast<size_t>(g->heights.length()));
    for (int i = 0; i < g->heights.length(); ++i) {
        g->heights[i] = rng.between(-80, 80), normalheights[size_t(i)] = rng.between(-300, 300);
        g->shades[i] = rng.onein(3) ? 0 : rng.byte();
    }
    for (int i = 0; i < g->normals.length(); ++i) g->normals[i] = {0.0f, -1.0f, 0.0f, 1.0f};
    computenormals(*g, normalheights.data());
    return g;
}

// The host's arrays of one tile, random within what the host keeps to: corners, shared points and
// free ones, faces with no colour, without texture, on one texture, on three, scaled or not.
struct randomhosttile {
    std::vector<int32_t> xs, ys, zs, depths, colours, mapcolours, textures, scales;
    tilesource s;

    randomhosttile(testrng& rng, int tilesize, int faces, int texturecount) {
        const int lattice[] = {0, tilesize, tilesize / 2, tilesize / 4};
        auto place = [&] { return rng.onein(3) ? rng.between(0, tilesize) : lattice[rng.below(4)]; };
        const bool noys = rng.onein(4), nomap = rng.onein(3), noscales = rng.onein(3);
        for (int f = 0; f < faces; ++f) {
            const int kind = rng.below(6), id = rng.below(texturecount), sc = rng.onein(2) ? tilesize : rng.below(300);
            for (int j = 0; j < 3; ++j) {
                xs.push_back(place()), zs.push_back(place()), ys.push_back(rng.between(-50, 50));
                depths.push_back(rng.onein(2) ? 0 : rng.between(-5, 70000));
                colours.push_back(kind == 0 ? -1 : static_cast<int32_t>(rng()));
                mapcolours.push_back(rng.onein(5) ? -1 : static_cast<int32_t>(rng()));
                textures.push_back(kind == 1 && rng.onein(2) ? -1 : kind <= 3 ? id : rng.below(texturecount));
                scales.push_back(kind == 2 ? sc : rng.onein(2) ? tilesize : rng.below(300));
            }
            // Most faces turn to the camera above.
            const size_t i = xs.size() - 3;
            const long long cross = (long long)(xs[i + 1] - xs[i]) * (zs[i + 2] - zs[i]) -
                                    (long long)(zs[i + 1] - zs[i]) * (xs[i + 2] - xs[i]);
            if ((cross < 0) == rng.onein(4))
                for (auto* v : {&xs, &ys, &zs, &depths, &colours, &mapcolours, &textures, &scales})
                    std::swap((*v)[i + 1], (*v)[i + 2]);
        }
        auto view = [](const std::vector<int32_t>& v, bool none = false) { return none ? nullptr : v.data(); };
        s = {3 * faces,
             view(xs),
             view(ys, noys),
             view(zs),
             view(depths),
             view(colours),
             view(mapcolours, nomap),
             view(textures),
             view(scales, noscales),
             static_cast<uint32_t>(rng()),
             rng.below(2) == 0,
             rng.below(2) == 0};
    }
};

// The model tests' toolkit and textures, with a sun, a pool for the ground's blocks, and textures
// of the types that blend and hidden ones among those loaded and those declined.
class groundtest : public modeltest {
protected:
    void SetUp() override {
        modeltest::SetUp();
        t.pool = &tilepool;
        t.sundirection[0] = 0.3f, t.sundirection[1] = -0.8f, t.sundirection[2] = 0.52f;
        t.suncolour[0] = 255, t.suncolour[1] = 230, t.suncolour[2] = 200;
        t.ambient = 0.4f, t.diffuse = 0.9f, t.lightfactor = 0.7f;
        std::vector<uint32_t> pixels(texturesize * texturesize);
        for (int id = 0; id < texturecount; ++id) {
            texturedescriptor& d = descriptors[id];
            d.type = uint8_t("\0\4\x08\x09\5\0\4\6"[id]);
            d.hidden = id % 4 == 3, d.averagecolour = static_cast<uint16_t>(rng());
            for (uint32_t& p : pixels) p = rng.pixel();
            // Each load takes the oldest slot; the fetch makes the texture the newest.
            if (id < loadedtextures) loadtexture(*store, id, d, pixels.data()), gettexture(id);
        }
    }

    memorypool tilepool{4096, &t};
};
