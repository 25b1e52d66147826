#include "toolkit/texturefilter.h"

#include <emmintrin.h>

#include "pixel/floatlanes.h"
#include "toolkit/texturestore.h"

namespace {

using f4 = floats4;
constexpr int n = texturesize;

// One line of the image along the pass: 128 pixels read in a row and written `outstep` apart, so
// that the pass across leaves its result turned and the pass down reads it in rows again. Each
// tap adds its weight times the four bytes to four sums, in tap order, and its weight to a fifth.
// A tap that doesn't count has no bytes and adds nothing, so every tap can be added; in a keyed
// load four outputs share one division of their fifth sums.
template <bool opaque>
void filterline(const uint32_t* in, uint32_t* out, long outstep, bool wrap) {
    __m128 bytes[n + 4];              // pixel j at j + 2: blue, green, red, alpha
    alignas(16) float counts[n + 4];  // 1 where a pixel counts, else 0; keyed loads only
    __m128i zero = _mm_setzero_si128();
    for (int j = 0; j < n; j += 4) {
        __m128i four = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + j));
        __m128i low = _mm_unpacklo_epi8(four, zero), high = _mm_unpackhi_epi8(four, zero);
        bytes[j + 2] = f4::fromints(_mm_unpacklo_epi16(low, zero));
        bytes[j + 3] = f4::fromints(_mm_unpackhi_epi16(low, zero));
        bytes[j + 4] = f4::fromints(_mm_unpacklo_epi16(high, zero));
        bytes[j + 5] = f4::fromints(_mm_unpackhi_epi16(high, zero));
        if constexpr (!opaque)
            f4::storeu(counts + j + 2, f4::andnot(_mm_castsi128_ps(_mm_cmpeq_epi32(four, zero)), f4::set(1.0f)));
    }
    // Two pixels beyond each end: those of the other end when the axis repeats, else the edge's.
    const int beyond[4] = {0, 1, n + 2, n + 3};
    const int from[4] = {wrap ? n - 2 : 0, wrap ? n - 1 : 0, wrap ? 0 : n - 1, wrap ? 1 : n - 1};
    for (int e = 0; e < 4; ++e) {
        bytes[beyond[e]] = bytes[from[e] + 2];
        if constexpr (!opaque) counts[beyond[e]] = counts[from[e] + 2];
    }

    float opaquesum = texturetaps[0];
    for (int k = 1; k < 5; ++k) opaquesum += texturetaps[k];
    alignas(16) float scale[4] = {};
    f4::store(scale, f4::set(1.0f / opaquesum));
    for (int i = 0; i < n; i += 4) {
        if constexpr (!opaque) {
            __m128 weights = f4::mul(f4::set(texturetaps[0]), f4::loadu(counts + i));
            for (int k = 1; k < 5; ++k)
                weights = f4::add(weights, f4::mul(f4::set(texturetaps[k]), f4::loadu(counts + i + k)));
            f4::store(scale, f4::div(f4::set(1.0f), weights));
        }
        for (int j = 0; j < 4; ++j) {
            const __m128* taps = bytes + i + j;
            __m128 sums = f4::mul(f4::set(texturetaps[0]), taps[0]);
            for (int k = 1; k < 5; ++k) sums = f4::add(sums, f4::mul(f4::set(texturetaps[k]), taps[k]));
            __m128i channels = f4::truncate(f4::mul(sums, f4::set(scale[j])));
            __m128i words = _mm_packs_epi32(channels, channels);
            auto pixel = static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(words, words)));
            // A transparent pixel stays 0; with no tap counting, its sums were not numbers.
            if constexpr (!opaque) pixel = counts[i + j + 2] != 0.0f ? pixel : 0;
            out[(i + j) * outstep] = pixel;
        }
    }
}

}  // namespace

void filtertexture(const uint32_t* in, uint32_t* out, long pitch, bool opaque, bool wrapu, bool wrapv) {
    alignas(16) uint32_t turned[n * n];  // the pass across, column by column
    auto line = opaque ? filterline<true> : filterline<false>;
    for (int y = 0; y < n; ++y) line(in + y * n, turned + y, n, wrapu);
    for (int x = 0; x < n; ++x) line(turned + x * n, out + x, pitch, wrapv);
}
