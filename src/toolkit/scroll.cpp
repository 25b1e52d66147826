#include "toolkit/scroll.h"

#include <cstring>

#include "util/frame.h"

void scrolltarget(toolkit& t, int dx, int dy) {
    // In 64 bits: a large move must not wrap back to a small one.
    const long long n = dx + static_cast<long long>(dy) * t.width;
    const long long total = static_cast<long long>(t.width) * t.height;
    if (n == 0 || n >= total || -n >= total) return;
    auto move = [&](void* buffer) {
        auto* b = static_cast<uint32_t*>(buffer);
        if (n < 0)
            memmove(b, b - n, static_cast<size_t>(total + n) * 4);
        else
            memmove(b + n, b, static_cast<size_t>(total - n) * 4);
    };
    if (t.colourbuffer) move(t.colourbuffer);
    if (t.depthbuffer) move(t.depthbuffer);
}

extern "C" {

JNIEXPORT void JNICALL Java_ja_VA(JNIEnv* env, jobject, jint dx, jint dy) {
    runexport(env, [&] { scrolltarget(*currenttoolkit, dx, dy); });
}

}  // extern "C"
