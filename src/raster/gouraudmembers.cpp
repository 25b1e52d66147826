#include "raster/memberfile.h"

constinit const gouraudfile gouraudmembers = buildmembers<gouraudfile>();
