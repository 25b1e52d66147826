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
#include <utility>

#pragma GCC target("avx2")

#include "pixel/lanes8.h"
#include "sprite/spriterows.h"

namespace {

constinit const rowtables wide = spriterows<lanes8>::tables();

}  // namespace

#pragma GCC reset_options

const rowtables* widerows() {
    __builtin_cpu_init();  // may run before the runtime's own set-up, from a static initialiser
    return __builtin_cpu_supports("avx2") ? &wide : nullptr;
}
