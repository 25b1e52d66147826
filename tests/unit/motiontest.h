// Models that move, for tests: random models built, lit and bounded, a snapshot of everything a
// refused call must leave alone, and the turn rules through the tables.
#pragma once
#include <cmath>
#include <cstring>
#include <memory>
#include <vector>

#include "model/lighting.h"
#include "modeltest.h"

template <class T>
std::vector<T> contents(const allocatedmemory<T>& a) {
    return std::vector<T>(a.get(), a.get() + a.length());
}

template <class T>
bool samebits(const std::vector<T>& expected, const allocatedmemory<T>& a) {
    return int(expected.size()) == a.length() && !std::memcmp(expected.data(), a.get(), expected.size() * sizeof(T));
}

// What a model holds that transforms, steps and clones change.
struct modelsnapshot {
    std::vector<uint8_t> bytes;
    explicit modelsnapshot(const model& m) {
        auto add = [&](const void* p, size_t n) { bytes.insert(bytes.end(), (const uint8_t*)p, (const uint8_t*)p + n); };
        for (const auto* a : {&m.vertices, &m.normals, &m.facenormals, &m.sharednormals})
            add(a->get(), a->bytes()), bytes.push_back(a->empty());
        add(m.fhsl.get(), m.fhsl.bytes()), add(m.facealphas.get(), m.facealphas.bytes());
        add(m.faceb.get(), m.faceb.bytes()), bytes.push_back(m.litcolours.empty());
        add(&m.functionmask, 4), add(&m.boundsvalid, 1), add(&m.radius, 16), add(m.animorigin, 12);
    }
    bool operator==(const modelsnapshot&) const = default;
};

// Runs a call that must be refused; true when it was, by a native failure.
template <class F>
bool refused(F call) {
    try {
        call();
    } catch (Exception* e) {
        delete e;
        return true;
    }
    return false;
}

// A point turned by the rule of axis 0 (x), 1 (y) or 2 (z) through the tables.
inline void turnedby(int axis, quad& p, int angle) {
    const float s = sintable[angle & 0x3FFF], c = costable[angle & 0x3FFF], x = p.x, y = p.y, z = p.z;
    if (axis == 0) p.y = y * c - z * s, p.z = z * c + y * s;
    if (axis == 1) p.x = z * s + x * c, p.z = z * c - x * s;
    if (axis == 2) p.x = y * s + x * c, p.y = y * c - x * s;
}

class motiontest : public modeltest {
protected:
    // A random model with all of `mask`, lit, with its bounds; now and then without normals.
    std::unique_ptr<model> randommodel(uint32_t mask) {
        randomhostmodel h(rng, texturecount);
        h.s.functionmask = mask, h.s.modelflags = rng() & MF_POINTLIT;
        std::unique_ptr<model> m = buildmodel(h.s, pool);
        lightpass(*m);
        if (rng() % 4 == 0) m->normals.release(), m->facenormals.release();
        computebounds(*m);
        return m;
    }
};
