#include "guarded.h"

#include <gtest/gtest.h>

TEST(guarded, seesawriteonepastthedataandisalignedfortheloops) {
    for (size_t n : {1, 3, 16, 1000}) {
        guarded<uint32_t> b(n);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(b.get()) % 64, 0u);
        for (size_t i = 0; i < n; ++i) b[i] = 0;
        EXPECT_TRUE(b.intact());
        b.get()[n] = 1;
        EXPECT_FALSE(b.intact());
    }
}
