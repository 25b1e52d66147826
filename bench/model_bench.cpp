// Models on a 1024x768 target with a depth buffer: six textured spheres of 4,900 faces each, built
// through the construction road with a sphere mapping, turning a step every frame so that nothing
// is kept from one draw to the next. Drawn faces cover about 40 pixels each. Drawn lit by
// the sun; then with four point lights; then with fog and shade as well. llvmpipe (one thread)
// draws the same triangles in the same run: the projected corners, the final corner colours and
// the texture of the sun-lit frame, only the faces that our face tests accept.
//
// Where our time goes: the sun-lit draw with the clip rectangle cut to no rows (the model's road
// and the triangle set-up, no spans), as a share of the whole draw's time.
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "llvmpipe.h"
#include "model/build.h"
#include "model/render.h"
#include "ratio.h"
#include "target.h"
#include "toolkit/fill.h"
#include "toolkit/light.h"
#include "toolkit/tables.h"
#include "toolkit/texturestore.h"
#include "toolkit/view.h"
#include "trianglework.h"

namespace {

constexpr int rings = 50, segments = 50, copies = 6, steps = 64, radius = 500;

// A sphere of `radius` about the origin: two poles and the rings between them, faces running
// counter-clockwise seen from outside, every face textured by one sphere mapping.
struct spherearrays {
    std::vector<int32_t> x, y, z, scale{1024};
    std::vector<int16_t> a, b, c, colours, textures, direction{0, 32767, 0};
    std::vector<int8_t> mappings, maptype{3}, zero{0};
    std::vector<int32_t> shift{0};

    spherearrays() {
        auto vertex = [&](double theta, double phi) {
            x.push_back(int32_t(std::lround(radius * std::sin(theta) * std::cos(phi))));
            y.push_back(int32_t(std::lround(radius * std::cos(theta))));
            z.push_back(int32_t(std::lround(radius * std::sin(theta) * std::sin(phi))));
        };
        vertex(0, 0);
        for (int i = 1; i < rings; ++i)
            for (int j = 0; j < segments; ++j) vertex(M_PI * i / rings, 2 * M_PI * j / segments);
        vertex(M_PI, 0);
        const int south = int(x.size()) - 1;
        auto at = [](int ring, int j) { return 1 + (ring - 1) * segments + j % segments; };
        auto face = [&](int p, int q, int r) {
            a.push_back(int16_t(p)), b.push_back(int16_t(q)), c.push_back(int16_t(r));
            colours.push_back(int16_t((a.size() * 7 % 64) << 10 | 5 << 7 | 70));
        };
        for (int j = 0; j < segments; ++j) {
            face(0, at(1, j + 1), at(1, j));
            for (int i = 1; i + 1 < rings; ++i) {
                face(at(i, j), at(i, j + 1), at(i + 1, j));
                face(at(i, j + 1), at(i + 1, j + 1), at(i + 1, j));
            }
            face(south, at(rings - 1, j), at(rings - 1, j + 1));
        }
        textures.assign(a.size(), 0);
        mappings.assign(a.size(), 0);
    }

    std::unique_ptr<model> build(memorymanager& pool) const {
        auto view = [](const auto& v) {
            return hostarray<std::decay_t<decltype(v[0])>>{v.data(), int(v.size())};
        };
        modelsource s;
        s.vertexcount = s.usedvertexcount = int(x.size());
        s.x = view(x), s.y = view(y), s.z = view(z);
        s.facecount = int(a.size());
        s.a = view(a), s.b = view(b), s.c = view(c);
        s.colours = view(colours), s.textures = view(textures), s.mappings = view(mappings);
        s.mapping = {1,          view(maptype), {&direction[0], 1}, {&direction[1], 1}, {&direction[2], 1},
                     view(scale), view(scale),  view(scale),        view(zero),         view(zero),
                     view(shift), view(shift),  view(shift)};
        s.modelflags = MF_POINTLIT;
        s.ambient = 128;
        s.contrast = 768;
        return buildmodel(s, pool);
    }
};

// Copy k of the spheres at frame `step`: turned about y by the step and about x by the copy, scaled
// to 0.3, on a grid of three by two about 600 units ahead.
void placement(int step, int k, float* m) {
    const float a = float(step) * 6.2831853f / steps + float(k), tilt = 0.3f + 0.2f * float(k);
    const float ca = std::cos(a), sa = std::sin(a), ct = std::cos(tilt), st = std::sin(tilt), s = 0.3f;
    const float rows[16] = {ca * s,  -sa * st * s, -sa * ct * s, 0, 0, ct * s, -st * s, 0,
                            sa * s,  ca * st * s,  ca * ct * s,  0, (float(k % 3) - 1) * 355.0f,
                            (float(k / 3) - 0.5f) * 400.0f, 600.0f, 1};
    for (int i = 0; i < 16; ++i) m[i] = rows[i];
}

enum class scenery { sun, pointlit, fogshade };

// The toolkit, the texture store with the spheres' one texture, and the sphere.
struct modelscene {
    benchtarget target;
    libraryfloats floats;
    toolkit* previous = currenttoolkit;
    texturestore* store = maketexturestore(1);
    memorymanager pool{1 << 22};
    renderworkspace* workspace = makeworkspace(target.t, 0, 0);
    std::unique_ptr<model> sphere;

