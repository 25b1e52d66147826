#include "sprite/parallelogram.h"

#include <emmintrin.h>

#include <algorithm>
#include <cmath>

#include "util/truncate.h"

bool placeparallelogram(const spriteimage& image, corners c, const int clip[4], int bufferwidth, parallelogram& out) {
    auto [x0, y0, x1, y1, x2, y2] = c;
    const int fw = image.fullwidth(), fh = image.fullheight();
    // The corners move inward by the pads so that the stored image covers only its share of the
    // full rectangle. Pads that cancel on both axes leave them alone.
    if (fw != image.width || fh != image.height) {
        const float ax = (x1 - x0) / float(fw), ay = (y1 - y0) / float(fw);
        const float bx = (x2 - x0) / float(fh), by = (y2 - y0) / float(fh);
        const float pl = float(image.padleft), pt = float(image.padtop);
        const float pr = float(image.padright), pb = float(image.padbottom);
        x0 += pl * ax + pt * bx;
        y0 += pl * ay + pt * by;
        x1 += pt * bx - pr * ax;
        y1 += pt * by - pr * ay;
        x2 += pl * ax - pb * bx;
        y2 += pl * ay - pb * by;
    }
    const float x3 = x1 - x0 + x2, y3 = y1 - y0 + y2;
    for (float v : {x0, y0, x1, y1, x2, y2, x3, y3})
        if (!std::isfinite(v)) return false;

    const float minx = std::max(float(clip[0]), std::min({x0, x1, x2, x3}));
    const float maxx = std::min(float(clip[2]), std::max({x0, x1, x2, x3}));
    const float miny = std::max(float(clip[1]), std::min({y0, y1, y2, y3}));
    const float maxy = std::min(float(clip[3]), std::max({y0, y1, y2, y3}));
    const float wneg = minx - maxx, hneg = miny - maxy;
    if (wneg >= 0 || hneg >= 0 || truncate(hneg) == 0) return false;
    out.firstrow = truncate(miny);
    out.rows = -truncate(hneg);
    out.firstcolumn = truncate(minx);
    out.columns = -truncate(wneg);
    out.rowstart = truncate(float(out.firstrow * bufferwidth) + minx);

    const float e1 = x1 - x0, e2 = x2 - x0, f1 = y1 - y0, f2 = y2 - y0;
    const float W = float(image.width), H = float(image.height);
    // A degenerate parallelogram divides by zero here; its steps are whatever the conversions give.
    const float inv = 1 / (f2 * e1 - e2 * f1), neg = 1 / (e2 * f1 - f2 * e1);
    out.du = truncate(f2 * 4096 * W * inv);
    out.dv = truncate(f1 * 4096 * H * neg);
    out.duy = truncate(e2 * 4096 * W * neg);
    out.dvy = truncate(e1 * 4096 * H * inv);

    // Distances in sixteenths of a pixel from the centre to the middle of the box's first pixel;
    // the source centre drops the low bit of an odd size. Products wrap in 32 bits.
    const float cx = (x1 + x0 + x2 + x3) * 0.25f, cy = (y1 + y0 + y2 + y3) * 0.25f;
    const int ox = truncate(minx * 16 + 8 - cx * 16), oy = truncate(miny * 16 + 8 - cy * 16);
    const int ubase = ((oy * out.duy) >> 4) + ((image.width & ~1) << 11);
    const int vbase = ((oy * out.dvy) >> 4) + ((image.height & ~1) << 11);
    out.urow = ubase + ((ox * out.du) >> 4);
    out.vrow = vbase + ((ox * out.dv) >> 4);
    return true;
}
