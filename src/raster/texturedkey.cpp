#include "raster/memberfile.h"

constinit const texturedfile<alphamode::key> keymembers = buildmembers<texturedfile<alphamode::key>, lanes4, floats4>();