    explicit modelscene(scenery kind) {
        toolkit& t = target.t;
        currenttoolkit = &t;
        buildtrigtables();
        buildhsltorgb();
        t.textures = store;
        texturedescriptor& d = store->descriptors[0] = {};
        d.flagfive = d.flagsix = true;
        std::vector<uint32_t> texels(texturesize * texturesize);
        for (int i = 0; i < texturesize * texturesize; ++i)
            texels[i] = (i >> 4 ^ i >> 11) & 1 ? 0xFFF0E0C0u : 0xFF806040u + uint32_t(i % 61);
        loadtexture(*store, 0, d, texels.data());
        const float identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
        const float f = 1.5f, nearz = 1.0f, farz = 5000.0f;
        const float projection[16] = {f * 0.75f, 0, 0, 0, 0, f, 0, 0, 0, 0, (farz + nearz) / (farz - nearz), 1,
                                      0,         0, -2 * farz * nearz / (farz - nearz), 0};
        setviewmatrix(t, identity);
        setprojectionmatrix(t, projection);
        setsun(t, 0xFFF0E0, 0.9f, 0.25f, 0.5f, -0.6f, -0.62f);
        t.lightfactor = 0.45f;
        if (kind != scenery::sun) {
            const int lights[4 * 5] = {-400, 200, 450, 300, 0xFF4020, 0, -250, 450, 300, 0x20FF40,
                                       400,  200, 450, 300, 0x2040FF, 0, 250,  400, 300, 0xFFFFFF};
            const float intensities[4] = {1, 1, 1, 1};
            setpointlights(t, 4, lights, intensities);
        }
        if (kind == scenery::fogshade) {
            setfog(t, 0x8090A0, 4500);
            setshade(t, 400, 0x303050, 1200);
            t.fogoverride = 1;
        }
        sphere = spherearrays().build(pool);
    }
    ~modelscene() {
        sphere.reset();
        destroyworkspace(workspace);
        destroytexturestore(store);
        currenttoolkit = previous;
    }

    // One frame: every copy under its matrix of the frame; the member of the last one.
    int draw(int step) {
        int member = -1;
        alignas(16) float m[16];
        for (int k = 0; k < copies; ++k) {
            placement(step, k, m);
            member = drawmodel(*sphere, *workspace, m, nullptr);
        }
        return member;
    }
};

// The triangles of frame 0 as our draw hands them on: what the face tests accept, the corners as
// projected, their colours after the sun and the texture coordinates with the texture's offsets.
const trianglework& frametriangles() {
    static const trianglework work = [] {
        modelscene s(scenery::sun);
        const model& m = *s.sphere;
        const texturerecord& r = *gettexture(0);
        trianglework w;
        w.pixels = 0;
        alignas(16) float matrix[16];
        for (int k = 0; k < copies; ++k) {
            placement(0, k, matrix);
            drawmodel(*s.sphere, *s.workspace, matrix, nullptr);
            addmodeltriangles(w, m, *s.workspace, s.target.t, r);
        }
        return w;
    }();
    return work;
}

void rates(benchmark::State& state, const modelscene& s, bool pixels) {
    using benchmark::Counter;
    const double frames = double(state.iterations());
    state.counters["faces"] = Counter(frames * copies * s.sphere->facecount, Counter::kIsRate);
    state.counters["drawn"] = Counter(frames * frametriangles().count(), Counter::kIsRate);
    if (pixels) state.counters["pixels"] = Counter(frames * frametriangles().pixels, Counter::kIsRate);
}

void ours(benchmark::State& state, scenery kind, bool spans) {
    modelscene s(kind);
    if (!spans) setcliprect(s.target.t, 0, 0, benchtarget::width, 0);
    const modelmember member = modelmembers[size_t(s.draw(0))];
    if ((member.get<memberlight>() == memberlight::pointlit) != (kind != scenery::sun) ||
        (member.get<memberfog>() == memberfog::fog) != (kind == scenery::fogshade)) {
        state.SkipWithError("the scene did not choose its member");
        return;
    }
    int step = 0;
    for (auto _ : state) {
        state.PauseTiming();
        cleardepth(s.target.t);
        state.ResumeTiming();
        s.draw(++step % steps);
        benchmark::ClobberMemory();
    }
    rates(state, s, spans);
}

void peer(benchmark::State& state) {
    llvmpipe* p = llvmpipe::instance();
    if (!p) {
        state.SkipWithError(llvmpipe::failure());
        return;
    }
    const trianglework& work = frametriangles();
    std::vector<uint32_t> texels(texturesize * texturepitch);
    {
        modelscene s(scenery::sun);
        const uint32_t* atlas = gettexture(0)->pixels;
        texels.assign(atlas, atlas + texturesize * texturepitch);
    }
    p->load(work, peerfill::textured, texels.data(), 255);
    drawloaded(state, *p);
    using benchmark::Counter;
    state.counters["drawn"] = Counter(double(state.iterations()) * work.count(), Counter::kIsRate);
    state.counters["pixels"] = Counter(double(state.iterations()) * work.pixels, Counter::kIsRate);
}

[[maybe_unused]] const bool registered = [] {
    const std::pair<const char*, scenery> kinds[] = {
        {"sun", scenery::sun}, {"pointlit", scenery::pointlit}, {"fogshade", scenery::fogshade}};
    benchmark::RegisterBenchmark("llvmpipe/model", peer)->UseRealTime();
    for (const auto& [name, kind] : kinds) {
        const std::string named = std::string("model/") + name;
        benchmark::RegisterBenchmark(named.c_str(), ours, kind, true)->UseRealTime();
        compareto((named + "/real_time").c_str(), "llvmpipe/model/real_time");
    }
    benchmark::RegisterBenchmark("modelroad/sun", ours, scenery::sun, false)->UseRealTime();
    shareof("modelroad/sun/real_time", "model/sun/real_time");
    return true;
}();

}  // namespace
