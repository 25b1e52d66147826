// Float to int toward zero, as the processor converts: a value out of range, infinite or NaN
// gives the integer indefinite value 0x80000000 instead of undefined behaviour.
#pragma once
#include <xmmintrin.h>

inline int truncate(float v) { return _mm_cvttss_si32(_mm_set_ss(v)); }
