// The map: tiles drawn flat from above, a square of `step` pixels each, every face one Gouraud
// triangle in the colour of its texture or its map colours.
#include <jni.h>

#include <algorithm>

#include "ground/tile.h"
#include "raster/raster.h"
#include "toolkit/tables.h"
#include "toolkit/texturestore.h"
#include "util/arraypin.h"
#include "util/exception.h"
#include "util/frame.h"
#include "util/peer.h"
#include "util/truncate.h"

void complexground::drawmap(ground& g, int x, int z, float mx, float fy, float step) {
    const trianglefunction draw = rasterstate.targetcolour ? rawtriangle(currenttoolkit->lanes, true, rasterstate.targetdepth) : nullptr;
    if (!draw) return;
    int total = 0;
    for (uint8_t count : facecounts) total += count;
    const float size = static_cast<float>(g.tilesize);
    alignas(16) rastertriangle face{};
    for (int f = 0; f < total; ++f) {
        // The texture entry is read by face number, whatever the group stored per face.
        const texturedescriptor* d = f < textures.length() ? getdescriptor(textures[f]) : nullptr;
        const bool textured = d && !d->hidden;
        if (!textured && colours.empty() && mapcolours.empty()) continue;
        for (int j = 0; j < 3; ++j) {
            const groundpoint& v = vertices[faces[3 * f + j]];
            const float px = (v.x - static_cast<float>(x * g.tilesize)) * step / size + mx;
            const float py = fy - (v.z - static_cast<float>(z * g.tilesize)) * step / size;
            face.position[j][0] = static_cast<float>(truncate(px));
            face.position[j][1] = static_cast<float>(truncate(py));
            face.position[j][2] = face.position[j][3] = 0.5f;
            const uint32_t colour = textured             ? static_cast<uint32_t>(hsltorgb[d->averagecolour])
                                    : mapcolours.empty() ? colours[3 * f + j]
                                                         : mapcolours[3 * f + j];
            setcolourlanes(face.colour[j], colour);
        }
        draw(&face);
    }
}

// Rows of tiles from x0 and columns from z0, x running right and z up from (ox, oy + the map's
// height), where a row of `visible` marks the tiles to draw. `scale` is pixels a tile in 8.8.
extern "C" JNIEXPORT void JNICALL Java_a_i(JNIEnv* env, jobject, jlong, jlong handle, jint ox, jint oy, jint scale,
                                           jint x0, jint z0, jint x1, jint z1, jobjectArray visible) {
    runexport(env, [&] {
        ground* g = peerat<ground>(handle);
        if (!g) fail<NullPointerException>();
        const int height = (z1 - z0) * scale / 256;
        const float step = static_cast<float>(scale >> 8);
        const long long rows = std::min<long long>(static_cast<long long>(x1) - x0, arraylength(env, visible));
        float mx = static_cast<float>(ox);
        for (long long r = 0; r < rows; ++r, mx += step) {
            const int x = static_cast<int>(x0 + r);
            float fy = static_cast<float>(oy + height);
            jbyteArray one;
            {
                hostcall guard;
                one = static_cast<jbyteArray>(env->GetObjectArrayElement(visible, static_cast<jsize>(r)));
            }
            // A row shorter than the columns marks none past its end.
            const jsize length = arraylength(env, one);
            {
                arraypin<pinkind::bytecriticalwrite> row(env, one, length);
                const long long columns = std::min<long long>(static_cast<long long>(z1) - z0, length);
                for (long long c = 0; c < columns; ++c, fy -= step) {
                    const int z = static_cast<int>(z0 + c);
                    genericground** slot = g->slot(x, z);
                    if (row[c] && slot && *slot) (*slot)->drawmap(*g, x, z, mx, fy, step);
                }
            }
            hostcall guard;
            env->DeleteLocalRef(one);
        }
    });
}
