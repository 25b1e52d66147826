// The fifteen (tintmode, blendmode) pairs that every sprite draw family is made of, in the order of
// their selectors: tintmode first, blendmode second. Each family expands this one list into its
// table of members, so that a draw is chosen once, before its rows start.
#pragma once
#include <array>
#include <cstddef>
#include <utility>

#include "sprite/pixelops.h"

struct pixelrule {
    tintmode tint;
    blendmode blend;
};

inline constexpr int tintcount = 5, blendcount = 3;

inline constexpr std::array<pixelrule, 15> pixelrules = [] {
    std::array<pixelrule, 15> list{};
    for (int t = 0; t < tintcount; ++t)
        for (int b = 0; b < blendcount; ++b) list[t * blendcount + b] = {tintmode(t), blendmode(b)};
    return list;
}();
static_assert(pixelrules.size() == tintcount * blendcount);

// The position of a selection in a family's table, or -1 for one that draws nothing.
inline int ruleindex(int tint, int blend) {
    if (tint < 0 || tint >= tintcount || blend < 0 || blend >= blendcount) return -1;
    return tint * blendcount + blend;
}

// The table of a family: Member<T, B>::draw for every pair of the list, in its order.
template <template <tintmode, blendmode> class Member>
constexpr auto ruletable() {
    return []<size_t... I>(std::index_sequence<I...>) {
        using entry = decltype(&Member<tintmode::plain, blend>::draw);
        return std::array<entry, sizeof...(I)>{&Member<pixelrules[I].tint, pixelrules[I].blend>::draw...};
    }(std::make_index_sequence<pixelrules.size()>{});
}
