// Shadow outlines against the rules over random models, slopes, cell sizes and row clips: the
// projected box, the placement fields, the faces that count and the cells of each triangle fill;
// a mask reused when large enough, replaced when not, none without faces, refused without its bit.
#include <bit>

#include "model/shadow.h"
#include "motiontest.h"
#include "rasterreference.h"

namespace {

class shadow : public motiontest {
protected:
    rasterstatedata saved = rasterstate;
    void TearDown() override { rasterstate = saved, motiontest::TearDown(); }
};

// Corners sorted by the comparison chain, edges stepped by the approximate reciprocal of each
// height from the top corner, rows clipped above and below, cells set from the truncated left edge.
void fillreference(std::vector<uint8_t>& cells, int pitch, const int c[3][2]) {
    using namespace rasterreference;
    const int orders[6][3] = {{0, 1, 2}, {0, 2, 1}, {2, 0, 1}, {1, 0, 2}, {1, 2, 0}, {2, 1, 0}};
    const int y0 = c[0][1], y1 = c[1][1], y2 = c[2][1];
    const int* o = orders[y1 > y0 ? (y2 > y1 ? 0 : y2 > y0 ? 1 : 2) : (y2 > y0 ? 3 : y2 > y1 ? 4 : 5)];
    const float x[3] = {float(c[o[0]][0]), float(c[o[1]][0]), float(c[o[2]][0])};
    const int row[3] = {c[o[0]][1], c[o[1]][1], c[o[2]][1]};
    auto step = [&](int a, int b) { return (x[b] - x[a]) * rcp(maxss(float(row[b] - row[a]), std::bit_cast<float>(0x358637BDu))); };
    const float tm = step(0, 1), tb = step(0, 2), mb = step(1, 2);
    const rasterstatedata& r = rasterstate;
    const long long bottom = std::min(r.viewport[1] + r.viewport[3], r.rasterclip[1] + r.rasterclip[3]);
    long long y = std::max<long long>(std::max(row[0], r.viewport[1]), r.rasterclip[1]), skip = y - row[0];
    float ls = tm > tb ? tb : tm, rs = tm > tb ? tm : tb, l = x[0] + float(skip) * ls, rt = x[0] + float(skip) * rs;
    auto fill = [&](long long rows) {
        for (; rows > 0; --rows, ++y, l += ls, rt += rs)
            for (int k = trunc(l); k < trunc(rt); ++k) cells[size_t(y * pitch + k)] = 1;
    };
    const long long upper = std::min<long long>(row[1], bottom) - y, skip2 = std::max(-upper, 0ll);
    fill(upper);
    (tb > mb ? rt : l) = x[1] + float(skip2) * mb, (tb > mb ? rs : ls) = mb;
    fill(std::min(row[2] - row[1] - skip2, bottom - y));
}

TEST_F(shadow, outlinesfollowtherules) {
    for (int round = 0; round < 400 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        std::unique_ptr<model> m = randommodel(rng() % 8 ? 0xFFFFF : 0xBFFFF);
        t.shadowslopex = int(rng() % 601) - 300, t.shadowslopez = rng() % 4 ? int(rng() % 601) - 300 : 0;
        t.shadowshift = int(rng() % 4);
        setviewport(0, int(rng() % 2 ? 0 : rng() % 20), 64, int(rng() % 4 ? 4000 : rng() % 40), 0.0f, 1.0f);
        rasterstate.rasterclip[1] = int(rng() % 40) - 10, rasterstate.rasterclip[3] = 4000;
        shadowmask* given = rng() % 2 ? new shadowmask(pool, int(rng() % 300), int(rng() % 300)) : nullptr;
        shadowmask* made = nullptr;
        const bool refuse = refused([&] { made = modelshadow(*m, t, given); });
        ASSERT_EQ(refuse, !(m->functionmask & FM_GETSHADOW));
        if (refuse || m->facecount == 0) {
            EXPECT_EQ(made, nullptr);
            delete given;
            continue;
        }
        auto cell = [&](int v, int y, int s) { return (v - ((y * s) >> 8)) >> t.shadowshift; };
        const int x0 = cell(m->minx, t.shadowslopex > 0 ? m->maxy : m->miny, t.shadowslopex);
        const int x1 = cell(m->maxx, t.shadowslopex > 0 ? m->miny : m->maxy, t.shadowslopex);
        const int z0 = cell(m->minz, t.shadowslopez > 0 ? m->maxy : m->miny, t.shadowslopez);
        const int z1 = cell(m->maxz, t.shadowslopez > 0 ? m->miny : m->maxy, t.shadowslopez);
        ASSERT_EQ(made == given, given && (x1 - x0 + 1) * (z1 - z0 + 1) <= given->cells.length());
        EXPECT_TRUE(made->x == x0 && made->y == z0 && made->usedwidth == x1 && made->usedheight == z1);
        EXPECT_TRUE(made->width == x1 - x0 && made->height == z1 - z0);
        std::vector<uint8_t> expected(size_t(made->cells.length()));
        std::vector<int> X, Z;
        for (int i = 0; i < m->usedvertexcount; ++i) {
            const int x = int(m->vertices[i].x), y = int(m->vertices[i].y), z = int(m->vertices[i].z);
            X.push_back(int16_t(cell(x, y, t.shadowslopex) - x0)), Z.push_back(int16_t(cell(z, y, t.shadowslopez) - z0));
        }
        for (int f = 0; f < m->facecount; ++f) {
            const int a = m->facea[f], b = m->faceb[f], c = m->facec[f];
            const bool hidden = (!m->facealphas.empty() && m->facealphas[f] == 255) || (!m->facetypes.empty() && m->facetypes[f] == 2);
            const int corners[3][2] = {{X[a], Z[a]}, {X[b], Z[b]}, {X[c], Z[c]}};
            if (!hidden && (Z[b] - Z[c]) * (X[a] - X[b]) - (Z[b] - Z[a]) * (X[c] - X[b]) > 0)
                fillreference(expected, made->width, corners);
        }
        EXPECT_TRUE(samebits(expected, made->cells));
        if (made != given) delete made;
        delete given;
    }
}

}  // namespace
