#include "trianglework.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>

trianglework maketriangles(int count, float area, int width, int height, uint32_t seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> unit(0.0f, 1.0f);
    trianglework w;
    w.vertices.reserve(count * 3);
    w.pixels = 0;
    const float band = 0.9f / count;
    for (int k = 0; k < count; ++k) {
        // Corners around a centre at irregular angles and distances, then scaled to the area.
        float turn = unit(random) * 6.2831853f;
        float x[3], y[3];
        for (int i = 0; i < 3; ++i) {
            float angle = turn + i * 2.0943951f + (unit(random) - 0.5f) * 1.2f;
            float reach = 0.6f + unit(random) * 0.8f;
            x[i] = reach * std::cos(angle);
            y[i] = reach * std::sin(angle);
        }
        float doubled = (x[1] - x[0]) * (y[2] - y[0]) - (x[2] - x[0]) * (y[1] - y[0]);
        // Counter-clockwise with y down is a negative doubled area in these terms.
        if (doubled > 0) {
            std::swap(x[1], x[2]);
            std::swap(y[1], y[2]);
        }
        float scale = std::sqrt(2.0f * area / std::fabs(doubled));
        float left = 0, right = 0, top = 0, bottom = 0;
        for (int i = 0; i < 3; ++i) {
            x[i] *= scale;
            y[i] *= scale;
            left = std::min(left, x[i]);
            right = std::max(right, x[i]);
            top = std::min(top, y[i]);
            bottom = std::max(bottom, y[i]);
        }
        float cx = 1.0f - left + unit(random) * (width - 2.0f - (right - left));
        float cy = 1.0f - top + unit(random) * (height - 2.0f - (bottom - top));
        float nearest = 0.95f - band * (k + 1);
        for (int i = 0; i < 3; ++i) {
            benchvertex v;
            v.x = cx + x[i];
            v.y = cy + y[i];
            v.z = nearest + band * (0.2f + 0.6f * unit(random));
            v.u = 128.0f * (x[i] - left) / (right - left);
            v.v = 128.0f * (y[i] - top) / (bottom - top);
            v.colour = 0xFF000000u | (random() & 0xFFFFFFu);
            w.vertices.push_back(v);
        }
        w.pixels += area;
    }
    return w;
}

std::vector<uint32_t> maketexture(uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<uint32_t> texels(texturesize * texturepitch);
    for (int v = 0; v < texturesize; ++v)
        for (int u = 0; u < texturesize; ++u) texels[v * texturepitch + u] = 0xFF000000u | (random() & 0xFFFFFFu);
    return texels;
}

std::vector<rastertriangle> rasterrecords(const trianglework& work, const uint32_t* texels, int blendweight) {
    std::vector<rastertriangle> all(work.count());
    for (int k = 0; k < work.count(); ++k) {
        rastertriangle& r = all[k];
        for (int i = 0; i < 3; ++i) {
            const benchvertex& v = work.vertices[k * 3 + i];
            float position[4] = {v.x, v.y, v.z, v.z}, uv[4] = {v.u, v.v, v.u, v.v};
            for (int j = 0; j < 4; ++j) {
                r.position[i][j] = position[j];
                r.uv[i][j] = uv[j];
            }
            setcolourlanes(r.colour[i], v.colour);
        }
        r.blendfactor = blendweight | blendweight << 16;
        r.texels[0] = texels;
    }
    return all;
}
