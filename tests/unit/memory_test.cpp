// The arena's rules one at a time: where a block goes, when the arena compacts, asks its owner
// for memory and grows, what handles see after a move, and what outlives the manager.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "flushingmanager.h"
#include "util/exception.h"

namespace {

constexpr uint32_t kb = 1024;

// Runs `work` and returns the words of the OutOfMemory it throws, or "" if it throws none.
template <class F>
std::string outofmemorywords(F&& work) {
    try {
        work();
    } catch (Exception* e) {
        std::string words = dynamic_cast<OutOfMemory*>(e) ? e->message() : "another class";
        delete e;
        return words;
    }
    return "";
}

void fill(const allocatedmemory<uint8_t>& h, uint8_t seed) {
    for (int i = 0; i < h.length(); ++i) h[i] = static_cast<uint8_t>(seed + i * 7);
}

bool holds(const allocatedmemory<uint8_t>& h, uint8_t seed) {
    for (int i = 0; i < h.length(); ++i)
        if (h[i] != static_cast<uint8_t>(seed + i * 7)) return false;
    return true;
}

TEST(memorymanager, newarenaiscleared) {
    memorymanager m(64 * kb);
    allocatedmemory<uint32_t> h;
    m.allocate(h, 16 * kb);
    for (int i = 0; i < h.length(); ++i) ASSERT_EQ(h[i], 0u);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(m.base) % memorymanager::arenaalignment, 0u);
}

// Blocks follow one another from the arena's start, each at the next multiple of its
// alignment, and no alignment is below 8.
TEST(memorymanager, blocksstackupwardsalignedtoatleasteight) {
    memorymanager m(64 * kb);
    allocatedmemory<uint8_t> a, b, c, d;
    m.allocate(a, 1, 4);
    m.allocate(b, 1, 4);
    m.allocate(c, 3, 1);
    m.allocate(d, 5, 64);
    EXPECT_EQ(a.get(), m.base);
    EXPECT_EQ(b.get(), m.base + 8);
    EXPECT_EQ(c.get(), m.base + 16);
    EXPECT_EQ(d.get(), m.base + 64);
    EXPECT_EQ(m.verify(), nullptr);
    // A gap is not reused until the arena compacts.
    b.release();
    allocatedmemory<uint8_t> e;
    m.allocate(e, 1);
    EXPECT_EQ(e.get(), m.base + 72);
}

// Handles that share a block see one length and one address; the block dies with the last.
TEST(memorymanager, copiessharetheblockuntilthelastrelease) {
    memorymanager m(64 * kb);
    allocatedmemory<uint8_t> a, b, c;
    m.allocate(a, 100);
    fill(a, 1);
    b.copyfrom(a);
    c.copyfrom(b);
    EXPECT_EQ(b.get(), a.get());
    EXPECT_EQ(c.length(), 100);
    c.truncate(60);
    EXPECT_EQ(a.length(), 60);
    a.copyfrom(a);
    EXPECT_EQ(a.length(), 60);
    a.release();
    EXPECT_TRUE(a.empty());
    EXPECT_EQ(a.get(), nullptr);
    EXPECT_TRUE(holds(b, 1));
    allocatedmemory<uint8_t> none;
    b.copyfrom(none);
    EXPECT_TRUE(b.empty());
    EXPECT_EQ(m.verify(), nullptr);
    c.release();
    EXPECT_TRUE(m.blocks.empty());
}

// The bytes given back by a truncation of the most recent block are taken by the next one.
TEST(memorymanager, truncationgivesbacktheend) {
    memorymanager m(64 * kb);
    allocatedmemory<uint32_t> a, b;
    m.allocate(a, 100);
    a.truncate(10);
    EXPECT_EQ(a.length(), 10);
    m.allocate(b, 1);
    EXPECT_EQ(reinterpret_cast<uint8_t*>(b.get()), m.base + 40);
    a.truncate(0);
    EXPECT_FALSE(a.empty());
    EXPECT_EQ(a.bytes(), 0u);
}

TEST(memorymanagerdeath, truncatingtomorethanthelengthfailstheassertion) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    memorymanager m(64 * kb);
    allocatedmemory<uint16_t> h;
    m.allocate(h, 10);
    EXPECT_DEATH(h.truncate(11),
                 "^Assertion failed: newlength<=length, file util\\\\memorymanager\\\\allocatedmemory, line 44\n");
    EXPECT_DEATH(h.truncate(-1), "newlength<=length");
}

// Compaction slides every block down to its alignment and rewrites every handle of every block.
TEST(memorymanager, compactionmovesblocksandeveryhandle) {
    memorymanager m(64 * kb);
    allocatedmemory<uint8_t> gap, a, a2, b, b2, b3;
    m.allocate(gap, 100);
    m.allocate(a, 50, 16);
    m.allocate(b, 30, 128);
    fill(a, 3);
    fill(b, 4);
    a2.copyfrom(a);
    b2.copyfrom(b);
    b3.copyfrom(b);
    gap.release();
    uint8_t* end = m.compact();
    EXPECT_EQ(a.get(), m.base);
    EXPECT_EQ(b.get(), m.base + 128);
    EXPECT_EQ(end, m.base + 158);
    EXPECT_EQ(a2.get(), a.get());
    EXPECT_EQ(b2.get(), b.get());
    EXPECT_EQ(b3.get(), b.get());
    EXPECT_TRUE(holds(a, 3));
    EXPECT_TRUE(holds(b3, 4));
    EXPECT_EQ(m.verify(), nullptr);
}

