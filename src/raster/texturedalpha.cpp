#include "raster/memberfile.h"

constinit const texturedfile<alphamode::alpha> alphamembers = buildmembers<texturedfile<alphamode::alpha>, lanes4, floats4>();
