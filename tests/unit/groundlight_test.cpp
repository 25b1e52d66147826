// Point lights on seeded random grounds against the walk as the rules lay it out: the tiles each
// light reaches, the modes read row by row with rows off the ground one entry short, the corner
// strengths, the fifth light dropped, the tiles cut for a first light of one side with their faces
// and classes, and removal back to tiles without lights that stay cut.
#include <map>

#include "ground/splitground.h"
#include "groundreference.h"
#include "groundtest.h"

namespace {

struct entry {
    int light, mode;
    uint16_t s[4];  // near, right, far, left
};

TEST_F(groundtest, lightsreachandcuttheirtilesasthereferencewalks) {
    for (int round = 0; round < 150 && !HasFailure(); ++round) {
        const int sizex = 1 + rng.below(6), sizez = 1 + rng.below(6), ts = 64 << rng.below(2), n = 6 + (ts > 64);
        std::unique_ptr<ground> g = randomground(sizex, sizez, ts, 0);
        std::map<genericground**, complexground*> uploaded;
        for (int x = 0; x < sizex; ++x)
            for (int z = 0; z < sizez; ++z)
                if (genericground** slot = g->slot(x, z); slot && !*slot && !rng.onein(6)) {
                    randomhosttile h(rng, ts, rng.below(12), texturecount);
                    *slot = uploaded[slot] = buildtile(*g, x, z, h.s);
                }
        std::map<genericground**, std::vector<entry>> lit;
        std::map<genericground**, std::array<int, 3>> cutby;  // mode and tile of the walk that cut it
        auto check = [&] {
            for (auto [slot, tile] : uploaded) {
                const std::vector<entry>& e = lit[slot];
                const genericground& now = **slot;
                ASSERT_EQ(now.lightblock.empty(), e.empty());
                for (size_t k = 0; k < e.size(); ++k) {
                    const tilelight& l = now.lightblock[now.lightindex];
                    const uint16_t s[4] = {l.near[k], l.right[k], l.far[k], l.left[k]};
                    EXPECT_TRUE(l.count == e.size() && l.nodes[k]->id == e[k].light && l.modes[k] == e[k].mode &&
                                std::equal(s, s + 4, e[k].s)) << "round " << round;
                }
                const auto* split = dynamic_cast<const splitground*>(&now);
                ASSERT_EQ(split != nullptr, cutby.count(slot) == 1);
                if (!split) continue;
                const auto [mode, x, z] = cutby[slot];
                const auto faces = groundreference::cut(*tile, float(x * ts), float(z * ts), antidiagonal(mode));
                ASSERT_TRUE(split->inner.get() == tile && int(faces.size()) == split->faceclass.length());
                for (size_t f = 0; f < faces.size(); ++f)
                    for (int j = 0; j < 3; ++j) {
                        const groundpoint& v = split->vertices[split->faces[3 * f + j]];
                        EXPECT_TRUE(v.x == faces[f].p[j][0] && v.z == faces[f].p[j][1] &&
                                    split->faceclass[f] == faces[f].side) << "round " << round << " face " << f;
                    }
            }
        };
        for (int light = 0; light < 8; ++light) {
            const int x = rng.between(-ts, (sizex + 1) * ts), z = rng.between(-ts, (sizez + 1) * ts);
            const int y = rng.between(-300, 100), radius = rng.between(0, 3 * ts), r = radius - ts / 2;
            std::vector<int32_t> modes(rng.below(40));
            for (int32_t& m : modes) m = rng.onein(3) ? rng.below(6) : 1;
            for (int tz = (z - r) >> n, at = 0; tz <= (z + r) >> n; ++tz) {
                if (tz < 0 || tz >= sizez) at += ((x + r) >> n) - ((x - r) >> n);
                for (int tx = (x - r) >> n; tz >= 0 && tz < sizez && tx <= (x + r) >> n; ++tx) {
                    if (tx < 0 || tx >= sizex) continue;
                    const int mode = at >= 0 && at < int(modes.size()) ? modes[size_t(at)] : 0;
                    genericground** slot = g->slot(tx, tz);
                    ++at;
                    if (!mode || !slot || !*slot) continue;
                    auto s = [&](int a, int b) { return groundreference::strength(*g, a, b, x, y, z, r); };
                    const entry e{light, mode, {s(tx, tz), s(tx, tz + 1), s(tx + 1, tz + 1), s(tx + 1, tz)}};
                    if (!(e.s[0] | e.s[1] | e.s[2] | e.s[3])) continue;
                    const complexground& tile = *uploaded[slot];
                    const uint8_t* c = tile.facecounts;
                    if (lit[slot].empty() && mode != 1 && c[0] + c[1] + c[2] + c[3] + c[4]) cutby[slot] = {mode, tx, tz};
                    if (lit[slot].size() < 4) lit[slot].push_back(e);
                }
            }
            addlight(*g, light, x, y, z, radius, uint32_t(rng()), modes.data(), int(modes.size()));
        }
        check();
        // Lights leave in any order, each from its first entry on a tile (a tile that rows at the
        // pitch of a narrower ground reach twice holds two); a tile left without one keeps its cut.
        for (int light : {3, 0, 9, 7, 1, 2, 6, 4, 5}) {
            removelight(*g, light);
            for (auto& [slot, e] : lit)
                if (auto k = std::find_if(e.begin(), e.end(), [&](const entry& k) { return k.light == light; }); k != e.end())
                    e.erase(k);
            check();
        }
    }
}

}  // namespace
