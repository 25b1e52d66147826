// The members built for processors with AVX2, whose spans draw the body of a row two groups of
// four at a time. A file that includes this builds AVX2 code from the target switch on; the
// standard headers and every declaration without lane code come first, so that nothing the other
// files share is built for that target.
#pragma once
#include <immintrin.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>
#include <utility>

#include "pixel/floatlanes.h"
#include "pixel/lanes.h"
#include "raster/members.h"
#include "toolkit/toolkit.h"

#pragma GCC target("avx2")

#include "pixel/floatlanes8.h"
#include "pixel/lanes8.h"
#include "raster/memberfile.h"
