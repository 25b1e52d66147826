#include "ground/shadows.h"

#include <jni.h>

#include <algorithm>
#include <cstdint>

#include "toolkit/toolkit.h"
#include "util/frame.h"
#include "util/peer.h"

namespace {

// A position in cells, slanted by the height along the sun's slope; the arithmetic of the host's
// 32-bit integers, wrapping where they do.
int cellof(int v, int height, int slope, int shift) {
    const int slant = static_cast<int>(static_cast<uint32_t>(height) * static_cast<uint32_t>(slope)) >> 8;
    return static_cast<int>(static_cast<uint32_t>(v) - static_cast<uint32_t>(slant)) >> shift;
}

// One axis of the footprint clipped to the cells inside the frame, 1 to `cells - 2`: its first
// cell, its length and how far into the mask it starts.
struct clipped {
    long long first, length, skipped = 0;
    clipped(long long first, long long length, int cells) : first(first), length(length) {
        if (this->first < 1) skipped = 1 - this->first, this->length -= skipped, this->first = 1;
        this->length = std::min(this->length, cells - 1 - this->first);
    }
    // The tiles' groups of 16 cells that the rectangle touches, as the marks count them.
    long long lowgroup() const { return (first - 1) >> 4; }
    long long highgroup() const { return (first + length - 2) >> 4; }
};

}  // namespace

void changeshadows(ground& g, const shadowmask& mask, int x, int y, int z, bool take) {
    groundshadows* s = g.shadows;
    if (!s) return;
    const toolkit& t = *g.owner;
    const clipped across(cellof(x, y, t.shadowslopex, t.shadowshift) + 1LL + mask.x, mask.usedwidth, s->width);
    const clipped down(cellof(z, y, t.shadowslopez, t.shadowshift) + 1LL + mask.y, mask.usedheight, s->height);
    // The mask's size is the holder's word; a cell it does not have adds nothing.
    const long long have = mask.cells.length();
    const uint8_t* from = mask.cells.get();
    uint8_t* cells = s->cells.get();
    for (long long r = 0; r < down.length; ++r) {
        const long long source = (down.skipped + r) * mask.width + across.skipped;
        const long long low = std::max(0LL, -source), high = std::min(across.length, have - source);
        uint8_t* row = cells + (down.first + r) * s->width + across.first;
        for (long long c = low; c < high; ++c)
            row[c] = static_cast<uint8_t>(take ? row[c] - from[source + c] : row[c] + from[source + c]);
    }
    // The tile of column group a and row group b keeps its mark at a * sizex + b: groups of 16
    // cells, whatever a tile holds.
    for (long long a = across.lowgroup(); a <= across.highgroup(); ++a)
        for (long long b = down.lowgroup(); b <= down.highgroup(); ++b) {
            const long long at = a * g.sizex + b;
            if (at >= 0 && at < g.dirty.length()) g.dirty[at] = 1;
        }
}

namespace {

void changeexport(JNIEnv* env, jobject self, jobject footprint, int x, int y, int z, bool take) {
    runexport(env, [&] {
        ground& g = groundpeer(env, self);
        const shadowmask* mask = footprint ? getpeer<shadowmask>(env, hostclass::aa, footprint) : nullptr;
        if (mask) changeshadows(g, *mask, x, y, z, take);
    });
}

}  // namespace

extern "C" {

JNIEXPORT void JNICALL Java_i_UA(JNIEnv* env, jobject self, jobject footprint, jint x, jint y, jint z) {
    changeexport(env, self, footprint, x, y, z, false);
}

JNIEXPORT void JNICALL Java_i_NA(JNIEnv* env, jobject self, jobject footprint, jint x, jint y, jint z) {
    changeexport(env, self, footprint, x, y, z, true);
}

}  // extern "C"
