#include "raster/memberfile.h"

constinit const colourlessfile colourlessmembers = buildmembers<colourlessfile, lanes4, floats4>();
