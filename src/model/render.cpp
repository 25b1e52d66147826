#include "model/render.h"

#include <cstring>

#include "toolkit/projection.h"
#include "util/arraypin.h"
#include "util/frame.h"
#include "util/peer.h"
#include "util/truncate.h"
#include "util/wrappingabs.h"

namespace {

__m128 point(float x, float y, float z) { return _mm_setr_ps(x, y, z, 1.0f); }

template <int lane>
float at(__m128 v) {
    return _mm_cvtss_f32(_mm_shuffle_ps(v, v, _MM_SHUFFLE(lane, lane, lane, lane)));
}

float planedistance(const float* plane, __m128 p) {
    return plane[0] * at<0>(p) + plane[1] * at<1>(p) + plane[2] * at<2>(p) + plane[3] * at<3>(p);
}

// The model as a capsule: its axis from the lowest to the highest used vertex, `radius` round it.
bool outsidefrustum(const toolkit& t, __m128 low, __m128 high, float radius) {
    for (const float* plane : t.frustumplanes)
        if (planedistance(plane, low) < -radius && planedistance(plane, high) < -radius) return true;
    return false;
}

// Where the model lands on the screen: its axis's two ends, and its radius across the screen,
// measured along the camera's x axis at the end nearer the far side.
void screenextent(const model& m, const toolkit& t, __m128 low, __m128 high, __m128 lowscreen, __m128 highscreen,
                  int* result) {
    result[0] = truncate(at<0>(lowscreen));
    result[1] = truncate(at<1>(lowscreen));
    result[2] = truncate(at<0>(highscreen));
    result[3] = truncate(at<1>(highscreen));
    bool highend = at<2>(low) <= at<2>(high);
    __m128 end = highend ? high : low, endscreen = highend ? highscreen : lowscreen;
    const float* v = t.viewmatrix;
    __m128 side = _mm_add_ps(end, _mm_mul_ps(_mm_set1_ps(m.radius), _mm_setr_ps(v[0], v[4], v[8], 0.0f)));
    __m128 sidescreen = projectpoint(side, t.viewprojection);
    result[4] = wrappingabs(_mm_cvtss_si32(_mm_sub_ss(sidescreen, endscreen)));
    result[5] = 1;
}

template <modelmember M>
void drawmember(modeldraw& d) {
    constexpr bool pointlit = M.template get<memberlight>() == memberlight::pointlit;
    constexpr bool shade = M.template get<membershade>() == membershade::shade;
    drawfaces<pointlit, shade, M.template get<membertarget>() == membertarget::depthonly>(d);
}

// The member for the current lights, fog, shade and target; `zfar` is the farther end of the
// model's axis on the screen.
modelmember choosemember(const model& m, const toolkit& t, float zfar) {
    membershade shade = t.fogoverride ? membershade::shade : membershade::none;
    if (!rasterstate.targetcolour)
        return modelmember(membertarget::depthonly, memberlight::sun, shade, memberfog::none);
    const auto light = (m.modelflags & MF_POINTLIT) && t.lightcount > 0 ? memberlight::pointlit : memberlight::sun;
    const auto fog = t.fogdistance > 0.0f && zfar > rasterstate.fogstart ? memberfog::fog : memberfog::none;
    const auto target = rasterstate.targetdepth ? membertarget::colourdepth : membertarget::colouronly;
    return modelmember(target, light, shade, fog);
}

constexpr auto membertable = dispatchtable<modelmembers>([]<auto M>() { return &drawmember<M>; });
static_assert(membertable.size() == 18);

}  // namespace

int drawmodel(model& m, renderworkspace& w, const float* matrix, int* result) {
    if (m.facecount == 0) return -1;
    if (!rasterstate.targetcolour && !rasterstate.targetdepth) return -1;
    const toolkit& t = *currenttoolkit;
    modeldraw d;
    std::memcpy(d.matrix, matrix, sizeof d.matrix);
    multiplymatrices(d.matrix, t.viewprojection, d.modelviewprojection);
    if (!m.boundsvalid) computebounds(m);

    const __m128 lowaxis = point(0.0f, m.miny, 0.0f), highaxis = point(0.0f, m.maxy, 0.0f);
    const __m128 low = transformpoint(lowaxis, d.matrix), high = transformpoint(highaxis, d.matrix);
    if (outsidefrustum(t, low, high, m.radius)) return -1;
    const __m128 lowscreen = projectpoint(lowaxis, d.modelviewprojection);
    const __m128 highscreen = projectpoint(highaxis, d.modelviewprojection);
    float zfar = at<2>(lowscreen) > at<2>(highscreen) ? at<2>(lowscreen) : at<2>(highscreen);
    if (result) screenextent(m, t, low, high, lowscreen, highscreen, result);

    if (m.litcolours.empty()) lightpass(m);
    placelights(m, t, d.matrix, d.lights);
    ++modelcount;

    const modelmember member = choosemember(m, t, zfar);
    const bool shade = member.get<membershade>() == membershade::shade;
    const bool fog = member.get<memberfog>() == memberfog::fog;
    d.steps = shade ? (fog ? recipe::fogshade : recipe::shadeonly) : (fog ? recipe::fogonly : recipe::plain);
    multiplymatrices(d.matrix, t.viewmatrix, d.modelview);
    d.mdl = &m;
    d.workspace = &w;
    d.t = &t;
    d.colour = rasterstate.targetcolour != nullptr;
    d.depth = rasterstate.targetdepth != nullptr;
    d.smoothscale = 768.0f / static_cast<float>(m.contrast);
    d.flatscale = 512.0f / static_cast<float>(m.contrast);
    d.lanes = t.lanes;
    const int index = indexof(modelmembers, member);
    membertable[static_cast<size_t>(index)](d);
    return index;
}

extern "C" JNIEXPORT void JNICALL Java_a_wa(JNIEnv* env, jobject, jlong workspace, jlong modelpeer,
                                            jfloatArray matrix, jintArray result, jint) {
    runexport(env, [&] {
        // Faces may ask the host for textures: no critical pin may be held across that, so the
        // matrix is copied and let go first.
        alignas(16) float m[16];
        {
            arraypin<pinkind::floatcritical> pin(env, matrix);
            for (int i = 0; i < 16; ++i) m[i] = pin[i];
        }
        arraypin<pinkind::intreadwrite> out(env, result);
        drawmodel(*peerat<model>(modelpeer), *peerat<renderworkspace>(workspace), m, out.get());
    });
}
