#include "pixel/lanewidth.h"

lanewidth widestlanes() {
    static const lanewidth widest = [] {
        __builtin_cpu_init();  // may run before the runtime's own set-up, from a static initialiser
        return __builtin_cpu_supports("avx2") ? lanewidth::eight : lanewidth::four;
    }();
    return widest;
}
