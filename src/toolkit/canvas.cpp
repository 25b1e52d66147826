#include "toolkit/canvas.h"

#include <cstdlib>

#include "toolkit/fill.h"
#include "toolkit/toolkit.h"
#include "util/assertion.h"
#include "util/frame.h"
#include "util/jniseam.h"
#include "util/peer.h"

namespace {

// Both buffers are 64-byte aligned; their contents are left as the allocator gives them.
void allocatebuffers(java_canvas& c, int w, int h) {
    c.width = w;
    c.height = h;
    size_t pixels = w > 0 && h > 0 ? static_cast<size_t>(w) * static_cast<size_t>(h) : 0;
    size_t bytes = (pixels * 4 + 63) & ~size_t{63};
    c.colour = static_cast<uint32_t*>(aligned_alloc(64, bytes ? bytes : 64));
    c.depth = static_cast<float*>(aligned_alloc(64, bytes ? bytes : 64));
}

void freebuffers(java_canvas& c) {
    free(c.colour);
    free(c.depth);
    c.colour = nullptr;
    c.depth = nullptr;
}

void selectcanvas(toolkit& t, java_canvas* c) {
    t.coloursurface = nullptr;
    rasterstatedata& r = rasterstate;
    if (!c) {
        r.targetcolour = nullptr;
        r.targetdepth = nullptr;
        r.targetstride = 0;
        setviewport(0, 0, t.width, t.height, r.depthrange[0], r.depthrange[1]);
        return;
    }
    t.colourbuffer = c->colour;
    t.depthbuffer = c->depth;
    t.width = c->width;
    t.height = c->height;
    setcliprect(t, 0, 0, t.width, t.height);
    r.targetcolour = c->colour;
    r.targetdepth = c->depth;
    r.targetstride = c->width;
    setviewport(0, 0, t.width, t.height, r.depthrange[0], r.depthrange[1]);
    // Selecting a canvas always wipes it.
    drawrectangle(t, 0, 0, t.width, t.height, 0, 0);
    cleardepth(t);
}

}  // namespace

void showcanvas(JNIEnv* env, const java_canvas& c, int x, int y, int w, int h) {
    WEXEL_ASSERT(c.component, "java_canvas", "toolkit/canvas", 194);
    present(env, c, 0, 0, x, y, w, h);
}

extern "C" {

JNIEXPORT void JNICALL Java_za_n(JNIEnv* env, jobject self, jobject, jobject component, jint w, jint h) {
    runexport(env, [&] {
        auto* c = new java_canvas{};
        {
            hostcall guard;
            JavaVM* vm;
            env->GetJavaVM(&vm);
            c->vm = hostof(vm);
            c->component = hostof(env->NewWeakGlobalRef(component));
        }
        allocatebuffers(*c, w, h);
        setpeer(env, hostclass::za, self, c);
    });
}

JNIEXPORT void JNICALL Java_za_ma(JNIEnv* env, jobject self, jint) {
    runexport(env, [&] {
        auto* c = getpeer<java_canvas>(env, hostclass::za, self);
        if (c) {
            freebuffers(*c);
            {
                hostcall guard;
                env->DeleteWeakGlobalRef(jniof(c->component));
            }
            delete c;
        }
        setpeer(env, hostclass::za, self, nullptr);
    });
}

// Content is lost, and a toolkit that targets this canvas is not told.
JNIEXPORT void JNICALL Java_za_wa(JNIEnv* env, jobject self, jobject component, jint w, jint h) {
    runexport(env, [&] {
        auto* c = getpeer<java_canvas>(env, hostclass::za, self);
        freebuffers(*c);
        {
            hostcall guard;
            env->DeleteWeakGlobalRef(jniof(c->component));
            c->component = hostof(env->NewWeakGlobalRef(component));
        }
        allocatebuffers(*c, w, h);
    });
}

// Puts the rectangle at the component's origin, wherever it lies in the canvas.
JNIEXPORT void JNICALL Java_za_H(JNIEnv* env, jobject self, jint x, jint y, jint w, jint h) {
    runexport(env, [&] {
        showcanvas(env, *getpeer<java_canvas>(env, hostclass::za, self), x, y, w, h);
    });
}

JNIEXPORT void JNICALL Java_za_CA(JNIEnv* env, jobject self, jint x, jint y, jint w, jint h, jint ox, jint oy) {
    runexport(env, [&] {
        auto* c = getpeer<java_canvas>(env, hostclass::za, self);
        present(env, *c, x, y, x + ox, y + oy, w, h);
    });
}

JNIEXPORT void JNICALL Java_ja_PA(JNIEnv* env, jobject, jobject canvas) {
    runexport(env, [&] {
        java_canvas* c = canvas ? getpeer<java_canvas>(env, hostclass::za, canvas) : nullptr;
        selectcanvas(*currenttoolkit, c);
    });
}

}  // extern "C"
