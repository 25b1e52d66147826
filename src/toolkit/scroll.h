// Scrolling the target in place.
#pragma once
#include "toolkit/toolkit.h"

// Moves the colour and depth buffers, whichever exist, by dx + dy * width elements as one run
// each: rows wrap into their neighbours, and the part that nothing moves onto keeps its content.
// A move of the whole run or more leaves the buffers as they are.
void scrolltarget(toolkit& t, int dx, int dy);
