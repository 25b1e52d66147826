#include "toolkit/thickline.h"

#include <algorithm>

#include "util/wrappingabs.h"

// (a, b) is the direction in 16.16, one unit along the longer axis; (b, a) with one sign turned
// is a normal of it, half a width long once multiplied by the width and shifted by 17.
bool thicklinecorners(const toolkit& t, int x1, int y1, int x2, int y2, int width, thickquad& q) {
    const int dx = x2 - x1, dy = y2 - y1;
    const int m = std::max(wrappingabs(dx), wrappingabs(dy));
    if (m == 0) return false;
    int a = (dx << 16) / m, b = (dy << 16) / m;
    if (a < b) b = -b;
    else a = -a;
    x1 -= t.cliprect[0];
    y1 -= t.cliprect[1];
    q.x[0] = x1 + (b * width >> 17);
    q.y[0] = y1 + (a * width >> 17);
    q.x[1] = x1 - ((b * width + 1) >> 17);
    q.y[1] = y1 - ((a * width + 1) >> 17);
    q.x[2] = q.x[1] + dx;
    q.y[2] = q.y[1] + dy;
    q.x[3] = q.x[0] + dx;
    q.y[3] = q.y[0] + dy;
    return true;
}
