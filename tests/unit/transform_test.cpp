// Whole-model transforms against the rules over random models: what moves, what the normals,
// bounds and colours become, the exact quarter turns and the mirror undone, and refusals.
#include "model/transform.h"
#include "modelreference.h"
#include "motiontest.h"

namespace {

class transform : public motiontest {};

// The entries in host order: h.f, S, t, VA, EA, K, ia, oa, wa; the axes the turns go about.
constexpr int turnaxes[6] = {1, 1, 0, 0, 2, 2};
constexpr turnaxis axisof[3] = {turnaxis::x, turnaxis::y, turnaxis::z};

// About y the three quarter turns are exact moves and sign flips.
void turnedexactly(int axis, quad& p, int angle) {
    const float x = p.x, z = p.z;
    if (axis != 1 || (angle != 4096 && angle != 8192 && angle != 12288)) return turnedby(axis, p, angle);
    p.x = angle == 4096 ? z : angle == 8192 ? -x : -z;
    p.z = angle == 4096 ? -x : angle == 8192 ? -z : x;
}

TEST_F(transform, everytransformfollowstherulesorisrefusedleavingthemodelalone) {
    const int angles[] = {4096, 8192, 12288, 16384, 0};
    for (int round = 0; round < 900 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        std::unique_ptr<model> m = randommodel(rng() % 3 ? 0xFFFFF : rng() & 0x1F);
        const int op = round % 9, angle = rng() % 2 ? angles[rng() % 5] : int(rng());
        const int a[3] = {int(rng() % 3) * 64 + 64, rng() % 2 ? 0 : int(rng() % 512) - 256, int(rng() % 300)};
        std::vector<quad> v = contents(m->vertices), n = contents(m->normals), fn = contents(m->facenormals);
        const std::vector<uint16_t> b = contents(m->faceb), c = contents(m->facec);
        const bool hadnormals = !n.empty();
        const modelsnapshot before(*m);
        uint32_t need = op == 8 ? FM_MIRROR : op == 7 ? (a[0] != 128) | (a[1] != 128) << 1 | (a[2] != 128) << 2
                                : op == 6 ? (a[0] != 0) | (a[1] != 0) << 1 | (a[2] != 0) << 2
                                          : (7 & ~(1u << turnaxes[op])) | (op & 1 ? FM_NORMALS : 0u);
        const bool refuse = (m->functionmask & need) != need;
        const bool threw = refused([&] {
            if (op < 6) turnmodel(*m, axisof[turnaxes[op]], angle, op & 1);
            if (op == 6) translatemodel(*m, a[0], a[1], a[2]);
            if (op == 7) scalemodel(*m, a[0], a[1], a[2]);
            if (op == 8) mirrormodel(*m);
        });
        ASSERT_EQ(threw, refuse);
        if (refuse) {
            EXPECT_TRUE(modelsnapshot(*m) == before);
            continue;
        }
        bool bounds = true, colours = true, keepsnormals = true;
        if (op < 6) {
            const int axis = turnaxes[op];
            for (quad& p : v) turnedexactly(axis, p, angle);
            keepsnormals = hadnormals && (op & 1);
            const float s = sintable[angle & 0x3FFF], cs = costable[angle & 0x3FFF];
            for (quad& p : n) {
                const float y = p.y, z = p.z;
                if (keepsnormals && axis == 0) p.y = z * s + y * cs, p.z = y * s - z * cs;
                if (keepsnormals && axis != 0) turnedexactly(axis, p, angle);
            }
            if (keepsnormals && axis == 1)
                for (quad& p : fn) turnedexactly(1, p, angle);
            bounds = keepsnormals && axis != 1, colours = !keepsnormals || axis != 1;
        } else if (op == 6) {
            for (quad& p : v) p.x += float(a[0]), p.y += float(a[1]), p.z += float(a[2]);
        } else if (op == 7) {
            for (quad& p : v)
                for (int k = 0; k < 3; ++k)
                    if (a[k] != 128) (&p.x)[k] = std::floor((&p.x)[k] * float(a[k]) * 0.0078125f);
            bounds = false;
        } else {
            for (auto* q : {&v, &n, &fn})
                for (quad& p : *q) p.z = -p.z;
            bounds = colours = false;
            EXPECT_TRUE(samebits(b, m->facec) && samebits(c, m->faceb));
        }
        EXPECT_TRUE(samebits(v, m->vertices));
        if (keepsnormals) {
            EXPECT_TRUE(samebits(n, m->normals) && samebits(fn, m->facenormals));
        } else if (m->modelflags & MF_POINTLIT) {
            modelreference::normals(*m, n, fn);
            EXPECT_TRUE(samebits(n, m->normals));
        } else {
            EXPECT_TRUE(m->normals.empty() && m->facenormals.empty() && m->sharednormals.empty());
        }
        EXPECT_EQ(m->boundsvalid != 0, bounds);
        EXPECT_EQ(m->litcolours.empty(), !colours);
    }
}

// Four quarter turns about y give every position and normal back exactly, and so does mirroring twice.
TEST_F(transform, fourquarterturnsandtwomirrorsgiveeverythingback) {
    for (int round = 0; round < 60; ++round) {
        std::unique_ptr<model> m = randommodel(0xFFFFF);
        const std::vector<quad> v = contents(m->vertices), n = contents(m->normals);
        const std::vector<uint16_t> b = contents(m->faceb);
        for (int turn = 0; turn < 4; ++turn) turnmodel(*m, turnaxis::y, 4096 * (1 + round % 3), true);
        mirrormodel(*m), mirrormodel(*m);
        EXPECT_TRUE(samebits(v, m->vertices) && samebits(b, m->faceb)) << round;
        EXPECT_TRUE(n.empty() || samebits(n, m->normals)) << round;
    }
}

}  // namespace
