// The fifteen (tintmode, blendmode) pairs that every sprite draw family is made of, in the order of
// their selectors: tintmode outermost, blendmode inner. Each family expands this one list into its
// table of members, and a draw picks its member once, before its rows start, by
// selectindex<spriterules>(tint, blend).
#pragma once
#include "pixel/pixelops.h"
#include "pixel/variants.h"

inline constexpr auto spriterules = allcombinations<tintmode, blendmode>();
static_assert(spriterules.size() == 15 && spriterules[4] == pixelrule(tintmode::plain, blend));
