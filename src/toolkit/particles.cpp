#include "toolkit/particles.h"

#include <emmintrin.h>

#include "raster/raster.h"
#include "toolkit/blend.h"
#include "toolkit/disc.h"
#include "toolkit/projection.h"
#include "toolkit/texturestore.h"
#include "util/arraypin.h"
#include "util/truncate.h"
#include "util/wrappingabs.h"

namespace {

// The screen test of a single point, on its x, y, z and z.
bool insidescreen(__m128 screen) {
    alignas(16) float xyzz[4];
    _mm_store_ps(xyzz, _mm_shuffle_ps(screen, screen, _MM_SHUFFLE(2, 2, 1, 0)));
    return screenside(xyzz) == onscreen;
}

}  // namespace

bool placeparticle(const toolkit& t, const int* position, int size, particleplace& out) {
    const __m128 p = _mm_setr_ps(static_cast<float>(position[0] >> 12), static_cast<float>(position[1] >> 12),
                                 static_cast<float>(position[2] >> 12), 1.0f);
    const __m128 screen = projectpoint(p, t.viewprojection);
    if (!insidescreen(screen)) return false;
    // The camera's x axis is the first column of the view matrix.
    const __m128 axis = _mm_setr_ps(t.viewmatrix[0], t.viewmatrix[4], t.viewmatrix[8], 0.0f);
    const __m128 s = _mm_set1_ps(static_cast<float>(size) * 0.00048828125f);
    const __m128 side = projectpoint(_mm_add_ps(p, _mm_mul_ps(s, axis)), t.viewprojection);
    const int d = wrappingabs(_mm_cvtss_si32(_mm_sub_ss(side, screen)));
    if (d == 0) return false;
    out.x = truncate(_mm_cvtss_f32(screen));
    out.y = truncate(_mm_cvtss_f32(_mm_shuffle_ps(screen, screen, _MM_SHUFFLE(1, 1, 1, 1))));
    out.z = _mm_cvtss_f32(_mm_movehl_ps(screen, screen));
    out.d = d;
    return true;
}

// The forms by the target's buffers differ only in the span member of the squares: a target
// without colour gets the depth-only member, and its discs draw nothing.
void drawparticles(toolkit& t, const int* positions, const int* colours, const int* sizes, const int16_t* textures,
                   int count) {
    const bool colour = rasterstate.targetcolour, depth = rasterstate.targetdepth;
    if (!colour && !depth) return;
    for (int i = 0; i < count; ++i) {
        particleplace at;
        if (!placeparticle(t, positions + 3 * i, sizes[i], at)) continue;
        const auto tint = static_cast<uint32_t>(colours[i]);
        if (textures[i] == -1) {
            drawdisc(t, at.x, at.y, at.d >> 1, at.z, tint, blend);
            continue;
        }
        // The host may be asked to load it here.
        const texturerecord* r = gettexture(textures[i]);
        if (!r) continue;
        const wrapmode wrap = r->flagfive || r->flagsix ? wrapmode::repeat : wrapmode::clamp;
        const spanfunction span =
            choosespan(t.lanes, recipe::plain, shading::textured, alphamodeof(r->value), wrap, blended::no, colour, depth);
        const int half = at.d >> 1;
        drawsquare(span, at.x - half, at.y - half, at.d + 1, at.z, tint, r->pixels);
    }
}

extern "C" {

// The host may be asked for a texture in the middle of the work, so the arrays are held by the
// kind of pin that allows calls into the JVM.
JNIEXPORT void JNICALL Java_a_b(JNIEnv* env, jobject, jlong, jint, jintArray positions, jintArray colours,
                                jintArray sizes, jshortArray textures, jint count) {
    runexport(env, [&] {
        arraypin<pinkind::intread> p(env, positions), c(env, colours), s(env, sizes);
        arraypin<pinkind::shortread> tx(env, textures);
        drawparticles(*currenttoolkit, p.get(), c.get(), s.get(), tx.get(), count);
    });
}

}  // extern "C"
