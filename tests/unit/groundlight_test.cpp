// Lights on random grounds against the walk as laid out: tiles, modes row by row (rows off the
// ground one short), strengths, the fifth dropped, cut tiles' faces and classes, and removal from
// a tile's first entry (rows at a narrow ground's pitch reach some twice); cut tiles stay cut.
#include <map>

#include "ground/splitground.h"
#include "groundreference.h"
#include "groundtest.h"

TEST_F(groundtest, lightsreachandcuttheirtilesasthereferencewalks) {
    for (int round = 0; round < 150 && !HasFailure(); ++round) {
        const int sizex = 1 + rng.below(6), sizez = 1 + rng.below(6), ts = 64 << rng.below(2), n = 6 + (ts > 64);
        std::unique_ptr<ground> g = randomground(sizex, sizez, ts, 0);
        std::map<genericground**, complexground*> uploaded;
        std::map<genericground**, std::vector<std::array<int, 6>>> lit;  // light, mode, near, right, far, left
        std::map<genericground**, std::array<int, 3>> cutby;             // mode and tile of the walk that cut
        for (int x = 0; x < sizex; ++x)
            for (int z = 0; z < sizez; ++z)
                if (genericground** slot = g->slot(x, z); slot && !*slot && !rng.onein(6))
                    *slot = uploaded[slot] = buildtile(*g, x, z, randomhosttile(rng, ts, rng.below(12), texturecount).s);
        auto check = [&] {
            for (auto [slot, tile] : uploaded) {
                const genericground& now = **slot;
                const tilelight* l = now.lightblock.empty() ? nullptr : &now.lightblock[now.lightindex];
                ASSERT_EQ(l ? l->count : 0, lit[slot].size());
                for (int k = 0; l && k < l->count; ++k)
                    EXPECT_EQ(lit[slot][size_t(k)], (std::array<int, 6>{l->nodes[k]->id, l->modes[k], l->near[k], l->right[k], l->far[k], l->left[k]}));
                const auto* split = dynamic_cast<const splitground*>(&now);
                ASSERT_EQ(split != nullptr, cutby.count(slot));
                if (!split) continue;
                const auto [mode, x, z] = cutby[slot];
                const auto faces = groundreference::cut(*tile, float(x * ts), float(z * ts), antidiagonal(mode));
                ASSERT_TRUE(split->inner.get() == tile && int(faces.size()) == split->faceclass.length());
                for (size_t f = 0, j = 0; f < faces.size(); j = (j + 1) % 3, f += !j) {
                    const groundpoint& v = split->vertices[split->faces[3 * f + j]];
                    EXPECT_TRUE(v.x == faces[f][2 * j] && v.z == faces[f][2 * j + 1] && split->faceclass[f] == faces[f][6]) << round;
                }
            }
        };
        for (int light = 0; light < 8; ++light) {
            const int x = rng.between(-ts, (sizex + 1) * ts), z = rng.between(-ts, (sizez + 1) * ts);
            const int y = rng.between(-300, 100), radius = rng.between(0, 3 * ts), r = radius - ts / 2;
            std::vector<int32_t> modes(rng.below(40), 1);
            for (int32_t& m : modes) m = rng.onein(3) ? rng.below(6) : m;
            for (int tz = (z - r) >> n, at = 0; tz <= (z + r) >> n; ++tz) {
                if (tz < 0 || tz >= sizez) at += ((x + r) >> n) - ((x - r) >> n);
                for (int tx = (x - r) >> n; tz >= 0 && tz < sizez && tx <= (x + r) >> n; ++tx) {
                    genericground** slot = tx >= 0 && tx < sizex ? g->slot(tx, tz) : nullptr;
                    const int mode = slot && at >= 0 && at < int(modes.size()) ? modes[size_t(at)] : 0;
                    at += tx >= 0 && tx < sizex;
                    auto s = [&](int a, int b) { return int(groundreference::strength(*g, a, b, x, y, z, r)); };
                    if (!mode || !*slot) continue;
                    const std::array<int, 6> e{light, mode, s(tx, tz), s(tx, tz + 1), s(tx + 1, tz + 1), s(tx + 1, tz)};
                    if (!(e[2] | e[3] | e[4] | e[5])) continue;
                    const uint8_t* c = uploaded[slot]->facecounts;
                    if (lit[slot].empty() && mode != 1 && c[0] + c[1] + c[2] + c[3] + c[4]) cutby[slot] = {mode, tx, tz};
                    if (lit[slot].size() < 4) lit[slot].push_back(e);
                }
            }
            addlight(*g, light, x, y, z, radius, uint32_t(rng()), modes.data(), int(modes.size()));
        }
        check();
        for (int light : {3, 0, 9, 7, 1, 2, 6, 4, 5}) {
            removelight(*g, light);
            for (auto& [slot, e] : lit)
                if (auto k = std::find_if(e.begin(), e.end(), [&](auto& k) { return k[0] == light; }); k != e.end()) e.erase(k);
            check();
        }
    }
}
