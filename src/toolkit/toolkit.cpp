#include "toolkit/toolkit.h"

#include <cstdlib>
#include <new>

#include "toolkit/tables.h"
#include "toolkit/texturestore.h"
#include "util/arraypin.h"
#include "util/crash.h"
#include "util/frame.h"
#include "util/jniseam.h"
#include "util/peer.h"
#include "util/truncate.h"

rasterstatedata rasterstate = [] {
    rasterstatedata r{};
    r.signmask[2] = 0x80000000u;
    r.fogstart = 1.0f;
    return r;
}();

toolkit* currenttoolkit;
int modelcount;
int tilecount;

namespace {

void setidentity(float* m) {
    for (int i = 0; i < 16; ++i) m[i] = (i % 5 == 0) ? 1.0f : 0.0f;
}

toolkit* maketoolkit(JNIEnv* env, jobject host, jobject source, int count) {
    void* memory = aligned_alloc(alignof(toolkit), sizeof(toolkit));
    if (!memory) return nullptr;
    toolkit* t = new (memory) toolkit{};
    t->state = 1;
    t->ambient = 0.69921875f;
    t->diffuse = 1.2f;
    t->lightfactor = 1.15234375f;
    setidentity(t->viewmatrix);
    setidentity(t->projectionmatrix);
    setidentity(t->viewprojection);
    t->fogdistance = 255.0f;
    t->shadowcell = 8;
    t->shadowshift = 3;
    startcrashreporting(env);
    {
        hostcall guard;
        JavaVM* vm;
        env->GetJavaVM(&vm);
        t->vm = hostof(vm);
        t->hostref = hostof(env->NewWeakGlobalRef(host));
    }
    buildtrigtables();
    buildhsltorgb();
    // Without a source there are no textures.
    if (source && (t->textures = maketexturestore(count))) {
        hostcall guard;
        t->textures->source = hostof(env->NewWeakGlobalRef(source));
    }
    findhostmethods(env);
    return t;
}

}  // namespace

void setviewport(int x, int y, int w, int h, float nearz, float farz) {
    rasterstatedata& r = rasterstate;
    r.viewport[0] = x;
    r.viewport[1] = y;
    r.viewport[2] = w;
    r.viewport[3] = h;
    r.depthrange[0] = nearz;
    r.depthrange[1] = farz;
    float halfw = static_cast<float>(w) * 0.5f;
    float halfh = static_cast<float>(h) * 0.5f;
    float halfz = (farz - nearz) * 0.5f;
    r.viewportscale[0] = halfw;
    r.viewportscale[1] = halfh;
    r.viewportscale[2] = halfz;
    r.viewportscale[3] = 1.0f;
    r.viewportoffset[0] = static_cast<float>(x) + halfw;
    r.viewportoffset[1] = static_cast<float>(y) + halfh;
    r.viewportoffset[2] = nearz + halfz;
    r.viewportoffset[3] = 0.0f;
    r.screenbounds[0] = static_cast<int16_t>(x + w);
    r.screenbounds[1] = static_cast<int16_t>(y + h);
    r.screenbounds[2] = static_cast<int16_t>(truncate(farz * 32767.0f));
    r.screenbounds[3] = static_cast<int16_t>(truncate(nearz * 32767.0f));
    r.screenbounds[4] = static_cast<int16_t>(x);
    r.screenbounds[5] = static_cast<int16_t>(y);
    r.screenbounds[6] = 0;
    r.screenbounds[7] = 0;
}

void setcliprect(toolkit& t, int left, int top, int right, int bottom) {
    t.cliprect[0] = left;
    t.cliprect[1] = top;
    t.cliprect[2] = right;
    t.cliprect[3] = bottom;
    rasterstate.rasterclip[0] = left;
    rasterstate.rasterclip[1] = top;
    rasterstate.rasterclip[2] = right - left;
    rasterstate.rasterclip[3] = bottom - top;
}

extern "C" {

JNIEXPORT void JNICALL Java_ja_q(JNIEnv* env, jobject self, jobject source, jint count, jint) {
    runexport(env, [&] {
        toolkit* t = maketoolkit(env, self, source, count);
        setpeer(env, hostclass::ja, self, t);
        currenttoolkit = t;
    });
}

// Leaves currenttoolkit as it was: later calls reach freed memory, as the host was told.
JNIEXPORT void JNICALL Java_ja_ma(JNIEnv* env, jobject self, jint) {
    runexport(env, [&] {
        toolkit* t = getpeer<toolkit>(env, hostclass::ja, self);
        if (t) {
            stopcrashreporting();
            {
                hostcall guard;
                env->DeleteWeakGlobalRef(jniof(t->hostref));
                if (t->textures) env->DeleteWeakGlobalRef(jniof(t->textures->source));
            }
            destroytexturestore(t->textures);
            t->~toolkit();
            free(t);
        }
        setpeer(env, hostclass::ja, self, nullptr);
    });
}

JNIEXPORT void JNICALL Java_ja_da(JNIEnv* env, jobject) {
    runexport(env, [&] { currenttoolkit->marker = 1; });
}

JNIEXPORT jint JNICALL Java_ja_j(JNIEnv*, jobject) { return 0; }

JNIEXPORT jint JNICALL Java_ja_oa(JNIEnv*, jobject) {
    int n = modelcount;
    modelcount = 0;
    return n;
}

JNIEXPORT void JNICALL Java_ja_b(JNIEnv*, jobject, jint, jint, jint, jint, jint) {}

JNIEXPORT void JNICALL Java_ja_N(JNIEnv*, jobject, jint, jint, jint, jint, jint, jint, jint, jint, jint) {}

JNIEXPORT void JNICALL Java_ja_k(JNIEnv* env, jobject) {
    runexport(env, [&] {
        toolkit& t = *currenttoolkit;
        setviewport(0, 0, t.width, t.height, rasterstate.depthrange[0], rasterstate.depthrange[1]);
    });
}

JNIEXPORT void JNICALL Java_ja_A(JNIEnv* env, jobject, jint x, jint y, jint w, jint h) {
    runexport(env, [&] {
        setviewport(x, y, w, h, rasterstate.depthrange[0], rasterstate.depthrange[1]);
    });
}

JNIEXPORT void JNICALL Java_ja_GA(JNIEnv* env, jobject, jfloat nearz, jfloat farz) {
    runexport(env, [&] {
        const int* v = rasterstate.viewport;
        setviewport(v[0], v[1], v[2], v[3], nearz, farz);
    });
}

JNIEXPORT void JNICALL Java_ja_xa(JNIEnv* env, jobject, jintArray out) {
    runexport(env, [&] {
        arraypin<pinkind::intcriticalwrite> pin(env, out);
        for (int i = 0; i < 4; ++i) pin[i] = rasterstate.viewport[i];
    });
}

JNIEXPORT void JNICALL Java_ja_n(JNIEnv* env, jobject, jobject pool) {
    runexport(env, [&] { currenttoolkit->pool = getpeer<memorypool>(env, hostclass::ba, pool); });
}

}  // extern "C"
