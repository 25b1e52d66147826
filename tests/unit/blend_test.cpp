// The solid-colour write rules against references written from their definitions, their
// four-pixel forms against their one-pixel forms, and the store run's split into head, aligned
// body and tail.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "target.h"
#include "toolkit/blend.h"
#include "toolkit/fill.h"

namespace {

// Per channel, from the definition: the old colour weighted by 256 - a, the new by a, each
// truncated; alpha becomes a.
uint32_t blendreference(uint32_t d, uint32_t c) {
    uint32_t a = c >> 24, out = a << 24;
    for (int shift = 0; shift < 24; shift += 8) {
        uint32_t dc = d >> shift & 0xFF, cc = c >> shift & 0xFF;
        out += ((dc * (256 - a)) >> 8) << shift;
        out += ((cc * a) >> 8) << shift;
    }
    return out;
}

uint32_t addreference(uint32_t d, uint32_t c) {
    uint32_t out = ((d >> 24) + (c >> 24)) << 24;
    for (int shift = 0; shift < 24; shift += 8) {
        uint32_t sum = (d >> shift & 0xFF) + (c >> shift & 0xFF);
        out |= (sum > 255 ? 255 : sum) << shift;
    }
    return out;
}

// Channel values biased to the ends, where carries and saturation happen.
std::vector<uint32_t> samplebytes() {
    std::vector<uint32_t> v = {0, 1, 2, 127, 128, 129, 253, 254, 255};
    for (uint32_t b = 3; b < 253; b += 17) v.push_back(b);
    return v;
}

TEST(blendmode, blendmatcheschannelreferenceforeveryalpha) {
    auto bytes = samplebytes();
    for (uint32_t a = 0; a < 256; ++a)
        for (uint32_t x : bytes)
            for (uint32_t y : bytes) {
                uint32_t c = a << 24 | x << 16 | y << 8 | (x ^ y);
                uint32_t d = (y ^ 0x5A) << 24 | y << 16 | (255 - x) << 8 | x;
                ASSERT_EQ(blendsource(c)(d), blendreference(d, c)) << std::hex << d << " " << c;
            }
    // At alpha 0 the old channels stay and the old alpha goes.
    EXPECT_EQ(blendsource(0x00123456)(0xFFABCDEF), 0x00ABCDEFu);
}

TEST(blendmode, addsaturatescolourandwrapsalpha) {
    auto bytes = samplebytes();
    for (uint32_t x : bytes)
        for (uint32_t y : bytes)
            for (uint32_t z : bytes) {
                uint32_t c = x << 24 | y << 16 | z << 8 | x;
                uint32_t d = z << 24 | x << 16 | y << 8 | z;
                ASSERT_EQ(addsaturate(d, c), addreference(d, c)) << std::hex << d << " " << c;
            }
    EXPECT_EQ(addsaturate(0x80FF8001, 0x80018080), 0x00FFFF81u);
}

TEST(blendmode, opaqueblendisastore) {
    EXPECT_TRUE(isstore(replace, 0x00000000));
    EXPECT_TRUE(isstore(blend, 0xFF000000));
    EXPECT_FALSE(isstore(blend, 0xFE000000));
    EXPECT_FALSE(isstore(add, 0xFF000000));
}

// Every start alignment and width 0 to 33, negative widths, and longer runs: exactly the run is
// written.
TEST(storerun, writesexactlytherunateveryalignment) {
    std::vector<int> widths = {-5, -1, 300, 301, 302, 303};
    for (int n = 0; n <= 33; ++n) widths.push_back(n);
    alignas(16) uint32_t buffer[320];
    for (int start = 0; start < 4; ++start)
        for (int n : widths) {
            for (uint32_t& b : buffer) b = 0xDEADBEEF;
            storerun(buffer + 8 + start, n, 0x11223344);
            for (int i = 0; i < 320; ++i) {
                bool inside = i >= 8 + start && i < 8 + start + n;
                ASSERT_EQ(buffer[i], inside ? 0x11223344u : 0xDEADBEEFu) << start << " " << n << " " << i;
            }
        }
}

// The four-pixel forms against the one-pixel forms, for every alpha, with channel bytes biased to
// the ends, in every lane position of runs 1 to 33 pixels long.
template <class Rule>
void expectrunsasonepixelatatime(Rule rule, uint32_t colour, testrng& rng) {
    alignas(16) uint32_t buffer[48];
    uint32_t before[48];
    for (int start = 0; start < 4; ++start) {
        for (uint32_t& b : before) b = rng.pixel();
        for (int n = 1; n <= 33; ++n) {
            std::copy(before, before + 48, buffer);
            writerun(buffer + start, n, rule);
            for (int i = 0; i < 48; ++i) {
                bool inside = i >= start && i < start + n;
                uint32_t expected = inside ? rule(before[i]) : before[i];
                if (buffer[i] == expected) continue;
                FAIL() << std::hex << "colour " << colour << " old " << before[i] << " gives " << buffer[i] << " for "
                       << expected << std::dec << ", start " << start << " length " << n << " at " << i;
            }
        }
    }
}

TEST(writerun, fourpixelblendandaddareexact) {
    testrng rng(99);
    for (uint32_t a = 0; a < 256; ++a) {
        uint32_t colour = a << 24 | (rng.pixel() & 0xFFFFFF);
        expectrunsasonepixelatatime(blendsource(colour), colour, rng);
        expectrunsasonepixelatatime(addrule{rng.pixel()}, colour, rng);
        if (HasFatalFailure()) return;
    }
    expectrunsasonepixelatatime(storerule{0x12345678}, 0x12345678, rng);
}

}  // namespace
