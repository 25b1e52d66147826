#include "util/memory/memorypool.h"

#include "toolkit/toolkit.h"
#include "util/frame.h"
#include "util/peer.h"

void memorypool::flush() {
    // A pool made before any toolkit, or whose toolkit's object is gone, has nobody to ask.
    if (!toolkit) return;
    hostcall guard;
    JNIEnv* env;
    if (toolkit->vm->GetEnv(reinterpret_cast<void**>(&env), JNI_VERSION_1_1) != JNI_OK) return;
    jobject host = env->NewLocalRef(toolkit->hostref);
    if (!host) return;
    env->CallVoidMethod(host, method_h);
    env->DeleteLocalRef(host);
    // The host's own failure ends the call that needed the memory; the host sees its exception.
    if (env->ExceptionCheck()) fail<RuntimeException>("Exception in memory flush");
}

extern "C" {

JNIEXPORT void JNICALL Java_ba_sa(JNIEnv* env, jobject self, jint, jint capacity) {
    runexport(env, [&] {
        auto* pool = new memorypool(static_cast<uint32_t>(capacity), currenttoolkit);
        {
            hostcall guard;
            pool->hostref = env->NewWeakGlobalRef(self);
        }
        setpeer(env, hostclass::ba, self, pool);
    });
}

JNIEXPORT void JNICALL Java_ba_ma(JNIEnv* env, jobject self, jint) {
    runexport(env, [&] {
        if (auto* pool = getpeer<memorypool>(env, hostclass::ba, self)) {
            {
                hostcall guard;
                env->DeleteWeakGlobalRef(pool->hostref);
            }
            delete pool;
        }
        setpeer(env, hostclass::ba, self, nullptr);
    });
}

// Gives the arena back but leaves the record, which peers made from the pool may still reach.
JNIEXPORT void JNICALL Java_ba_ha(JNIEnv* env, jobject self) {
    runexport(env, [&] {
        if (auto* pool = getpeer<memorypool>(env, hostclass::ba, self)) pool->teardown();
        setpeer(env, hostclass::ba, self, nullptr);
    });
}

JNIEXPORT void JNICALL Java_ba_u(JNIEnv*, jobject) {}

}  // extern "C"
