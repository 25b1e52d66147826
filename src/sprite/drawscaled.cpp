#include "sprite/drawscaled.h"

#include <algorithm>

#include "sprite/spriterows.h"
#include "util/frame.h"
#include "util/peer.h"
#include "util/truncate.h"

namespace {

using int64 = long long;

// Clips a scaled draw and sets where its sampling starts; false when nothing is drawn.
struct placement : scaledrows {
    bool place(const toolkit& t, const spriteimage& image, int x, int y, int w, int h) {
        if (image.width < 1 || image.height < 1) return false;
        float ax = static_cast<float>(w) / static_cast<float>(image.fullwidth());
        float ay = static_cast<float>(h) / static_cast<float>(image.fullheight());
        int l = truncate(static_cast<float>(image.padleft) * ax);
        int r = truncate(static_cast<float>(image.padright) * ax);
        int tp = truncate(static_cast<float>(image.padtop) * ay);
        int b = truncate(static_cast<float>(image.padbottom) * ay);
        int64 dw = int64{w} - (int64{l} + r), dh = int64{h} - (int64{tp} + b);
        int64 X = int64{x} + l, Y = int64{y} + tp;
        fx = static_cast<float>(dw) / static_cast<float>(image.width);
        float fy = static_cast<float>(dh) / static_cast<float>(image.height);
        ustep = 1.0f / fx;
        vstep = 1.0f / fy;
        const int* clip = t.cliprect;
        int ustart = truncate(static_cast<float>(std::max<int64>(0, clip[0] - X)) * ustep);
        vstart = truncate(static_cast<float>(std::max<int64>(0, clip[1] - Y)) * vstep);
        int64 sx = std::max<int64>(X, clip[0]), sy = std::max<int64>(Y, clip[1]);
        int64 columns = std::min<int64>(dw - (sx - X), clip[2] - sx);
        int64 lines = std::min<int64>(dh - (sy - Y), clip[3] - sy);
        if (columns < 1 || lines < 1) return false;
        n = static_cast<int>(columns);
        rows = static_cast<int>(lines);
        pitch = t.width;
        target = t.colourbuffer + sy * pitch + sx;
        depth = t.depthbuffer ? t.depthbuffer + sy * pitch + sx : nullptr;
        ustart = std::clamp(ustart, 0, image.width - 1);
        lastrow = image.height - 1;
        vstart = std::clamp(vstart, 0, lastrow);
        lastcolumn = static_cast<float>(image.width - 1 - ustart);
        sourcepitch = image.pitch;
        source = image.pixels + ustart;
        return true;
    }
};

}  // namespace

void drawscaled(const toolkit& t, const spriteimage& image, int x, int y, int w, int h, int tint, uint32_t colour,
                int blend, lanewidth lanes) {
    int rule = selectindex<spriterules>(tint, blend);
    placement p;
    if (!t.colourbuffer || rule < 0 || !p.place(t, image, x, y, w, h)) return;
    rowsfor(t, image, lanes).scaled[rule](p, tintconstants(colour));
}

void drawscaledatdepth(const toolkit& t, const spriteimage& image, int x, int y, float z, int w, int h, int tint,
                       uint32_t colour, int blend, lanewidth lanes) {
    if (!t.depthbuffer) return drawscaled(t, image, x, y, w, h, tint, colour, blend, lanes);
    int rule = selectindex<spriterules>(tint, blend);
    placement p;
    if (!t.colourbuffer || rule < 0 || !p.place(t, image, x, y, w, h)) return;
    p.z = z;
    rowsfor(t, image, lanes).scaledwithdepth[rule](p, tintconstants(colour));
}

extern "C" {

JNIEXPORT void JNICALL Java_fa_ha(JNIEnv* env, jobject, jlong handle, jint x, jint y, jint w, jint h, jint tint,
                                  jint colour, jint blend) {
    runexport(env, [&] {
        drawscaled(*currenttoolkit, imageof(*peerat<sprite>(handle)), x, y, w, h, tint, static_cast<uint32_t>(colour),
                   blend, currenttoolkit->lanes);
    });
}

// The depth arrives as an int.
JNIEXPORT void JNICALL Java_fa_G(JNIEnv* env, jobject, jlong handle, jint x, jint y, jint z, jint w, jint h,
                                 jint tint, jint colour, jint blend) {
    runexport(env, [&] {
        drawscaledatdepth(*currenttoolkit, imageof(*peerat<sprite>(handle)), x, y, static_cast<float>(z), w, h, tint,
                          static_cast<uint32_t>(colour), blend, currenttoolkit->lanes);
    });
}

}  // extern "C"
