#include "toolkit/freetriangle.h"

#include "raster/raster.h"
#include "util/frame.h"

void drawfreetriangle(const float* xy, const uint32_t* colours) {
    const trianglefunction draw = rawtriangle(currenttoolkit->lanes, rasterstate.targetcolour, rasterstate.targetdepth);
    if (!draw) return;
    rastertriangle face{};
    for (int k = 0; k < 3; ++k) {
        face.position[k][0] = xy[2 * k];
        face.position[k][1] = xy[2 * k + 1];
        setcolourlanes(face.colour[k], colours[k]);
    }
    draw(&face);
}

extern "C" {

JNIEXPORT void JNICALL Java_a_ra(JNIEnv* env, jobject, jlong, jfloat x0, jfloat y0, jfloat x1, jfloat y1, jfloat x2,
                                 jfloat y2, jint colour0, jint colour1, jint colour2) {
    runexport(env, [&] {
        const float xy[6] = {x0, y0, x1, y1, x2, y2};
        const uint32_t colours[3] = {static_cast<uint32_t>(colour0), static_cast<uint32_t>(colour1),
                                     static_cast<uint32_t>(colour2)};
        drawfreetriangle(xy, colours);
    });
}

}  // extern "C"
