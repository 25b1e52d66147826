#include "model/fitting.h"

#include <jni.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "model/transform.h"
#include "util/frame.h"
#include "util/peer.h"
#include "util/truncate.h"

namespace {

// The 32-bit integer arithmetic of the host, wrapping where it does.
int wrap(long long v) { return static_cast<int>(static_cast<uint32_t>(static_cast<unsigned long long>(v))); }

// A quotient that leaves a zero divisor to the caller: the vertex keeps its place.
bool quotient(int a, int b, int& q) {
    if (b == 0) return false;
    q = b == -1 ? wrap(-static_cast<long long>(a)) : a / b;
    return true;
}

// The height under (wx, wz), between the four grid points round it, with no test that the point
// lies on the ground: a point off it reads whatever grid points its row and column name.
int heightunder(const ground& g, int wx, int wz) {
    const int n = g.tileshift, s = g.tilesize, tx = wx >> n, tz = wz >> n, fx = wx & (s - 1), fz = wz & (s - 1);
    auto mix = [n](long long p, long long q, int s, int f) { return wrap(p * (s - f) + q * f) >> n; };
    const int a = mix(gridheight(g, tx, tz), gridheight(g, tx + 1, tz), s, fx);
    const int b = mix(gridheight(g, tx, tz + 1), gridheight(g, tx + 1, tz + 1), s, fx);
    return mix(a, b, s, fz);
}

// A tile inside the ground, or inside it short of its last row and column.
bool ontile(const ground& g, int wx, int wz, int short_) {
    const int tx = wx >> g.tileshift, tz = wz >> g.tileshift;
    return tx >= 0 && tz >= 0 && tx < g.sizex - short_ && tz < g.sizez - short_;
}

// The slope between two heights over `span` as a binary angle, held within `limit` of level on
// either side when there is a limit.
int tiltangle(int high, int low, int span, int limit) {
    const float rise = static_cast<float>(high - low);
    const float angle = static_cast<float>(std::atan2(static_cast<double>(rise), static_cast<double>(span)));
    int a = static_cast<int>(static_cast<double>(angle) * 2607.594515054685) & 0x3FFF;
    if (a != 0 && limit != 0) a = a > 0x2000 ? std::max(a, 0x4000 - limit) : std::min(a, limit);
    return a;
}

// Tilts the model to the slope under the rectangle that `p` gives round (x, z), and sets it on
// the ground. A rectangle reaching off the ground leaves the model alone, its bounds too: false.
bool tilt(model& m, int p, const ground& g, int x, int y, int z) {
    const int width = (p & 0xFF) * 4, length = ((p >> 8) & 0xFF) * 4;
    const int maxtiltx = (p >> 10) & 0x3FC0, maxtiltz = (p >> 18) & 0x3FC0;
    const int hw = width / 2, hl = length / 2;
    if (x - hw < 0 || x + hw + g.tilesize >= g.sizex << g.tileshift) return false;
    if (z - hl < 0 || z + hl + g.tilesize >= g.sizez << g.tileshift) return false;
    const int h00 = groundheight(g, x - hw, z - hl), h10 = groundheight(g, x + hw, z - hl);
    const int h01 = groundheight(g, x - hw, z + hl), h11 = groundheight(g, x + hw, z + hl);
    if (length != 0) {
        const int a = tiltangle(std::min(h00, h10), std::min(h01, h11), length, maxtiltx);
        if (a != 0) turnmodel(m, turnaxis::x, a, false);
    }
    if (width != 0) {
        const int a = tiltangle(std::min(h00, h01), std::min(h10, h11), width, maxtiltz);
        if (a != 0) turnmodel(m, turnaxis::z, a, false);
    }
    const int d = (std::min(h10 + h01, h00 + h11) >> 1) - y;
    if (d != 0) translatemodel(m, 0, d, 0);
    return true;
}

// Moves the y of each vertex by `move`, which gives false to leave it: every used vertex, and each
// loose one over a tile that `inside` accepts.
template <class Move, class Inside>
void movevertices(model& m, int x, int z, Move move, Inside inside) {
    for (int i = 0; i < m.vertexcount; ++i) {
        quad& v = m.vertices[i];
        const int wx = truncate(v.x) + x, wz = truncate(v.z) + z;
        if (i < m.usedvertexcount || inside(wx, wz)) move(v.y, wx, wz);
    }
}

}  // namespace

