// The demo's scene at 1024x768, one frame an iteration, drawn by the host's calls in a JVM of this
// process, as the demo draws it: frames a second and the milliseconds of each stage (ground,
// models, particles, 2D; nothing is presented). Beside it llvmpipe draws the frame's triangles:
// the ground's faces and the models' as our draws hand them on (the models in their unposed
// shapes), projected, in their colours, textured. Its threads are LP_NUM_THREADS of the
// environment, one (0, in the calling thread) unless set: `make bench` runs it with two as well.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "benchjvm.h"
#include "ground/ground.h"
#include "ground/tile.h"
#include "llvmpipe.h"
#include "model/model.h"
#include "model/render.h"
#include "ratio.h"
#include "target.h"
#include "toolkit/renderworkspace.h"
#include "toolkit/texturestore.h"
#include "toolkit/toolkit.h"
#include "trianglework.h"
#include "util/frame.h"

namespace {

constexpr int steps = 240;
const char* const stages[] = {"ground", "models", "particles", "2D"};

struct sceneframe {
    JNIEnv* env;
    jclass cls;
    jobject scene;
    jmethodID draw;

    explicit sceneframe(JNIEnv* e) : env(e) {
        cls = env->FindClass("Scene");
        jclass hostclass = env->FindClass("Scene$host");
        jobject host = env->NewObject(hostclass, env->GetMethodID(hostclass, "<init>", "()V"));
        scene = env->NewGlobalRef(env->NewObject(cls, env->GetMethodID(cls, "<init>", "(Lja;Ljava/awt/Component;II)V"),
                                                 host, nullptr, benchtarget::width, benchtarget::height));
        draw = env->GetMethodID(cls, "draw", "(II)V");
    }

    jobject field(const char* name, const char* type) const {
        return env->GetObjectField(scene, env->GetFieldID(cls, name, type));
    }
    template <class T>
    T* peer(jobject object) const {
        return reinterpret_cast<T*>(env->GetLongField(object, env->GetFieldID(env->GetObjectClass(object), "nativeid", "J")));
    }
};

sceneframe* frame() {
    static sceneframe* made = [] {
        JNIEnv* env = benchjvm();
        if (!env) return static_cast<sceneframe*>(nullptr);
        auto* f = new sceneframe(env);
        if (env->ExceptionCheck()) {
            env->ExceptionDescribe();
            return static_cast<sceneframe*>(nullptr);
        }
        return f;
    }();
    return made;
}

// The triangles of step 0: every tile's faces the view accepts and every model's, each model
// drawn again at its place to take its corners from the render client.
const trianglework& frametriangles() {
    static const trianglework work = [] {
        sceneframe& f = *frame();
        trianglework w;
        f.env->CallVoidMethod(f.scene, f.draw, 0, steps);
        const toolkit& t = *currenttoolkit;
        ground& g = *f.peer<ground>(f.field("ground", "Li;"));
        for (int x = 0; x < g.sizex; ++x)
            for (int z = 0; z < g.sizez; ++z)
                addtiletriangles(w, static_cast<const complexground&>(**g.slot(x, z)), x, z, g.tilesize, t);
        renderworkspace& client = *f.peer<renderworkspace>(f.field("client", "La;"));
        auto models = static_cast<jobjectArray>(f.field("models", "[Lh;"));
        jmethodID placement = f.env->GetMethodID(f.cls, "placement", "(II)[F");
        for (jsize k = 0; k < f.env->GetArrayLength(models); ++k) {
            model& m = *f.peer<model>(f.env->GetObjectArrayElement(models, k));
            auto array = static_cast<jfloatArray>(f.env->CallObjectMethod(f.scene, placement, k, 0));
            alignas(16) float matrix[16];
            f.env->GetFloatArrayRegion(array, 0, 16, matrix);
            runexport(f.env, [&] {
                drawmodel(m, client, matrix, nullptr);
                addmodeltriangles(w, m, client, t, *gettexture(4));
            });
        }
        return w;
    }();
    return work;
}

void ours(benchmark::State& state) {
    sceneframe* f = frame();
    if (!f) return state.SkipWithError("no JVM, or the scene could not be made");
    jobject nanos = f->field("nanos", "[J");
    std::vector<jlong> zero(5);
    f->env->SetLongArrayRegion(static_cast<jlongArray>(nanos), 0, 5, zero.data());
    int step = 0;
    for (auto _ : state) f->env->CallVoidMethod(f->scene, f->draw, step++ % steps, steps);
    if (f->env->ExceptionCheck()) {
        f->env->ExceptionDescribe();
        return state.SkipWithError("the scene's frame raised an exception");
    }
    std::vector<jlong> spent(5);
    f->env->GetLongArrayRegion(static_cast<jlongArray>(nanos), 0, 5, spent.data());
    for (int s = 0; s < 4; ++s)
        state.counters[std::string(stages[s]) + " ms"] = double(spent[s]) / 1e6 / double(state.iterations());
    state.counters["frames"] = benchmark::Counter(double(state.iterations()), benchmark::Counter::kIsRate);
    state.counters["triangles"] = frametriangles().count();
}

void peer(benchmark::State& state) {
    if (!frame()) return state.SkipWithError("no JVM, or the scene could not be made");
    const trianglework& work = frametriangles();
    llvmpipe* p = llvmpipe::instance();
    if (!p) return state.SkipWithError(llvmpipe::failure());
    p->load(work, peerfill::textured, gettexture(1)->pixels, 255);
    drawloaded(state, *p);
    const char* threads = std::getenv("LP_NUM_THREADS");
    state.SetLabel(std::string("LP_NUM_THREADS=") + (threads ? threads : "0"));
    state.counters["frames"] = benchmark::Counter(double(state.iterations()), benchmark::Counter::kIsRate);
    state.counters["triangles"] = work.count();
}

[[maybe_unused]] const bool registered = [] {
    benchmark::RegisterBenchmark("scene/frame", ours)->UseRealTime()->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("llvmpipe/scene", peer)->UseRealTime()->Unit(benchmark::kMillisecond);
    compareto("scene/frame/real_time", "llvmpipe/scene/real_time");
    return true;
}();

}  // namespace
