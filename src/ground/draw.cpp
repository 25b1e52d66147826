// The draw of an uploaded tile: its vertices projected once, then each face group walked by one
// face function that lights the face's corners with the current sun, fills a raster triangle and
// calls the triangle function of the group, the fog and the texture.
#include <jni.h>

#include <algorithm>

#include "ground/slice.h"
#include "ground/tile.h"
#include "ground/tileshade.h"
#include "raster/raster.h"
#include "toolkit/projection.h"
#include "toolkit/texturestore.h"
#include "util/exception.h"
#include "util/frame.h"
#include "util/peer.h"

namespace {

// Face indices are bytes: no face reaches past the 256th vertex.
constexpr int projectedvertices = 256;

struct tiledraw {
    toolkit& t;
    const ground& g;
    const complexground& tile;
    int x, z;
    const tilecorners corners;
    alignas(16) float screen[projectedvertices][4];  // x, y, z, z
    int f = 0, texture = 0, scale = 0;               // running face, texture and scale places

    tiledraw(toolkit& t, const ground& g, const complexground& tile, int x, int z)
        : t(t), g(g), tile(tile), x(x), z(z), corners(g, x, z) {
        // With the shade of the distance on, a vertex with a depth sinks over the last 2048 units
        // before the far plane, by up to its depth less 10.
        const bool sink = t.fogoverride && !tile.depths.empty();
        const int count = std::min(tile.vertices.length(), projectedvertices);
        for (int i = 0; i < count; ++i) {
            groundpoint v = tile.vertices[i];
            if (sink) {
                const float eye =
                    _mm_cvtss_f32(_mm_shuffle_ps(transformpoint(_mm_load_ps(&v.x), t.viewmatrix), _mm_setzero_ps(), 2));
                float k = (eye - (rasterstate.farplane - 2048.0f)) * 0.0009541985f;
                k = std::min(std::max(k, 0.0f), 1.0f);
                v.y = v.y + (((v.y - static_cast<float>(tile.depths[i])) + 10.0f) - v.y) * k;
            }
            const __m128 p = projectpoint(_mm_load_ps(&v.x), t.viewprojection);
            _mm_store_ps(screen[i], _mm_shuffle_ps(p, p, _MM_SHUFFLE(2, 2, 1, 0)));
        }
    }
};

bool blendingtype(const texturerecord* r) { return r->type == 4 || r->type == 8 || r->type == 9; }

constexpr layers layersof(facegroup G) {
    return G == triplescaledfaces   ? layers::triplescaled
           : G == triplefaces       ? layers::triple
           : G == singlescaledfaces ? layers::singlescaled
                                    : layers::single;
}

// One face of group G in the shade form (the distance shades) or the plain one.
template <facegroup G, bool shade>
void drawface(tiledraw& d) {
    constexpr bool textured = G != gouraudfaces, three = G == triplescaledfaces || G == triplefaces;
    constexpr bool scaled = G == triplescaledfaces || G == singlescaledfaces;
    constexpr int ids = three ? 3 : textured ? 1 : 0, records = scaled ? ids : 0;
    const int f = d.f++, texture = d.texture, scale = d.scale;
    d.texture += ids, d.scale += records;
    const complexground& tile = d.tile;
    const ground& g = d.g;
    const uint8_t* corner = tile.faces.get() + 3 * f;
    const float *a = d.screen[corner[0]], *b = d.screen[corner[1]], *c = d.screen[corner[2]];
    if (!accepttriangle(a, b, c)) return;
    if (g.normals.empty()) fail<NullPointerException>();
    const long long points = (g.sizex + 1LL) * (g.sizez + 1LL);
    if (3LL * f >= points) fail<ArrayIndexOutOfBoundsException>(3 * f, static_cast<int>(points));

    // The tile's lights are read per face: fetching a texture may move the pool's blocks.
    const tilelight* lights = shade || tile.lightblock.empty() ? nullptr : tile.lightblock.get() + tile.lightindex;
    const int side = tile.faceclass.empty() ? 1 : tile.faceclass[f];
    alignas(16) rastertriangle face;
    for (int j = 0; j < 3; ++j) {
        const groundpoint& v = tile.vertices[corner[j]];
        const uint16_t ox = static_cast<uint16_t>(truncate(v.x) - d.x * g.tilesize);
        const uint16_t oz = static_cast<uint16_t>(truncate(v.z) - d.z * g.tilesize);
        uint32_t colour = sunlight(d.t, d.corners.normalat(ox, oz, g.tilesize), tile.colours[3 * f + j]);
        if (lights) colour = pointlight(*lights, colour, ox, oz, g.tileshift, side);
        setcolourlanes(face.colour[j], colour);
        std::copy_n(d.screen[corner[j]], 4, face.position[j]);
    }
    const rasterstatedata& r = rasterstate;
    const bool fog = d.t.fogdistance > 0 && (a[2] > r.fogstart || b[2] > r.fogstart || c[2] > r.fogstart);
    const recipe fold = shade ? (fog ? recipe::fogshade : recipe::shadeonly) : (fog ? recipe::fogonly : recipe::plain);
    if constexpr (shade) {
        d.t.shadestartf = 0.0f;
        d.t.shadescale = 0.00048828125f;
        const float tint[4] = {1.0f, 0.0f, 0.0f, 1.0f};
        std::copy_n(tint, 4, rasterstate.shadecolour);
        std::copy_n(tint, 4, face.shadetint);
        for (int j = 0; j < 3; ++j)
            face.shadefactor[j] = std::min(std::max(tile.vertices[corner[j]].y * 0.00048828125f, 0.0f), 1.0f);
    }
    trianglefunction draw = nullptr;
    if constexpr (textured) {
        const texturerecord* layer[3] = {};
        bool present = true;
        for (int k = 0; k < ids; ++k) {
            layer[k] = gettexture(tile.textures[texture + k]);
            present = present && layer[k] && layer[k]->pixels;
        }
        if (present) {
            const float* uv = tile.uvs.get() + 6 * f;
            for (int j = 0; j < 3; ++j) {
                const float u = uv[2 - j], v = uv[5 - j];
                face.uv[j][0] = face.uv[j][2] = u, face.uv[j][1] = face.uv[j][3] = v;
            }
            for (int k = 0; k < ids; ++k) face.texels[k] = layer[k]->pixels;
            for (int k = 0; k < records; ++k) {
                const texscale& m = tile.texscales[scale + k];
                for (int i = 0; i < 4; i += 2) {
                    face.uvscale[k][i] = face.uvscale[k][i + 1] = m.q;
                    face.uvoffset[k][i] = m.u, face.uvoffset[k][i + 1] = m.v;
                }
            }
            const bool blend = !shade && !three && g.flags & GF_BLENDMARK && blendingtype(layer[0]);
            face.blendfactor = 0x009B009B;
            face.shadowmap = tile.shadowmap;
            face.shadowshift[0] = static_cast<uint64_t>(tile.shadowshift), face.shadowshift[1] = 0;
            draw = choosegroundtriangle(d.t.lanes, fold, layersof(G), blend ? blended::yes : blended::no,
                                        tile.shadowmap ? shadowed::yes : shadowed::no);
        }
    }
    // A face whose texture cannot be had is drawn without.
    if (!draw)
        draw = choosetriangle(d.t.lanes, fold, shading::gouraud, alphamode::opaque, wrapmode::repeat, blended::no, true,
                              true);
    draw(&face);
}

template <bool shade, size_t... G>
void drawgroups(tiledraw& d, std::index_sequence<G...>) {
    auto group = [&]<facegroup K>() {
        for (int i = 0; i < d.tile.facecounts[K]; ++i) drawface<K, shade>(d);
    };
    (group.template operator()<facegroup(G)>(), ...);
}

// The tile's faces in depth alone.
void drawdepth(tiledraw& d, int total) {
    const trianglefunction draw =
        choosetriangle(d.t.lanes, recipe::plain, shading::gouraud, alphamode::opaque, wrapmode::repeat, blended::no, false, true);
    alignas(16) rastertriangle face;
    for (int f = 0; f < total; ++f) {
        const uint8_t* corner = d.tile.faces.get() + 3 * f;
        const float *a = d.screen[corner[0]], *b = d.screen[corner[1]], *c = d.screen[corner[2]];
        if (!accepttriangle(a, b, c)) continue;
        for (int j = 0; j < 3; ++j) std::copy_n(d.screen[corner[j]], 4, face.position[j]);
        draw(&face);
    }
}

}  // namespace

