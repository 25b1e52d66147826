#include "raster/memberfile.h"

constinit const colourlessfile colourlessmembers = buildmembers<colourlessfile>();
