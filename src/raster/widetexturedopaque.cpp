#include "raster/widememberfile.h"

constinit const texturedfile<alphamode::opaque> wideopaquemembers = buildmembers<texturedfile<alphamode::opaque>, lanes8, floats8>();
