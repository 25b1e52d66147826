#include "toolkit/renderworkspace.h"

#include <cstdlib>
#include <new>

#include "util/frame.h"
#include "util/peer.h"

renderworkspace* makeworkspace(::toolkit& t, int limitone, int limittwo) {
    void* memory = aligned_alloc(alignof(renderworkspace), sizeof(renderworkspace));
    if (!memory) return nullptr;
    auto* w = new (memory) renderworkspace{};
    w->toolkit = &t;
    w->limitone = limitone;
    w->limittwo = limittwo;
    w->stamp = 1;
    w->linkbefore(*t.clients.next);
    return w;
}

void destroyworkspace(renderworkspace* w) {
    w->unlink();
    w->~renderworkspace();
    free(w);
}

extern "C" {

JNIEXPORT void JNICALL Java_a_ha(JNIEnv* env, jobject self, jint, jint, jint, jint limittwo, jint limitone) {
    runexport(env, [&] { setpeer(env, hostclass::a, self, makeworkspace(*currenttoolkit, limitone, limittwo)); });
}

// Takes the peer on trust, as the host gives it.
JNIEXPORT void JNICALL Java_a_R(JNIEnv* env, jobject self, jlong peer, jint) {
    runexport(env, [&] {
        destroyworkspace(reinterpret_cast<renderworkspace*>(static_cast<intptr_t>(peer)));
        setpeer(env, hostclass::a, self, nullptr);
    });
}

// Two entries of the host that have nothing to do here; one function serves both.
JNIEXPORT void JNICALL Java_a_JA(JNIEnv*, jobject, jint, jint) {}
JNIEXPORT void JNICALL Java_a_UA(JNIEnv*, jobject, jint, jint) __attribute__((alias("Java_a_JA")));

}  // extern "C"
