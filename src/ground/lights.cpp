#include "ground/lights.h"

#include <jni.h>

#include <algorithm>
#include <cmath>

#include "ground/splitground.h"
#include "ground/tile.h"
#include "toolkit/toolkit.h"
#include "util/arraypin.h"
#include "util/frame.h"
#include "util/memory/memorypool.h"
#include "util/truncate.h"

uint16_t cornerstrength(float reach, float dx, float dy, float dz, const groundpoint& n) {
    const float len = std::sqrt(dx * dx + dy * dy + dz * dz);
    const float inv = 1.0f / len, t = len / reach;
    // A light on the point itself or with no reach gives NaN here, which the bounds take to 0.
    const float a = std::max(0.0f, 1.0f - t * t);
    const float c = std::max(0.0f, (n.x * dx + n.y * dy + n.z * dz) * inv);
    return static_cast<uint16_t>(truncate(std::min(c * a * 2.0f, 1.0f) * 256.0f));
}

namespace {

// The tiles of a light's square in the order the host's modes are laid out, rows of z with x
// inside, each tile of the ground given its mode. A row off the ground holds one entry less than
// the row is wide, as the host lays it out; a row on it holds one for each tile on the ground.
// Entries the array does not hold leave their tiles unlit.
template <class F>
void eachlit(const ground& g, long long x0, long long x1, long long z0, long long z1, const int32_t* modes,
             int modecount, F&& visit) {
    const long long first = std::max(0LL, x0), last = std::min<long long>(x1, g.sizex - 1);
    const long long across = std::max(0LL, last - first + 1), skipped = z0 < 0 ? -z0 * (x1 - x0) : 0;
    for (long long z = std::max(0LL, z0); z <= std::min<long long>(z1, g.sizez - 1); ++z) {
        long long at = skipped + (z - std::max(0LL, z0)) * across;
        for (long long x = first; x <= last; ++x, ++at) {
            const int mode = at >= 0 && at < modecount ? modes[at] : 0;
            genericground** slot = g.slot(static_cast<int>(x), static_cast<int>(z));
            if (mode != 0 && slot && *slot) visit(slot, static_cast<int>(x), static_cast<int>(z), mode);
        }
    }
}

}  // namespace

void addlight(ground& g, int id, int x, int y, int z, int radius, uint32_t colour, const int32_t* modes,
              int modecount) {
    if (g.freelights.empty()) return;
    lightnode& node = *g.freelights.last();
    node.unlink();
    g.usedlights.append(node);
    node.id = id, node.colour = colour, node.intensity = 0;

    const long long r = static_cast<long long>(radius) - (g.tilesize >> 1);
    const int n = g.tileshift;
    const long long x0 = (x - r) >> n, x1 = (x + r) >> n, z0 = (z - r) >> n, z1 = (z + r) >> n;
    int fresh = 0;
    eachlit(g, x0, x1, z0, z1, modes, modecount, [&](genericground** slot, int, int, int) {
        fresh += (*slot)->lightblock.empty();
    });
    allocatedmemory<tilelight> block;
    if (fresh) {
        g.owner->pool->allocate(block, fresh);
        std::fill_n(reinterpret_cast<uint8_t*>(block.get()), block.bytes(), uint8_t{0});
    }
    int next = 0;
    const float reach = static_cast<float>(r);
    eachlit(g, x0, x1, z0, z1, modes, modecount, [&](genericground** slot, int tx, int tz, int mode) {
        // Corners near, right, far and left: (x, z), (x, z + 1), (x + 1, z + 1), (x + 1, z).
        uint16_t strength[4];
        for (int k = 0; k < 4; ++k) {
            const int a = tx + (k >= 2), b = tz + (k == 1 || k == 2);
            const int at = g.point(a, b);
            strength[k] = cornerstrength(reach, static_cast<float>(x - (static_cast<long long>(a) << n)),
                                         static_cast<float>(static_cast<long long>(y) - g.heights[at]),
                                         static_cast<float>(z - (static_cast<long long>(b) << n)), g.normals[at]);
        }
        if (!(strength[0] | strength[1] | strength[2] | strength[3])) return;
        if ((*slot)->lightblock.empty()) {
            if (mode != 1) splittile(g, slot, tx, tz, mode);
            (*slot)->lightblock.copyfrom(block);
            (*slot)->lightindex = static_cast<uint16_t>(next++);
        }
        tilelight& l = (*slot)->lightblock[(*slot)->lightindex];
        if (l.count >= 4) return;
        const int e = l.count++;
        l.near[e] = strength[0], l.right[e] = strength[1], l.far[e] = strength[2], l.left[e] = strength[3];
        l.nodes[e] = &node, l.modes[e] = static_cast<uint8_t>(mode);
    });
    ++g.lightcount;
}

void setintensities(ground& g, const float* values, int count) {
    int k = 0;
    g.usedlights.each([&](lightnode& node) {
        if (k < count) node.intensity = static_cast<uint16_t>(truncate(std::min(values[k], 1.0f) * 256.0f));
        ++k;
    });
}

void removelight(ground& g, int id) {
    lightnode* found = nullptr;
    g.usedlights.each([&](lightnode& node) {
        if (!found && node.id == id) found = &node;
    });
    if (!found) return;
    found->unlink();
    g.freelights.append(*found);
    for (int i = 0; i < g.slotcount; ++i) {
        genericground* tile = g.tiles[i];
        if (!tile || tile->lightblock.empty()) continue;
        tilelight& l = tile->lightblock[tile->lightindex];
        const int e = static_cast<int>(std::find(l.nodes, l.nodes + l.count, found) - l.nodes);
        if (e == l.count) continue;
        for (int k = e; k + 1 < l.count; ++k) {
            l.near[k] = l.near[k + 1], l.right[k] = l.right[k + 1], l.far[k] = l.far[k + 1];
            l.left[k] = l.left[k + 1], l.nodes[k] = l.nodes[k + 1], l.modes[k] = l.modes[k + 1];
        }
        // A tile that a light split stays split.
        if (--l.count == 0) tile->lightblock.release();
    }
}

extern "C" {

JNIEXPORT void JNICALL Java_i_A(JNIEnv* env, jobject self, jint id, jint x, jint y, jint z, jint radius, jint colour,
                                jintArray modes) {
    runexport(env, [&] {
        const int count = arraylength(env, modes);
        arraypin<pinkind::intread> pin(env, modes);
        addlight(groundpeer(env, self), id, x, y, z, radius, static_cast<uint32_t>(colour), pin.get(), count);
    });
}

JNIEXPORT void JNICALL Java_i_t(JNIEnv* env, jobject self, jfloatArray intensities) {
    runexport(env, [&] {
        ground& g = groundpeer(env, self);
        const int count = arraylength(env, intensities);
        arraypin<pinkind::floatcritical> pin(env, intensities, count);
        setintensities(g, pin.get(), count);
    });
}

JNIEXPORT void JNICALL Java_i_d(JNIEnv* env, jobject self, jint id) {
    runexport(env, [&] { removelight(groundpeer(env, self), id); });
}

}  // extern "C"
