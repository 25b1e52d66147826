// The pixel operations of the (`tintmode`, `blendmode`) pairs, written over a lane type: a colour
// operation on the source followed by a write operation into the buffer. Four pixels go through
// one pass of 16-bit lanes. Pixels at the end of a row that do not fill a group of four take the
// same road in lane 0 with two rules of their own: the alpha blend weighs the old pixel by 255 - a
// instead of 256 - a, and the weight tint leaves out its colour term unless it blends.
#pragma once
#include <emmintrin.h>

#include <cstdint>

#include "pixel/blendmode.h"
#include "pixel/lanes.h"
#include "pixel/tintmode.h"
#include "pixel/variants.h"

// One pixel rule: a tint followed by a write.
using pixelrule = variant<tintmode, blendmode>;

namespace pixelops {

// out = ((s * a) >> 8) + ((d * (k - a)) >> 8) per channel, packed with saturation, where k is 256
// in groups and 255 in leftovers.

// For a source of bytes: each product is the high half of a byte shifted up by 8 times a weight.
template <class V, bool group>
[[gnu::always_inline]] inline typename V::type alphablend(typename V::type s, typename V::type d) {
    const auto zero = V::zero(), full = V::set16(group ? 256 : 255);
    auto a = V::shr32(s, 24);
    a = V::or_(a, V::shl32(a, 16));
    auto alo = V::unpacklo32(a, a), ahi = V::unpackhi32(a, a);
    auto rlo = V::add16(V::mulhi16(V::unpacklo8(zero, s), alo), V::mulhi16(V::unpacklo8(zero, d), V::sub16(full, alo)));
    auto rhi = V::add16(V::mulhi16(V::unpackhi8(zero, s), ahi), V::mulhi16(V::unpackhi8(zero, d), V::sub16(full, ahi)));
    return V::packus16(rlo, rhi);
}

// For a source of 16-bit lanes of any value, as the weight tint gives: products keep their low
// 16 bits, and the alpha lane may be above 255.
template <class V, bool group>
[[gnu::always_inline]] inline typename V::type alphablend(typename V::type lo, typename V::type hi,
                                                         typename V::type d) {
    const auto zero = V::zero(), full = V::set16(group ? 256 : 255);
    auto alo = V::spread3(lo), ahi = V::spread3(hi);
    auto dlo = V::unpacklo8(d, zero), dhi = V::unpackhi8(d, zero);
    auto rlo = V::add16(V::shr16(V::mullo16(lo, alo), 8), V::shr16(V::mullo16(dlo, V::sub16(full, alo)), 8));
    auto rhi = V::add16(V::shr16(V::mullo16(hi, ahi), 8), V::shr16(V::mullo16(dhi, V::sub16(full, ahi)), 8));
    return V::packus16(rlo, rhi);
}

// Writes s2 (packed bytes) by a store or a saturating add.
template <class V, blendmode B>
[[gnu::always_inline]] inline typename V::type write(typename V::type s2, typename V::type d) {
    if constexpr (B == add) return V::addsat8(s2, d);
    else return s2;
}

}  // namespace pixelops

// Groups of four pixels of source `s` over the buffer's `d`, in lane type V; in a leftover only
// the first pixel counts.
template <class V, pixelrule R, bool group>
[[gnu::always_inline]] inline typename V::type pixelop(typename V::type s, typename V::type d, const tintconstants& k) {
    using namespace pixelops;
    constexpr tintmode T = R.get<tintmode>();
    constexpr blendmode B = R.get<blendmode>();
    const auto zero = V::zero();
    if constexpr (T == tintmode::weight) {
        // p = ((s << 8) * m) >> 16 per channel.
        const auto mul = V::widen(k.sourcemul), term = V::widen(k.colourterm);
        auto plo = V::mulhi16(V::unpacklo8(zero, s), mul), phi = V::mulhi16(V::unpackhi8(zero, s), mul);
        if constexpr (B == blend) return alphablend<V, group>(V::add16(plo, term), V::add16(phi, term), d);
        auto s2 = V::packus16(plo, phi);
        if constexpr (group) s2 = V::add8(s2, V::widen(k.colourbyte));
        return write<V, B>(s2, d);
    } else {
        auto s2 = s;
        if constexpr (T == tintmode::multiply) {
            // Products of two bytes shifted down by 8 stay bytes.
            const auto c = V::widen(k.channels);
            s2 = V::packus16(V::shr16(V::mullo16(V::unpacklo8(s, zero), c), 8),
                             V::shr16(V::mullo16(V::unpackhi8(s, zero), c), 8));
        }
        if constexpr (T == tintmode::add) s2 = V::addsat8(s, V::widen(k.bytes));
        if constexpr (T == tintmode::subtract) s2 = V::subsat8(s, V::widen(k.bytes));
        if constexpr (B == blend) return alphablend<V, group>(s2, d);
        return write<V, B>(s2, d);
    }
}

// One pixel by the leftover rules; the transformed draws use it for every pixel.
template <pixelrule R>
[[gnu::always_inline]] inline uint32_t leftoverpixel(uint32_t s, uint32_t d, const tintconstants& k) {
    __m128i one = _mm_cvtsi32_si128(static_cast<int>(s)), under = _mm_cvtsi32_si128(static_cast<int>(d));
    return static_cast<uint32_t>(_mm_cvtsi128_si32(pixelop<lanes4, R, false>(one, under, k)));
}
