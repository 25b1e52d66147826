// A ground of 64 by 64 hilly tiles of 128 units, each two faces of one, one scaled, three or three
// scaled textures, seen whole through a perspective camera with fog on a 1024x768 target: the
// whole view in tiles, faces and pixels a second (its frames a second are the iterations). Beside
// it the same triangles, single-layer, by our plain textured member and by llvmpipe (one thread)
// in the same run, and tile uploads a second.
#include <benchmark/benchmark.h>
#include <xmmintrin.h>

#include <cmath>
#include <memory>
#include <vector>

#include "ground/tile.h"
#include "groundview.h"
#include "ground/upload.h"
#include "llvmpipe.h"
#include "raster/raster.h"
#include "ratio.h"
#include "target.h"
#include "toolkit/fill.h"
#include "toolkit/light.h"
#include "toolkit/projection.h"
#include "toolkit/tables.h"
#include "toolkit/view.h"
#include "trianglework.h"
#include "util/frame.h"
#include "util/memory/memorypool.h"

namespace {

constexpr int side = groundviewside, tilesize = groundviewtile, texturecount = 16;

// A tile's arrays: a square of two faces turned to the camera, on its textures by its kind.
struct hosttile {
    std::vector<int32_t> xs{0, tilesize, tilesize, 0, 0, tilesize}, zs{0, tilesize, 0, 0, tilesize, tilesize};
    std::vector<int32_t> colours, textures, scales;
    tilesource source(int x, int z) {
        const int kind = (x + z) % 4, first = (x * 7 + z * 3) % texturecount;
        colours.assign(6, 0x1234 + 97 * x + 31 * z);
        for (int k = 0; k < 6; ++k) textures.push_back(kind < 2 ? first : (first + k % 3) % texturecount);
        scales.assign(6, kind % 2 ? 64 : tilesize);
        return {6,       xs.data(),       nullptr,       zs.data(), nullptr, colours.data(),
                nullptr, textures.data(), scales.data(), 0x405060,  false,   false};
    }
};

struct groundview {
    benchtarget target;
    unsigned mxcsr = _mm_getcsr();
    std::unique_ptr<texturestore, void (*)(texturestore*)> store{maketexturestore(texturecount), destroytexturestore};
    memorypool pool{64 << 20, &target.t};
    std::unique_ptr<ground> g;
    trianglework faces;  // every face the view draws, single-layer, as screen triangles
    const std::vector<uint32_t> texels = maketexture(5);

