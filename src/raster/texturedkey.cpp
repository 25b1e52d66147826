#include "raster/memberfile.h"

constinit const texturedfile<alphamode::key> keymembers = buildmembers<texturedfile<alphamode::key>>();