void fitmodel(model& m, int mode, int p, const ground& g, const ground* second, int x, int y, int z) {
    requiremask(m, mode == 3 ? FM_MOVE_X | FM_MOVE_Y | FM_MOVE_Z : FM_MOVE_Y);
    if (!m.boundsvalid) computebounds(m);
    const int minx = m.minx + x, maxx = m.maxx + x, minz = m.minz + z, maxz = m.maxz + z;
    auto stands = [&](const ground& on) {
        return minx >= 0 && (maxx + on.tilesize) >> on.tileshift < on.sizex && minz >= 0 &&
               (maxz + on.tilesize) >> on.tileshift < on.sizez;
    };
    if (mode != 4 && !stands(g)) return;
    if (mode == 4 || mode == 5) {
        if (!second || !stands(*second)) return;
    } else {
        const int ax = minx >> g.tileshift, az = minz >> g.tileshift;
        const int bx = (maxx + g.tilesize - 1) >> g.tileshift, bz = (maxz + g.tilesize - 1) >> g.tileshift;
        if (gridheight(g, ax, az) == y && gridheight(g, bx, az) == y && gridheight(g, ax, bz) == y &&
            gridheight(g, bx, bz) == y)
            return;
    }
    const int depth = m.maxy - m.miny;
    auto inside = [&](int short_) { return [&g, short_](int wx, int wz) { return ontile(g, wx, wz, short_); }; };
    switch (mode) {
        case 1:
            movevertices(m, x, z, [&](float& vy, int wx, int wz) { vy += static_cast<float>(heightunder(g, wx, wz) - y); },
                         inside(0));
            break;
        case 2:
            // `p` in 65536ths of the model's lowest point: full at the ground, nothing from `p` up.
            if (m.miny == 0) return;
            movevertices(m, x, z, [&](float& vy, int wx, int wz) {
                int t, move;
                if (!quotient(wrap(static_cast<long long>(truncate(vy)) << 16), m.miny, t) || t >= p) return;
                if (quotient(wrap(static_cast<long long>(p - t) * (heightunder(g, wx, wz) - y)), p, move))
                    vy += static_cast<float>(move);
            }, inside(1));
            break;
        case 3:
            if (!tilt(m, p, g, x, y, z)) return;
            break;
        case 4:
            movevertices(m, x, z, [&](float& vy, int wx, int wz) {
                vy = vy + static_cast<float>(heightunder(*second, wx, wz) - y) + static_cast<float>(depth);
            }, inside(1));
            break;
        case 5:
            movevertices(m, x, z, [&](float& vy, int wx, int wz) {
                int s;
                if (!quotient(wrap(static_cast<long long>(truncate(vy)) << 8), depth, s)) return;
                const int h1 = heightunder(g, wx, wz), h2 = heightunder(*second, wx, wz);
                vy = static_cast<float>(wrap(static_cast<long long>(s) * (h1 - h2 - p)) >> 8) - static_cast<float>(y - h1);
            }, [&](int wx, int wz) { return ontile(g, wx, wz, 1) && ontile(*second, wx, wz, 1); });
            break;
    }
    m.boundsvalid = 0;
}

extern "C" JNIEXPORT void JNICALL Java_h_pa(JNIEnv* env, jobject self, jint mode, jint p, jobject on, jobject second,
                                            jint x, jint y, jint z) {
    runexport(env, [&] {
        if (!on) return;
        model& m = modelpeer(env, self);
        fitmodel(m, mode, p, groundpeer(env, on), second ? &groundpeer(env, second) : nullptr, x, y, z);
    });
}
