#include "sprite/font.h"

#include <memory>

#include "toolkit/toolkit.h"
#include "util/arraypin.h"
#include "util/frame.h"
#include "util/memory/copytomemory.h"
#include "util/memory/memorypool.h"
#include "util/peer.h"

bool font::find(int index, glyph& out) const {
    if (index < 0 || index >= glyphs.size()) return false;
    for (const allocatedmemory<int32_t>* table : {&widths, &heights, &tops, &lefts})
        if (index >= table->length()) return false;
    const allocatedmemory<int8_t>& bytes = glyphs[index];
    int w = widths[index], h = heights[index];
    if (w > 0 && h > 0 && static_cast<long long>(w) * h > bytes.length()) return false;
    out = {reinterpret_cast<const uint8_t*>(bytes.get()), w, h, lefts[index], tops[index]};
    return true;
}

namespace {

using intpin = arraypin<pinkind::intread>;

// Copies the host's tables and glyph bytes into the current toolkit's pool. `palette` is null for
// the fonts that have none.
font* buildfont(JNIEnv* env, jobjectArray bitmaps, const intpin* palette, const intpin& widths, const intpin& heights,
                const intpin& lefts, const intpin& tops) {
    toolkit* owner = currenttoolkit;
    memorypool* pool = owner->pool;
    // A toolkit that was never given a pool has nowhere to keep a font.
    if (!pool) fail<NullPointerException>();
    jsize count = 0;
    if (bitmaps) {
        hostcall guard;
        count = env->GetArrayLength(bitmaps);
    }
    auto made = std::make_unique<font>(owner, count);
    if (palette) copytomemory(*palette, *pool, made->palette);
    copytomemory(widths, *pool, made->widths);
    copytomemory(heights, *pool, made->heights);
    copytomemory(tops, *pool, made->tops);
    copytomemory(lefts, *pool, made->lefts);
    for (jsize i = 0; i < count; ++i) {
        jbyteArray bytes;
        {
            hostcall guard;
            bytes = static_cast<jbyteArray>(env->GetObjectArrayElement(bitmaps, i));
        }
        {
            arraypin<pinkind::byteread> pin(env, bytes);
            copytomemory(pin, *pool, made->glyphs[i]);
        }
        // A large font would otherwise fill the call's local reference table.
        hostcall guard;
        env->DeleteLocalRef(bytes);
    }
    return made.release();
}

void makefont(JNIEnv* env, hostclass cls, jobject self, jobjectArray bitmaps, jintArray palette, jintArray widths,
              jintArray heights, jintArray lefts, jintArray tops) {
    runexport(env, [&] {
        intpin palettepin(env, palette), widthspin(env, widths), heightspin(env, heights), leftspin(env, lefts),
            topspin(env, tops);
        font* made = buildfont(env, bitmaps, palette ? &palettepin : nullptr, widthspin, heightspin, leftspin, topspin);
        setpeer(env, cls, self, made);
    });
}

void destroyfont(JNIEnv* env, hostclass cls, jobject self) {
    runexport(env, [&] {
        delete getpeer<font>(env, cls, self);
        setpeer(env, cls, self, nullptr);
    });
}

}  // namespace

extern "C" {

JNIEXPORT void JNICALL Java_ea_n(JNIEnv* env, jobject self, jobject, jobject, jobjectArray bitmaps, jintArray widths,
                                 jintArray heights, jintArray lefts, jintArray tops) {
    makefont(env, hostclass::ea, self, bitmaps, nullptr, widths, heights, lefts, tops);
}

JNIEXPORT void JNICALL Java_m_n(JNIEnv* env, jobject self, jobject, jobject, jobjectArray bitmaps, jintArray widths,
                                jintArray heights, jintArray lefts, jintArray tops) {
    makefont(env, hostclass::m, self, bitmaps, nullptr, widths, heights, lefts, tops);
}

JNIEXPORT void JNICALL Java_ia_EA(JNIEnv* env, jobject self, jobject, jobject, jobjectArray bitmaps, jintArray palette,
                                  jintArray widths, jintArray heights, jintArray lefts, jintArray tops) {
    makefont(env, hostclass::ia, self, bitmaps, palette, widths, heights, lefts, tops);
}

JNIEXPORT void JNICALL Java_ea_ma(JNIEnv* env, jobject self) { destroyfont(env, hostclass::ea, self); }
JNIEXPORT void JNICALL Java_m_ma(JNIEnv* env, jobject self) { destroyfont(env, hostclass::m, self); }
JNIEXPORT void JNICALL Java_ia_ma(JNIEnv* env, jobject self) { destroyfont(env, hostclass::ia, self); }

}  // extern "C"
