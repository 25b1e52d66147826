// The texture store: the load's smoothing against a scalar reference written from its rule, the
// order of use of the slots with the host played by a double, and the animation clock.
#include "toolkit/texturestore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "target.h"
#include "testhost.h"
#include "toolkit/texturefilter.h"
#include "util/truncate.h"

namespace {

// Per pass and per pixel along it: a transparent pixel stays 0; otherwise taps in order, leaving
// out transparent ones, the byte sums times one over the sum of the weights that counted.
std::vector<uint32_t> referencefilter(const uint32_t* in, bool opaque, bool wrapu, bool wrapv) {
    const float weights[5] = {0.053990968f, 0.24197072f, 0.3989423f, 0.24197072f, 0.053990968f};
    std::vector<uint32_t> across(128 * 128), out(128 * 128);
    auto pass = [&](const uint32_t* from, uint32_t* to, int along, int between, bool wrap) {
        for (int line = 0; line < 128; ++line)
            for (int i = 0; i < 128; ++i) {
                const uint32_t* l = from + line * between;
                uint32_t& o = to[line * between + i * along] = 0;
                if (!opaque && !l[i * along]) continue;
                float sums[5] = {};
                for (int j = i - 2; j <= i + 2; ++j) {
                    uint32_t p = l[(wrap ? j & 127 : std::clamp(j, 0, 127)) * along];
                    for (int c = 0; c < 5 && (opaque || p); ++c)
                        sums[c] += weights[j - i + 2] * (c < 4 ? static_cast<float>(p >> 8 * c & 255) : 1.0f);
                }
                for (int c = 0; c < 4; ++c) o |= static_cast<uint32_t>(truncate(sums[c] * (1 / sums[4]))) << 8 * c;
            }
    };
    pass(in, across.data(), 1, 128, wrapu);
    pass(across.data(), out.data(), 128, 1, wrapv);
    return out;
}

// Bytes biased to 0x00 and 0xFF, from none to most texels transparent, every repeat and clamp pair,
// opaque or not, into the left slot of an atlas row whose right slot must not change.
TEST(texturefilter, matchesthereference) {
    testrng rng(0x7E47);
    std::vector<uint32_t> image(128 * 128), atlas(128 * atlaspitch);
    for (int picture = 0; picture < 32; ++picture) {
        for (uint32_t& p : image) p = rng() % 16 < picture % 4 * 5u ? 0 : rng.pixel();
        bool opaque = picture & 4, wrapu = picture & 8, wrapv = picture & 16;
        std::fill(atlas.begin(), atlas.end(), 0xA5A5A5A5u);
        filtertexture(image.data(), atlas.data(), atlaspitch, opaque, wrapu, wrapv);
        std::vector<uint32_t> expected = referencefilter(image.data(), opaque, wrapu, wrapv);
        for (int i = 0; i < 128 * atlaspitch; ++i)
            ASSERT_EQ(atlas[i], i % atlaspitch < 128 ? expected[i / atlaspitch * 128 + i % atlaspitch] : 0xA5A5A5A5u)
                << "picture " << picture << " at " << i % atlaspitch << "," << i / atlaspitch;
    }
}

// Ids below 10 are declined, below 20 claimed but not loaded, the rest loaded; from 500 on with
// speeds u of the id less 500 and v of 3. Steps below name the slot the id gets, -1 for none.
struct texturestoretest : testing::Test {
    texturestoretest() {
        host.t.textures = store;
        host.load = [this](int id) {
            texturedescriptor d{};
            d.speedu = static_cast<int8_t>(id >= 500 ? id - 500 : 0);
            d.speedv = id >= 500 ? 3 : 0;
            if (id >= 20) loadtexture(*store, id, d, std::vector<uint32_t>(128 * 128).data());
            return id >= 10;
        };
    }
    ~texturestoretest() override { destroytexturestore(store); }

    testhost host;
    texturestore* store = maketexturestore(70000);
};

TEST_F(texturestoretest, evictstheleastrecentlyusedandasksthehostonlyonamiss) {
    for (int id = 1000; id < 1200; ++id) ASSERT_EQ(gettexture(id), &store->records[id - 1000]);
    struct { int id, asks, slot; } steps[] = {{1000, 0, 0}, {1200, 1, 1}, {1001, 1, 2}, {0xFFFF, 0, -1}, {0x2FFFF, 0, -1}, {5, 1, -1}, {15, 1, -1}};
    for (auto s : steps) {
        size_t asked = host.loads.size();
        EXPECT_EQ(gettexture(s.id), s.slot < 0 ? nullptr : &store->records[s.slot]) << s.id;
        EXPECT_EQ(host.loads.size(), asked + s.asks) << s.id;
    }
    EXPECT_EQ(store->slotofid[1002], noslot);
    int next = 3;  // from oldest to newest: 3 to 199, then 0, 1 and 2, linked both ways
    for (uint8_t s = store->oldest, before = noslot; s != noslot; before = s, s = store->nextslot[s], ++next)
        ASSERT_TRUE(s == next % 200 && store->prevslot[s] == before) << next;
    EXPECT_EQ(next, 203);
    EXPECT_EQ(getdescriptor(0xFFFF), nullptr);
    EXPECT_EQ(getdescriptor(0x10007), store->descriptors + 7);
}

// Used twice, a texture is moved once by the next tick, to its speed times the time wrapped into
// one period, in extended precision; then it waits for its next use.
TEST_F(texturestoretest, atickmovesthetexturesusedsincethelast) {
    for (int speed : {1, -1, 127, -128, 0})
        for (int tick : {0, 1, 999, 64000, 127999, 128000, 128001, 987654321, 2147483647, -5}) {
            texturerecord* r = gettexture(500 + (speed & 255));
            ASSERT_TRUE(gettexture(500 + (speed & 255)) == r && store->animatedcount == 1);
            animatetextures(*store, tick);
            long double t = static_cast<float>(tick % 128000) * 0.001f;
            float u = static_cast<float>(fmodl(speed * t * 2, 128)), v = static_cast<float>(fmodl(3 * t * 2, 128));
            EXPECT_EQ(std::vector<float>(r->offsetu, r->offsetu + 4), std::vector<float>(4, u)) << speed << " " << tick;
            EXPECT_EQ(std::vector<float>(r->offsetv, r->offsetv + 4), std::vector<float>(4, v));
            EXPECT_EQ(r->queued + store->animatedcount, 0);
        }
}

}  // namespace
