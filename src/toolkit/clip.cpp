// The 2D clip rectangle, in pixels of the target.
#include <algorithm>

#include "toolkit/toolkit.h"
#include "util/arraypin.h"
#include "util/frame.h"

void clampcliprect(toolkit& t, int left, int top, int right, int bottom) {
    setcliprect(t, std::max(left, 0), std::max(top, 0), std::min(right, t.width), std::min(bottom, t.height));
}

void narrowcliprect(toolkit& t, int left, int top, int right, int bottom) {
    const int* c = t.cliprect;
    setcliprect(t, std::max(left, c[0]), std::max(top, c[1]), std::min(right, c[2]), std::min(bottom, c[3]));
}

extern "C" {

JNIEXPORT void JNICALL Java_ja_L(JNIEnv* env, jobject) {
    runexport(env, [&] {
        toolkit& t = *currenttoolkit;
        setcliprect(t, 0, 0, t.width, t.height);
    });
}

JNIEXPORT void JNICALL Java_ja_r(JNIEnv* env, jobject, jint left, jint top, jint right, jint bottom) {
    runexport(env, [&] {
        clampcliprect(*currenttoolkit, left, top, right, bottom);
    });
}

// Narrows only; the result may be empty or inverted.
JNIEXPORT void JNICALL Java_ja_o(JNIEnv* env, jobject, jint left, jint top, jint right, jint bottom) {
    runexport(env, [&] {
        narrowcliprect(*currenttoolkit, left, top, right, bottom);
    });
}

JNIEXPORT void JNICALL Java_ja_qa(JNIEnv* env, jobject, jintArray out) {
    runexport(env, [&] {
        arraypin<pinkind::intcriticalwrite> pin(env, out);
        for (int i = 0; i < 4; ++i) pin[i] = currenttoolkit->cliprect[i];
    });
}

}  // extern "C"
