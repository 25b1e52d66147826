#include "toolkit/texturestore.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <new>

#include "toolkit/texturefilter.h"
#include "toolkit/toolkit.h"
#include "util/arraypin.h"
#include "util/frame.h"

namespace {

void makenewest(texturestore& s, uint8_t slot) {
    if (slot == s.newest) return;
    uint8_t before = s.prevslot[slot], after = s.nextslot[slot];
    if (before == noslot) s.oldest = after;
    else s.nextslot[before] = after;
    s.prevslot[after] = before;
    s.prevslot[slot] = s.newest;
    s.nextslot[slot] = noslot;
    s.nextslot[s.newest] = slot;
    s.newest = slot;
}

// The offset of an animated texture at time t: speed * t / 64 * 128, wrapped into one period, in
// extended precision.
float animationoffset(int speed, float t) {
    return static_cast<float>(fmodl(static_cast<long double>(speed) * t / 64 * 128, 128.0L));
}

}  // namespace

texturestore* maketexturestore(int count) {
    void* memory = aligned_alloc(alignof(texturestore), sizeof(texturestore));
    if (!memory) return nullptr;
    auto* s = new (memory) texturestore{};
    s->atlas = static_cast<uint32_t*>(aligned_alloc(64, size_t{textureslots} * texturesize * texturesize * 4));
    size_t descriptors = static_cast<size_t>(count > 0 ? count : 0);
    s->descriptors = static_cast<texturedescriptor*>(malloc(sizeof(texturedescriptor) * descriptors));
    if (!s->atlas || (descriptors && !s->descriptors)) {
        destroytexturestore(s);
        return nullptr;
    }
    for (int slot = 0; slot < textureslots; ++slot) {
        s->records[slot].pixels = s->atlas + (slot / 2) * texturesize * atlaspitch + (slot & 1) * texturesize;
        s->idofslot[slot] = noslot;
        s->nextslot[slot] = static_cast<uint8_t>(slot + 1 < textureslots ? slot + 1 : noslot);
        s->prevslot[slot] = static_cast<uint8_t>(slot > 0 ? slot - 1 : noslot);
    }
    memset(s->slotofid, noslot, sizeof s->slotofid);
    s->newest = textureslots - 1;
    return s;
}

void destroytexturestore(texturestore* s) {
    if (!s) return;
    free(s->atlas);
    free(s->descriptors);
    s->~texturestore();
    free(s);
}

texturerecord* gettexture(int id) {
    id &= 0xFFFF;
    if (id == notexture) return nullptr;
    texturestore& s = *currenttoolkit->textures;
    uint8_t slot = s.slotofid[id];
    // The host answers by loading the texture from within its callback. One that says it did
    // without loading gets nothing either.
    if (slot == noslot && (!currentseam->loadtexture(*currenttoolkit, id) || (slot = s.slotofid[id]) == noslot))
        return nullptr;
    makenewest(s, slot);
    texturerecord& r = s.records[slot];
    if (!r.queued && (r.speedu || r.speedv)) {
        s.animated[s.animatedcount++] = slot;
        r.queued = 1;
    }
    return &r;
}

const texturedescriptor* getdescriptor(int id) {
    id &= 0xFFFF;
    return id == notexture ? nullptr : currenttoolkit->textures->descriptors + id;
}

void loadtexture(texturestore& s, int id, const texturedescriptor& d, const uint32_t* pixels) {
    id &= 0xFFFF;
    uint8_t slot = s.oldest;
    // The empty mark is 0xFF in 16 bits, so a slot holding texture 255 reads as empty and keeps
    // 255 pointing at it after the eviction.
    if (s.idofslot[slot] != noslot) s.slotofid[s.idofslot[slot]] = noslot;
    s.idofslot[slot] = static_cast<uint16_t>(id);
    s.slotofid[id] = slot;
    texturerecord& r = s.records[slot];
    static_cast<texturedescriptor&>(r) = d;
    for (int lane = 0; lane < 4; ++lane) r.offsetu[lane] = r.offsetv[lane] = 0.0f;
    filtertexture(pixels, r.pixels, atlaspitch, d.value != 1, d.flagfive, d.flagsix);
}

void animatetextures(texturestore& s, int tick) {
    float t = static_cast<float>(tick % 128000) * 0.001f;
    for (int i = 0; i < s.animatedcount; ++i) {
        texturerecord& r = s.records[s.animated[i]];
        float u = animationoffset(r.speedu, t), v = animationoffset(r.speedv, t);
        for (int lane = 0; lane < 4; ++lane) {
            r.offsetu[lane] = u;
            r.offsetv[lane] = v;
        }
        r.queued = 0;
    }
    s.animatedcount = 0;
}

// The 19 fields of a descriptor as the host passes them, in order.
#define WEXEL_DESCRIPTOR_PARAMETERS                                                                         \
    jint averagecolour, jint value, jint type, jint bytetwo, jint colour, jboolean flagone, jint blend,     \
        jint bright, jint speedu, jint speedv, jboolean hidden, jboolean flagthree, jboolean flagfour,      \
        jboolean flagfive, jboolean flagsix, jint bytefive, jboolean flagseven, jboolean flageight, jint tail
#define WEXEL_DESCRIPTOR_ARGUMENTS                                                                          \
    averagecolour, value, type, bytetwo, colour, flagone, blend, bright, speedu, speedv, hidden, flagthree, \
        flagfour, flagfive, flagsix, bytefive, flagseven, flageight, tail

namespace {

texturedescriptor describe(WEXEL_DESCRIPTOR_PARAMETERS) {
    auto byte = [](jint v) { return static_cast<uint8_t>(v); };
    auto signedbyte = [](jint v) { return static_cast<int8_t>(v); };
    return {static_cast<uint16_t>(averagecolour), value, byte(type), byte(bytetwo), colour, flagone != 0,
            byte(blend), byte(bright), signedbyte(speedu), signedbyte(speedv),
            hidden != 0, flagthree != 0, flagfour != 0, flagfive != 0, flagsix != 0,
            byte(bytefive), flagseven != 0, flageight != 0, tail};
}

}  // namespace

extern "C" {

// Without a store these read through null, which the frame reports.
JNIEXPORT void JNICALL Java_ja_V(JNIEnv* env, jobject, jint index, WEXEL_DESCRIPTOR_PARAMETERS) {
    runexport(env, [&] {
        currenttoolkit->textures->descriptors[index & 0xFFFF] = describe(WEXEL_DESCRIPTOR_ARGUMENTS);
    });
}

// The host calls this from within its texture callback, while the draw that asked holds its pins;
// the load itself never calls the host, so it may hold the pixels critically.
JNIEXPORT void JNICALL Java_ja_F(JNIEnv* env, jobject, jint id, jintArray pixels, WEXEL_DESCRIPTOR_PARAMETERS) {
    runexport(env, [&] {
        arraypin<pinkind::intcriticalwrite> pin(env, pixels);
        loadtexture(*currenttoolkit->textures, id, describe(WEXEL_DESCRIPTOR_ARGUMENTS),
                    reinterpret_cast<const uint32_t*>(pin.get()));
    });
}

JNIEXPORT void JNICALL Java_ja_Y(JNIEnv* env, jobject, jint tick) {
    runexport(env, [&] {
        if (texturestore* s = currenttoolkit->textures) animatetextures(*s, tick);
    });
}

}  // extern "C"
