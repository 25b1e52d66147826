// Construction against a reference written from the rules over seeded random models, in a pool
// that moves at nearly every allocation: faces kept and their order, billboards, groups, and the
// texture coordinates of each kind of mapping.
#include <array>
#include <bit>
#include <cmath>

#include "modeltest.h"

namespace {

using v3 = std::array<float, 3>;
v3 operator-(v3 a, v3 b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
v3 cross(v3 a, v3 b) { return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]}; }
float dot(v3 a, v3 b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

// Host faces in model order: textured ones that the texture keeps, then the plain ones; and how
// many are textured.
std::pair<std::vector<int>, int> referenceorder(const randomhostmodel& h, const texturedescriptor* d) {
    std::vector<int> textured, plain;
    for (int i = 0; i < h.s.facecount; ++i) {
        const texturedescriptor* t = !h.textures.empty() && h.textures[i] != -1 ? &d[h.textures[i]] : nullptr;
        if (!h.types.empty() && h.types[i] == 2) continue;
        if (!t || ((h.s.modelflags & MF_SIMPLETEXTURES) && t->hidden)) plain.push_back(i);
        else if (!t->flagthree) textured.push_back(i);
    }
    textured.insert(textured.end(), plain.begin(), plain.end());
    return {textured, int(textured.size() - plain.size())};
}

// The corners of host face i under mapping m, in units of the tile.
struct referencemapping {
    const randomhostmodel& h;
    v3 low{2.0e9f, 2.0e9f, 2.0e9f}, high{-2.0e9f, -2.0e9f, -2.0e9f};
    v3 row[3]{};

    v3 vertex(int v) const { return {float(h.x[uint16_t(v)]), float(h.y[uint16_t(v)]), float(h.z[uint16_t(v)])}; }

    referencemapping(const randomhostmodel& h, int m) : h(h) {
        for (int i = 0; i < int(h.mappings.size()); ++i)
            if (uint8_t(h.mappings[i]) == m)
                for (int v : {h.a[i], h.b[i], h.c[i]})
                    for (int k = 0; k < 3; ++k)
                        low[k] = std::min(low[k], vertex(v)[k]), high[k] = std::max(high[k], vertex(v)[k]);
        float sx = float(h.scale[0][m]), sy = float(h.scale[1][m]), sz = float(h.scale[2][m]), s[3];
        switch (h.maptype[m]) {
        case 1: s[0] = sx < 0 ? -sx / 1024.0f : 1.0f, s[1] = 64.0f / sy, s[2] = sx > 0 ? sx / 1024.0f : 1.0f; break;
        case 2: s[0] = 64.0f / sx, s[1] = 64.0f / sy, s[2] = 64.0f / sz; break;
        default: s[0] = sx / 1024.0f, s[1] = sy / 1024.0f, s[2] = sz / 1024.0f;
        }
        int x = h.map[0][m], y = h.map[1][m], z = h.map[2][m];
        float ny = float(y) * 3.0518509e-5f, sn = -std::sqrt(1.0f - ny * ny), len = std::sqrt(float(x * x + z * z));
        float ax = len != 0.0f ? float(-z) / len : 1.0f, az = len != 0.0f ? float(x) / len : 0.0f;
        float q[3][3] = {{ax * ax * (1 - ny) + ny, sn * az, az * ax * (1 - ny)},
                         {-sn * az, ny, sn * ax},
                         {az * ax * (1 - ny), -sn * ax, az * az * (1 - ny) + ny}};
        int t = h.rotation[m] * 16384 / 256 & 0x3FFF;
        float c = costable[t], si = sintable[t], y3[3][3] = {{c, 0, si}, {0, 1, 0}, {-si, 0, c}};
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                row[i][j] = (y3[i][0] * q[0][j] + y3[i][1] * q[1][j] + y3[i][2] * q[2][j]) * s[i];
    }

    void corners(int m, const v3 p[3], float uv[3][2]) const {
        v3 centre = {(low[0] + high[0]) * 0.5f, (low[1] + high[1]) * 0.5f, (low[2] + high[2]) * 0.5f};
        float k[3] = {h.shift[0][m] / 256.0f, h.shift[1][m] / 256.0f, h.shift[2][m] / 256.0f};
        int dir = h.direction[m], type = h.maptype[m], side = 0;
        if (type == 2) {
            v3 n = cross(p[1] - p[0], p[2] - p[0]);
            float e[3] = {dot(row[0], n) / (64.0f / h.scale[0][m]), dot(row[1], n) / (64.0f / h.scale[1][m]),
                          dot(row[2], n) / (64.0f / h.scale[2][m])};
            float a0 = std::fabs(e[0]), a1 = std::fabs(e[1]), a2 = std::fabs(e[2]);
            side = a1 > a0 && a1 > a2 ? (e[1] > 0 ? 0 : 1) : a2 > a0 && a2 > a1 ? (e[2] > 0 ? 2 : 3) : 5 - (e[0] > 0);
        }
        v3 P{}, b{}, c{}, n{};
        if (type == 0) P = vertex(h.map[0][m]), b = vertex(h.map[1][m]) - P, c = vertex(h.map[2][m]) - P;
        n = cross(b, c);
        float rt = 1.0f / dot(cross(c, n), b), rw = 1.0f / dot(cross(b, n), c);
        for (int i = 0; i < 3; ++i) {
            v3 d = p[i] - centre, f = {dot(row[0], d), dot(row[1], d), dot(row[2], d)};
            float around = float(std::atan2(double(f[0]), double(f[2]))) * 0.15915494f + 0.5f, u = 0, v = 0;
            float s = h.scale[2][m] / 1024.0f;
            if (type == 0) u = dot(cross(c, n), p[i] - P) * rt, v = dot(cross(b, n), p[i] - P) * rw;
            if (type == 1) u = s != 1.0f ? around * s : around, v = f[1] + 0.5f + k[0];
            float up = float(std::asin(double(f[1] / std::sqrt(dot(f, f))))) * 0.31830987f;
            if (type == 3) u = around, v = up + 0.5f + k[0];
            const float cube[6][2] = {
                {f[0] + k[0] + 0.5f, k[2] - f[2] + 0.5f}, {f[0] + k[0] + 0.5f, f[2] + k[2] + 0.5f},
                {k[0] - f[0] + 0.5f, k[1] - f[1] + 0.5f}, {f[0] + k[0] + 0.5f, k[1] - f[1] + 0.5f},
                {f[2] + k[2] + 0.5f, k[1] - f[1] + 0.5f}, {k[2] - f[2] + 0.5f, k[1] - f[1] + 0.5f}};
            if (type == 2) u = cube[side][0], v = cube[side][1];
            const float turned[4][2] = {{u, v}, {-v, u}, {-u, -v}, {v, -u}};
            uv[i][0] = type ? turned[dir][0] : u, uv[i][1] = type ? turned[dir][1] : v;
        }
        if (type != 1 && type != 3) return;
        float step = type == 1 ? h.scale[2][m] / 1024.0f : 1.0f, half = type == 1 ? step * 0.5f : 0.5f;
        int axis = dir & 1;
        for (int i = 1; i < 3; ++i) {
            if (uv[i][axis] - uv[0][axis] > half) uv[i][axis] -= step;
            if (uv[0][axis] - uv[i][axis] > half) uv[i][axis] += step;
        }
    }
};

class modelbuild : public modeltest {};

TEST_F(modelbuild, facesgroupsbillboardsandtexturecoordinatesfollowtherules) {
    for (int round = 0; round < 400 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        randomhostmodel h(rng, texturecount);
        std::unique_ptr<model> m = buildmodel(h.s, pool);
        ASSERT_EQ(pool.verify(), nullptr);
        auto [order, textured] = referenceorder(h, descriptors);
        int billboards = int(h.billboardints.size()) / 8;
        for (int i = 0; i < billboards; ++i)
            if (std::find(order.begin(), order.end(), h.billboardints[7 * i]) == order.end())
                order.push_back(h.billboardints[7 * i]);
        ASSERT_EQ(m->facecount, order.size());
        ASSERT_EQ(m->texturedfacecount, textured);
        EXPECT_EQ(m->facetypes.empty(), h.types.empty());
        bool alphatexture = false;
        for (int f : order)
            alphatexture |= !h.textures.empty() && h.textures[f] != -1 && descriptors[h.textures[f]].value == 2;
        EXPECT_EQ(m->hastranslucency != 0, !h.alphas.empty() || alphatexture);

        std::vector<referencemapping> maps;
        for (int k = 0; k < h.s.mapping.count; ++k) maps.emplace_back(h, k);
        float uv[3][2] = {};
        for (int r = 0; r < m->facecount; ++r) {
            int f = order[r];
            ASSERT_EQ(m->facec[r], uint16_t(h.c[f]));
            EXPECT_TRUE(billboards || (m->facea[r] == uint16_t(h.a[f]) && m->faceb[r] == uint16_t(h.b[f])));
            EXPECT_EQ(m->fhsl[r], uint16_t(h.colours[f]));
            EXPECT_TRUE(h.alphas.empty() || m->facealphas[r] == uint8_t(h.alphas[f]));
            EXPECT_TRUE(h.types.empty() || m->facetypes[r] == h.types[f]);
            if (r >= textured) continue;
            EXPECT_EQ(m->facetextures[r], h.textures[f]);
            int mi = h.mappings.empty() ? -1 : uint8_t(h.mappings[f]);
            const float whole[6] = {0, 1, 1, 1, 0, 0};  // an unknown kind of mapping keeps the last face's
            if (mi == -1 || mi == 0xFF) std::copy(whole, whole + 6, &uv[0][0]);
            else if (h.maptype[mi] <= 3) {
                const v3 p[3] = {maps[0].vertex(h.a[f]), maps[0].vertex(h.b[f]), maps[0].vertex(h.c[f])};
                maps[mi].corners(mi, p, uv);
            }
            const texel got[3] = {m->uva[r], m->uvb[r], m->uvc[r]};
            for (int k = 0; k < 6; ++k) {
                float expected = (&uv[0][0])[k] * (mi == -1 ? 127.0f : 128.0f);
                EXPECT_EQ(std::bit_cast<uint32_t>((&got[0].u)[k]), std::bit_cast<uint32_t>(expected)) << r;
            }
        }
        for (int i = 0; i < billboards; ++i) {
            const billboard& bb = m->billboards[i];
            const int f = h.billboardints[7 * i], c = m->facec[bb.face], sum = h.y[h.a[f]] + h.y[h.b[f]] + h.y[h.c[f]];
            ASSERT_EQ(order[bb.face], f);
            EXPECT_TRUE(m->facea[bb.face] == c && m->faceb[bb.face] == c);
            EXPECT_TRUE(billboards > 1 || m->vertices[c].y == float(sum) * 0.33333334f);
            EXPECT_EQ(bb.tintmode << 8 | bb.blendmode, h.billboardints[7 * i + 4] << 8 | h.billboardints[7 * i + 5]);
            uint32_t alpha = h.alphas.empty() ? 255 : 255 - uint8_t(h.alphas[f]);
            EXPECT_EQ(m->billboardstates[i].colour, alpha << 24 | uint32_t(hsltorgb[uint16_t(h.colours[f])]));
        }
        EXPECT_EQ(m->vertexgroups.index.empty(), h.vertexgroups.empty() || !(h.s.functionmask & FM_ANIMATE_VERTICES));
        EXPECT_EQ(m->facegroups.index.empty(), h.facegroups.empty() || !(h.s.functionmask & FM_ANIMATE_FACES));
    }
}

}  // namespace
