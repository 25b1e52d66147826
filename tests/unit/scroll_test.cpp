// Scrolling against the element-by-element moves it stands for: forward for a move towards the
// start, backward for a move towards the end, over one run of width * height elements.
#include "toolkit/scroll.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "target.h"

namespace {

std::vector<uint32_t> scrolled(std::vector<uint32_t> b, long long n) {
    long long total = static_cast<long long>(b.size());
    if (n < 0)
        for (long long i = 0; i < total + n; ++i) b[i] = b[i - n];
    else
        for (long long i = total - n - 1; i >= 0; --i) b[i + n] = b[i];
    return b;
}

// Every move within and past the run; a move as long as the run, or one whose 32-bit product
// would wrap to a small move (7 * 613566757 is 2^32 + 3), leaves both buffers as they are.
TEST(scroll, movesbothbuffersasonerunwithrowswrapping) {
    testtarget g(7, 5, true);
    auto* depth = reinterpret_cast<uint32_t*>(g.depth.get());
    std::vector<std::pair<int, int>> moves = {{0, 613566757}, {0, -613566757}, {0x7FFFFFFF, 0}};
    for (int dy = -6; dy <= 6; ++dy)
        for (int dx = -9; dx <= 9; ++dx) moves.push_back({dx, dy});
    for (auto [dx, dy] : moves) {
        std::vector<uint32_t> colour(35), depthbits(35);
        for (int i = 0; i < 35; ++i) {
            g.colour[i] = colour[i] = 100 + i;
            depth[i] = depthbits[i] = 0x3F800000u + i;
        }
        scrolltarget(g.t, dx, dy);
        long long n = dx + dy * 7LL;
        std::vector<uint32_t> c = scrolled(colour, n), d = scrolled(depthbits, n);
        for (int i = 0; i < 35; ++i) {
            ASSERT_EQ(g.colour[i], c[i]) << dx << "," << dy << " at " << i;
            ASSERT_EQ(depth[i], d[i]) << dx << "," << dy << " at " << i;
        }
    }
    EXPECT_TRUE(g.colour.intact());
    EXPECT_TRUE(g.depth.intact());
}

}  // namespace
