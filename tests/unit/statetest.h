// A toolkit as its constructor leaves it, for tests of the state setters. Each test runs in the
// library's floating-point mode, as exports do, and the process-wide state is put back after it.
#pragma once
#include <gtest/gtest.h>
#include <xmmintrin.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>

#include "toolkit/toolkit.h"
#include "util/frame.h"

inline uint32_t bitsof(float f) {
    uint32_t u;
    std::memcpy(&u, &f, 4);
    return u;
}

// Through the processor's approximation, never hard-coded: it differs between makers.
inline float rsqrt(float x) { return _mm_cvtss_f32(_mm_rsqrt_ss(_mm_set_ss(x))); }

class statetest : public ::testing::Test {
protected:
    void SetUp() override {
        savedraster = rasterstate;
        savedflag = fogflag;
        hostmxcsr = _mm_getcsr();
        _mm_setcsr(librarymxcsr);
        for (float* m : {t.viewmatrix, t.projectionmatrix, t.viewprojection})
            for (int i = 0; i < 16; ++i) m[i] = i % 5 == 0 ? 1.0f : 0.0f;
    }
    void TearDown() override {
        _mm_setcsr(hostmxcsr);
        rasterstate = savedraster;
        fogflag = savedflag;
    }

    // Mixed magnitudes, so that a different order of addition shows in the bits.
    float randomfloat() {
        std::uniform_real_distribution<float> mantissa(-2.0f, 2.0f);
        std::uniform_int_distribution<int> exponent(-6, 6);
        return std::ldexp(mantissa(random), exponent(random));
    }
    void randommatrix(float* m) {
        for (int i = 0; i < 16; ++i) m[i] = randomfloat();
    }

    toolkit t{};
    std::mt19937 random{20261122};

private:
    rasterstatedata savedraster;
    int savedflag;
    unsigned hostmxcsr;
};