// Growth multiplies the capacity, made a float, by the float 1.1 in extended precision.
TEST(memorymanager, growthbyatenthinfloat) {
    struct {
        uint32_t capacity, grown;
    } cases[] = {
        {1000, 1100},
        {4194309, 4613740},    // 1.1 as a double would give 4613739
        {16777217, 18454938},  // the capacity rounds to 16777216 as a float
    };
    for (auto [capacity, grown] : cases) {
        memorymanager m(capacity);
        m.grow();
        EXPECT_EQ(m.capacity, grown) << capacity;
    }
}

// What a full arena does, case by case: it compacts; if that is not enough it asks its owner,
// compacts what the owner released, and grows at once if under 307200 bytes are then free;
// on every later pass it compacts and grows by a tenth until the block fits.
TEST(memorymanager, fullarenacompactsasksitsownerandgrows) {
    constexpr int none = -1, everything = -2;
    struct {
        const char* what;
        uint32_t capacity;
        std::vector<int> blocks;  // KB, allocated in this order
        int releasedfirst;        // the index of a block released before, or none
        int releasedbyowner;      // the index of the block the owner releases, none or everything
        int wanted;               // KB
        int flushes;
        uint32_t grown;           // the capacity afterwards
        uint32_t placed;          // the new block's offset in the arena
    } cases[] = {
        {"a gap is enough", 640 * kb, {300, 300}, 0, none, 320, 0, 640 * kb, 300 * kb},
        {"the owner's release is enough", 1024 * kb, {100, 400, 400}, 0, 1, 500, 1, 1024 * kb, 400 * kb},
        {"224 KB free after the release", 1024 * kb, {100, 800}, none, 0, 250, 1, 1153433, 800 * kb},
        // 1024 KB grows to 1153433 and then 1268776 bytes, the first that holds 1200 KB.
        {"nothing released, enough free", 1024 * kb, {100}, none, none, 1100, 1, 1268776, 100 * kb},
        {"everything released", 512 * kb, {400}, none, everything, 200, 1, 512 * kb, 0},
    };
    for (auto& c : cases) {
        SCOPED_TRACE(c.what);
        flushingmanager m(c.capacity);
        std::vector<allocatedmemory<uint8_t>> held(c.blocks.size());
        for (size_t i = 0; i < held.size(); ++i) {
            m.allocate(held[i], c.blocks[i] * kb);
            fill(held[i], static_cast<uint8_t>(i));
        }
        if (c.releasedfirst != none) held[c.releasedfirst].release();
        m.onflush = [&] {
            // Compacted before the owner is asked: the live blocks lie packed from the start.
            uint32_t live = 0;
            uint8_t* end = m.base;
            for (auto& h : held) {
                live += h.bytes();
                if (!h.empty()) end = std::max(end, h.get() + h.bytes());
            }
            EXPECT_EQ(end, m.base + live);
            for (size_t i = 0; i < held.size(); ++i)
                if (c.releasedbyowner == everything || c.releasedbyowner == static_cast<int>(i)) held[i].release();
        };
        allocatedmemory<uint8_t> wanted;
        m.allocate(wanted, c.wanted * kb);
        EXPECT_EQ(m.flushes, c.flushes);
        EXPECT_EQ(m.capacity, c.grown);
        EXPECT_EQ(wanted.get(), m.base + c.placed);
        for (size_t i = 0; i < held.size(); ++i) EXPECT_TRUE(holds(held[i], static_cast<uint8_t>(i)));
        EXPECT_EQ(m.verify(), nullptr);
    }
}

// A block larger than an empty arena grows it rather than spill past its end.
TEST(memorymanager, firstblocklargerthanthearenagrowsit) {
    memorymanager m(64 * kb);
    allocatedmemory<uint8_t> a;
    m.allocate(a, 80 * kb);
    EXPECT_GE(m.capacity, 80 * kb);
    EXPECT_EQ(m.verify(), nullptr);
}

// A failed growth throws with the wanted capacity in KB and leaves the arena as it was.
TEST(memorymanager, failedgrowthreportsthewantedsizeandkeepsthearena) {
    memorymanager m(9);
    allocatedmemory<uint8_t> a, b;
    m.allocate(a, 8);
    fill(a, 2);
    uint8_t* base = m.base;
    EXPECT_EQ(outofmemorywords([&] { m.allocate(b, 8); }), "native(MPR: 0)");
    EXPECT_EQ(m.base, base);
    EXPECT_EQ(m.capacity, 9u);
    EXPECT_TRUE(b.empty());
    EXPECT_TRUE(holds(a, 2));
    // More than any arena can hold, as a negative count asks.
    allocatedmemory<uint32_t> huge;
    EXPECT_EQ(outofmemorywords([&] { m.allocate(huge, -1); }), "native(MPR: 16777215)");
}

// After teardown the record stays for whoever still points at it, but gives out nothing.
TEST(memorymanager, teardownleavesarecordthatallocatesnothing) {
    memorymanager m(64 * kb);
    allocatedmemory<int> a;
    m.allocate(a, 10);
    m.teardown();
    EXPECT_EQ(m.base, nullptr);
    EXPECT_TRUE(m.blocks.empty());
    EXPECT_EQ(outofmemorywords([&] { m.allocate(a, 1); }), "native(MPA)");
    EXPECT_TRUE(a.empty());
}

}  // namespace
