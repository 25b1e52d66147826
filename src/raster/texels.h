// The pixel step of the textured spans: one texel a pixel at v * 256 + u, multiplied by
// `modulate`, plus `addcolour`, written by the rule of the member's alpha mode and blending. The
// lanes are one group of four or, where the processor has the wider registers, two side by side;
// every operation stays within its group.
#pragma once
#include <cstdint>

#include "raster/members.h"

// The texels of a group: u and v of each pair times the pixel's z, wrapped or clamped to 0 to 127,
// packed to bytes so that each pixel's index is one 16-bit word.
template <wrapmode W, class V, class F>
[[gnu::always_inline]] inline typename V::type fetchtexels(const uint32_t* texels, typename F::type z,
                                                          const typename F::type* pairs) {
    const typename F::type uv0 = F::mul(pairs[0], F::unpacklo(z, z)), uv1 = F::mul(pairs[1], F::unpackhi(z, z));
    typename V::type i0, i1;
    if constexpr (W == wrapmode::repeat) {
        const typename V::type mask = V::set32(127);
        i0 = V::and_(F::truncate(uv0), mask);
        i1 = V::and_(F::truncate(uv1), mask);
    } else {
        const typename F::type zero = F::zero(), last = F::set(127.0f);
        i0 = F::truncate(F::min(F::max(uv0, zero), last));
        i1 = F::truncate(F::min(F::max(uv1, zero), last));
    }
    const typename V::type words = V::packs32(i0, i1);
    return V::gatherwords(texels, V::packus16(words, words));
}

// The coloured pixels of a group over its old colour; `keep` gets the lanes that the texels leave
// as they were (key: texel all zero; alpha: modulated alpha zero).
template <spanmember M, class V, class F>
[[gnu::always_inline]] inline typename V::type texelpixels(const uint32_t* texels, typename F::type z,
                                                          const typename F::type* pairs,
                                                          typename V::type modulatelow,
                                                          typename V::type modulatehigh, typename V::type addlow,
                                                          typename V::type addhigh, typename V::type old,
                                                          uint32_t blendfactor, typename V::type& keep) {
    using ints = typename V::type;
    constexpr alphamode alpha = M.template get<alphamode>();
    const ints zero = V::zero();
    const ints t = fetchtexels<M.template get<wrapmode>(), V, F>(texels, z, pairs);
    // p = high half of texel byte times lane, then plus the high byte of the added lane.
    ints low = V::mulhi16(V::unpacklo8(t, zero), modulatelow);
    ints high = V::mulhi16(V::unpackhi8(t, zero), modulatehigh);
    if constexpr (M.template get<addterm>() == addterm::yes) {
        low = V::add16(low, V::shr16(addlow, 8));
        high = V::add16(high, V::shr16(addhigh, 8));
    }
    if constexpr (alpha == alphamode::key) keep = V::equal32(t, zero);
    if constexpr (alpha == alphamode::alpha) {
        // Every channel, alpha too, weighs by the pixel's modulated alpha A in wrapping 16 bits.
        const ints alow = V::spread3(low), ahigh = V::spread3(high);
        keep = V::packs16(V::equal16(alow, zero), V::equal16(ahigh, zero));
        const ints full = V::set16(256);
        low = V::shr16(V::add16(V::mullo16(low, alow), V::mullo16(V::unpacklo8(old, zero), V::sub16(full, alow))), 8);
        high = V::shr16(V::add16(V::mullo16(high, ahigh), V::mullo16(V::unpackhi8(old, zero), V::sub16(full, ahigh))),
                        8);
    } else if constexpr (M.template get<blended>() == blended::yes) {
        // The new colour weighs a << 8, the old 256 - a against its byte << 8.
        const ints a = V::shl16(V::set32(static_cast<int>(blendfactor)), 8);
        const ints rest = V::set32(static_cast<int>(0x01000100u - blendfactor));
        low = V::add16(V::mulhi16(low, a), V::mulhi16(V::unpacklo8(zero, old), rest));
        high = V::add16(V::mulhi16(high, a), V::mulhi16(V::unpackhi8(zero, old), rest));
    }
    return V::packus16(low, high);
}
