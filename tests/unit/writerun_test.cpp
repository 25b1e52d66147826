// The four-pixel forms of the write rules against the one-pixel forms, for every alpha, with
// channel bytes biased to the ends, in every lane position of runs 1 to 33 pixels long.
#include <gtest/gtest.h>

#include <algorithm>

#include "target.h"
#include "toolkit/blend.h"
#include "toolkit/fill.h"

namespace {

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
