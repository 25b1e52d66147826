// Runs of one value: the store path of clears and opaque fills, and the blended rectangle.
#pragma once
#include <cstdint>

#include "toolkit/blend.h"
#include "toolkit/toolkit.h"

// Stores `value` into n words from p.
void storerun(uint32_t* p, int n, uint32_t value);

// Writes n pixels from p by a write rule of the blend modes, four at a time and the rest singly;
// stores take the store run.
template <class Rule>
void writerun(uint32_t* p, int n, Rule rule) {
    int i = 0;
    for (; i + 4 <= n; i += 4) {
        auto* four = reinterpret_cast<__m128i*>(p + i);
        _mm_storeu_si128(four, rule4(rule, _mm_loadu_si128(four)));
    }
    for (; i < n; ++i) p[i] = rule(p[i]);
}
inline void writerun(uint32_t* p, int n, storerule rule) { storerun(p, n, rule.colour); }

// Fills (x, y, w, h) of a buffer with row pitch `width` and `height` rows by the store path; a
// rectangle that is the whole buffer is filled as one run by the string store.
void storerect(uint32_t* buffer, int width, int height, int x, int y, int w, int h, uint32_t value);

// Cuts a rectangle to `cliprect`; w and h may come out zero or negative.
struct cliprectangle {
    int x, y, w, h;
    cliprectangle(const toolkit& t, int x, int y, int w, int h);
};

void drawrectangle(toolkit& t, int x, int y, int w, int h, uint32_t colour, int mode);
void cleardepth(toolkit& t);
