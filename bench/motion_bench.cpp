// Moving models: a 5,000-vertex model turned by a group step and by a framed step, beside a plain
// 3 by 3 product over the same vertices, the floating-point peak such a loop can reach; the hit
// test against a 5,000-face model and its shadow outline into a 256 by 256 mask.
#include <benchmark/benchmark.h>
#include <emmintrin.h>

#include <random>

#include "model/animation.h"
#include "model/picking.h"
#include "model/shadow.h"
#include "ratio.h"
#include "toolkit/tables.h"
#include "toolkit/view.h"

namespace {

constexpr int items = 5000;

// A walk of small steps through a box 2,000 units wide: each face joins three vertices in a row,
// so faces are small and scattered, and one group holds every vertex.
struct movingmodel {
    memorymanager pool{1 << 20};
    model m;
    toolkit t{};
    renderworkspace* workspace;

    movingmodel() {
        buildtrigtables();
        currenttoolkit = &t;
        alignas(16) const float identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
        alignas(16) const float projection[16] = {1.5f, 0, 0, 0, 0, 1.5f, 0, 0, 0, 0, 1.001f, 1, 0, 0, -2.001f, 0};
        setviewport(0, 0, 1024, 768, 0.0f, 1.0f);
        rasterstate.rasterclip[3] = 768;
        setviewmatrix(t, identity), setprojectionmatrix(t, projection);
        workspace = makeworkspace(t, 0, 0);
        m.pool = &pool;
        m.functionmask = 0xFFFFF;
        m.vertexcount = m.usedvertexcount = items;
        m.facecount = items;
        pool.allocate(m.vertices, items);
        for (auto* corner : {&m.facea, &m.faceb, &m.facec}) pool.allocate(*corner, items);
        std::mt19937 random(11);
        std::uniform_real_distribution<float> step(-20.0f, 20.0f);
        quad p{0, 0, 0, 1};
        for (int i = 0; i < items; ++i) {
            p = {std::clamp(p.x + step(random), -1000.0f, 1000.0f), std::clamp(p.y + step(random), -1000.0f, 1000.0f),
                 std::clamp(p.z + step(random), -1000.0f, 1000.0f), 1.0f};
            m.vertices[i] = p;
            m.facea[i] = uint16_t(i), m.faceb[i] = uint16_t((i + 1) % items), m.facec[i] = uint16_t((i + 2) % items);
        }
        pool.allocate(m.vertexgroups.index, 1);
        pool.allocate(m.vertexgroups.members, items);
        m.vertexgroups.index[0] = {0, items};
        for (int i = 0; i < items; ++i) m.vertexgroups.members[i] = uint16_t(i);
    }
    ~movingmodel() { destroyworkspace(workspace); }
};

// The steps turn their model; the hit test and the outline take one that stays as it was made.
movingmodel& scene(bool turning) {
    static movingmodel turned, still;
    return turning ? turned : still;
}

const int32_t groups[1] = {0};

void BM_groupstep(benchmark::State& state) {
    model& m = scene(true).m;
    animationselection s;
    s.groups = groups, s.groupcount = 1;
    for (auto _ : state) animatestep(m, ANIM_ROTATE, s, 3, 5, 7, false);
    state.SetItemsProcessed(state.iterations() * items);
}
BENCHMARK(BM_groupstep);

// A frame of the identity and no translations, so that the vertices only turn, step after step.
void BM_framedstep(benchmark::State& state) {
    model& m = scene(true).m;
    int32_t frame[14];
    for (int k = 0; k < 14; ++k) frame[k] = (k < 9 && k % 4 == 0 ? -1 : -2) * 32768 | 16384;
    animationselection s;
    s.groups = groups, s.groupcount = 1, s.masked = true;
    for (auto _ : state) animateframed(m, ANIM_ROTATE, s, 3, 5, 7, frame);
    state.SetItemsProcessed(state.iterations() * items);
}
BENCHMARK(BM_framedstep);

// Each vertex once through a 3 by 3 matrix and a vector, four lanes at a time, in order.
void BM_plain3x3(benchmark::State& state) {
    quad* v = scene(true).m.vertices.get();
    const __m128 c0 = _mm_setr_ps(0.99f, 0.1f, 0, 0), c1 = _mm_setr_ps(-0.1f, 0.99f, 0, 0), c2 = _mm_setr_ps(0, 0, 1, 0);
    const __m128 t = _mm_setzero_ps();
    for (auto _ : state) {
        for (int i = 0; i < items; ++i) {
            const __m128 p = _mm_load_ps(&v[i].x);
            __m128 r = _mm_add_ps(_mm_mul_ps(_mm_shuffle_ps(p, p, 0x00), c0), _mm_mul_ps(_mm_shuffle_ps(p, p, 0x55), c1));
            _mm_store_ps(&v[i].x, _mm_add_ps(_mm_add_ps(r, _mm_mul_ps(_mm_shuffle_ps(p, p, 0xAA), c2)), t));
        }
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * items);
}
BENCHMARK(BM_plain3x3);

// A point inside the model's box that no face's rectangle holds, so that every face is tested.
void BM_hittest(benchmark::State& state) {
    movingmodel& s = scene(false);
    alignas(16) float matrix[16] = {0.01f, 0, 0, 0, 0, 0.01f, 0, 0, 0, 0, 0.01f, 0, 0, 0, 30, 1};
    int x = 0, y = 0;
    for (int k = 0; k < 1024 * 768 && !(x && y); k += 7)
        if (hittest(s.m, *s.workspace, matrix, k % 1024, k / 1024, true) &&
            !hittest(s.m, *s.workspace, matrix, k % 1024, k / 1024, false))
            x = k % 1024, y = k / 1024;
    for (auto _ : state) benchmark::DoNotOptimize(hittest(s.m, *s.workspace, matrix, x, y, false));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_hittest);

// Cells of eight world units: the 2,000-unit model fills a 256 by 256 mask, reused each time.
void BM_shadowoutline256(benchmark::State& state) {
    movingmodel& s = scene(false);
    s.t.shadowshift = 3;
    shadowmask mask(s.pool, 257, 257);
    for (auto _ : state) benchmark::DoNotOptimize(modelshadow(s.m, s.t, &mask));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_shadowoutline256);

[[maybe_unused]] const bool compared = [] {
    compareto("BM_groupstep", "BM_plain3x3");
    compareto("BM_framedstep", "BM_plain3x3");
    return true;
}();

}  // namespace
