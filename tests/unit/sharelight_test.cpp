// Shared light, hit tests and markers against the rules over random models: the sums of touching
// vertices and who gets them, the stamp, the refusal; the projected box and the faces' screen
// rectangles; marker positions through the matrix.
#include "model/picking.h"
#include "model/sharelight.h"
#include "motiontest.h"
#include "toolkit/projection.h"
#include "toolkit/view.h"

namespace {

class sharelighttest : public motiontest {
protected:
    renderworkspace* w = makeworkspace(t, 0, 0);
    rasterstatedata saved = rasterstate;
    void TearDown() override { destroyworkspace(w), rasterstate = saved, motiontest::TearDown(); }
};

TEST_F(sharelighttest, touchingverticessumeachothersnormals) {
    for (int round = 0; round < 150 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        randomhostmodel h(rng, texturecount);
        h.s.functionmask = rng() % 8 ? 0xFFFFF : 0xEFFFF;
        std::unique_ptr<model> a = buildmodel(h.s, pool);
        const int off[3] = {int(rng() % 9) - 4, int(rng() % 9) - 4, int(rng() % 9) - 4};
        std::vector<int32_t>* axes[3] = {&h.x, &h.y, &h.z};
        for (int k = 0; k < 3; ++k)  // b stands at the offset, so that its vertices touch a's, or now and then not
            for (int32_t& v : *axes[k]) v -= rng() % 4 ? off[k] : 0;
        h.s.functionmask = 0xFFFFF;
        std::unique_ptr<model> b = buildmodel(h.s, pool);
        const uint16_t stamp = w->stamp;
        if (refused([&] { sharelight(*a, *b, *w, off[0], off[1], off[2]); })) {
            EXPECT_TRUE(!(a->functionmask & FM_SHARELIGHT) && a->normals.empty() && w->stamp == stamp);
            continue;
        }
        EXPECT_EQ(w->stamp, uint16_t(stamp + 1));
        std::vector<quad> sa(size_t(a->usedvertexcount)), sb(size_t(b->usedvertexcount));
        bool joined = false;
        for (int i = 0; i < a->usedvertexcount; ++i) {
            const quad &v = a->vertices[i], &n = a->normals[i];
            const float p[3] = {v.x - float(off[0]), v.y - float(off[1]), v.z - float(off[2])};
            if (n.w == 0 || p[1] < b->miny || p[1] > b->maxy || p[0] < b->minx || p[0] > b->maxx || p[2] < b->minz ||
                p[2] > b->maxz)
                continue;
            for (int j = 0; j < b->usedvertexcount; ++j) {
                const quad &q = b->vertices[j], &m = b->normals[j];
                if (!(std::fabs(p[0] - q.x) < 0.01f && std::fabs(p[1] - q.y) < 0.01f && std::fabs(p[2] - q.z) < 0.01f) ||
                    m.w == 0)
                    continue;
                joined = true;
                if (sa[i].w == 0) sa[i] = n;
                if (sb[j].w == 0) sb[j] = m;
                sa[i] = {sa[i].x + m.x, sa[i].y + m.y, sa[i].z + m.z, sa[i].w + m.w};
                sb[j] = {sb[j].x + n.x, sb[j].y + n.y, sb[j].z + n.z, sb[j].w + n.w};
            }
        }
        EXPECT_TRUE(joined ? samebits(sa, a->sharednormals) && samebits(sb, b->sharednormals)
                           : a->sharednormals.empty() && b->sharednormals.empty());
        EXPECT_TRUE(a->boundsvalid && b->boundsvalid);
    }
}

// Hits by the box alone and by faces, through a camera on random models; markers of their vertices.
TEST_F(sharelighttest, hitsandmarkersfollowtherules) {
    alignas(16) const float view[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    alignas(16) const float projection[16] = {1.5f, 0, 0, 0, 0, 1.5f, 0, 0, 0, 0, 1.001f, 1, 0, 0, -2.001f, 0};
    setviewport(0, 0, 64, 48, 0.0f, 1.0f), setviewmatrix(t, view), setprojectionmatrix(t, projection);
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
        float l = 1e5f, r = -1e5f, top = 1e5f, bottom = -1e5f;
        for (int c = 0; c < 8; ++c)
            if (auto s = screen(c & 1 ? m->maxx : m->minx, c & 2 ? m->maxy : m->miny, c & 4 ? m->maxz : m->minz); s[2] >= 0)
                l = std::min(l, s[0]), r = std::max(r, s[0]), top = std::min(top, s[1]), bottom = std::max(bottom, s[1]);
        bool hit = m->facecount && l < x && x < r && top < y && y < bottom;
        for (int f = 0; hit && !boxonly && f <= m->facecount; ++f) {
            if (f == m->facecount) hit = false;
            else if (auto a = screen(m->vertices[m->facea[f]].x, m->vertices[m->facea[f]].y, m->vertices[m->facea[f]].z),
                          b = screen(m->vertices[m->faceb[f]].x, m->vertices[m->faceb[f]].y, m->vertices[m->faceb[f]].z),
                          c = screen(m->vertices[m->facec[f]].x, m->vertices[m->facec[f]].y, m->vertices[m->facec[f]].z);
                     a[2] >= 0 && b[2] >= 0 && y >= std::min({a[1], b[1], c[1]}) && y <= std::max({a[1], b[1], c[1]}) &&
                     x >= std::min({a[0], b[0], c[0]}) && x <= std::max({a[0], b[0], c[0]}))
                break;
        }
        EXPECT_EQ(hittest(*m, *w, matrix, x, y, boxonly), hit) << round;

        m->markertriangles = int(rng() % 3), m->markerpoints = int(rng() % 3);
        pool.allocate(m->markerlist, m->markertriangles * 3 + m->markerpoints);
        std::vector<int> out(size_t(m->markerlist.length() * 3)), expected(out.size());
        for (int k = 0; k < m->markerlist.length(); ++k) {
            const quad& v = m->vertices[m->markerlist[k] = int(rng() % uint32_t(m->vertexcount))];
            for (int c = 0; c < 3; ++c)
                expected[3 * k + c] = int(v.x * matrix[c] + v.y * matrix[4 + c] + v.z * matrix[8 + c] + matrix[12 + c]);
        }
        markerpositions(*m, matrix, out.data());
        EXPECT_EQ(out, expected) << round;
    }
}

}  // namespace
