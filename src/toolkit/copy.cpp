#include "toolkit/copy.h"

#include <cstring>

#include "sprite/sprite.h"
#include "toolkit/surface.h"
#include "util/frame.h"
#include "util/peer.h"

void copytargetblock(toolkit& t, sprite* colour, surface* depth, int sx, int sy, int w, int h, int dx, int dy,
                     bool withcolour, bool withdepth, copyway way) {
    withcolour = withcolour && t.colourbuffer;
    withdepth = withdepth && t.depthbuffer;
    if (w <= 0 || !(withcolour || withdepth)) return;
    const long long pitch = colour ? colour->width : depth->width;
    const size_t bytes = static_cast<size_t>(w) * 4;
    auto move = [&](void* target, void* other) {
        if (way == copyway::fromtarget)
            memcpy(other, target, bytes);
        else
            memcpy(target, other, bytes);
    };
    for (int j = 0; j < h; ++j) {
        long long at = static_cast<long long>(sy + j) * t.width + sx;
        long long there = (dy + j) * pitch + dx;
        if (withcolour) move(t.colourbuffer + at, colour->pixels + there);
        if (withdepth) move(t.depthbuffer + at, depth->buffer + there);
    }
}

namespace {

void copyexport(JNIEnv* env, jlong t, jlong s, jlong d, jint sx, jint sy, jint w, jint h, jint dx, jint dy,
                jboolean colour, jboolean depth, copyway way) {
    runexport(env, [&] {
        copytargetblock(*peerat<toolkit>(t), peerat<sprite>(s), peerat<surface>(d), sx, sy, w, h, dx, dy, colour,
                        depth, way);
    });
}

}  // namespace

extern "C" {

JNIEXPORT void JNICALL Java_o_AA(JNIEnv* env, jobject, jlong t, jlong s, jlong d, jint sx, jint sy, jint w, jint h,
                                 jint dx, jint dy, jboolean colour, jboolean depth) {
    copyexport(env, t, s, d, sx, sy, w, h, dx, dy, colour, depth, copyway::fromtarget);
}

JNIEXPORT void JNICALL Java_o_BA(JNIEnv* env, jobject, jlong t, jlong s, jlong d, jint sx, jint sy, jint w, jint h,
                                 jint dx, jint dy, jboolean colour, jboolean depth) {
    copyexport(env, t, s, d, sx, sy, w, h, dx, dy, colour, depth, copyway::totarget);
}

}  // extern "C"
