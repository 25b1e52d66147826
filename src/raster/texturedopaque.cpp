#include "raster/memberfile.h"

constinit const texturedfile<alphamode::opaque> opaquemembers = buildmembers<texturedfile<alphamode::opaque>, lanes4, floats4>();
