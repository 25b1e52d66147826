#include "util/arraypin.h"

int criticalcount;