void complexground::draw(toolkit& t, ground& g, int x, int z) {
    if (!rasterstate.targetdepth) return;
    int total = 0;
    for (int k = 0; k < gouraudfaces + 1; ++k) total += facecounts[k];
    if (total == 0) return;
    tiledraw d(t, g, *this, x, z);
    refreshslice(t, g, *this, x, z);
    if (!rasterstate.targetcolour) return drawdepth(d, total);
    if (t.fogoverride) {
        // The tile's colour lasts until its first face sets the shade colour of its own.
        for (int c = 0; c < 4; ++c)
            rasterstate.shadecolour[c] = static_cast<float>(tilecolour >> (8 * c) & 0xFF) * 256.0f;
        drawgroups<true>(d, std::make_index_sequence<gouraudfaces + 1>{});
    } else {
        drawgroups<false>(d, std::make_index_sequence<gouraudfaces + 1>{});
    }
}

extern "C" JNIEXPORT void JNICALL Java_a_v(JNIEnv* env, jobject, jlong, jlong handle, jint x, jint z) {
    runexport(env, [&] {
        ground* g = peerat<ground>(handle);
        if (!g) fail<NullPointerException>();
        genericground** slot = g->slot(x, z);
        if (slot && *slot && !((*slot)->tileflags & TF_EMPTY)) (*slot)->draw(*currenttoolkit, *g, x, z);
    });
}
