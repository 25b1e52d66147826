#include "raster/widememberfile.h"

constinit const colourlessfile widecolourlessmembers = buildmembers<colourlessfile, lanes8, floats8>();
