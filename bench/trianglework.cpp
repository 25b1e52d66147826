#include "trianglework.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>

#include "ground/tile.h"
#include "model/lighting.h"
#include "model/model.h"
#include "toolkit/projection.h"
#include "toolkit/renderworkspace.h"
#include "toolkit/toolkit.h"

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

namespace {

// Appends a triangle the face test accepts, given as its projected corners; false if refused.
bool addaccepted(trianglework& work, const float (&p)[3][4], const benchvertex (&v)[3]) {
    if (!accepttriangle(p[0], p[1], p[2])) return false;
    work.vertices.insert(work.vertices.end(), v, v + 3);
    work.pixels += std::fabs((v[1].x - v[0].x) * (v[2].y - v[0].y) - (v[2].x - v[0].x) * (v[1].y - v[0].y)) / 2;
    return true;
}

}  // namespace

void addtiletriangles(trianglework& work, const complexground& tile, int x, int z, int tilesize, const toolkit& t) {
    int faces = 0;
    for (int g = 0; g < 5; ++g) faces += tile.facecounts[g];
    for (int f = 0; f < faces; ++f) {
        benchvertex v[3];
        float p[3][4];
        for (int j = 0; j < 3; ++j) {
            const groundpoint& w = tile.vertices[tile.faces[3 * f + j]];
            _mm_storeu_ps(p[j], projectpoint(_mm_setr_ps(w.x, w.y, w.z, 1), t.viewprojection));
            p[j][3] = p[j][2];
            v[j] = {p[j][0], p[j][1], p[j][2], (w.x - float(x * tilesize)) * 127.0f / tilesize,
                    (w.z - float(z * tilesize)) * 127.0f / tilesize, 0xFF000000u | tile.colours[3 * f + j]};
        }
        addaccepted(work, p, v);
    }
}

void addmodeltriangles(trianglework& work, const model& m, const renderworkspace& w, const toolkit& t,
                       const texturerecord& texture) {
    const float(*screen)[4] = w.vertices;
    for (int f = 0; f < m.facecount; ++f) {
        const int corner[3] = {m.facea[f], m.faceb[f], m.facec[f]};
        const bool textured = f < m.texturedfacecount;
        const texel uv[3] = {textured ? m.uva[f] : texel{}, textured ? m.uvb[f] : texel{}, textured ? m.uvc[f] : texel{}};
        benchvertex v[3];
        float p[3][4];
        for (int i = 0; i < 3; ++i) {
            std::copy(screen[corner[i]], screen[corner[i]] + 4, p[i]);
            const uint32_t colour =
                sunterm(m.litcolours[f].corner[i], m.normals[corner[i]], 768.0f / float(m.contrast), t);
            v[i] = {p[i][0], p[i][1], p[i][2], uv[i].u + texture.offsetu[0], uv[i].v + texture.offsetv[0], colour};
        }
        addaccepted(work, p, v);
    }
}
