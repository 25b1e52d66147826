// Whole-model transforms against the rules over random models, refusals that leave the model alone,
// and four exact quarter turns and two mirrors that give everything back.
#include "model/transform.h"
#include "modelreference.h"
#include "motiontest.h"

namespace {

class transform : public motiontest {};

// The entries in host order: h.f, S, t, VA, EA, K about y, y, x, x, z, z; then h.ia, oa, wa.
TEST_F(transform, everytransformfollowstherulesorisrefusedleavingthemodelalone) {
    const int axes[6] = {1, 1, 0, 0, 2, 2}, angles[] = {4096, 8192, 12288, 16384, 0};
    for (int round = 0; round < 900 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        std::unique_ptr<model> m = randommodel(rng() % 3 ? 0xFFFFF : rng() & 0x1F);
        const int op = round % 9, axis = axes[op % 6], angle = rng() % 2 ? angles[rng() % 5] : int(rng());
        const int a[3] = {int(rng() % 3) * 64 + 64, rng() % 2 ? 0 : int(rng() % 512) - 256, int(rng() % 300)};
        std::vector<quad> v = contents(m->vertices), n = contents(m->normals), fn = contents(m->facenormals);
        const std::vector<uint16_t> b = contents(m->faceb), c = contents(m->facec);
        const std::vector<uint8_t> before = snapshot(*m);
        const int still = op == 7 ? 128 : 0;
        const uint32_t need = op == 8  ? FM_MIRROR
                              : op > 5 ? (a[0] != still) | (a[1] != still) << 1 | (a[2] != still) << 2
                                       : (7 & ~(1u << axis)) | (op & 1 ? FM_NORMALS : 0u);
        const bool refuse = (m->functionmask & need) != need;
        ASSERT_EQ(refused([&] {
            if (op < 6) turnmodel(*m, axis == 0 ? turnaxis::x : axis == 1 ? turnaxis::y : turnaxis::z, angle, op & 1);
            if (op == 6) translatemodel(*m, a[0], a[1], a[2]);
            if (op == 7) scalemodel(*m, a[0], a[1], a[2]);
            if (op == 8) mirrormodel(*m);
        }), refuse);
        if (refuse) {
            EXPECT_TRUE(snapshot(*m) == before);
            continue;
        }
        // About y the three quarter turns are exact moves and sign flips.
        auto turned = [&](int axis, quad& p) {
            const int q = axis == 1 && angle && angle % 4096 == 0 && angle < 16384 ? angle / 4096 : 0;
            if (!q) return turnedby(axis, p, angle);
            std::tie(p.x, p.z) = q == 1 ? std::pair(p.z, -p.x) : q == 2 ? std::pair(-p.x, -p.z) : std::pair(-p.z, p.x);
        };
        const bool keepsnormals = op > 5 || (!n.empty() && (op & 1));
        const float s = sintable[angle & 0x3FFF], cs = costable[angle & 0x3FFF];
        for (quad& p : v) {
            if (op < 6) turned(axis, p);
            if (op == 6) p.x += float(a[0]), p.y += float(a[1]), p.z += float(a[2]);
            for (int k = 0; k < 3 && op == 7; ++k)
                if (a[k] != 128) (&p.x)[k] = std::floor((&p.x)[k] * float(a[k]) * 0.0078125f);
        }
        for (quad& p : n)  // the host relies on a rule of its own for normals turned about x
            if (op == 3) std::tie(p.y, p.z) = std::pair(p.z * s + p.y * cs, p.y * s - p.z * cs);
            else if (op < 6) turned(axis, p);
        for (quad& p : fn)
            if (op == 1) turned(1, p);
        for (auto* q : {&v, &n, &fn})
            for (quad& p : *q) p.z = op == 8 ? -p.z : p.z;
        EXPECT_TRUE(samebits(v, m->vertices) && (op != 8 || (samebits(b, m->facec) && samebits(c, m->faceb))));
        if (!keepsnormals && (m->modelflags & MF_POINTLIT)) modelreference::normals(*m, n, fn), fn = contents(m->facenormals);
        if (keepsnormals || (m->modelflags & MF_POINTLIT)) EXPECT_TRUE(samebits(n, m->normals) && samebits(fn, m->facenormals));
        else EXPECT_TRUE(m->normals.empty() && m->facenormals.empty() && m->sharednormals.empty());
        EXPECT_EQ(m->boundsvalid != 0, op == 6 || (keepsnormals && op < 6 && axis != 1));
        EXPECT_EQ(m->litcolours.empty(), op == 8 || (keepsnormals && axis == 1 && op < 2));
    }
}

TEST_F(transform, fourquarterturnsandtwomirrorsgiveeverythingback) {
    for (int round = 0; round < 60; ++round) {
        std::unique_ptr<model> m = randommodel(0xFFFFF);
        const std::vector<quad> v = contents(m->vertices), n = contents(m->normals);
        const std::vector<uint16_t> b = contents(m->faceb);
        for (int turn = 0; turn < 4; ++turn) turnmodel(*m, turnaxis::y, 4096 * (1 + round % 3), true);
        mirrormodel(*m), mirrormodel(*m);
        EXPECT_TRUE(samebits(v, m->vertices) && samebits(b, m->faceb) && (n.empty() || samebits(n, m->normals)));
    }
}

}  // namespace
