#include "toolkit/thickline.h"

#include <algorithm>

#include "toolkit/freetriangle.h"
#include "util/frame.h"
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

// Two flat triangles over the quad, sharing its diagonal from the first corner to the third.
void drawthickline(toolkit& t, int x1, int y1, int x2, int y2, uint32_t colour, int width) {
    if (!t.colourbuffer) return;
    thickquad q;
    if (!thicklinecorners(t, x1, y1, x2, y2, width, q)) return;
    const uint32_t colours[3] = {colour, colour, colour};
    for (int second : {1, 2}) {
        const float xy[6] = {static_cast<float>(q.x[0]),          static_cast<float>(q.y[0]),
                             static_cast<float>(q.x[second]),     static_cast<float>(q.y[second]),
                             static_cast<float>(q.x[second + 1]), static_cast<float>(q.y[second + 1])};
        drawfreetriangle(xy, colours);
    }
}

extern "C" {

JNIEXPORT void JNICALL Java_a_K(JNIEnv* env, jobject, jlong, jint, jint x1, jint y1, jint x2, jint y2, jint colour,
                                jint width, jint) {
    runexport(env, [&] { drawthickline(*currenttoolkit, x1, y1, x2, y2, static_cast<uint32_t>(colour), width); });
}

}  // extern "C"
