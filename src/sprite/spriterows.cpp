#include "sprite/spriterows.h"

constinit const rowtables narrowrows = spriterows<lanes4>::tables();

const rowtables* spriterowtables = widerows() ? widerows() : &narrowrows;
