// How a draw writes into the colour buffer (`blendmode`): the selector that the 2D shapes, the
// sprite draws and the models' billboards share. Its arithmetic lives with each kind of source:
// solid colours in the toolkit, sprite pixels in pixelops.h.
#pragma once
#include <array>
#include <string_view>

#include "util/exception.h"

enum blendmode : int { replace = 0, blend = 1, add = 2 };
constexpr std::array<std::string_view, 3> axisnames(blendmode) { return {"replace", "blend", "add"}; }

// The draws that reject a bad selector rather than draw nothing.
inline void checkblendmode(int mode) {
    if (mode < replace || mode > add) fail<IllegalArgumentException>();
}
