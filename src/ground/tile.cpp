#include "ground/tile.h"

#include "toolkit/toolkit.h"

genericground::genericground() { ++tilecount; }

genericground::~genericground() { --tilecount; }
