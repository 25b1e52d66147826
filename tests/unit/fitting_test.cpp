// Models fitted to the ground against the rules over seeded random models, grounds, places and
// modes: each vertex's new height, the tilt with its limits, the early returns and the mask bits.
#include <cmath>

#include "model/fitting.h"
#include "motiontest.h"
#include "util/memory/memorypool.h"

namespace {

class fitting : public motiontest {
protected:
    memorypool grounds{4096, &t};
    std::unique_ptr<ground> randomground(int size, int ts, int flat) {
        t.pool = &grounds;
        std::unique_ptr<ground> g(makeground(t, size, size, ts, 0, 0));
        for (int i = 0; i < g->heights.length(); ++i) g->heights[i] = rng.onein(3) ? flat : int(rng() % 161) - 80;
        return g;
    }
};

// The height under (wx, wz) between its four grid points, in 32-bit integers.
int heightat(const ground& g, int wx, int wz) {
    const int n = g.tileshift, s = g.tilesize, tx = wx >> n, tz = wz >> n, fx = wx & (s - 1), fz = wz & (s - 1);
    auto h = [&](int a, int b) { return g.heights[g.point(tx + a, tz + b)]; };
    const int a = (h(0, 0) * (s - fx) + h(1, 0) * fx) >> n, b = (h(0, 1) * (s - fx) + h(1, 1) * fx) >> n;
    return (a * (s - fz) + b * fz) >> n;
}

TEST_F(fitting, everymodefollowstherules) {
    int moved = 0;
    for (int round = 0; round < 3000 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        const int mode = int(rng() % 7), ts = 128 << rng() % 2, y = int(rng() % 21) - 10;
        std::unique_ptr<ground> g = randomground(48, ts, y), h = randomground(48, ts, y);
        std::unique_ptr<model> m = randommodel(rng() % 4 ? 0xFFFFF : rng() % 2 ? FM_MOVE_Y : FM_MOVE_X | FM_MOVE_Z);
        const int span = 48 * ts, x = int(rng() % uint32_t(span + 400)) - 200, z = int(rng() % uint32_t(span + 400)) - 200;
        const int p = rng() % 2 ? int(rng()) : int(rng() % 0x20000) + 1;
        const bool second = rng() % 4, allowed = (m->functionmask & (mode == 3 ? 7u : 2u)) == (mode == 3 ? 7u : 2u);
        std::vector<quad> e = contents(m->vertices);
        const bool threw = refused([&] { fitmodel(*m, mode, p, *g, second ? h.get() : nullptr, x, y, z); });
        ASSERT_EQ(threw, !allowed);
        if (threw) continue;
        // The box stands on the ground, and on the other one in modes 4 and 5, or nothing changes.
        auto on = [&](const ground& k) {
            return m->minx + x >= 0 && m->minz + z >= 0 && (m->maxx + x + ts) >> k.tileshift < k.sizex &&
                   (m->maxz + z + ts) >> k.tileshift < k.sizez;
        };
        const int bx = (m->maxx + x + ts - 1) / ts, bz = (m->maxz + z + ts - 1) / ts, ax = (m->minx + x) / ts, az = (m->minz + z) / ts;
        const bool flat = mode != 4 && mode != 5 && on(*g) && g->heights[g->point(ax, az)] == y &&
                          g->heights[g->point(bx, az)] == y && g->heights[g->point(ax, bz)] == y && g->heights[g->point(bx, bz)] == y;
        bool still = (mode != 4 && !on(*g)) || ((mode == 4 || mode == 5) && (!second || !on(*h))) || flat || (mode == 2 && !m->miny);
        const int width = (p & 0xFF) * 4, length = (p >> 8 & 0xFF) * 4, depth = m->maxy - m->miny;
        if (mode == 3 && !still) {
            still = x - width / 2 < 0 || x + width / 2 + ts >= span || z - length / 2 < 0 || z + length / 2 + ts >= span;
            const int h00 = groundheight(*g, x - width / 2, z - length / 2), h10 = groundheight(*g, x + width / 2, z - length / 2);
            const int h01 = groundheight(*g, x - width / 2, z + length / 2), h11 = groundheight(*g, x + width / 2, z + length / 2);
            auto angle = [](int rise, int run, int limit) {
                int a = int(double(float(std::atan2(double(float(rise)), double(run)))) * 2607.594515054685) & 0x3FFF;
                return !a || !limit ? a : a > 0x2000 ? std::max(a, 0x4000 - limit) : std::min(a, limit);
            };
            const int ax = length ? angle(std::min(h00, h10) - std::min(h01, h11), length, p >> 10 & 0x3FC0) : 0;
            const int az = width ? angle(std::min(h00, h01) - std::min(h10, h11), width, p >> 18 & 0x3FC0) : 0;
            for (quad& v : e)
                if (!still) turnedby(0, v, ax), turnedby(2, v, az), v.y += float((std::min(h10 + h01, h00 + h11) >> 1) - y);
        }
        for (int i = 0; i < m->vertexcount && !still && mode != 3; ++i) {
            const int wx = int(e[i].x) + x, wz = int(e[i].z) + z, k = mode == 1 ? 0 : 1;
            auto inside = [&](const ground& q) { return wx >= 0 && wz >= 0 && wx / ts < q.sizex - k && wz / ts < q.sizez - k; };
            if (i >= m->usedvertexcount && (!inside(*g) || (mode == 5 && !inside(*h)))) continue;
            float& vy = e[i].y;
            // A zero divisor is the host's to avoid: the vertex stays.
            if ((mode == 2 && !p) || (mode == 5 && !depth)) continue;
            const int t2 = mode == 2 ? int(int64_t(int(vy) * 65536LL) / m->miny) : 0;
            if (mode == 1) vy += float(heightat(*g, wx, wz) - y);
            if (mode == 2 && t2 < p) vy += float(int(int(int64_t(p - t2) * (heightat(*g, wx, wz) - y)) / int64_t(p)));
            if (mode == 4) vy = vy + float(heightat(*h, wx, wz) - y) + float(depth);
            if (mode == 5)
                vy = float((((int(vy) * 256) / depth) * (heightat(*g, wx, wz) - heightat(*h, wx, wz) - p)) >> 8) - float(y - heightat(*g, wx, wz));
        }
        EXPECT_EQ(m->boundsvalid, still) << mode << ' ' << m->minx + x << ' ' << m->maxx + x;
        EXPECT_TRUE(samebits(e, m->vertices));
        moved += !still && mode != 0 && mode != 6;
    }
    EXPECT_GT(moved, 300);
}

}  // namespace
