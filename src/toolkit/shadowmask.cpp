#include "toolkit/shadowmask.h"

#include <cstring>

#include "toolkit/toolkit.h"
#include "util/frame.h"
#include "util/memory/memorypool.h"
#include "util/peer.h"

shadowmask::shadowmask(memorymanager& pool, int width, int height)
    : pool(&pool), width(width), height(height), x(0), y(0), usedwidth(0), usedheight(0) {
    int count = width * height;
    pool.allocate(cells, count);
    memset(cells.get(), 0, static_cast<size_t>(cells.length()));
}

hostobject* maskobject(shadowmask* made, const shadowmask* given, hostobject* givenobject) {
    if (!made) return nullptr;
    if (made == given) return givenobject;
    return currentseam->newmask(*currenttoolkit, made);
}

extern "C" {

JNIEXPORT void JNICALL Java_aa_ma(JNIEnv* env, jobject self, jint) {
    runexport(env, [&] {
        delete getpeer<shadowmask>(env, hostclass::aa, self);
        setpeer(env, hostclass::aa, self, nullptr);
    });
}

}  // extern "C"
