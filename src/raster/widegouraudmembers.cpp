#include "raster/widememberfile.h"

constinit const gouraudfile widegouraudmembers = buildmembers<gouraudfile, lanes8, floats8>();
