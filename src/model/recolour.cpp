#include "model/recolour.h"

#include "model/lighting.h"
#include "toolkit/tables.h"
#include "toolkit/texturestore.h"
#include "util/frame.h"

void recolour(model& m, uint16_t from, uint16_t to) {
    requiremask(m, FM_RECOLOUR);
    for (int f = 0; f < m.fhsl.length(); ++f)
        if (m.fhsl[f] == from) m.fhsl[f] = to;
    m.litcolours.release();
}

void retexture(model& m, uint16_t from, uint16_t to) {
    requiremask(m, FM_RETEXTURE);
    if (m.facetextures.empty()) return;
    for (int f = 0; f < m.texturedfacecount; ++f)
        if (m.facetextures[f] == from) m.facetextures[f] = to;
    const texturedescriptor* before = getdescriptor(from);
    const texturedescriptor* after = getdescriptor(to);
    if (after && (after->speedu || after->speedv)) m.hasscroll = 1;
    // Only what the light pass reads of a texture decides whether the colours go.
    auto blend = [](const texturedescriptor* d) { return d ? d->blend : 0; };
    auto bright = [](const texturedescriptor* d) { return d ? d->bright : 0; };
    if (blend(before) != blend(after) || bright(before) != bright(after)) m.litcolours.release();
}

void tint(model& m, int hue, int saturation, int lightness, int amount) {
    requiremask(m, FM_TINT, "Can't tint if functionmask does not contain FM_TINT");
    auto towards = [amount](int field, int target) {
        return target == -1 ? field : field + (((target - field) * amount) >> 7);
    };
    for (int f = 0; f < m.fhsl.length(); ++f) {
        int code = m.fhsl[f];
        int h = towards(code >> 10 & 63, hue);
        int s = towards(code >> 7 & 7, saturation);
        int l = towards(code & 127, lightness);
        // The fields are not masked: one that left its range spills into its neighbour.
        m.fhsl[f] = static_cast<uint16_t>((h * 8 | s) << 7 | l);
    }
    for (int i = 0; i < m.billboards.length(); ++i) {
        billboardstate& state = m.billboardstates[i];
        uint32_t rgb = static_cast<uint32_t>(hsltorgb[m.fhsl[m.billboards[i].face]]) & 0xFFFFFF;
        state.colour = (state.colour & 0xFF000000u) | rgb;
    }
    lightpass(m);
}

extern "C" {

JNIEXPORT void JNICALL Java_h_X(JNIEnv* env, jobject self, jshort from, jshort to) {
    runexport(env, [&] { recolour(modelpeer(env, self), static_cast<uint16_t>(from), static_cast<uint16_t>(to)); });
}

JNIEXPORT void JNICALL Java_h_W(JNIEnv* env, jobject self, jshort from, jshort to) {
    runexport(env, [&] { retexture(modelpeer(env, self), static_cast<uint16_t>(from), static_cast<uint16_t>(to)); });
}

JNIEXPORT void JNICALL Java_h_PA(JNIEnv* env, jobject self, jint hue, jint saturation, jint lightness, jint amount) {
    runexport(env, [&] { tint(modelpeer(env, self), hue, saturation, lightness, amount); });
}

}  // extern "C"
