#include "toolkit/particles.h"

#include <emmintrin.h>

#include "toolkit/blend.h"
#include "toolkit/disc.h"
#include "toolkit/projection.h"
#include "util/arraypin.h"
#include "util/truncate.h"
#include "util/wrappingabs.h"

namespace {

// x, y and z times 32767, truncated and packed with saturation to 16 bits, against the screen
// bounds all at once: right, bottom and far are the last positions inside, left and top are 0
// whatever the viewport, and the depth must lie beyond near.
bool insidescreen(__m128 screen) {
    const __m128 xyzz = _mm_shuffle_ps(screen, screen, _MM_SHUFFLE(2, 2, 1, 0));
    const __m128i v = _mm_cvttps_epi32(_mm_mul_ps(xyzz, _mm_setr_ps(1.0f, 1.0f, 32767.0f, 32767.0f)));
    const __m128i p = _mm_packs_epi32(v, v);
    const __m128i bounds = _mm_load_si128(reinterpret_cast<const __m128i*>(rasterstate.screenbounds));
    const int beyond = _mm_movemask_epi8(_mm_cmpgt_epi16(p, bounds)) & 0xFF;
    const int below = _mm_movemask_epi8(_mm_cmpgt_epi16(_mm_setzero_si128(), p)) & 0xFF;
    return beyond == 0xC0 && below == 0;
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

void drawparticles(toolkit& t, const int* positions, const int* colours, const int* sizes, const int16_t* textures,
                   int count) {
    if (!rasterstate.targetcolour && !rasterstate.targetdepth) return;
    for (int i = 0; i < count; ++i) {
        particleplace at;
        if (!placeparticle(t, positions + 3 * i, sizes[i], at)) continue;
        const auto colour = static_cast<uint32_t>(colours[i]);
        if (textures[i] == -1) drawdisc(t, at.x, at.y, at.d >> 1, at.z, colour, blend);
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
