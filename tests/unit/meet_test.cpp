// Models that meet, over random models: shared light against the sums of touching vertices, hit tests
// against the projected box and faces' screen rectangles, shadow outlines against the cells of each fill.
#include <bit>

#include "model/picking.h"
#include "model/shadow.h"
#include "model/sharelight.h"
#include "raster/cornerorder.h"
#include "motiontest.h"
#include "rasterreference.h"
#include "toolkit/projection.h"

namespace {

class meet : public motiontest {
protected:
    renderworkspace* w = makeworkspace(t, 0, 0);
    rasterstatedata saved = rasterstate;
    void TearDown() override { destroyworkspace(w), rasterstate = saved, motiontest::TearDown(); }
};

TEST_F(meet, touchingverticessumeachothersnormals) {
    for (int round = 0; round < 150 && !HasFailure(); ++round) {
        randomhostmodel h(rng, texturecount);
        h.s.functionmask = rng() % 8 ? 0xFFFFF : 0xEFFFF;
        std::unique_ptr<model> a = buildmodel(h.s, pool);
        const float off[3] = {float(rng() % 9) - 4, float(rng() % 9) - 4, float(rng() % 9) - 4};
        for (int k = 0; k < 3; ++k)  // b stands at the offset, so that its vertices touch a's, or now and then not
            for (int32_t& v : *std::array{&h.x, &h.y, &h.z}[k]) v -= rng() % 4 ? int(off[k]) : 0;
        h.s.functionmask = 0xFFFFF;
        std::unique_ptr<model> b = buildmodel(h.s, pool);
        const uint16_t stamp = w->stamp;
        if (refused([&] { sharelight(*a, *b, *w, int(off[0]), int(off[1]), int(off[2])); })) {
            EXPECT_TRUE(!(a->functionmask & FM_SHARELIGHT) && a->normals.empty() && w->stamp == stamp) << round;
            continue;
        }
        std::vector<quad> sa(size_t(a->usedvertexcount)), sb(size_t(b->usedvertexcount));
        auto add = [](quad& sum, const quad& start, const quad& n) {
            sum = sum.w == 0 ? start : sum, sum = {sum.x + n.x, sum.y + n.y, sum.z + n.z, sum.w + n.w};
        };
        bool joined = false;
        for (int i = 0; i < a->usedvertexcount; ++i) {
            const quad v = a->vertices[i], n = a->normals[i];
            const float p[3] = {v.x - off[0], v.y - off[1], v.z - off[2]};
            if (n.w == 0 || p[1] < b->miny || p[1] > b->maxy || p[0] < b->minx || p[0] > b->maxx || p[2] < b->minz ||
                p[2] > b->maxz)
                continue;
            for (int j = 0; j < b->usedvertexcount; ++j) {
                const quad q = b->vertices[j], m = b->normals[j];
                if (std::fabs(p[0] - q.x) < 0.01f && std::fabs(p[1] - q.y) < 0.01f && std::fabs(p[2] - q.z) < 0.01f && m.w)
                    joined = true, add(sa[i], n, m), add(sb[j], m, n);
            }
        }
        EXPECT_TRUE(joined ? samebits(sa, a->sharednormals) && samebits(sb, b->sharednormals)
                           : a->sharednormals.empty() && b->sharednormals.empty()) << round;
        EXPECT_TRUE(w->stamp == uint16_t(stamp + 1) && a->boundsvalid && b->boundsvalid) << round;
    }
}

// Hits by the box alone and by faces, through a camera on random models.
TEST_F(meet, hitsfollowtherules) {
    randomscene(t, *store, rng), setviewport(0, 0, 64, 48, 0.0f, 1.0f);  // a camera down z; its lights do not count
    for (int round = 0; round < 400 && !HasFailure(); ++round) {
        std::unique_ptr<model> m = randommodel(0xFFFFF);
        alignas(16) float matrix[16] = {}, mvp[16];
        for (int i = 0; i < 12; ++i) matrix[i] = i % 4 == 3 ? 0.0f : float(int(rng() % 25) - 12) / 1000.0f;
        matrix[12] = float(int(rng() % 10) - 5), matrix[14] = float(rng() % 40), matrix[15] = 1;
        const int x = int(rng() % 64), y = int(rng() % 48);
        const bool boxonly = rng() % 3 == 0;
        multiplymatrices(matrix, t.viewprojection, mvp);
        auto screen = [&](float px, float py, float pz) {
            alignas(16) float s[4];
            _mm_store_ps(s, projectpoint(_mm_setr_ps(px, py, pz, 1), mvp));
            return std::array<float, 3>{s[0], s[1], s[2]};
        };
        auto corner = [&](int v) { return screen(m->vertices[v].x, m->vertices[v].y, m->vertices[v].z); };
        float l = 1e5f, r = -1e5f, top = 1e5f, bottom = -1e5f;
        for (int c = 0; c < 8; ++c)
            if (auto s = screen(c & 1 ? m->maxx : m->minx, c & 2 ? m->maxy : m->miny, c & 4 ? m->maxz : m->minz); s[2] >= 0)
                l = std::min(l, s[0]), r = std::max(r, s[0]), top = std::min(top, s[1]), bottom = std::max(bottom, s[1]);
        auto within = [](float v, float a, float b, float c) { return v >= std::min({a, b, c}) && v <= std::max({a, b, c}); };
        bool face = false;
        for (int f = 0; f < m->facecount; ++f) {
            const auto a = corner(m->facea[f]), b = corner(m->faceb[f]), c = corner(m->facec[f]);
            face = face || (a[2] >= 0 && b[2] >= 0 && within(y, a[1], b[1], c[1]) && within(x, a[0], b[0], c[0]));
        }
        const bool hit = m->facecount && l < x && x < r && top < y && y < bottom && (boxonly || face);
        EXPECT_EQ(hittest(*m, *w, matrix, x, y, boxonly), hit) << round;
    }
}

// Corners sorted by the one chain of comparisons, edges stepped by the approximate reciprocal of each
// height from the top corner, rows clipped above and below, cells set from the truncated left edge.
void fillreference(std::vector<uint8_t>& cells, int pitch, const int c[3][2]) {
    using namespace rasterreference;
    int o[3];
    cornerorder(c[0][1], c[1][1], c[2][1], o);
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

TEST_F(meet, shadowoutlinesfollowtherules) {
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
        EXPECT_TRUE(made->x == x0 && made->y == z0 && made->usedwidth == x1 && made->usedheight == z1 &&
                    made->width == x1 - x0 && made->height == z1 - z0);
        std::vector<uint8_t> expected(size_t(made->cells.length()));
        std::vector<int> X, Z;
        for (int i = 0; i < m->usedvertexcount; ++i) {
            const int x = int(m->vertices[i].x), y = int(m->vertices[i].y), z = int(m->vertices[i].z);
            X.push_back(int16_t(cell(x, y, t.shadowslopex) - x0)), Z.push_back(int16_t(cell(z, y, t.shadowslopez) - z0));
        }
        for (int f = 0; f < m->facecount; ++f) {
            const int a = m->facea[f], b = m->faceb[f], c = m->facec[f];
            const bool shown = (m->facealphas.empty() || m->facealphas[f] != 255) && (m->facetypes.empty() || m->facetypes[f] != 2);
            const int corners[3][2] = {{X[a], Z[a]}, {X[b], Z[b]}, {X[c], Z[c]}};
            if (shown && (Z[b] - Z[c]) * (X[a] - X[b]) - (Z[b] - Z[a]) * (X[c] - X[b]) > 0)
                fillreference(expected, made->width, corners);
        }
        EXPECT_TRUE(samebits(expected, made->cells));
        if (made != given) delete made;
        delete given;
    }
}

}  // namespace
