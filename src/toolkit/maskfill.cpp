#include "toolkit/maskfill.h"

#include <algorithm>

#include "toolkit/fill.h"
#include "toolkit/spanmask.h"
#include "util/frame.h"
#include "util/peer.h"

void fillmask(toolkit& t, uint32_t colour, const spanmask& mask, int x, int y) {
    if (!t.colourbuffer) return;
    const int* offsets = mask.offsets.get();
    const int* widths = mask.widths.get();
    const long long first = std::max<long long>(t.cliprect[1] - static_cast<long long>(y), 0);
    const long long end = std::min<long long>(mask.rows(), t.cliprect[3] - static_cast<long long>(y));
    for (long long r = first; r < end; ++r) {
        long long from = static_cast<long long>(offsets[r]) + x;
        long long l = std::max<long long>(from, t.cliprect[0]);
        long long e = std::min<long long>(from + widths[r], t.cliprect[2]);
        if (l < e) storerun(t.colourbuffer + (y + r) * t.width + l, static_cast<int>(e - l), colour);
    }
}

extern "C" {

JNIEXPORT void JNICALL Java_ja_DA(JNIEnv* env, jobject, jint colour, jobject mask, jint x, jint y) {
    runexport(env, [&] {
        const spanmask& m = *getpeer<spanmask>(env, hostclass::wa, mask);
        fillmask(*currenttoolkit, static_cast<uint32_t>(colour), m, x, y);
    });
}

}  // extern "C"
