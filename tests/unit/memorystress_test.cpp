// A seeded random walk over allocation, sharing, release, truncation, the owner's flush,
// compaction, growth and teardown, checked against a plain model after every step.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

#include "flushingmanager.h"
#include "util/exception.h"

namespace {

constexpr int slotcount = 64;

uint8_t patternbyte(uint32_t seed, uint32_t i) { return static_cast<uint8_t>((seed + i * 2654435761u) >> 11); }

struct modelblock {
    uint32_t size;
    uint32_t alignment;
    uint32_t seed;
    int holders;
    const uint8_t* comparedat;  // the address at which the bytes were last compared
};

// The index of the first byte that differs from the pattern, or -1.
long firstwrongbyte(const uint8_t* data, const modelblock& m) {
    for (uint32_t i = 0; i < m.size; ++i)
        if (data[i] != patternbyte(m.seed, i)) return i;
    return -1;
}

class stresswalk {
public:
    explicit stresswalk(uint32_t seed) : random(seed) { std::fill(std::begin(slotblock), std::end(slotblock), -1); }
    ~stresswalk() {
        for (auto& s : slots) s.release();
    }

    void run(int steps) {
        baseline = allocatedbytes;
        renew();
        for (step = 0; step < steps && !::testing::Test::HasFailure(); ++step) {
            act();
            check(step % 1024 == 0);
        }
        renew();
    }

private:
    int pick(int n) { return std::uniform_int_distribution<int>(0, n - 1)(random); }

    // A new manager of a random size, after the old one's teardown has left its handles empty
    // of memory but still holding their blocks.
    void renew() {
        if (manager) {
            manager.reset();
            ASSERT_EQ(allocatedbytes, baseline) << "step " << step;
            for (int s = 0; s < slotcount; ++s) {
                ASSERT_EQ(slots[s].get(), nullptr);
                ASSERT_EQ(slots[s].length(), 0);
                ASSERT_EQ(slots[s].empty(), slotblock[s] < 0);
                forget(s);
            }
            ASSERT_EQ(allocatedbytes, baseline);
        }
        static const uint32_t capacities[] = {64 << 10, 256 << 10, 1 << 20};
        manager = std::make_unique<flushingmanager>(capacities[pick(3)], [this] { ownerflush(); });
    }

    // The owner gives back a few arrays, sometimes none.
    void ownerflush() {
        for (int n = pick(4); n > 0; --n) forget(pick(slotcount));
    }

    void forget(int s) {
        slots[s].release();
        if (slotblock[s] >= 0 && --model[slotblock[s]].holders == 0) {
            live -= model[slotblock[s]].size;
            model[slotblock[s]].size = 0;
        }
        slotblock[s] = -1;
    }

    void act() {
        int s = pick(slotcount), op = pick(100);
        if (op < 35) {
            int r = pick(100);
            uint32_t size = r < 60 ? 1 + pick(256) : r < 90 ? 257 + pick(16000) : 16257 + pick(80000);
            uint32_t alignment = 1u << pick(8);
            forget(s);
            try {
                manager->allocate(slots[s], static_cast<int>(size), alignment);
            } catch (Exception* e) {
                ADD_FAILURE() << "step " << step << ": " << e->message();
                delete e;
                return;
            }
            uint32_t seed = static_cast<uint32_t>(random());
            for (uint32_t i = 0; i < size; ++i) slots[s][i] = patternbyte(seed, i);
            slotblock[s] = static_cast<int>(model.size());
            model.push_back({size, std::max(alignment, 8u), seed, 1, slots[s].get()});
            live += size;
            return;
        }
        if (op < 55) {
            int from = pick(slotcount);
            if (from == s) return;
            int b = slotblock[from];
            if (b >= 0) ++model[b].holders;  // before forgetting: s may be from, or share its block
            forget(s);
            slots[s].copyfrom(slots[from]);
            slotblock[s] = b;
            return;
        }
        if (op < 80) {
            forget(s);
            return;
        }
        if (op < 90) {
            if (slotblock[s] < 0) return;
            int newlength = pick(slots[s].length() + 1);
            slots[s].truncate(newlength);
            live -= model[slotblock[s]].size - newlength;
            model[slotblock[s]].size = static_cast<uint32_t>(newlength);
            return;
        }
        if (op < 93) {
            manager->compact();
        } else if (op < 94) {
            if (manager->capacity < (512u << 10)) manager->grow();
        } else if (op == 99 && pick(5) == 0) {
            renew();
        }
    }

    // The arena's own walk vouches for every handle's address; the model for lengths, the byte
    // count, and the bytes of a block whenever it has moved, and of all blocks now and then.
    void check(bool allbytes) {
        ASSERT_EQ(manager->verify(), nullptr) << "step " << step;
        ASSERT_EQ(allocatedbytes, baseline + live) << "step " << step;
        for (int s = 0; s < slotcount; ++s) {
            int b = slotblock[s];
            ASSERT_EQ(slots[s].empty(), b < 0) << "step " << step << " slot " << s;
            if (b < 0) continue;
            modelblock& m = model[b];
            ASSERT_EQ(static_cast<uint32_t>(slots[s].length()), m.size) << "step " << step << " slot " << s;
            ASSERT_EQ(reinterpret_cast<uintptr_t>(slots[s].get()) % m.alignment, 0u) << "step " << step;
            if (allbytes || slots[s].get() != m.comparedat) {
                m.comparedat = slots[s].get();
                ASSERT_EQ(firstwrongbyte(m.comparedat, m), -1) << "step " << step << " slot " << s;
            }
        }
    }

    std::mt19937 random;
    std::unique_ptr<flushingmanager> manager;
    allocatedmemory<uint8_t> slots[slotcount];
    int slotblock[slotcount];  // index into model, or -1 for an empty slot
    std::vector<modelblock> model;
    int baseline = 0;
    long live = 0;  // bytes of the live blocks in the model
    int step = 0;
};

TEST(memorystress, randomwalkagainstamodel) {
    stresswalk walk(20261122);
    walk.run(100000);
}

}  // namespace
