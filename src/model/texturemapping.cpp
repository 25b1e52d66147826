#include "model/texturemapping.h"

#include <algorithm>
#include <cmath>

#include "toolkit/tables.h"

namespace {

struct vec3 {
    float x, y, z;
};
vec3 operator-(vec3 a, vec3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
vec3 cross(vec3 a, vec3 b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }
float dot(vec3 a, vec3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

// A mapping's frame: its direction and rotation as a 3 by 3 matrix whose rows carry its scales.
struct mappingframe {
    vec3 row[3];
    vec3 apply(vec3 d) const { return {dot(row[0], d), dot(row[1], d), dot(row[2], d)}; }
};

mappingframe makeframe(int x, int y, int z, int rotation, const float scale[3]) {
    float ny = static_cast<float>(y) * 3.0518509e-5f;
    float s = -std::sqrt(1.0f - ny * ny);
    float len = std::sqrt(static_cast<float>(x * x + z * z));
    float ax = 1.0f, az = 0.0f;
    if (len != 0.0f) {
        ax = static_cast<float>(-z) / len;
        az = static_cast<float>(x) / len;
    }
    float k = 1.0f - ny;
    const float q[3][3] = {{ax * ax * k + ny, s * az, az * ax * k},
                           {-s * az, ny, s * ax},
                           {az * ax * k, -s * ax, az * az * k + ny}};
    int t = ((rotation * 16384) / 256) & 0x3FFF;
    float c = costable[t], sn = sintable[t];
    const float turn[3][3] = {{c, 0.0f, sn}, {0.0f, 1.0f, 0.0f}, {-sn, 0.0f, c}};
    mappingframe f;
    for (int i = 0; i < 3; ++i) {
        float r[3];
        for (int j = 0; j < 3; ++j)
            r[j] = (turn[i][0] * q[0][j] + turn[i][1] * q[1][j] + turn[i][2] * q[2][j]) * scale[i];
        f.row[i] = {r[0], r[1], r[2]};
    }
    return f;
}

// The scales of the frame's rows for each kind of mapping.
void framescales(int type, int sx, int sy, int sz, float scale[3]) {
    if (type == 1) {
        scale[0] = sx < 0 ? static_cast<float>(-sx) / 1024.0f : 1.0f;
        scale[2] = sx > 0 ? static_cast<float>(sx) / 1024.0f : 1.0f;
        scale[1] = 64.0f / static_cast<float>(sy);
    } else if (type == 2) {
        scale[0] = 64.0f / static_cast<float>(sx);
        scale[1] = 64.0f / static_cast<float>(sy);
        scale[2] = 64.0f / static_cast<float>(sz);
    } else {
        scale[0] = static_cast<float>(sx) / 1024.0f;
        scale[1] = static_cast<float>(sy) / 1024.0f;
        scale[2] = static_cast<float>(sz) / 1024.0f;
    }
}

// Quarter turns of a corner's coordinates.
void turn(int direction, float& u, float& v) {
    float a = u, b = v;
    switch (direction) {
    case 1: u = -b, v = a; break;
    case 2: u = -a, v = -b; break;
    case 3: u = b, v = -a; break;
    default: break;
    }
}

// Round a cylinder or a sphere the coordinate that went round wraps by `step`; corners b and c
// move to the side of corner a.
void repairseam(float uv[3][2], int direction, float half, float step) {
    int axis = direction == 1 || direction == 3 ? 1 : 0;
    for (int k = 1; k < 3; ++k) {
        if (uv[k][axis] - uv[0][axis] > half) uv[k][axis] -= step;
        if (uv[0][axis] - uv[k][axis] > half) uv[k][axis] += step;
    }
}

float angle(float y, float x) {
    return static_cast<float>(std::atan2(static_cast<double>(y), static_cast<double>(x))) * 0.15915494f + 0.5f;
}

// Per mapping the scratch of the step: its box, then its centre in the same place, and its frame.
struct mappingscratch {
    vec3* low;
    vec3* high;
    mappingframe* frame;
};

class mapper {
public:
    mapper(const model& m, const mappingsource& map, mappingscratch scratch)
        : m(m), map(map), scratch(scratch) {}

    // The corners of one face with mapping i, in units of the tile; an unknown kind of mapping
    // leaves the previous face's corners.
    void face(int i, const vec3 corner[3], float uv[3][2]) const {
        vec3 centre = scratch.low[i];
        const mappingframe& frame = scratch.frame[i];
        int direction = map.direction[i];
        float k0 = static_cast<float>(map.shift0[i]) / 256.0f;
        switch (map.type[i]) {
        case 0: planar(i, corner, uv); break;
        case 1: {
            float s = static_cast<float>(map.scalez[i]) / 1024.0f;
            for (int k = 0; k < 3; ++k) {
                vec3 f = frame.apply(corner[k] - centre);
                uv[k][0] = angle(f.x, f.z);
                if (s != 1.0f) uv[k][0] *= s;
                uv[k][1] = f.y + 0.5f + k0;
                turn(direction, uv[k][0], uv[k][1]);
            }
            repairseam(uv, direction, s * 0.5f, s);
            break;
        }
        case 2: cube(i, corner, uv); break;
        case 3:
            for (int k = 0; k < 3; ++k) {
                vec3 f = frame.apply(corner[k] - centre);
                float len = std::sqrt(f.x * f.x + f.y * f.y + f.z * f.z);
                uv[k][0] = angle(f.x, f.z);
                uv[k][1] = static_cast<float>(std::asin(static_cast<double>(f.y / len))) * 0.31830987f + 0.5f + k0;
                turn(direction, uv[k][0], uv[k][1]);
            }
            repairseam(uv, direction, 0.5f, 1.0f);
            break;
        default: break;
        }
    }

private:
    vec3 vertex(int index) const {
        const quad& q = m.vertices[static_cast<uint16_t>(index)];
        return {q.x, q.y, q.z};
    }

    void planar(int i, const vec3 corner[3], float uv[3][2]) const {
        vec3 p = vertex(map.p[i]);
        vec3 b = vertex(map.m[i]) - p, c = vertex(map.n[i]) - p;
        vec3 n = cross(b, c), t = cross(c, n), w = cross(b, n);
        float rt = 1.0f / dot(t, b), rw = 1.0f / dot(w, c);
        for (int k = 0; k < 3; ++k) {
            vec3 q = corner[k] - p;
            uv[k][0] = dot(t, q) * rt;
            uv[k][1] = dot(w, q) * rw;
        }
    }

    // The side of the cube the face looks out of picks the two coordinates.
    void cube(int i, const vec3 corner[3], float uv[3][2]) const {
        const mappingframe& frame = scratch.frame[i];
        vec3 n = cross(corner[1] - corner[0], corner[2] - corner[0]);
        float e0 = dot(frame.row[0], n) / (64.0f / static_cast<float>(map.scalex[i]));
        float e1 = dot(frame.row[1], n) / (64.0f / static_cast<float>(map.scaley[i]));
        float e2 = dot(frame.row[2], n) / (64.0f / static_cast<float>(map.scalez[i]));
        float a0 = std::fabs(e0), a1 = std::fabs(e1), a2 = std::fabs(e2);
        int side = a1 > a0 && a1 > a2   ? (e1 > 0.0f ? 0 : 1)
                   : a2 > a0 && a2 > a1 ? (e2 > 0.0f ? 2 : 3)
                                        : (e0 > 0.0f ? 4 : 5);
        float k0 = static_cast<float>(map.shift0[i]) / 256.0f;
        float k1 = static_cast<float>(map.shift1[i]) / 256.0f;
        float k2 = static_cast<float>(map.shift2[i]) / 256.0f;
        for (int k = 0; k < 3; ++k) {
            vec3 f = frame.apply(corner[k] - scratch.low[i]);
            float& u = uv[k][0];
            float& v = uv[k][1];
            switch (side) {
            case 0: u = f.x + k0 + 0.5f, v = k2 - f.z + 0.5f; break;
            case 1: u = f.x + k0 + 0.5f, v = f.z + k2 + 0.5f; break;
            case 2: u = k0 - f.x + 0.5f, v = k1 - f.y + 0.5f; break;
            case 3: u = f.x + k0 + 0.5f, v = k1 - f.y + 0.5f; break;
            case 4: u = f.z + k2 + 0.5f, v = k1 - f.y + 0.5f; break;
            default: u = k2 - f.z + 0.5f, v = k1 - f.y + 0.5f; break;
            }
            turn(map.direction[i], u, v);
        }
    }

    const model& m;
    const mappingsource& map;
    mappingscratch scratch;
};

void storecorners(model& m, int r, const float uv[3][2], float scale) {
    m.uva[r] = {uv[0][0] * scale, uv[0][1] * scale};
    m.uvb[r] = {uv[1][0] * scale, uv[1][1] * scale};
    m.uvc[r] = {uv[2][0] * scale, uv[2][1] * scale};
}

}  // namespace

void maptextures(model& m, const modelsource& s, const int* faceremap) {
    memorymanager& pool = *m.pool;
    for (auto* a : {&m.uva, &m.uvb, &m.uvc}) pool.allocate(*a, m.texturedfacecount);
    pool.allocate(m.facetextures, m.texturedfacecount);
    auto mapped = [&](int i) { return faceremap[i] != -1 && faceremap[i] < m.texturedfacecount; };

    if (!s.mappings) {
        // Without mapping records every textured face shows the whole tile.
        const float whole[3][2] = {{0.0f, 127.0f}, {127.0f, 127.0f}, {0.0f, 0.0f}};
        for (int i = 0; i < s.facecount; ++i) {
            if (!mapped(i)) continue;
            m.facetextures[faceremap[i]] = static_cast<uint16_t>(s.textures[i]);
            storecorners(m, faceremap[i], whole, 1.0f);
        }
        return;
    }

    const mappingsource& map = s.mapping;
    allocatedmemory<vec3> low, high;
    allocatedmemory<mappingframe> frames;
    pool.allocate(low, map.count);
    pool.allocate(high, map.count);
    pool.allocate(frames, map.count);
    // No allocation follows until the scratch goes, so its addresses hold.
    mappingscratch scratch{low.get(), high.get(), frames.get()};

    for (int i = 0; i < map.count; ++i) {
        scratch.low[i] = {2.0e9f, 2.0e9f, 2.0e9f};
        scratch.high[i] = {-2.0e9f, -2.0e9f, -2.0e9f};
    }
    for (int i = 0; i < s.facecount; ++i) {
        int mi = static_cast<uint8_t>(s.mappings[i]);
        if (mi == 0xFF) continue;
        for (int16_t index : {s.a[i], s.b[i], s.c[i]}) {
            const quad& p = m.vertices[static_cast<uint16_t>(index)];
            vec3& lo = scratch.low[mi];
            vec3& hi = scratch.high[mi];
            if (p.x < lo.x) lo.x = p.x;
            if (p.y < lo.y) lo.y = p.y;
            if (p.z < lo.z) lo.z = p.z;
            if (p.x > hi.x) hi.x = p.x;
            if (p.y > hi.y) hi.y = p.y;
            if (p.z > hi.z) hi.z = p.z;
        }
    }
    for (int i = 0; i < map.count; ++i) {
        if (map.type[i] <= 0) continue;
        vec3& centre = scratch.low[i];
        const vec3& hi = scratch.high[i];
        centre = {(centre.x + hi.x) * 0.5f, (centre.y + hi.y) * 0.5f, (centre.z + hi.z) * 0.5f};
        float scale[3];
        framescales(map.type[i], map.scalex[i], map.scaley[i], map.scalez[i], scale);
        scratch.frame[i] = makeframe(map.p[i], map.m[i], map.n[i], map.rotation[i], scale);
    }

    const mapper project(m, map, scratch);
    float uv[3][2] = {};
    for (int i = 0; i < s.facecount; ++i) {
        if (!mapped(i)) continue;
        int r = faceremap[i];
        m.facetextures[r] = static_cast<uint16_t>(s.textures[i]);
        if (s.textures[i] == -1) continue;
        int mi = static_cast<uint8_t>(s.mappings[i]);
        if (mi == 0xFF) {
            const float whole[3][2] = {{0.0f, 1.0f}, {1.0f, 1.0f}, {0.0f, 0.0f}};
            std::copy(&whole[0][0], &whole[0][0] + 6, &uv[0][0]);
        } else {
            vec3 corner[3];
            int k = 0;
            for (int16_t index : {s.a[i], s.b[i], s.c[i]}) {
                const quad& p = m.vertices[static_cast<uint16_t>(index)];
                corner[k++] = {p.x, p.y, p.z};
            }
            project.face(mi, corner, uv);
        }
        storecorners(m, r, uv, 128.0f);
    }
}