    groundview() {
        _mm_setcsr(librarymxcsr);
        toolkit& t = target.t;
        currenttoolkit = &t;
        t.textures = store.get(), t.pool = &pool, t.shadowshift = 3;  // shadow cells of 8 units
        buildhsltorgb();
        for (int id = 0; id < texturecount; ++id) {
            const std::vector<uint32_t> pixels = maketexture(id + 1);
            std::vector<uint32_t> packed(texturesize * texturesize);
            for (int row = 0; row < texturesize; ++row)
                std::copy_n(pixels.data() + row * texturepitch, texturesize, packed.data() + row * texturesize);
            loadtexture(*store, id, store->descriptors[id] = {}, packed.data());
            gettexture(id);
        }
        // Looking down on the ground from above one edge, its far side in the fog.
        const float eye[3] = {4096, -5200, -2600}, at[3] = {4096, 0, 4200};
        float f[3], r[3], u[3];
        for (int i = 0; i < 3; ++i) f[i] = at[i] - eye[i];
        const float fl = std::sqrt(f[0] * f[0] + f[1] * f[1] + f[2] * f[2]);
        for (float& c : f) c /= fl;
        r[0] = f[2], r[1] = 0, r[2] = -f[0];
        const float rl = std::sqrt(r[0] * r[0] + r[2] * r[2]);
        for (float& c : r) c /= rl;
        u[0] = r[1] * f[2] - r[2] * f[1], u[1] = r[2] * f[0] - r[0] * f[2], u[2] = r[0] * f[1] - r[1] * f[0];
        alignas(16) float view[16] = {r[0],
                                      u[0],
                                      f[0],
                                      0,
                                      r[1],
                                      u[1],
                                      f[1],
                                      0,
                                      r[2],
                                      u[2],
                                      f[2],
                                      0,
                                      -(eye[0] * r[0] + eye[1] * r[1] + eye[2] * r[2]),
                                      -(eye[0] * u[0] + eye[1] * u[1] + eye[2] * u[2]),
                                      -(eye[0] * f[0] + eye[1] * f[1] + eye[2] * f[2]),
                                      1};
        const float near = 50, far = 14000, a = far / (far - near);
        alignas(16) float projection[16] = {1.2f, 0, 0, 0, 0, 1.6f, 0, 0, 0, 0, a, 1, 0, 0, -near * a, 0};
        setviewmatrix(t, view), setprojectionmatrix(t, projection);
        setsun(t, 0xFFF0E0, 0.6f, 0.8f, 0.3f, -0.9f, 0.3f);
        t.lightfactor = 0.5f;
        setfog(t, 0x8090A0, 4000);

        g.reset(makeground(t, side, side, tilesize, 0, 0));
        std::vector<int32_t> hills(size_t(g->heights.length()));
        for (int a = 0; a <= side; ++a)
            for (int b = 0; b <= side; ++b)
                hills[size_t(g->point(a, b))] = g->heights[g->point(a, b)] =
                    int(260 * std::sin(a * 0.31f) * std::cos(b * 0.23f) + 90 * std::sin(a * b * 0.011f));
        for (int i = 0; i < g->normals.length(); ++i) g->normals[i] = {0, -1, 0, 1};
        computenormals(*g, hills.data());
        for (int x = 0; x < side; ++x)
            for (int z = 0; z < side; ++z) {
                hosttile h;
                *g->slot(x, z) = buildtile(*g, x, z, h.source(x, z));
            }
        // The faces the view draws, as screen triangles with the texture across each tile.
        for (int x = 0; x < side; ++x)
            for (int z = 0; z < side; ++z)
                addtiletriangles(faces, static_cast<const complexground&>(**g->slot(x, z)), x, z, tilesize, t);
    }
    ~groundview() { g.reset(), _mm_setcsr(mxcsr), currenttoolkit = nullptr; }
};

groundview& scene() {
    static groundview made;
    return made;
}

void rates(benchmark::State& state, double tiles, double faces, double pixels) {
    using benchmark::Counter;
    const double n = double(state.iterations());
    if (tiles) state.counters["tiles"] = Counter(n * tiles, Counter::kIsRate);
    if (faces) state.counters["faces"] = Counter(n * faces, Counter::kIsRate);
    if (pixels) state.counters["pixels"] = Counter(n * pixels, Counter::kIsRate);
}

void view(benchmark::State& state, void (*eachframe)(ground&, int)) {
    groundview& s = scene();
    int frame = 0;
    for (auto _ : state) {
        state.PauseTiming();
        drawrectangle(s.target.t, 0, 0, benchtarget::width, benchtarget::height, 0, 0);
        cleardepth(s.target.t);
        state.ResumeTiming();
        if (eachframe) eachframe(*s.g, frame++);
        for (int x = 0; x < side; ++x)
            for (int z = 0; z < side; ++z) (*s.g->slot(x, z))->draw(s.target.t, *s.g, x, z);
        benchmark::ClobberMemory();
    }
    state.counters["frames"] = benchmark::Counter(double(state.iterations()), benchmark::Counter::kIsRate);
    rates(state, side * side, s.faces.count(), s.faces.pixels);
}

void single(benchmark::State& state) {
    groundview& s = scene();
    const std::vector<rastertriangle> faces = rasterrecords(s.faces, s.texels.data(), 0);
    const trianglefunction draw = choosegroundtriangle(widestlanes(), recipe::plain, layers::single, blended::no, shadowed::no);
    for (auto _ : state) {
        state.PauseTiming();
        cleardepth(s.target.t);
        state.ResumeTiming();
        for (const rastertriangle& f : faces) draw(&f);
        benchmark::ClobberMemory();
    }
    rates(state, 0, s.faces.count(), s.faces.pixels);
}

void peer(benchmark::State& state) {
    groundview& s = scene();
    llvmpipe* p = llvmpipe::instance();
    if (!p) return state.SkipWithError(llvmpipe::failure());
    p->load(s.faces, peerfill::textured, s.texels.data(), 0);
    drawloaded(state, *p);
    rates(state, 0, s.faces.count(), s.faces.pixels);
}

void upload(benchmark::State& state) {
    groundview& s = scene();
    hosttile h;
    const tilesource source = h.source(5, 6);
    genericground** slot = s.g->slot(5, 6);
    for (auto _ : state) {
        delete *slot;
        *slot = buildtile(*s.g, 5, 6, source);
    }
    rates(state, 1, 0, 0);
}

[[maybe_unused]] const bool registered = [] {
    benchmark::RegisterBenchmark("ground/view", [](benchmark::State& state) { view(state, nullptr); })->UseRealTime()->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("ground/single", single)->UseRealTime()->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("llvmpipe/groundsingle", peer)->UseRealTime()->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("ground/upload", upload);
    compareto("ground/single/real_time", "llvmpipe/groundsingle/real_time");
    compareto("ground/view/real_time", "llvmpipe/groundsingle/real_time");
    return true;
}();

}  // namespace

ground& groundviewground() { return *scene().g; }

void groundviewframes(benchmark::State& state, void (*eachframe)(ground&, int)) { view(state, eachframe); }
