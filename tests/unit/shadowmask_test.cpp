#include "toolkit/shadowmask.h"

#include <gtest/gtest.h>

#include <cstring>

#include "util/memory/memorypool.h"

namespace {

TEST(shadowmask, startswithclearedcellsandnoplacement) {
    memorypool pool(4096, nullptr);
    // Leave stale bytes where the cells will be taken from.
    {
        allocatedmemory<uint8_t> stale;
        pool.allocate(stale, 3000);
        memset(stale.get(), 0xFF, 3000);
    }
    pool.compact();
    shadowmask m(pool, 50, 40);
    EXPECT_EQ(m.pool, &pool);
    EXPECT_EQ(m.cells.length(), 2000);
    for (int i = 0; i < 2000; ++i) ASSERT_EQ(m.cells[i], 0) << i;
    EXPECT_EQ(m.x | m.y | m.usedwidth | m.usedheight, 0);
    EXPECT_EQ(pool.verify(), nullptr);
}

}  // namespace
