// The seeded fuzz harness: one generator whose values lean to where arithmetic breaks, and the
// runner of fuzz families. A family is one function that makes, draws and checks one case from its
// own generator; every case has its own seed, so a failing case reruns alone and prints what it
// drew:
//   WEXEL_FUZZ_CASE=n unit_tests --gtest_filter='*fuzz*FAMILY*'
#pragma once
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <iostream>

#include "pixel/lanewidth.h"

// A small, fast generator (splitmix64); a given seed always gives the same run.
struct testrng {
    using result_type = uint32_t;
    uint64_t state;
    explicit testrng(uint64_t seed) : state(seed) {}
    static constexpr result_type min() { return 0; }
    static constexpr result_type max() { return 0xFFFFFFFFu; }
    result_type operator()() {
        uint64_t z = (state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return static_cast<result_type>((z ^ (z >> 31)) >> 32);
    }

    int below(int n) { return static_cast<int>((*this)() % static_cast<uint32_t>(n)); }
    bool onein(int n) { return below(n) == 0; }
    // Any value from lo through hi, which may be the ends of the int range.
    int between(int lo, int hi) {
        uint64_t span = static_cast<uint64_t>(static_cast<long long>(hi) - lo) + 1;
        return static_cast<int>(lo + static_cast<long long>((*this)() % span));
    }
    float real(float lo, float hi) { return lo + (hi - lo) * static_cast<float>((*this)() >> 8) * 0x1p-24f; }

    // Bytes and pixel words with bytes biased towards 0x00 and 0xFF, where rules carry and saturate.
    static uint8_t biased(uint32_t pick, uint32_t value) { return pick == 0 ? 0 : pick == 1 ? 255 : value & 255; }
    uint8_t byte() { return biased(below(4), (*this)()); }
    uint32_t pixel() {
        uint32_t picks = (*this)(), values = (*this)(), p = 0;
        for (int i = 0; i < 32; i += 8) p |= static_cast<uint32_t>(biased(picks >> i & 3, values >> i)) << i;
        return p;
    }
    // Row lengths across the groups of four and eight and their leftovers, and start offsets.
    int width() { return 1 + below(33); }
    int offset() { return below(4); }
    // A coordinate on an axis `extent` long: mostly on or around it, sometimes far off, now and then
    // at or next to the limits of an int.
    int coordinate(int extent) {
        static constexpr int limits[] = {INT_MIN, INT_MIN + 1, INT_MAX, INT_MAX - 1, 1 << 30, -(1 << 30),
                                         32767,   32768,       -32768,  65536,       -65537,  0, -1, 1};
        switch (below(16)) {
            case 0: return limits[below(14)];
            case 1: return between(-100000, 100000);
            case 2: return between(-3, 3) + (below(2) ? INT_MIN + 64 : INT_MAX - 64);
            default: return between(-extent - 4, 2 * extent + 4);
        }
    }
};

// One case of a family: its number and its own generator. note() describes the case when it runs
// alone; building the words for every case would cost more than the drawing.
struct fuzzcase : testrng {
    int number;
    bool alone;
    // The row-loop widths this processor runs, case by case, so that one run compares each against
    // the references; it draws nothing from the generator.
    lanewidth lanes() const {
        const auto widths = runnablewidths();
        return widths[size_t(number) % widths.size()];
    }
    template <class... A>
    void note(const A&... parts) {
        if (alone) ((std::cout << parts << ' '), ...) << std::endl;
    }
};

// A family: its function returns whether the case changed its target, so that a generator which
// stopped reaching the target shows.
struct fuzzfamily {
    const char* name;
    int cases;
    bool (*run)(fuzzcase&);
};

inline void PrintTo(const fuzzfamily& family, std::ostream* out) { *out << family.name; }

inline void runfuzz(const fuzzfamily& family) {
#ifdef __SANITIZE_ADDRESS__
    const int cases = family.cases / 8;
#else
    const int cases = family.cases;
#endif
    const char* one = std::getenv("WEXEL_FUZZ_CASE");
    const int first = one ? std::atoi(one) : 0, last = one ? first + 1 : cases;
    int drew = 0;
    for (int n = first; n < last; ++n) {
        fuzzcase c{testrng(0x5EED0000ull + static_cast<uint64_t>(n) * 0x9E3779B97F4A7C15ull), n, one != nullptr};
        drew += family.run(c);
        if (::testing::Test::HasFailure()) {
            ADD_FAILURE() << family.name << " case " << n << " failed; WEXEL_FUZZ_CASE=" << n << " reruns it";
            return;
        }
    }
    if (!one) {
        EXPECT_GT(drew, cases / 20) << family.name << " cases seldom reach the target";
    }
}
