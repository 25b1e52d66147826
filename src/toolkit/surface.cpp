#include "toolkit/surface.h"

#include <cstdlib>

#include "sprite/sprite.h"
#include "util/frame.h"
#include "util/peer.h"

surface* makesurface(int width, int height) {
    auto* s = new surface{width, height, nullptr};
    size_t pixels = width > 0 && height > 0 ? static_cast<size_t>(width) * static_cast<size_t>(height) : 0;
    size_t bytes = (pixels * 4 + 63) & ~size_t{63};
    s->buffer = static_cast<float*>(aligned_alloc(64, bytes ? bytes : 64));
    return s;
}

void destroysurface(surface* s) {
    if (!s) return;
    free(s->buffer);
    delete s;
}

void selectoffscreen(toolkit& t, sprite* colour, surface* depth) {
    if (colour && depth && (depth->width < colour->width || depth->height < colour->height))
        fail<IllegalArgumentException>();
    rasterstatedata& r = rasterstate;
    r.targetstride = 0;
    t.coloursurface = colour;
    t.colourbuffer = colour ? colour->pixels : nullptr;
    if (colour) {
        t.width = colour->width;
        t.height = colour->height;
        r.targetstride = colour->stride;
    }
    t.depthsurface = depth;
    t.depthbuffer = depth ? depth->buffer : nullptr;
    if (depth && !colour) {
        t.width = depth->width;
        t.height = depth->height;
        r.targetstride = depth->width;
    }
    setcliprect(t, 0, 0, t.width, t.height);
    r.targetcolour = t.colourbuffer;
    r.targetdepth = t.depthbuffer;
    setviewport(0, 0, t.width, t.height, r.depthrange[0], r.depthrange[1]);
}

extern "C" {

JNIEXPORT void JNICALL Java_oa_g(JNIEnv* env, jobject self, jint w, jint h) {
    runexport(env, [&] { setpeer(env, hostclass::oa, self, makesurface(w, h)); });
}

JNIEXPORT void JNICALL Java_oa_za(JNIEnv* env, jobject self, jlong handle, jint) {
    runexport(env, [&] {
        destroysurface(peerat<surface>(handle));
        setpeer(env, hostclass::oa, self, nullptr);
    });
}

JNIEXPORT void JNICALL Java_ja_d(JNIEnv* env, jobject, jlong colour, jlong depth) {
    runexport(env, [&] {
        selectoffscreen(*currenttoolkit, peerat<sprite>(colour), peerat<surface>(depth));
    });
}

}  // extern "C"
