// The arena's exact rules, which the random walk checks only for consistency: where a block
// goes, how far compaction slides it, when a full arena asks its owner and grows, and how it fails.
#include <gtest/gtest.h>

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

// Blocks follow one another from the arena's start, each at the next multiple of its alignment,
// none below 8; a gap waits for compaction, which slides each block down to its alignment; the
// end given back by truncating the most recent block is taken by the next one.
TEST(memorymanager, blocksstackupwardsandcompactdowntotheiralignment) {
    memorymanager m(64 * kb);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(m.base) % memorymanager::arenaalignment, 0u);
    allocatedmemory<uint8_t> a, b, c, d, d2, e, f, g;
    m.allocate(a, 1, 4);
    m.allocate(b, 1, 4);
    m.allocate(c, 3, 1);
    m.allocate(d, 5, 16);
    EXPECT_EQ(a[0], 0);  // a new arena is cleared
    EXPECT_EQ(a.get(), m.base);
    EXPECT_EQ(b.get(), m.base + 8);
    EXPECT_EQ(c.get(), m.base + 16);
    EXPECT_EQ(d.get(), m.base + 32);
    fill(d, 4);
    d2.copyfrom(d);
    d2.copyfrom(d2);
    a.release();
    b.release();
    m.allocate(e, 1);
    EXPECT_EQ(e.get(), m.base + 40);
    EXPECT_EQ(m.compact(), m.base + 25);
    EXPECT_EQ(c.get(), m.base);
    EXPECT_EQ(d.get(), m.base + 16);
    EXPECT_EQ(d2.get(), d.get());
    EXPECT_EQ(e.get(), m.base + 24);
    EXPECT_TRUE(holds(d2, 4));
    m.allocate(f, 100);
    f.truncate(10);
    m.allocate(g, 1);
    EXPECT_EQ(g.get(), m.base + 48);
    EXPECT_EQ(m.verify(), nullptr);
}

// The record of the block that died last serves the next block, but under the sanitiser, which
// gives records back to the heap to see a use after the last release.
TEST(memoryblock, recordsarereused) {
    void* first = memoryblock::operator new(sizeof(memoryblock));
    memoryblock::operator delete(first);
    void* second = memoryblock::operator new(sizeof(memoryblock));
#ifndef __SANITIZE_ADDRESS__
    EXPECT_EQ(second, first);
#endif
    memoryblock::operator delete(second);
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

// Growth multiplies the capacity, made a float, by the float 1.1 in extended precision.
TEST(memorymanager, growthbyatenthinfloat) {
    // 1.1 as a double would give 4613739; 16777217 rounds to 16777216 as a float.
    const uint32_t cases[][2] = {{1000, 1100}, {4194309, 4613740}, {16777217, 18454938}};
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
        {"exactly 300 KB free after the release", 1024 * kb, {300, 724}, none, 0, 250, 1, 1024 * kb, 724 * kb},
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

// A failed growth throws with the wanted capacity in KB and leaves the arena as it was; after
// teardown the record gives out nothing.
TEST(memorymanager, failuresnamethewantedsizeandkeepthearena) {
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
    m.teardown();
    EXPECT_EQ(outofmemorywords([&] { m.allocate(a, 1); }), "native(MPA)");
    EXPECT_TRUE(a.empty());
}

}  // namespace
