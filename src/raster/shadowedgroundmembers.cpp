#include "raster/memberfile.h"

constinit const groundfile<shadowed::yes> shadowedgroundmembers = buildmembers<groundfile<shadowed::yes>, lanes4, floats4>();
