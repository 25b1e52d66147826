// Animation steps against the rules over random models, groups, masks and frames: the pivot, moves of
// the selected vertices in each entry's order, normals and their refusal, face alphas and colours.
#include "model/animation.h"
#include "motiontest.h"

namespace {

class animation : public motiontest {};

// The items a step takes, in order: every one, or the members of each listed group in the table.
std::vector<int> selected(const grouptable& t, int count, const allocatedmemory<uint16_t>& masks,
                          const animationselection& s) {
    std::vector<int> out;
    for (int i = 0; s.whole && i < count; ++i) out.push_back(i);
    for (int g = 0, id; !s.whole && g < s.groupcount; ++g)
        for (int k = 0; (id = s.groups[g]) >= 0 && id < t.index.length() && k < t.index[id].count; ++k)
            if (int item = t.members[t.index[id].start + k]; !s.masked || masks.empty() || (s.select & masks[item]))
                out.push_back(item);
    return out;
}

using m3 = std::array<std::array<float, 3>, 3>;
std::array<float, 3> times(const m3& a, const float* v) {
    return {a[0][0] * v[0] + a[0][1] * v[1] + a[0][2] * v[2], a[1][0] * v[0] + a[1][1] * v[1] + a[1][2] * v[2],
            a[2][0] * v[0] + a[2][1] * v[1] + a[2][2] * v[2]};
}
m3 times(const m3& a, const m3& b) {
    m3 out;
    for (int c = 0; c < 3; ++c)
        for (int r = 0; const float e : times(a, std::array{b[0][c], b[1][c], b[2][c]}.data())) out[r++][c] = e;
    return out;
}

TEST_F(animation, everystepfollowstherules) {
    const int types[] = {0, 1, 2, 3, 5, 7, 4};
    for (int round = 0; round < 1500 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        std::unique_ptr<model> m = randommodel(rng() % 4 ? 0xFFFFF : 0xFFDFF);
        for (auto* masks : {&m->vertexmasks, &m->facemasks})
            if (rng() % 2) {
                pool.allocate(*masks, masks == &m->vertexmasks ? m->vertexcount : m->facecount);
                for (int i = 0; i < masks->length(); ++i) (*masks)[i] = uint16_t(rng() % 4);
            }
        const int entry = round % 4, type = types[rng() % 7];  // h.J, h.e, h.w, h.e with a frame
        std::vector<int32_t> ids(rng() % 5), frame(14);
        for (int32_t& id : ids) id = int(rng() % 13) - 1;
        for (int32_t& v : frame) v = int(rng() % 8) << 15 | int(1 + rng() % 0x7FFF);
        animationselection s;
        s.groups = ids.data(), s.groupcount = int(ids.size()), s.whole = entry == 2, s.masked = entry & 1;
        s.select = rng() % 4, s.order = entry == 0 ? int(rng() % 2) : 0;
        const int x = int(rng() % 16384), y = int(rng() % 3) * 8000, z = int(rng() % 300) - 100, angle[3] = {x, y, z};
        const bool normals = entry != 2 && rng() % 2 && !m->normals.empty();
        for (float& o : m->animorigin) o = float(int(rng() % 200) - 100);
        m->originfresh = rng() % 2;

        std::vector<quad> v = contents(m->vertices), n = contents(m->normals);
        std::vector<uint8_t> alphas = contents(m->facealphas);
        std::vector<uint16_t> codes = contents(m->fhsl);
        float o[3] = {m->animorigin[0], m->animorigin[1], m->animorigin[2]}, f[3] = {float(x), float(y), float(z)};
        bool fresh = m->originfresh, dirty = false, refuse = false;
        const std::vector<int> verts = selected(m->vertexgroups, m->vertexcount, m->vertexmasks, s);
        const std::vector<int> faces = selected(m->facegroups, m->facecount, m->facemasks, s);
        m3 a, at, own = {{{f[0], 0, 0}, {0, f[1], 0}, {0, 0, f[2]}}};
        for (int k = 0; k < 9; ++k) a[k / 3][k % 3] = at[k % 3][k / 3] = decodeframe(frame[k]);
        if (type == 0) {
            o[0] = o[1] = o[2] = 0.0f;
            for (int i : verts) o[0] += v[i].x, o[1] += v[i].y, o[2] += v[i].z;
            for (int k = 0; k < 3; ++k) o[k] = verts.empty() ? f[k] : o[k] * (1.0f / float(verts.size())) + f[k];
            fresh = fresh || (s.masked && !verts.empty());
        } else if (type == 1) {
            const std::array<float, 3> t = entry == 3 ? times(a, f) : std::array<float, 3>{f[0], f[1], f[2]};
            for (int i : verts) v[i].x += t[0], v[i].y += t[1], v[i].z += t[2];
        } else if ((type == 2 || type == 3) && entry == 3) {
            // A (O (A^T p + T2 - o) + o) + T1, folded into one matrix and one vector before the loop.
            const float t1[3] = {decodeframe(frame[9]), decodeframe(frame[10]), decodeframe(frame[11])};
            const float t2[3] = {decodeframe(frame[12]), decodeframe(frame[13]), 0.0f};
            const std::array<float, 3> moved = times(at, o);
            for (int k = 0; k < 3 && fresh; ++k) o[k] = moved[k] + t2[k];
            fresh = false;
            const float sx = sintable[x], cx = costable[x], sy = sintable[y], cy = costable[y];
            const float sz = sintable[z & 0x3FFF], cz = costable[z & 0x3FFF];
            if (type == 2)
                own = {{{sz * sx * sy + cz * cy, cz * sx * sy - sz * cy, sy * cx}, {sz * cx, cz * cx, -sx},
                        {sz * sx * cy - cz * sy, sz * sy + cz * sx * cy, cy * cx}}};
            const float u[3] = {t2[0] - o[0], t2[1] - o[1], t2[2] - o[2]};
            std::array<float, 3> w = times(own, u);
            for (int k = 0; k < 3; ++k) w[k] += o[k];
            std::array<float, 3> t = times(a, w.data());
            for (int i : verts) {
                const std::array<float, 3> p = times(times(a, times(own, at)), &v[i].x);
                v[i].x = p[0] + (t[0] + t1[0]), v[i].y = p[1] + (t[1] + t1[1]), v[i].z = p[2] + (t[2] + t1[2]);
            }
        } else if (type == 2) {
            refuse = normals && !(m->functionmask & FM_ANIMATE_NORMALS);
            for (int i : verts) {
                quad& p = v[i];
                p.x -= o[0], p.y -= o[1], p.z -= o[2];
                for (int axis : s.order ? std::array{0, 2, 1} : std::array{2, 0, 1})
                    if (angle[axis]) turnedby(axis, p, angle[axis]);
                p.x += o[0], p.y += o[1], p.z += o[2];
            }
            for (int i : verts)
                for (int axis : {2, 0, 1})
                    if (normals && !refuse && i < int(n.size()) && angle[axis]) turnedby(axis, n[i], angle[axis]);
        } else if (type == 3) {
            for (int i : verts)
                for (int k = 0; k < 3; ++k) (&v[i].x)[k] = f[k] * ((&v[i].x)[k] - o[k]) * 0.0078125f + o[k];
        } else if (type == 5 && !m->facealphas.empty() && (s.whole || !m->facegroups.index.empty())) {
            for (int i : faces) alphas[i] = uint8_t(std::clamp(alphas[i] + x * 8, 0, 255));
        } else if (type == 7 && !m->fhsl.empty()) {
            for (int i : faces)
                codes[i] = uint16_t(((codes[i] >> 10) + x) & 63) << 10 | std::clamp((codes[i] >> 7 & 7) + y, 0, 7) << 7 |
                           std::clamp((codes[i] & 127) + z, 0, 127);
            for (int id : ids) dirty = dirty || (id >= 0 && id < m->facegroups.index.length());
            dirty = dirty || s.whole;
        }
        EXPECT_EQ(refused([&] {
            if (entry == 3) animateframed(*m, type, s, x, y, z, frame.data());
            else animatestep(*m, type, s, x, y, z, normals);
        }), refuse);
        EXPECT_TRUE(samebits(v, m->vertices) && samebits(n, m->normals));
        EXPECT_TRUE(samebits(alphas, m->facealphas) && samebits(codes, m->fhsl));
        EXPECT_TRUE(!std::memcmp(o, m->animorigin, sizeof o) && (m->originfresh != 0) == fresh);
        EXPECT_EQ(m->colourdirty != 0, dirty);
    }
}

}  // namespace
