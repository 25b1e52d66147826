#include "raster/memberfile.h"

constinit const groundfile<shadowed::no> groundmembers = buildmembers<groundfile<shadowed::no>, lanes4, floats4>();
