// Triangles through the rasteriser on a 1024x768 target with depth: Gouraud faces of about 1000
// and 50 pixels, and faces with a 128x128 texture sampled nearest and repeated, each a batch of
// faces in random places and turns, nearer one after another so that every pixel passes depth.
#include <benchmark/benchmark.h>
#include <xmmintrin.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "raster/raster.h"
#include "target.h"
#include "util/frame.h"

namespace {

constexpr int batch = 2000;

struct trianglebatch {
    benchtarget target;
    std::vector<uint32_t> texels = std::vector<uint32_t>(128 * 256);
    std::vector<rastertriangle> faces = std::vector<rastertriangle>(batch);
    unsigned mxcsr = _mm_getcsr();

    // Right triangles with legs of `leg` pixels.
    explicit trianglebatch(float leg) {
        std::mt19937 random(5);
        std::uniform_real_distribution<float> unit(0.0f, 1.0f);
        for (uint32_t& t : texels) t = random() | 0xFF000000u;
        setviewport(0, 0, benchtarget::width, benchtarget::height, 0.0f, 1.0f);
        rasterstate.targetcolour = target.t.colourbuffer;
        rasterstate.targetdepth = target.t.depthbuffer;
        rasterstate.targetstride = benchtarget::width;
        for (int i = 0; i < batch; ++i) {
            rastertriangle& f = faces[static_cast<size_t>(i)];
            f = {};
            float x = unit(random) * (benchtarget::width - 2 * leg) + leg;
            float y = unit(random) * (benchtarget::height - 2 * leg) + leg;
            float turn = unit(random) * 6.2831853f, c = std::cos(turn) * leg, s = std::sin(turn) * leg;
            const float corner[3][2] = {{x, y}, {x - s, y + c}, {x + c, y + s}};
            const float uv[3][2] = {{0.0f, 0.0f}, {0.0f, leg}, {leg, 0.0f}};
            const float z = 0.9f - 0.8f * static_cast<float>(i) / batch;
            for (int v = 0; v < 3; ++v) {
                f.position[v][0] = corner[v][0];
                f.position[v][1] = corner[v][1];
                f.position[v][2] = f.position[v][3] = z;
                f.uv[v][0] = f.uv[v][2] = uv[v][0];
                f.uv[v][1] = f.uv[v][3] = uv[v][1];
                setcolourlanes(f.colour[v], random());
            }
            f.texels[0] = texels.data();
        }
        _mm_setcsr(librarymxcsr);
    }
    ~trianglebatch() { _mm_setcsr(mxcsr); }

    void run(benchmark::State& state, trianglefunction draw, float leg) {
        for (auto _ : state) {
            state.PauseTiming();
            std::fill_n(target.t.depthbuffer, benchtarget::width * benchtarget::height, 1.0f);
            state.ResumeTiming();
            for (const rastertriangle& f : faces) draw(&f);
            benchmark::ClobberMemory();
        }
        state.SetItemsProcessed(state.iterations() * batch * static_cast<int64_t>(leg * leg / 2));
    }
};

void gouraud(benchmark::State& state, float leg) {
    trianglebatch b(leg);
    b.run(state,
          choosetriangle(recipe::plain, shading::gouraud, alphamode::opaque, wrapmode::repeat, blended::no, true, true),
          leg);
}

void BM_rastergouraud1000(benchmark::State& state) { gouraud(state, 44.72f); }
void BM_rastergouraud50(benchmark::State& state) { gouraud(state, 10.0f); }
BENCHMARK(BM_rastergouraud1000);
BENCHMARK(BM_rastergouraud50);

void BM_rastertextured1000(benchmark::State& state) {
    trianglebatch b(44.72f);
    b.run(
        state,
        choosetriangle(recipe::plain, shading::textured, alphamode::opaque, wrapmode::repeat, blended::no, true, true),
        44.72f);
}
BENCHMARK(BM_rastertextured1000);

}  // namespace
