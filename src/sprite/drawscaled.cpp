#include "sprite/drawscaled.h"

#include <algorithm>

#include "sprite/rules.h"
#include "util/frame.h"

namespace {

using int64 = long long;

int truncate(float v) { return _mm_cvttss_si32(_mm_set_ss(v)); }

// The truncated position, kept at or below `last` (NaN counts as beyond it).
int sampleindex(float position, float last) { return _mm_cvttss_si32(_mm_min_ss(_mm_set_ss(position), _mm_set_ss(last))); }

// Clipped placement of a scaled draw and where its sampling starts.
struct scaledrows {
    uint32_t* target;          // first pixel written
    const float* depth;        // the same position in the depth buffer
    long pitch;                // of the target
    int n, rows;               // pixels per row, rows
    const uint32_t* source;    // column ustart of the image's first row
    long sourcepitch;
    int vstart, lastrow;       // first source row; the last row of the image
    float fx, ustep, vstep;
    float lastcolumn;          // the last column right of ustart, as a float
    float z;

    // Sampling follows the arithmetic of the draw; the last column and row only stop an index
    // that the float steps carry past the image from reading outside it.
    bool place(const toolkit& t, const spriteimage& image, int x, int y, int w, int h) {
        if (image.width < 1 || image.height < 1) return false;
        float ax = static_cast<float>(w) / static_cast<float>(image.fullwidth());
        float ay = static_cast<float>(h) / static_cast<float>(image.fullheight());
        int l = truncate(static_cast<float>(image.padleft) * ax), r = truncate(static_cast<float>(image.padright) * ax);
        int tp = truncate(static_cast<float>(image.padtop) * ay), b = truncate(static_cast<float>(image.padbottom) * ay);
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

template <bool depthtest>
struct scaledfamily {
    template <tintmode T, blendmode B>
    struct member {
        static void draw(const scaledrows& p, const tintconstants& k) {
            uint32_t* dst = p.target;
            const float* depth = p.depth;
            float v = 0.0f;
            for (int j = 0; j < p.rows; ++j, dst += p.pitch, depth += depthtest ? p.pitch : 0) {
                int row = p.vstart + sampleindex(v, static_cast<float>(p.lastrow - p.vstart));
                drawrow<T, B>(dst, depth, p.source + row * p.sourcepitch, p, k);
                v += p.vstep;
            }
        }
    };

    template <tintmode T, blendmode B>
    [[gnu::always_inline]] static inline void drawrow(uint32_t* dst, const float* depth, const uint32_t* src,
                                                     const scaledrows& p, const tintconstants& k) {
        const __m128 limit = _mm_set1_ps(p.lastcolumn);
        const __m128 z = _mm_set1_ps(p.z);
        const __m128 step = _mm_set1_ps(4.0f * p.ustep);
        __m128 lanes = _mm_mul_ps(_mm_setr_ps(0.0f, 1.0f, 2.0f, 3.0f), _mm_set1_ps(p.ustep));
        int i = 0;
        for (; i + 4 <= p.n; i += 4, lanes = _mm_add_ps(lanes, step)) {
            __m128i d = _mm_loadu_si128(reinterpret_cast<const __m128i*>(dst + i));
            __m128i pass;
            if constexpr (depthtest) {
                // A group with no passing lane reads nothing of the source.
                pass = _mm_castps_si128(_mm_cmple_ps(z, _mm_loadu_ps(depth + i)));
                if (_mm_movemask_epi8(pass) == 0) continue;
            }
            alignas(16) int column[4];
            _mm_store_si128(reinterpret_cast<__m128i*>(column), _mm_cvttps_epi32(_mm_min_ps(lanes, limit)));
            __m128i s = _mm_setr_epi32(static_cast<int>(src[column[0]]), static_cast<int>(src[column[1]]),
                                       static_cast<int>(src[column[2]]), static_cast<int>(src[column[3]]));
            __m128i r = pixelop<T, B, true>(s, d, k);
            if constexpr (depthtest) r = _mm_or_si128(_mm_and_si128(pass, r), _mm_andnot_si128(pass, d));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + i), r);
        }
        for (; i < p.n; ++i) {
            if (depthtest && !(p.z <= depth[i])) continue;
            // The plain members with depth divide by the scale where the others multiply by its
            // reciprocal; the two differ at some integer boundaries.
            float u = depthtest && T == tintmode::plain ? static_cast<float>(i) / p.fx : static_cast<float>(i) * p.ustep;
            dst[i] = leftoverpixel<T, B>(src[sampleindex(u, p.lastcolumn)], dst[i], k);
        }
    }
};

constexpr auto scaledmembers = ruletable<scaledfamily<false>::member>();
constexpr auto depthmembers = ruletable<scaledfamily<true>::member>();

}  // namespace

void drawscaled(const toolkit& t, const spriteimage& image, int x, int y, int w, int h, int tint, uint32_t colour,
                int blend) {
    int rule = ruleindex(tint, blend);
    scaledrows p;
    if (!t.colourbuffer || rule < 0 || !p.place(t, image, x, y, w, h)) return;
    scaledmembers[rule](p, tintconstants(colour));
}

void drawscaledatdepth(const toolkit& t, const spriteimage& image, int x, int y, float z, int w, int h, int tint,
                       uint32_t colour, int blend) {
    if (!t.depthbuffer) return drawscaled(t, image, x, y, w, h, tint, colour, blend);
    int rule = ruleindex(tint, blend);
    scaledrows p;
    if (!t.colourbuffer || rule < 0 || !p.place(t, image, x, y, w, h)) return;
    p.z = z;
    depthmembers[rule](p, tintconstants(colour));
}

extern "C" {

JNIEXPORT void JNICALL Java_fa_ha(JNIEnv* env, jobject, jlong handle, jint x, jint y, jint w, jint h, jint tint,
                                  jint colour, jint blend) {
    runexport(env, [&] {
        drawscaled(*currenttoolkit, imageof(*spriteat(handle)), x, y, w, h, tint, static_cast<uint32_t>(colour), blend);
    });
}

// The depth arrives as an int.
JNIEXPORT void JNICALL Java_fa_G(JNIEnv* env, jobject, jlong handle, jint x, jint y, jint z, jint w, jint h,
                                 jint tint, jint colour, jint blend) {
    runexport(env, [&] {
        drawscaledatdepth(*currenttoolkit, imageof(*spriteat(handle)), x, y, static_cast<float>(z), w, h, tint,
                          static_cast<uint32_t>(colour), blend);
    });
}

}  // extern "C"
