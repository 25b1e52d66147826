// The sprite row loops built for processors with AVX2, eight pixels at a time. Everything this
// file defines after the target switch is AVX2 code; the standard headers come first so that no
// shared inline function is built here for that target.
#include <immintrin.h>
#include <jni.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#pragma GCC target("avx2")

#include "pixel/lanes8.h"
#include "sprite/spriterows.h"

constinit const rowtables widerows = spriterows<lanes8>::tables();

#pragma GCC reset_options
