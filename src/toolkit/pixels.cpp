// Plain pixel moves between the host's arrays and the target. No clipping: the host gives
// rectangles inside the target.
#include <cstring>

#include "toolkit/toolkit.h"
#include "util/arraypin.h"
#include "util/frame.h"

extern "C" {

JNIEXPORT jintArray JNICALL Java_ja_E(JNIEnv* env, jobject, jint x, jint y, jint w, jint h) {
    return runexport(env, [&]() -> jintArray {
        jintArray result;
        {
            hostcall guard;
            result = env->NewIntArray(w * h);
        }
        if (!result) return nullptr;  // the JVM's own exception is pending
        arraypin<pinkind::intcriticalwrite> pin(env, result);
        toolkit& t = *currenttoolkit;
        if (!t.colourbuffer) fail<Exception>("No colour buffer");
        for (int j = 0; j < h; ++j)
            memcpy(pin.get() + static_cast<long>(j) * w, t.colourbuffer + static_cast<long>(y + j) * t.width + x,
                   static_cast<size_t>(w) * 4);
        return result;
    });
}

JNIEXPORT void JNICALL Java_ja_BA(JNIEnv* env, jobject, jint x, jint y, jint w, jint h, jintArray pixels,
                                  jint offset, jint scan) {
    runexport(env, [&] {
        arraypin<pinkind::intcritical> pin(env, pixels);
        toolkit& t = *currenttoolkit;
        if (!t.colourbuffer) return;
        for (int j = 0; j < h; ++j)
            memcpy(t.colourbuffer + static_cast<long>(y + j) * t.width + x,
                   pin.get() + offset + static_cast<long>(j) * scan, static_cast<size_t>(w) * 4);
    });
}

}  // extern "C"
