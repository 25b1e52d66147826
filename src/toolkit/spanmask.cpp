#include "toolkit/spanmask.h"

#include <memory>

#include "util/arraypin.h"
#include "util/frame.h"
#include "util/memory/copytomemory.h"
#include "util/memory/memorypool.h"
#include "util/peer.h"

extern "C" {

JNIEXPORT void JNICALL Java_wa_l(JNIEnv* env, jobject self, jobject, jobject pool, jint width, jint height,
                                 jintArray offsets, jintArray widths) {
    runexport(env, [&] {
        memorypool* p = getpeer<memorypool>(env, hostclass::ba, pool);
        arraypin<pinkind::intread> offsetpin(env, offsets);
        arraypin<pinkind::intread> widthpin(env, widths);
        auto mask = std::make_unique<spanmask>();
        mask->width = width;
        mask->height = height;
        copytomemory(offsetpin, *p, mask->offsets);
        mask->offsetcount = mask->offsets.length();
        copytomemory(widthpin, *p, mask->widths);
        mask->widthcount = mask->widths.length();
        setpeer(env, hostclass::wa, self, mask.release());
    });
}

JNIEXPORT void JNICALL Java_wa_ma(JNIEnv* env, jobject self, jint) {
    runexport(env, [&] {
        delete getpeer<spanmask>(env, hostclass::wa, self);
        setpeer(env, hostclass::wa, self, nullptr);
    });
}

}  // extern "C"
