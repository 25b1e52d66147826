// Models that move, for tests: random models built, lit and bounded, the bytes a refused call must
// leave alone, and the turn rules through the tables.
#pragma once
#include <cmath>
#include <cstring>
#include <memory>
#include <vector>

#include "model/lighting.h"
#include "modeltest.h"

template <class T>
std::vector<T> contents(const allocatedmemory<T>& a) { return std::vector<T>(a.get(), a.get() + a.length()); }

template <class T>
bool samebits(const std::vector<T>& e, const allocatedmemory<T>& a) {
    return int(e.size()) == a.length() && (e.empty() || !std::memcmp(e.data(), a.get(), e.size() * sizeof(T)));
}

// What transforms, steps and clones change, as bytes.
inline std::vector<uint8_t> snapshot(const model& m) {
    std::vector<uint8_t> b;
    auto add = [&](const void* p, size_t n) { b.insert(b.end(), (const uint8_t*)p, (const uint8_t*)p + n); };
    auto array = [&](const auto& a) { add(a.get(), a.bytes()), b.push_back(a.empty()); };
    array(m.vertices), array(m.normals), array(m.facenormals), array(m.sharednormals), array(m.fhsl);
    array(m.faceb), array(m.litcolours), add(&m.functionmask, 4), add(&m.boundsvalid, 1), add(&m.radius, 16);
    return b;
}

// True when the call was refused by a native failure.
template <class F>
bool refused(F call) {
    try { call(); } catch (Exception* e) { return delete e, true; }
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
    // A random model with `mask`, lit, with its bounds; now and then without normals.
    std::unique_ptr<model> randommodel(uint32_t mask) {
        randomhostmodel h(rng, texturecount);
        h.s.functionmask = mask, h.s.modelflags = rng() & MF_POINTLIT;
        std::unique_ptr<model> m = buildmodel(h.s, pool);
        lightpass(*m);
        // Faces that are not flat leave their entries as the pool had them; zero, their bits compare.
        for (int f = 0; f < m->facenormals.length(); ++f)
            if (m->facetypes.empty() || m->facetypes[f] != 1) m->facenormals[f] = quad{};
        if (rng() % 4 == 0) m->normals.release(), m->facenormals.release();
        computebounds(*m);
        return m;
    }
};
