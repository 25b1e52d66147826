#include "pixel/lanewidth.h"

#include <algorithm>

namespace {

lanewidth limit = lanewidth::eight;

lanewidth detectedlanes() {
    static const lanewidth widest = [] {
        __builtin_cpu_init();  // may run before the runtime's own set-up, from a static initialiser
        return __builtin_cpu_supports("avx2") ? lanewidth::eight : lanewidth::four;
    }();
    return widest;
}

}  // namespace

lanewidth widestlanes() { return std::min(detectedlanes(), limit); }

void limitlanes(lanewidth widest) { limit = widest; }
