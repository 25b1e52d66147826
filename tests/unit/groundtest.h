// Grounds for tests: the model tests' toolkit and textures with a sun and a pool, seeded random
// grounds and host tiles.
#pragma once
#include <cmath>

#include "ground/upload.h"
#include "modeltest.h"
#include "toolkit/light.h"
#include "util/memory/memorypool.h"

// The host's arrays of one tile, random within what the host keeps to: corners, shared points and
// free ones, faces with no colour, without texture, on one texture, on three, scaled or not, most
// turned to a camera above.
struct randomhosttile {
    std::vector<int32_t> a[8];  // xs, ys, zs, depths, colours, mapcolours, textures, scales
    tilesource s;
    randomhosttile(testrng& r, int ts, int faces, int ids) {
        auto place = [&] { return r.onein(3) ? r.between(0, ts) : std::array{0, ts, ts / 2, ts / 4}[r.below(4)]; };
        for (int f = 0; f < faces; ++f) {
            const int kind = r.below(6), id = r.below(ids), sc = r.onein(2) ? ts : r.below(300);
            for (int j = 0, k = 0; j < 3; ++j, k = 0)
                for (int v : {place(), r.between(-50, 50), place(), r.onein(2) ? 0 : r.between(-5, 70000),
                              kind == 0 ? -1 : int(r()), r.onein(5) ? -1 : int(r()),
                              kind == 1 && r.onein(2) ? -1 : kind <= 3 ? id : r.below(ids),
                              kind == 2 ? sc : r.onein(2) ? ts : r.below(300)})
                    a[k++].push_back(v);
            const size_t i = a[0].size() - 3;
            const long long cross = (long long)(a[0][i + 1] - a[0][i]) * (a[2][i + 2] - a[2][i]) -
                                    (long long)(a[2][i + 1] - a[2][i]) * (a[0][i + 2] - a[0][i]);
            if ((cross < 0) == r.onein(4))
                for (auto& v : a) std::swap(v[i + 1], v[i + 2]);
        }
        auto maybe = [&](int k) { return r.onein(k == 1 ? 4 : k == 5 || k == 7 ? 3 : 1 << 30) ? nullptr : a[k].data(); };
        s = {3 * faces, a[0].data(), maybe(1), a[2].data(), a[3].data(), a[4].data(), maybe(5), a[6].data(), maybe(7),
             r(), r.onein(2), r.onein(2)};
    }
};

// Footprints of random cells and rectangles, wider and taller than their cells or empty, standing
// anywhere on the ground and past each of its edges.
struct standing {
    std::unique_ptr<shadowmask> mask;
    int x, y, z;
};
inline standing randomfootprint(testrng& r, memorymanager& pool, const ground& g) {
    auto m = std::make_unique<shadowmask>(pool, 1 + r.below(40), 1 + r.below(40));
    for (int i = 0; i < m->cells.length(); ++i) m->cells[i] = r.onein(3) ? r.byte() : 0;
    m->x = r.between(-30, 10), m->y = r.between(-30, 10);
    m->usedwidth = r.between(-2, m->width + 3), m->usedheight = r.between(-2, m->height + 3);
    auto along = [&](int tiles) { return r.between(-g.tilesize, (tiles + 1) * g.tilesize); };
    return {std::move(m), along(g.sizex), r.between(-200, 200), along(g.sizez)};
}

class groundtest : public modeltest {
protected:
    void SetUp() override {
        modeltest::SetUp();
        t.pool = &tilepool;
        setsun(t, 0xFFE6C8, 0.4f, 0.9f, 0.3f, -0.8f, 0.52f);
        t.lightfactor = 0.7f;
        std::vector<uint32_t> pixels(texturesize * texturesize);
        for (int id = 0; id < texturecount; ++id) {
            // Types that blend and hidden textures among those loaded and those declined; each load
            // takes the oldest slot, so the fetch makes it the newest.
            descriptors[id].type = uint8_t("\0\4\x08\x09\5\0\4\6"[id]);
            descriptors[id].hidden = id % 4 == 3, descriptors[id].averagecolour = uint16_t(rng());
            for (uint32_t& p : pixels) p = rng.pixel();
            if (id < loadedtextures) loadtexture(*store, id, descriptors[id], pixels.data()), gettexture(id);
        }
    }
    // A ground of random heights, normals and shades.
    std::unique_ptr<ground> randomground(int sizex, int sizez, int tilesize, uint32_t flags) {
        std::unique_ptr<ground> g(makeground(t, sizex, sizez, tilesize, 0, flags));
        std::vector<int32_t> normalheights(size_t(g->heights.length()));
        for (int i = 0; i < g->heights.length(); ++i) {
            g->heights[i] = rng.between(-80, 80), normalheights[size_t(i)] = rng.between(-300, 300);
            g->shades[i] = rng.onein(3) ? 0 : rng.byte(), g->normals[i] = {0, -1, 0, 1};
        }
        computenormals(*g, normalheights.data());
        return g;
    }
    memorypool tilepool{4096, &t};
};
