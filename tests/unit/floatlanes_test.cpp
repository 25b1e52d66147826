// floats8 against floats4: on processors with AVX2, every operation on eight lanes gives in each
// group of four the bits that floats4 gives on that group, over values where the instructions'
// edge cases lie (zeros, subnormals, infinities, NaN, integer limits, halves).
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "pixel/floatlanes.h"
#include "pixel/lanewidth.h"

namespace {

constexpr int operations = 18;
using results = std::array<std::array<uint32_t, 8>, operations>;

}  // namespace

#pragma GCC target("avx2")
#include "pixel/floatlanes8.h"

namespace {

// Every operation of F on a and b, as bits, from lane `at` of each row on.
template <class F>
void run(const float* a, const float* b, results& out, int at) {
    const auto x = F::loadu(a), y = F::loadu(b);
    const typename F::type floats[] = {
        F::add(x, y), F::sub(x, y), F::mul(x, y), F::div(x, y), F::min(x, y), F::max(x, y),
        F::reciprocal(x), F::reciprocalroot(x), F::lessequal(x, y), F::and_(x, y), F::or_(x, y), F::andnot(x, y),
        F::template spread<0>(x), F::template spread<3>(x), F::fromints(F::bits(x)), F::widen(_mm_loadu_ps(b))};
    for (int i = 0; i < 16; ++i) std::memcpy(out[i].data() + at, &floats[i], sizeof floats[i]);
    const auto truncated = F::truncate(x), rounded = F::round(x);
    std::memcpy(out[16].data() + at, &truncated, sizeof truncated);
    std::memcpy(out[17].data() + at, &rounded, sizeof rounded);
}

bool eightasfours(const float* a, const float* b) {
    results wide{}, narrow{};
    run<floats8>(a, b, wide, 0);
    run<floats4>(a, b, narrow, 0);
    run<floats4>(a + 4, b + 4, narrow, 4);
    // widen repeats the first group; signs are one bit per lane.
    for (int l = 4; l < 8; ++l) narrow[15][l] = narrow[15][l - 4];
    int signs8 = floats8::signs(floats8::loadu(a));
    int signs4 = floats4::signs(floats4::loadu(a)) | floats4::signs(floats4::loadu(a + 4)) << 4;
    return wide == narrow && signs8 == signs4;
}

}  // namespace

#pragma GCC reset_options

namespace {

TEST(floats8, eachgroupgetsthearithmeticoffloats4) {
    if (widestlanes() != lanewidth::eight) GTEST_SKIP() << "no AVX2";
    using limits = std::numeric_limits<float>;
    const std::vector<float> edges = {0.0f, -0.0f, 1.0f, -1.0f, 0.5f, 1.5f, 2.5f, -2.5f, limits::denorm_min(),
                                      -limits::min(), limits::max(), limits::infinity(), -limits::infinity(),
                                      limits::quiet_NaN(), 2147483520.0f, 2147483648.0f, -2147483648.0f, 3e-39f};
    std::mt19937 random(5);
    for (int round = 0; round < 20000; ++round) {
        float a[8], b[8];
        for (float* v : {a, b})
            for (int l = 0; l < 8; ++l) {
                uint32_t bits = random();
                v[l] = random() % 3 ? edges[random() % edges.size()] : std::bit_cast<float>(bits);
            }
        ASSERT_TRUE(eightasfours(a, b)) << "round " << round;
    }
}

}  // namespace
