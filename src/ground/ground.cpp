#include "ground/ground.h"

#include <jni.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <memory>
#include <new>

#include "ground/tile.h"
#include "toolkit/toolkit.h"
#include "util/arraypin.h"
#include "util/exception.h"
#include "util/frame.h"
#include "util/memory/memorypool.h"
#include "util/peer.h"

namespace {

// Point blocks hold every index that rows at the pitch of `sizex + 1` reach, a up to `sizex` and
// b up to `sizez`: on a ground longer in x than in z that is more than its points. A count past
// any arena asks the pool for more than it holds.
int gridblock(int sizex, int sizez) {
    const long long points = (sizex + 1LL) * (std::max(sizex, sizez) + 1LL);
    return points > INT_MAX ? -1 : static_cast<int>(points);
}

template <class T>
void allocatecleared(memorymanager& pool, allocatedmemory<T>& block, int count) {
    pool.allocate(block, count);
    std::fill_n(block.get(), block.length(), T{});
}

}  // namespace

// Across the inner points, from the differences of the neighbours on each axis; up is negative y.
// The last row and column lie flat at (0, 0, 0, 1) and the first row and column keep what the
// block held.
void computenormals(ground& g, const int32_t* h) {
    groundpoint* n = g.normals.get();
    for (int a = 1; a < g.sizex; ++a)
        for (int b = 1; b < g.sizez; ++b) {
            const float dx = static_cast<float>(h[g.point(a + 1, b)] - h[g.point(a - 1, b)]);
            const float dz = static_cast<float>(h[g.point(a, b + 1)] - h[g.point(a, b - 1)]);
            const float r = 1.0f / std::sqrt(dx * dx + 65536.0f + dz * dz);
            n[g.point(a, b)] = {dx * r, -256.0f * r, dz * r, 1.0f};
        }
    for (int a = 0; a <= g.sizex; ++a) n[g.point(a, g.sizez)] = {0.0f, 0.0f, 0.0f, 1.0f};
    for (int b = 0; b <= g.sizez; ++b) n[g.point(g.sizex, b)] = {0.0f, 0.0f, 0.0f, 1.0f};
}

ground::~ground() {
    for (int i = 0; i < slotcount; ++i) delete tiles[i];
    delete shadows;
    dirty.release();
    spare.release();
    shades.release();
    normals.release();
    heights.release();
    shadowatlas.release();
    delete[] tiles;
}

genericground** ground::slot(int x, int z) const {
    if (x < 0 || z < 0 || x >= sizex || z >= sizez) return nullptr;
    const long long at = static_cast<long long>(x) * sizex + z;
    return at < slotcount ? &tiles[at] : nullptr;
}

int ground::shade(int a, int b) const {
    const long long at = static_cast<long long>(a) * (sizex + 1) + b;
    return at >= 0 && at < shades.length() ? shades[at] : 0;
}

void makeshadows(ground& g) {
    memorypool& pool = *g.owner->pool;
    const int shift = g.owner->shadowshift;
    groundshadows* s = g.shadows = new groundshadows{&g, 0, 0, 0, {}};
    s->width = ((g.sizex * g.tilesize) >> shift) + 2;
    s->height = ((g.sizez * g.tilesize) >> shift) + 2;
    s->cellspertile = g.tilesize >> shift;
    allocatecleared(pool, s->cells, s->width * s->height);
    allocatecleared(pool, g.dirty, g.slotcount);
}

ground* makeground(toolkit& owner, int sizex, int sizez, int tilesize, int scale, uint32_t flags) {
    memorypool* pool = owner.pool;
    if (!pool) fail<NullPointerException>();
    const long long slots = static_cast<long long>(sizex) * sizez;
    if (sizex < 0 || sizez < 0 || slots > INT_MAX) fail<OutOfMemory>("native(SIA)");
    auto g = std::make_unique<ground>();
    g->slotcount = static_cast<int>(slots);
    g->tiles = new (std::nothrow) genericground*[slots]();
    if (!g->tiles) fail<OutOfMemory>("native(SIA)");
    g->owner = &owner;
    g->sizex = sizex, g->sizez = sizez;
    g->tileshift = 0;
    for (int s = tilesize; s > 1; s >>= 1) ++g->tileshift;
    g->tilesize = 1 << g->tileshift;
    g->scale = scale;
    g->flags = flags & GF_PLAIN ? flags & ~GF_SHADOWMAP : flags;
    const int points = gridblock(sizex, sizez);
    allocatecleared(*pool, g->heights, points);
    pool->allocate(g->normals, points);
    allocatecleared(*pool, g->shades, points);
    if (g->flags & GF_SHADOWMAP) makeshadows(*g);
    for (lightnode& n : g->lightnodes) g->freelights.append(n);
    return g.release();
}

