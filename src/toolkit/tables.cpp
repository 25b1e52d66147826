#include "toolkit/tables.h"

#include <cmath>

float sintable[angles];
float costable[angles];
int32_t hsltorgb[65536];

void buildtrigtables() {
    // The step is the float nearest 2 pi / 16384; the products and sines are taken in extended
    // precision and only the results rounded to float.
    const float step = static_cast<float>(2.0L * 3.141592653589793238462643383279502884L / angles);
    for (int i = 0; i < angles; ++i) {
        long double a = static_cast<long double>(i) * static_cast<long double>(step);
        sintable[i] = static_cast<float>(sinl(a));
        costable[i] = static_cast<float>(cosl(a));
    }
}

namespace {

float hue(float p, float q, float t) {
    if (6.0f * t < 1.0f) return p + (q - p) * 6.0f * t;
    if (2.0f * t < 1.0f) return q;
    if (3.0f * t < 2.0f) return p + (q - p) * (0.6666667f - t) * 6.0f;
    return p;
}

int channel(float v) {
    // The exponent is the double nearest the float 0.7.
    return static_cast<int>(pow(static_cast<double>(v), static_cast<double>(0.7f)) * 256.0);
}

}  // namespace

void buildhsltorgb() {
    for (int i = 0; i < 65536; ++i) {
        // Each bucket's centre, not its edge: lightness 0 is black, and nothing reaches 1.
        float h = static_cast<float>((i >> 10) & 63) / 64.0f + 1.0f / 128.0f;
        float s = static_cast<float>((i >> 7) & 7) / 8.0f + 1.0f / 16.0f;
        float l = static_cast<float>(i & 127) / 128.0f;
        float q = l < 0.5f ? l * (1.0f + s) : l + s - l * s;
        float p = 2.0f * l - q;
        float tr = h + 0.33333334f;
        if (tr > 1.0f) tr -= 1.0f;
        float tb = h - 0.33333334f;
        if (tb < 0.0f) tb += 1.0f;
        int r = channel(hue(p, q, tr));
        int g = channel(hue(p, q, h));
        int b = channel(hue(p, q, tb));
        hsltorgb[i] = r * 65536 + g * 256 + b;
    }
}
