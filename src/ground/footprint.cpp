#include "ground/footprint.h"

#include <jni.h>

#include <algorithm>

#include "toolkit/shadowfill.h"
#include "toolkit/toolkit.h"
#include "util/frame.h"
#include "util/jniseam.h"
#include "util/memory/memorypool.h"
#include "util/peer.h"
#include "util/truncate.h"

shadowmask* tilefootprint(ground& g, genericground& tile, int x, int z, shadowmask* given) {
    if (tile.tileflags == 0) return nullptr;
    const int n = g.tilesize >> g.owner->shadowshift;
    shadowmask* mask = given;
    if (given && given->cells.length() >= static_cast<long long>(n) * n)
        std::fill_n(given->cells.get(), given->cells.length(), 0);
    else
        mask = new shadowmask(*g.owner->pool, n, n);
    mask->x = mask->y = 0;
    mask->usedwidth = mask->usedheight = mask->width = mask->height = n;
    tile.paintfootprint(g, x, z, *mask);
    return mask;
}

// Every drawn face turned up, in cells of the tile.
void complexground::paintfootprint(ground& g, int x, int z, shadowmask& mask) {
    const int shift = g.owner->shadowshift;
    int total = 0;
    for (int k = 0; k < hiddenfaces; ++k) total += facecounts[k];
    for (int f = 0; f < total; ++f) {
        int corners[3][2];
        for (int j = 0; j < 3; ++j) {
            const groundpoint& v = vertices[faces[3 * f + j]];
            corners[j][0] = (truncate(v.x) - g.tilesize * x) >> shift;
            corners[j][1] = (truncate(v.z) - g.tilesize * z) >> shift;
        }
        fillfacingtriangle(mask, corners);
    }
}

extern "C" JNIEXPORT jobject JNICALL Java_i_w(JNIEnv* env, jobject self, jint x, jint z, jobject given) {
    return runexport(env, [&]() -> jobject {
        ground& g = groundpeer(env, self);
        genericground** slot = g.slot(x, z);
        if (!slot || !*slot) return nullptr;
        shadowmask* old = given ? getpeer<shadowmask>(env, hostclass::aa, given) : nullptr;
        return jniof(maskobject(tilefootprint(g, **slot, x, z, old), old, hostof(given)));
    });
}
