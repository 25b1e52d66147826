#include "raster/widememberfile.h"

constinit const texturedfile<alphamode::alpha> widealphamembers = buildmembers<texturedfile<alphamode::alpha>, lanes8, floats8>();
