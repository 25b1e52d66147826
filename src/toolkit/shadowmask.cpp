#include "toolkit/shadowmask.h"

#include <cstring>

#include "util/frame.h"
#include "util/memory/memorypool.h"
#include "util/peer.h"

shadowmask::shadowmask(memorypool& pool, int width, int height)
    : pool(&pool), width(width), height(height), x(0), y(0), usedwidth(0), usedheight(0) {
    int count = width * height;
    pool.allocate(cells, count);
    memset(cells.get(), 0, static_cast<size_t>(cells.length()));
}

extern "C" {

JNIEXPORT void JNICALL Java_aa_ma(JNIEnv* env, jobject self, jint) {
    runexport(env, [&] {
        delete getpeer<shadowmask>(env, hostclass::aa, self);
        setpeer(env, hostclass::aa, self, nullptr);
    });
}

}  // extern "C"
