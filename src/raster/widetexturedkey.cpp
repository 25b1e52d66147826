#include "raster/widememberfile.h"

constinit const texturedfile<alphamode::key> widekeymembers = buildmembers<texturedfile<alphamode::key>, lanes8, floats8>();
