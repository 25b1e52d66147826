// A 1024x768 target with a colour and a depth buffer, both cleared, for the benchmarks; the
// rasterisers draw into it, over a depth range of 0 to 1.
#pragma once
#include <xmmintrin.h>

#include <cstdlib>
#include <cstring>

#include "toolkit/toolkit.h"
#include "util/frame.h"

struct benchtarget {
    static constexpr int width = 1024, height = 768;
    toolkit t{};
    benchtarget() {
        t.width = width;
        t.height = height;
        t.colourbuffer = static_cast<uint32_t*>(aligned_alloc(64, width * height * 4));
        t.depthbuffer = static_cast<float*>(aligned_alloc(64, width * height * 4));
        memset(t.colourbuffer, 0, width * height * 4);
        memset(t.depthbuffer, 0, width * height * 4);
        setcliprect(t, 0, 0, width, height);
        rasterstate.targetcolour = t.colourbuffer;
        rasterstate.targetdepth = t.depthbuffer;
        rasterstate.targetstride = width;
        setviewport(0, 0, width, height, 0.0f, 1.0f);
    }
    ~benchtarget() {
        free(t.colourbuffer);
        free(t.depthbuffer);
    }
    benchtarget(const benchtarget&) = delete;
    benchtarget& operator=(const benchtarget&) = delete;
};

// The library's floating-point mode, which every export sets around its work.
struct libraryfloats {
    unsigned saved = _mm_getcsr();
    libraryfloats() { _mm_setcsr(librarymxcsr); }
    ~libraryfloats() { _mm_setcsr(saved); }
};
