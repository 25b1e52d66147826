#include "toolkit/shadowmask.h"

#include <gtest/gtest.h>

#include <cstring>

#include "testhost.h"
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

// The host is reached through the seam: a full pool of the toolkit asks it for memory once before
// it grows, and a mask handed back is none, the host's own object, or a new one holding the mask.
TEST(shadowmask, handedbackthroughthehostseam) {
    testhost host;
    memorypool pool(64 * 1024, &host.t);
    allocatedmemory<uint8_t> full;
    pool.allocate(full, 62 * 1024);
    shadowmask given(pool, 40, 40), made(pool, 40, 40);
    EXPECT_EQ(host.flushes, 1);
    auto* object = reinterpret_cast<hostobject*>(0x40);
    EXPECT_EQ(maskobject(nullptr, &given, object), nullptr);
    EXPECT_EQ(maskobject(&given, &given, object), object);
    EXPECT_EQ(maskobject(&made, &given, object), reinterpret_cast<hostobject*>(1));
    EXPECT_EQ(host.masks, std::vector<shadowmask*>{&made});
}

}  // namespace
