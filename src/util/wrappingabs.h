// |v| in 32-bit arithmetic, as the processor computes it: the most negative int stays as it is
// instead of being undefined.
#pragma once

inline int wrappingabs(int v) { return v < 0 ? static_cast<int>(0u - static_cast<unsigned>(v)) : v; }