int gridheight(const ground& g, int a, int b) {
    const long long at = static_cast<long long>(a) * (g.sizex + 1) + b;
    return at >= 0 && at < g.heights.length() ? g.heights[at] : 0;
}

int groundheight(const ground& g, int a, int b) {
    const int n = g.tileshift, s = g.tilesize;
    const int ia = a >> n, ib = b >> n;
    if (ia < 0 || ia > g.sizex - 1 || ib < 0 || ib > g.sizez - 1) return 0;
    const int fa = a & (s - 1), fb = b & (s - 1);
    const int32_t* h = g.heights.get();
    const int p = (h[g.point(ia, ib)] * (s - fa) + h[g.point(ia + 1, ib)] * fa) >> n;
    const int q = (h[g.point(ia, ib + 1)] * (s - fa) + h[g.point(ia + 1, ib + 1)] * fa) >> n;
    return (p * (s - fb) + q * fb) >> n;
}

namespace {

// The host's rows, `rowlength` entries each, one after the other into `into`; rows and entries the
// host did not give stay as they were.
void copyrows(JNIEnv* env, jobjectArray rows, int count, int rowlength, int32_t* into) {
    count = std::min(count, static_cast<int>(arraylength(env, rows)));
    for (int r = 0; r < count; ++r) {
        jintArray row;
        {
            hostcall guard;
            row = static_cast<jintArray>(env->GetObjectArrayElement(rows, r));
        }
        {
            arraypin<pinkind::intread> pin(env, row);
            std::copy_n(pin.get(), std::min(pin.object() ? arraylength(env, row) : 0, rowlength),
                        into + static_cast<long>(r) * rowlength);
        }
        hostcall guard;
        env->DeleteLocalRef(row);
    }
}

}  // namespace

ground& groundpeer(JNIEnv* env, jobject self) { return *getpeer<ground>(env, hostclass::i, self); }

// The two height routines are exported under their decorated names only.
JNIEXPORT jint JNICALL SSEGROUND_GETH(JNIEnv* env, jobject self, jint a, jint b) {
    return runexport(env, [&] { return gridheight(groundpeer(env, self), a, b); });
}

JNIEXPORT jint JNICALL SSEGROUND_GETAVH(JNIEnv* env, jobject self, jint a, jint b) {
    return runexport(env, [&] { return groundheight(groundpeer(env, self), a, b); });
}

extern "C" {

JNIEXPORT void JNICALL Java_i_G(JNIEnv* env, jobject self, jobject, jobject owner, jint sizex, jint sizez,
                                jobjectArray heights, jobjectArray normalheights, jint tilesize, jint scale,
                                jint flags) {
    runexport(env, [&] {
        toolkit& t = *getpeer<toolkit>(env, hostclass::ja, owner);
        std::unique_ptr<ground> g(makeground(t, sizex, sizez, tilesize, scale, static_cast<uint32_t>(flags)));
        allocatedmemory<int32_t> work;
        allocatecleared(*t.pool, work, g->heights.length());
        copyrows(env, heights, sizex + 1, sizez + 1, g->heights.get());
        copyrows(env, normalheights, sizex + 1, sizez + 1, work.get());
        computenormals(*g, work.get());
        setpeer(env, hostclass::i, self, g.release());
    });
}

JNIEXPORT void JNICALL Java_i_ma(JNIEnv* env, jobject self) {
    runexport(env, [&] {
        delete getpeer<ground>(env, hostclass::i, self);
        setpeer(env, hostclass::i, self, nullptr);
    });
}

JNIEXPORT void JNICALL Java_i_LA(JNIEnv* env, jobject self, jint a, jint b, jint value) {
    runexport(env, [&] {
        ground& g = groundpeer(env, self);
        const long long at = static_cast<long long>(a) * (g.sizex + 1) + b;
        if (at >= 0 && at < g.shades.length() && value > g.shades[at]) g.shades[at] = static_cast<uint8_t>(value);
    });
}

JNIEXPORT void JNICALL Java_i_SA(JNIEnv* env, jobject self) {
    runexport(env, [&] { groundpeer(env, self).shades.release(); });
}

}  // extern "C"
