// Every sprite pixel rule, in its group and leftover forms, against the scalar reference: all
// pairs of the bytes that decide a channel, with a biased sample of the third. The fuzz family
// "sprites" draws rows of every length from every start through the same reference.
#include <gtest/gtest.h>

#include <array>

#include "sprite/spriterows.h"
#include "spritereference.h"

namespace {

#ifdef __SANITIZE_ADDRESS__
constexpr int pairstep = 7;  // the sanitised build samples the pairs
#else
constexpr int pairstep = 1;
#endif

// Bytes where carries, saturation and the sign of the weight change.
constexpr std::array<uint32_t, 4> thirds = {0x00, 0x7F, 0x80, 0xFF};
constexpr std::array<uint32_t, 4> thirdwords = {0x00000000, 0xFF7F80FF, 0x80FF0001, 0x7F01FF80};

struct triple {
    uint32_t s, c, d;
};

// Eight triples of a sweep share the colour, as the pixels of one draw do. They go through each
// table's member once as one row of groups, and each alone as a leftover.
template <class Make>
void sweep(pixelrule rule, Make make) {
    int tint = int(rule.get<tintmode>()), blend = int(rule.get<blendmode>()), index = indexof(spriterules, rule);
    for (lanewidth lanes : runnablewidths())
        for (uint32_t third = 0; third < thirds.size(); ++third)
            for (uint32_t i = 0; i < 256; i += pairstep)
                for (uint32_t j = 0; j < 256; j += 8) {
                    triple p[8];
                    uint32_t s[8], group[8], leftover[8];
                    for (uint32_t l = 0; l < 8; ++l) {
                        p[l] = make(i, j + l, third);
                        p[l].c = p[0].c;
                        s[l] = p[l].s;
                        group[l] = leftover[l] = p[l].d;
                    }
                    tintconstants k(p[0].c);
                    rowtablesof(lanes).ownsize[index](group, 8, s, 8, 8, 1, k);
                    for (int l = 0; l < 8; ++l) rowtablesof(lanes).ownsize[index](leftover + l, 1, s + l, 1, 1, 1, k);
                    for (int l = 0; l < 8; ++l)
                        for (bool g : {true, false}) {
                            const triple& q = p[l];
                            ASSERT_EQ((g ? group : leftover)[l], spritereference::pixel(tint, blend, g, q.s, q.c, q.d))
                                << (g ? "group" : "leftover") << ", " << axisname(lanes) << std::hex
                                << " s " << q.s << " c " << q.c << " d " << q.d;
                        }
                }
}

class pixelrules : public testing::TestWithParam<pixelrule> {};

// Source alpha against a source channel: the blend's weight and the tinted value.
TEST_P(pixelrules, sourcealphaagainstsourcechannel) {
    sweep(GetParam(), [](uint32_t i, uint32_t j, uint32_t k) {
        return triple{j << 24 | i << 16 | (i ^ 0x5A) << 8 | (255 - i), thirdwords[k], thirdwords[3 - k] ^ 0x00FF00FF};
    });
}

// The colour's top byte against a colour channel: the weight's multipliers, both signs.
TEST_P(pixelrules, colourweightagainstcolourchannel) {
    sweep(GetParam(), [](uint32_t i, uint32_t j, uint32_t k) {
        return triple{thirdwords[k] ^ 0x80808080, (i ^ 0x33) << 24 | j << 16 | (255 - j) << 8 | j, thirdwords[3 - k]};
    });
}

// A source channel against the channel under it, at fixed alphas.
TEST_P(pixelrules, sourcechannelagainstdestination) {
    sweep(GetParam(), [](uint32_t i, uint32_t j, uint32_t k) {
        return triple{thirds[k] << 24 | i * 0x010101u, thirdwords[k] ^ 0x40000000, j * 0x01010101u};
    });
}

// A source channel against a colour channel, the pair every tint combines.
TEST_P(pixelrules, sourcechannelagainstcolourchannel) {
    sweep(GetParam(), [](uint32_t i, uint32_t j, uint32_t k) {
        return triple{i * 0x01010101u, (thirds[k] ^ 0x3C) << 24 | j * 0x010101u, thirdwords[k]};
    });
}

INSTANTIATE_TEST_SUITE_P(all, pixelrules, testing::ValuesIn(spriterules),
                         [](const testing::TestParamInfo<pixelrule>& info) { return info.param.name('_'); });

}  // namespace
