// Billboards: camera-facing squares of a texture at the centroid of their face, sized in world
// units along the camera's axes and drawn by the scaled sprite draws, fogged by their depth.
#include "model/render.h"
#include "sprite/drawscaled.h"
#include "toolkit/projection.h"
#include "toolkit/texturestore.h"
#include "util/truncate.h"
#include "util/wrappingabs.h"

namespace {

// A point of the model on the screen by way of the camera's space, where the billboard's offset
// moves it before the projection.
__m128 throughview(const modeldraw& d, __m128 eyepoint, const billboardstate& s) {
    __m128 eye = _mm_add_ps(dividebyw(eyepoint), _mm_setr_ps(s.offsetx, s.offsety, 0.0f, 0.0f));
    __m128 screen = projectpoint(eye, d.t->projectionmatrix);
    return _mm_shuffle_ps(screen, screen, _MM_SHUFFLE(2, 2, 1, 0));
}

// The face's reject rule for one point, rounded rather than truncated.
bool onscreen(__m128 screen) {
    __m128i v = _mm_cvtps_epi32(_mm_mul_ps(screen, _mm_setr_ps(1.0f, 1.0f, 32767.0f, 32767.0f)));
    v = _mm_packs_epi32(v, v);
    const __m128i bounds = _mm_load_si128(reinterpret_cast<const __m128i*>(rasterstate.screenbounds));
    int beyond = _mm_movemask_epi8(_mm_cmpgt_epi16(v, bounds)) & 0xFF;
    int below = _mm_movemask_epi8(_mm_cmpgt_epi16(_mm_setzero_si128(), v)) & 0xFF;
    return beyond == 0xC0 && below == 0;
}

// Places billboard i on the screen; false when its point is off it.
bool place(const modeldraw& d, int i) {
    const model& m = *d.mdl;
    const billboard& b = m.billboards[i];
    billboardstate& s = m.billboardstates[i];
    const quad &pa = m.vertices[m.facea[b.face]], &pb = m.vertices[m.faceb[b.face]], &pc = m.vertices[m.facec[b.face]];
    const float third = 0.33333334f;
    const __m128 c = _mm_setr_ps((pa.x + pb.x + pc.x) * third, (pa.y + pb.y + pc.y) * third,
                                 (pa.z + pb.z + pc.z) * third, 1.0f);
    const __m128 screen = throughview(d, transformpoint(c, d.modelview), s);
    if (!onscreen(screen)) return false;
    const float* v = d.t->viewmatrix;
    const __m128 world = transformpoint(c, d.matrix);
    auto across = [&](float size, __m128 axis) {
        return throughview(d, transformpoint(_mm_add_ps(world, _mm_mul_ps(_mm_set1_ps(size), axis)), v), s);
    };
    const __m128 right = across(b.width, _mm_setr_ps(v[0], v[4], v[8], 0.0f));
    const __m128 up = across(b.height, _mm_setr_ps(v[1], v[5], v[9], 0.0f));
    s.screenwidth = wrappingabs(_mm_cvtss_si32(_mm_sub_ss(right, screen)));
    __m128 rise = _mm_sub_ps(up, screen);
    s.screenheight = wrappingabs(_mm_cvtss_si32(_mm_shuffle_ps(rise, rise, _MM_SHUFFLE(1, 1, 1, 1))));
    s.screenx = _mm_cvtss_si32(screen);
    s.screeny = _mm_cvtss_si32(_mm_shuffle_ps(screen, screen, _MM_SHUFFLE(1, 1, 1, 1)));
    s.screenz = _mm_cvtss_f32(_mm_movehl_ps(screen, screen));
    return true;
}

// The fog over a billboard's colour, by its depth alone; the alpha is kept.
uint32_t fogged(const toolkit& t, uint32_t colour, float z) {
    if (!(t.fogdistance > 0.0f) || !(z > rasterstate.fogstart)) return colour;
    const float start = rasterstate.fogstart;
    const uint32_t weight = static_cast<uint8_t>(truncate((z - start) * 255.0f / (1.0f - start)));
    const uint32_t fog = static_cast<uint32_t>(t.fogcolour);
    uint32_t out = colour & 0xFF000000u;
    for (int shift = 0; shift < 24; shift += 8)
        out |= ((((fog >> shift & 0xFF) * weight) >> 8) + (((colour >> shift & 0xFF) * (255 - weight)) >> 8)) << shift;
    return out;
}

}  // namespace

void drawbillboards(modeldraw& d) {
    model& m = *d.mdl;
    const toolkit& t = *d.t;
    for (int i = 0; i < m.billboards.length(); ++i) {
        if (!place(d, i)) continue;
        const billboardstate& placed = m.billboardstates[i];
        if (placed.screenz > 1.0f) continue;
        const texturerecord* r = gettexture(m.billboards[i].texture);
        if (!r) continue;
        // The texture may have come from the host, which may have moved the pool.
        const billboard& b = m.billboards[i];
        const billboardstate& s = m.billboardstates[i];
        int w = truncate(static_cast<float>(s.screenwidth) * s.scalex * 2.0f);
        int h = truncate(static_cast<float>(s.screenheight) * s.scaley * 2.0f);
        const spriteimage image = {r->pixels, texturesize, texturesize, atlaspitch, 0, 0, 0, 0};
        drawscaledatdepth(t, image, s.screenx - w / 2, s.screeny - h / 2, s.screenz, w, h, b.tintmode,
                          fogged(t, s.colour, s.screenz), b.blendmode, d.lanes);
        if (r->value == 2) m.hastranslucency = 1;
    }
}
