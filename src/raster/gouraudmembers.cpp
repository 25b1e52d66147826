#include "raster/memberfile.h"

constinit const gouraudfile gouraudmembers = buildmembers<gouraudfile, lanes4, floats4>();
