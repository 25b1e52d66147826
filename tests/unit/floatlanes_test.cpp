// floats8 against floats4 on processors with AVX2: every operation on eight lanes gives in each
// group of four the bits that floats4 gives on that group, over zeros, subnormals, infinities,
// NaN, integer limits and halves.
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>

#include "pixel/floatlanes.h"
#include "pixel/lanewidth.h"

#pragma GCC target("avx2")
#include "pixel/floatlanes8.h"

namespace {

using results = std::array<std::array<uint32_t, 8>, 19>;

// Every operation of F on a and b, as bits, from lane `at` of each row on.
template <class F>
void run(const float* a, const float* b, results& out, int at) {
    const auto x = F::loadu(a), y = F::loadu(b);
    const typename F::type floats[] = {
        F::add(x, y), F::sub(x, y), F::mul(x, y), F::div(x, y), F::min(x, y), F::max(x, y),
        F::reciprocal(x), F::reciprocalroot(x), F::lessequal(x, y), F::and_(x, y), F::or_(x, y), F::andnot(x, y),
        F::template spread<0>(x), F::template spread<3>(x), F::fromints(F::bits(x)), F::widen(_mm_loadu_ps(a))};
    for (int i = 0; i < 16; ++i) std::memcpy(out[i].data() + at, &floats[i], sizeof floats[i]);
    const auto truncated = F::truncate(x), rounded = F::round(x);
    std::memcpy(out[16].data() + at, &truncated, sizeof truncated);
    std::memcpy(out[17].data() + at, &rounded, sizeof rounded);
    out[18][0] |= uint32_t(F::signs(x)) << at;
}

// The results of floats8, then those of floats4 on each group.
std::array<results, 2> eightandfours(const float* a, const float* b) {
    std::array<results, 2> r{};
    run<floats8>(a, b, r[0], 0);
    run<floats4>(a, b, r[1], 0);
    run<floats4>(a + 4, b + 4, r[1], 4);
    std::memcpy(r[1][15].data() + 4, r[1][15].data(), 16);  // widen repeats the first group
    return r;
}

}  // namespace

#pragma GCC reset_options

TEST(floats8, eachgroupgetsthearithmeticoffloats4) {
    EXPECT_EQ(runnablewidths().back(), widestlanes());
    if (widestlanes() != lanewidth::eight) GTEST_SKIP() << "no AVX2";
    using limits = std::numeric_limits<float>;
    const std::array<float, 16> edges = {0.0f, -0.0f, 1.0f, 0.5f, 1.5f, -2.5f, limits::denorm_min(), -limits::min(),
                                         limits::max(), limits::infinity(), -limits::infinity(), limits::quiet_NaN(),
                                         2147483520.0f, 2147483648.0f, -2147483648.0f, 3e-39f};
    std::mt19937 random(5);
    for (int round = 0; round < 20000; ++round) {
        float v[16];
        for (float& f : v) f = random() % 3 ? edges[random() % edges.size()] : std::bit_cast<float>(uint32_t(random()));
        auto [wide, narrow] = eightandfours(v, v + 8);
        for (int op = 0; op < int(wide.size()); ++op)
            for (int l = 0; l < 8; ++l)  // of two NaNs, add and mul keep the one the compiler put first
                if (!((op == 0 || op == 2) && std::isnan(v[l]) && std::isnan(v[8 + l]))) {
                    ASSERT_EQ(wide[op][l], narrow[op][l]) << "operation " << op << " lane " << l << " round " << round;
                }
    }
}
