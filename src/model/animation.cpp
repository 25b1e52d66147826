#include "model/animation.h"

#include <emmintrin.h>

#include <algorithm>
#include <cstring>

#include "model/transform.h"
#include "toolkit/projection.h"
#include "toolkit/tables.h"
#include "util/arraypin.h"
#include "util/frame.h"
#include "util/peer.h"

namespace {

// Calls `each` with every selected item of `table`, or of all `count` items for the whole-model
// step; `masks`, if the step is masked and the model has them, filter the items. Tells whether a
// listed group passed the id test.
template <class F>
[[gnu::flatten]] bool foreachselected(const animationselection& s, const grouptable& table, int count,
                     const allocatedmemory<uint16_t>* masks, F&& each) {
    if (s.whole) {
        for (int i = 0; i < count; ++i) each(i);
        return true;
    }
    const bool filter = s.masked && masks && !masks->empty();
    const uint32_t groupcount = static_cast<uint32_t>(table.index.length());
    bool passed = false;
    for (int g = 0; g < s.groupcount; ++g) {
        const uint32_t id = static_cast<uint32_t>(s.groups[g]);
        if (id >= groupcount) continue;
        passed = true;
        const grouprange r = table.index[id];
        const uint16_t* members = table.members.get() + r.start;
        // Two loops, so that the common one without masks tests nothing per item.
        if (filter) {
            for (int k = 0; k < r.count; ++k)
                if (s.select & (*masks)[members[k]]) each(members[k]);
        } else {
            for (int k = 0; k < r.count; ++k) each(members[k]);
        }
    }
    return passed;
}

template <class F>
bool foreachvertex(const model& m, const animationselection& s, F&& each) {
    return foreachselected(s, m.vertexgroups, m.vertexcount, &m.vertexmasks, each);
}

template <class F>
bool foreachface(const model& m, const animationselection& s, F&& each) {
    return foreachselected(s, m.facegroups, m.facecount, &m.facemasks, each);
}

template <class F>
void foreachbillboard(const model& m, const animationselection& s, F&& each) {
    foreachselected(s, m.billboardgroups, m.billboardstates.length(), nullptr, each);
}

void translate(model& m, const animationselection& s, const float t[3]) {
    foreachvertex(m, s, [&](int i) { m.vertices[i].x += t[0], m.vertices[i].y += t[1], m.vertices[i].z += t[2]; });
}

// The pivot: the mean of the selected vertices, summed in the pivot itself, plus the offset.
void setorigin(model& m, const animationselection& s, int x, int y, int z) {
    float* o = m.animorigin;
    o[0] = o[1] = o[2] = 0.0f;
    int n = 0;
    foreachvertex(m, s, [&](int i) {
        o[0] += m.vertices[i].x, o[1] += m.vertices[i].y, o[2] += m.vertices[i].z;
        ++n;
    });
    const float offset[3] = {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
    if (n > 0) {
        const float r = 1.0f / static_cast<float>(n);
        for (int k = 0; k < 3; ++k) o[k] = o[k] * r + offset[k];
        // A framed turn or scale that follows moves the pivot into the frame first.
        if (s.masked) m.originfresh = 1;
    } else {
        for (int k = 0; k < 3; ++k) o[k] = offset[k];
    }
}

// The turns of a rotate step, by each non-zero angle about z, x and y, or about x, z and y; the
// sines and cosines are read once for all vertices.
class stepturn {
public:
    stepturn(int x, int y, int z, bool xfirst) : angle{x, y, z}, xfirst(xfirst) {
        for (int k = 0; k < 3; ++k) s[k] = sintable[angle[k] & 0x3FFF], c[k] = costable[angle[k] & 0x3FFF];
    }
    void operator()(quad& p) const {
        float x = p.x, y = p.y, z = p.z;
        if (xfirst && angle[0]) turn<turnaxis::x>(x, y, z, s[0], c[0]);
        if (angle[2]) turn<turnaxis::z>(x, y, z, s[2], c[2]);
        if (!xfirst && angle[0]) turn<turnaxis::x>(x, y, z, s[0], c[0]);
        if (angle[1]) turn<turnaxis::y>(x, y, z, s[1], c[1]);
        p.x = x, p.y = y, p.z = z;
    }

private:
    int angle[3];
    float s[3], c[3];
    bool xfirst;
};

void rotate(model& m, const animationselection& s, int x, int y, int z, bool normals) {
    const float o[3] = {m.animorigin[0], m.animorigin[1], m.animorigin[2]};
    const stepturn vertexturn(x, y, z, s.order & 1);
    quad* v = m.vertices.get();
    foreachvertex(m, s, [&](int i) {
        quad p = v[i];
        p.x -= o[0], p.y -= o[1], p.z -= o[2];
        vertexturn(p);
        v[i] = {p.x + o[0], p.y + o[1], p.z + o[2], p.w};
    });
    if (!normals) return;
    requiremask(m, FM_ANIMATE_NORMALS,
                "Attempted to animate normals when function mask doesn't contain FM_ANIMATE_NORMALS: ");
    // Loose vertices have no normals to turn.
    const int withnormals = m.normals.length();
    const stepturn normalturn(x, y, z, false);
    foreachvertex(m, s, [&](int i) {
        if (i < withnormals) normalturn(m.normals[i]);
    });
}

void scale(model& m, const animationselection& s, int x, int y, int z) {
    const float* o = m.animorigin;
    const float k[3] = {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
    foreachvertex(m, s, [&](int i) {
        quad& p = m.vertices[i];
        p.x = k[0] * (p.x - o[0]) * 0.0078125f + o[0];
        p.y = k[1] * (p.y - o[1]) * 0.0078125f + o[1];
        p.z = k[2] * (p.z - o[2]) * 0.0078125f + o[2];
    });
}

void alpha(model& m, const animationselection& s, int x) {
    if (m.facealphas.empty() || (!s.whole && m.facegroups.index.empty())) return;
    foreachface(m, s, [&](int f) { m.facealphas[f] = static_cast<uint8_t>(std::clamp(m.facealphas[f] + x * 8, 0, 255)); });
    for (int i = 0; i < m.billboards.length(); ++i) {
        billboardstate& b = m.billboardstates[i];
        b.colour = (b.colour & 0xFFFFFFu) | static_cast<uint32_t>(255 - m.facealphas[m.billboards[i].face]) << 24;
    }
}

void colour(model& m, const animationselection& s, int x, int y, int z) {
    if (m.fhsl.empty()) return;
    const bool passed = foreachface(m, s, [&](int f) {
        const int code = m.fhsl[f];
        const int h = ((code >> 10) + x) & 63;
        const int sat = std::clamp((code >> 7 & 7) + y, 0, 7);
        const int l = std::clamp((code & 127) + z, 0, 127);
        m.fhsl[f] = static_cast<uint16_t>(h << 10 | sat << 7 | l);
    });
    if (passed) m.colourdirty = 1;
    for (int i = 0; i < m.billboards.length(); ++i) {
        billboardstate& b = m.billboardstates[i];
        b.colour = (b.colour & 0xFF000000u) | (static_cast<uint32_t>(hsltorgb[m.fhsl[m.billboards[i].face]]) & 0xFFFFFFu);
    }
}

void billboards(model& m, int type, const animationselection& s, int x, int y) {
    const float fx = static_cast<float>(x), fy = static_cast<float>(y);
    foreachbillboard(m, s, [&](int i) {
        billboardstate& b = m.billboardstates[i];
        if (type == ANIM_BILLBOARD_OFFSET) {
            b.offsetx += fx, b.offsety += fy;
        } else if (type == ANIM_BILLBOARD_ROTATION) {
            b.rotation = s.whole ? b.rotation + x : (b.rotation + x) & 0x3FFF;
        } else {
            b.scalex = fx * b.scalex * 0.0078125f;
            b.scaley = fy * b.scaley * 0.0078125f;
        }
    });
}

// out := a times b, 3 by 3, each sum from the left.
void multiply3(const float a[3][3], const float b[3][3], float out[3][3]) {
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c) out[r][c] = a[r][0] * b[0][c] + a[r][1] * b[1][c] + a[r][2] * b[2][c];
}

void apply3(const float a[3][3], const float v[3], float out[3]) {
    for (int r = 0; r < 3; ++r) out[r] = a[r][0] * v[0] + a[r][1] * v[1] + a[r][2] * v[2];
}

// Every selected vertex p becomes M p + t, in four lanes; the fourth float of each vertex stays.
void transformselected(model& m, const animationselection& s, const float mat[3][3], const float t[3]) {
    const __m128 c0 = _mm_setr_ps(mat[0][0], mat[1][0], mat[2][0], 0.0f);
    const __m128 c1 = _mm_setr_ps(mat[0][1], mat[1][1], mat[2][1], 0.0f);
    const __m128 c2 = _mm_setr_ps(mat[0][2], mat[1][2], mat[2][2], 0.0f);
    const __m128 add = _mm_setr_ps(t[0], t[1], t[2], 0.0f);
    quad* v = m.vertices.get();
    foreachvertex(m, s, [&](int i) {
        const __m128 p = _mm_load_ps(&v[i].x);
        __m128 r = _mm_add_ps(_mm_mul_ps(_mm_shuffle_ps(p, p, 0x00), c0), _mm_mul_ps(_mm_shuffle_ps(p, p, 0x55), c1));
        r = _mm_add_ps(_mm_add_ps(r, _mm_mul_ps(_mm_shuffle_ps(p, p, 0xAA), c2)), add);
        // x and y of the result, then its z beside the vertex's own fourth float.
        _mm_store_ps(&v[i].x, _mm_shuffle_ps(r, _mm_unpackhi_ps(r, p), _MM_SHUFFLE(3, 0, 1, 0)));
    });
}

}  // namespace

void animatestep(model& m, int type, const animationselection& s, int x, int y, int z, bool normals) {
    switch (type) {
        case ANIM_ORIGIN: return setorigin(m, s, x, y, z);
        case ANIM_TRANSLATE: {
            const float t[3] = {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
            return translate(m, s, t);
        }
        case ANIM_ROTATE: return rotate(m, s, x, y, z, normals);
        case ANIM_SCALE: return scale(m, s, x, y, z);
        case ANIM_ALPHA: return alpha(m, s, x);
        case ANIM_COLOUR: return colour(m, s, x, y, z);
        case ANIM_BILLBOARD_OFFSET:
        case ANIM_BILLBOARD_ROTATION:
        case ANIM_BILLBOARD_SCALE: return billboards(m, type, s, x, y);
        default: return;
    }
}

void animateframed(model& m, int type, const animationselection& s, int x, int y, int z, const int32_t* frame) {
    if (type != ANIM_TRANSLATE && type != ANIM_ROTATE && type != ANIM_SCALE)
        return animatestep(m, type, s, x, y, z, false);
    float a[3][3];
    for (int k = 0; k < 9; ++k) a[k / 3][k % 3] = decodeframe(frame[k]);
    if (type == ANIM_TRANSLATE) {
        const float v[3] = {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
        float t[3];
        apply3(a, v, t);
        return translate(m, s, t);
    }
    const float t1[3] = {decodeframe(frame[9]), decodeframe(frame[10]), decodeframe(frame[11])};
    const float t2[3] = {decodeframe(frame[12]), decodeframe(frame[13]), 0.0f};
    float at[3][3];
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c) at[r][c] = a[c][r];
    float* o = m.animorigin;
    if (m.originfresh) {
        float moved[3];
        apply3(at, o, moved);
        for (int k = 0; k < 3; ++k) o[k] = moved[k] + t2[k];
        m.originfresh = 0;
    }
    float own[3][3] = {{static_cast<float>(x), 0, 0}, {0, static_cast<float>(y), 0}, {0, 0, static_cast<float>(z)}};
    if (type == ANIM_ROTATE) {
        const float sx = sintable[x & 0x3FFF], cx = costable[x & 0x3FFF], sy = sintable[y & 0x3FFF],
                    cy = costable[y & 0x3FFF], sz = sintable[z & 0x3FFF], cz = costable[z & 0x3FFF];
        const float rows[3][3] = {{sz * sx * sy + cz * cy, cz * sx * sy - sz * cy, sy * cx},
                                  {sz * cx, cz * cx, -sx},
                                  {sz * sx * cy - cz * sy, sz * sy + cz * sx * cy, cy * cx}};
        std::memcpy(own, rows, sizeof own);
    }
    // A (O (A^T p + T2 - o) + o) + T1 folded into one matrix and one vector.
    float inner[3][3], mat[3][3];
    multiply3(own, at, inner);
    multiply3(a, inner, mat);
    const float offset[3] = {t2[0] - o[0], t2[1] - o[1], t2[2] - o[2]};
    float turned[3], t[3];
    apply3(own, offset, turned);
    for (int k = 0; k < 3; ++k) turned[k] += o[k];
    apply3(a, turned, t);
    for (int k = 0; k < 3; ++k) t[k] += t1[k];
    transformselected(m, s, mat, t);
}

void applymatrix(model& m, const float* a, uint32_t select, bool inverse) {
    if (m.vertexmasks.empty()) return;
    alignas(16) float rows[16];
    std::memcpy(rows, a, sizeof rows);
    quad* v = m.vertices.get();
    for (int i = 0; i < m.usedvertexcount; ++i) {
        if (!(select & m.vertexmasks[i])) continue;
        quad& p = v[i];
        if (!inverse) {
            _mm_store_ps(&p.x, transformpoint(_mm_setr_ps(p.x, p.y, p.z, 1.0f), rows));
            continue;
        }
        const float d[3] = {p.x - rows[12], p.y - rows[13], p.z - rows[14]};
        float out[4];
        for (int r = 0; r < 4; ++r) out[r] = d[0] * rows[4 * r] + d[1] * rows[4 * r + 1] + d[2] * rows[4 * r + 2];
        p = {out[0], out[1], out[2], out[3]};
    }
}

bool resetorigin(model& m) {
    if (m.vertexgroups.index.empty()) return false;
    m.animorigin[0] = m.animorigin[1] = m.animorigin[2] = 0.0f;
    return true;
}

// The host hands the matrix over as an address; exported under its decorated C++ name, so a host
// that binds natives by their plain names does not reach it.
JNIEXPORT void JNICALL Java_h_aa(JNIEnv* env, jobject self, jlong matrix, jint select, jboolean inverse) {
    runexport(env, [&] {
        applymatrix(modelpeer(env, self), peerat<const float>(matrix), static_cast<uint32_t>(select), inverse);
    });
}

extern "C" {

JNIEXPORT void JNICALL Java_h_J(JNIEnv* env, jobject, jlong peer, jint type, jintArray groups, jint x, jint y, jint z,
                                jint order, jboolean normals) {
    runexport(env, [&] {
        arraypin<pinkind::intread> ids(env, groups);
        animationselection s;
        s.groups = ids.get(), s.groupcount = arraylength(env, groups), s.order = order;
        animatestep(*peerat<model>(peer), type, s, x, y, z, normals);
    });
}

JNIEXPORT void JNICALL Java_h_e(JNIEnv* env, jobject self, jint type, jintArray groups, jint x, jint y, jint z,
                                jboolean normals, jint select, jintArray frame) {
    runexport(env, [&] {
        model& m = modelpeer(env, self);
        const jsize count = arraylength(env, groups);
        arraypin<pinkind::intread> ids(env, groups), packed(env, frame);
        animationselection s;
        s.groups = ids.get(), s.groupcount = count, s.masked = true, s.select = static_cast<uint32_t>(select);
        if (packed.get())
            animateframed(m, type, s, x, y, z, packed.get());
        else
            animatestep(m, type, s, x, y, z, normals);
    });
}

JNIEXPORT void JNICALL Java_h_w(JNIEnv* env, jobject self, jint type, jint x, jint y, jint z) {
    runexport(env, [&] {
        animationselection s;
        s.whole = true;
        animatestep(modelpeer(env, self), type, s, x, y, z, false);
    });
}

JNIEXPORT jboolean JNICALL Java_h_ea(JNIEnv* env, jobject self) {
    return runexport(env, [&]() -> jboolean { return resetorigin(modelpeer(env, self)); });
}

}  // extern "C"
