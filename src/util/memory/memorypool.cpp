#include "util/memory/memorypool.h"

#include "toolkit/toolkit.h"
#include "util/frame.h"
#include "util/jniseam.h"
#include "util/peer.h"

// A pool made before any toolkit has nobody to ask.
void memorypool::flush() {
    if (toolkit) currentseam->flushpool(*toolkit);
}

extern "C" {

JNIEXPORT void JNICALL Java_ba_sa(JNIEnv* env, jobject self, jint, jint capacity) {
    runexport(env, [&] {
        auto* pool = new memorypool(static_cast<uint32_t>(capacity), currenttoolkit);
        {
            hostcall guard;
            pool->hostref = hostof(env->NewWeakGlobalRef(self));
        }
        setpeer(env, hostclass::ba, self, pool);
    });
}

JNIEXPORT void JNICALL Java_ba_ma(JNIEnv* env, jobject self, jint) {
    runexport(env, [&] {
        if (auto* pool = getpeer<memorypool>(env, hostclass::ba, self)) {
            {
                hostcall guard;
                env->DeleteWeakGlobalRef(jniof(pool->hostref));
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
