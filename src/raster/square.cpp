// A textured square through a span function, for particles: the rows are clipped as a triangle's
// are, the columns by the span.
#include <algorithm>

#include "raster/raster.h"

void drawsquare(spanfunction span, int x, int y, int side, float z, uint32_t colour, const uint32_t* texels) {
    const rasterstatedata& state = rasterstate;
    const long long viewy = state.viewport[1], clipy = state.rasterclip[1];
    const long long bottom =
        std::min({viewy + state.viewport[3], clipy + state.rasterclip[3], static_cast<long long>(y) + side});
    long long top = y, skip = 0;
    if (top < viewy) skip = viewy - top, top = viewy;
    if (top < clipy) skip += clipy - top, top = clipy;
    if (bottom - top <= 0) return;

    rasterspan s;
    s.y = static_cast<int>(top);
    s.rows = static_cast<int>(bottom - top);
    s.texels[0] = texels;
    const float fx = static_cast<float>(x);
    _mm_store_ps(s.edge, _mm_setr_ps(fx, z, fx + static_cast<float>(side), z));
    _mm_store_ps(s.edgestep, _mm_setzero_ps());
    setcolourlanes(s.modulate, colour);
    _mm_store_si128(reinterpret_cast<__m128i*>(s.modulatestep), _mm_setzero_si128());
    // u runs from 0 to 128 across, v from 0 to 128 down; both over z, as the span multiplies by z.
    const float across = 128.0f * _mm_cvtss_f32(_mm_rcp_ss(_mm_set_ss(z)));
    const float down = across * _mm_cvtss_f32(_mm_rcp_ss(_mm_set_ss(static_cast<float>(side))));
    _mm_store_ps(s.uvstep, _mm_setr_ps(0.0f, down, 0.0f, down));
    _mm_store_ps(s.uv, _mm_add_ps(_mm_setr_ps(0.0f, 0.0f, across, 0.0f),
                                  _mm_mul_ps(_mm_set1_ps(static_cast<float>(skip)), _mm_load_ps(s.uvstep))));
    span(&s);
}
