#include "model/shadow.h"

#include <algorithm>

#include "toolkit/shadowfill.h"
#include "util/frame.h"
#include "util/jniseam.h"
#include "util/peer.h"
#include "util/truncate.h"

namespace {

// A point's cell along one axis: slanted by its height, then scaled to cells.
int cellof(int v, int height, int slope, int shift) { return (v - ((height * slope) >> 8)) >> shift; }

// The projected box along one axis: the height that gives the lower end depends on the slope's sign.
void projectedspan(int low, int high, int miny, int maxy, int slope, int shift, int& from, int& to) {
    from = cellof(low, slope > 0 ? maxy : miny, slope, shift);
    to = cellof(high, slope > 0 ? miny : maxy, slope, shift);
}

}  // namespace

shadowmask* modelshadow(model& m, const toolkit& t, shadowmask* given) {
    requiremask(m, FM_GETSHADOW, "Can't getshadow if functionmask does not contain FM_GETSHADOW");
    if (m.facecount == 0) return nullptr;
    if (!m.boundsvalid) computebounds(m);
    int x0, x1, z0, z1;
    projectedspan(m.minx, m.maxx, m.miny, m.maxy, t.shadowslopex, t.shadowshift, x0, x1);
    projectedspan(m.minz, m.maxz, m.miny, m.maxy, t.shadowslopez, t.shadowshift, z0, z1);
    const int w = x1 - x0 + 1, h = z1 - z0 + 1;
    shadowmask* mask = given;
    if (given && h * w <= given->cells.length())
        std::fill_n(given->cells.get(), given->cells.length(), 0);
    else
        mask = new shadowmask(*m.pool, w, h);
    mask->x = x0, mask->y = z0, mask->usedwidth = x1, mask->usedheight = z1;
    // One less than the row length that was made: the last cell of a row is the first of the next.
    mask->width = x1 - x0, mask->height = z1 - z0;

    int16_t column[maxmodelitems], row[maxmodelitems];
    const int used = std::min(m.usedvertexcount, maxmodelitems);
    for (int i = 0; i < used; ++i) {
        const int x = truncate(m.vertices[i].x), y = truncate(m.vertices[i].y), z = truncate(m.vertices[i].z);
        column[i] = static_cast<int16_t>(cellof(x, y, t.shadowslopex, t.shadowshift) - x0);
        row[i] = static_cast<int16_t>(cellof(z, y, t.shadowslopez, t.shadowshift) - z0);
    }
    for (int f = 0; f < m.facecount; ++f) {
        if (!m.facealphas.empty() && m.facealphas[f] == 255) continue;
        if (!m.facetypes.empty() && m.facetypes[f] == 2) continue;
        const int a = m.facea[f], b = m.faceb[f], c = m.facec[f];
        const int corners[3][2] = {{column[a], row[a]}, {column[b], row[b]}, {column[c], row[c]}};
        fillfacingtriangle(*mask, corners);
    }
    return mask;
}

extern "C" JNIEXPORT jobject JNICALL Java_h_ga(JNIEnv* env, jobject self, jobject given) {
    return runexport(env, [&]() -> jobject {
        model& m = modelpeer(env, self);
        shadowmask* old = given ? getpeer<shadowmask>(env, hostclass::aa, given) : nullptr;
        return jniof(maskobject(modelshadow(m, *currenttoolkit, old), old, hostof(given)));
    });
}
