#include "sprite/sprite.h"

#include <cstdlib>
#include <cstring>

#include "toolkit/toolkit.h"
#include "util/arraypin.h"
#include "util/frame.h"
#include "util/peer.h"

namespace {

// Blocks are 16-byte aligned for four-pixel loads. The size is rounded up to the alignment, and
// an empty block still gets a unique address.
uint32_t* allocatepixels(int width, int height) {
    if (width < 0 || height < 0) return nullptr;
    size_t rounded = (static_cast<size_t>(width) * static_cast<size_t>(height) * 4 + 15) & ~size_t{15};
    return static_cast<uint32_t*>(aligned_alloc(16, rounded ? rounded : 16));
}

}  // namespace

sprite* makesprite(int width, int height) {
    sprite* s = new sprite{};
    s->width = width;
    s->height = height;
    s->pixels = allocatepixels(width, height);
    s->stride = width;
    return s;
}

void destroysprite(sprite* s) {
    free(s->pixels);
    delete s;
}

void copyblock(sprite& s, int x, int y, int w, int h, const uint32_t* source, long pitch, bool key) {
    uint32_t* target = s.pixels + static_cast<long>(s.stride) * y + x;
    for (int j = 0; j < h; ++j, source += pitch, target += s.stride) {
        if (!key) {
            if (w > 0) memcpy(target, source, static_cast<size_t>(w) * 4);
            continue;
        }
        for (int i = 0; i < w; ++i) target[i] = source[i] ? source[i] | 0xFF000000u : 0;
    }
}

void buildfrompalette(sprite& s, const int32_t* palette, const uint8_t* indices, const uint8_t* alpha, int scan) {
    uint32_t* target = s.pixels;
    for (int j = 0; j < s.height; ++j, target += s.stride) {
        long row = static_cast<long>(j) * scan;
        for (int i = 0; i < s.width; ++i) {
            uint32_t colour = static_cast<uint32_t>(palette[indices[row + i]]);
            if (alpha)
                target[i] = (colour & 0xFFFFFF) | static_cast<uint32_t>(alpha[row + i]) << 24;
            else
                target[i] = indices[row + i] ? colour | 0xFF000000u : 0;
        }
    }
}

void rewritealpha(sprite& s, const uint32_t* source, long pitch, int channel) {
    uint32_t* target = s.pixels;
    // Channel 3 makes a coverage mask; the others lift one byte of the source into alpha, with
    // the shift count taken modulo 32 as the processor does.
    unsigned shift = static_cast<unsigned>(channel * 8 + 8) & 31;
    for (int j = 0; j < s.height; ++j, source += pitch, target += s.stride)
        for (int i = 0; i < s.width; ++i) {
            uint32_t top = channel == 3 ? (source[i] ? 0xFF000000u : 0) : (source[i] << shift) & 0xFF000000u;
            target[i] = (target[i] & 0xFFFFFF) | top;
        }
}

namespace {

const toolkit& colourtarget() {
    const toolkit& t = *currenttoolkit;
    if (!t.colourbuffer) fail<Exception>("No colour buffer");
    return t;
}

const uint32_t* bufferat(const toolkit& t, int x, int y) {
    return t.colourbuffer + static_cast<long>(y) * t.width + x;
}

}  // namespace

// Built from the colour buffer. Exported under its decorated C++ name: a host that binds natives
// by their plain names does not reach it.
JNIEXPORT void JNICALL Java_fa_K(JNIEnv* env, jobject self, jobject, jobject, jint x, jint y, jint width,
                                 jint height, jboolean key) {
    runexport(env, [&] {
        const toolkit& t = colourtarget();
        sprite* s = makesprite(width, height);
        copyblock(*s, 0, 0, width, height, bufferat(t, x, y), t.width, key);
        setpeer(env, hostclass::fa, self, s);
    });
}

extern "C" {

JNIEXPORT void JNICALL Java_fa_UA(JNIEnv* env, jobject self, jobject, jint width, jint height) {
    runexport(env, [&] { setpeer(env, hostclass::fa, self, makesprite(width, height)); });
}

// The offset argument is ignored: the copy starts at element 0.
JNIEXPORT void JNICALL Java_fa_RA(JNIEnv* env, jobject self, jobject, jintArray pixels, jint, jint scan,
                                  jint width, jint height, jboolean key) {
    runexport(env, [&] {
        arraypin<pinkind::intread> pin(env, pixels);
        sprite* s = makesprite(width, height);
        copyblock(*s, 0, 0, width, height, reinterpret_cast<const uint32_t*>(pin.get()), scan, key);
        setpeer(env, hostclass::fa, self, s);
    });
}

// The offset argument is ignored: indices start at element 0.
JNIEXPORT void JNICALL Java_fa_EA(JNIEnv* env, jobject self, jobject, jintArray palette, jbyteArray indices,
                                  jbyteArray alpha, jint, jint scan, jint width, jint height) {
    runexport(env, [&] {
        arraypin<pinkind::intread> colours(env, palette);
        arraypin<pinkind::byteread> index(env, indices);
        arraypin<pinkind::byteread> alphas(env, alpha);
        sprite* s = makesprite(width, height);
        buildfrompalette(*s, colours.get(), reinterpret_cast<const uint8_t*>(index.get()),
                         reinterpret_cast<const uint8_t*>(alphas.get()), scan);
        setpeer(env, hostclass::fa, self, s);
    });
}

JNIEXPORT void JNICALL Java_fa_M(JNIEnv* env, jobject self, jlong handle) {
    runexport(env, [&] {
        if (sprite* s = peerat<sprite>(handle)) destroysprite(s);
        setpeer(env, hostclass::fa, self, nullptr);
    });
}

JNIEXPORT jint JNICALL Java_fa_da(JNIEnv* env, jobject, jlong handle) {
    return runexport(env, [&] { return peerat<sprite>(handle)->width; });
}

JNIEXPORT jint JNICALL Java_fa_GA(JNIEnv* env, jobject, jlong handle) {
    return runexport(env, [&] { return peerat<sprite>(handle)->height; });
}

JNIEXPORT jint JNICALL Java_fa_WA(JNIEnv* env, jobject, jlong handle) {
    return runexport(env, [&] { return peerat<sprite>(handle)->fullwidth(); });
}

JNIEXPORT jint JNICALL Java_fa_ba(JNIEnv* env, jobject, jlong handle) {
    return runexport(env, [&] { return peerat<sprite>(handle)->fullheight(); });
}

JNIEXPORT void JNICALL Java_fa_U(JNIEnv* env, jobject, jlong handle, jint left, jint top, jint right,
                                 jint bottom) {
    runexport(env, [&] {
        sprite& s = *peerat<sprite>(handle);
        s.padleft = left;
        s.padtop = top;
        s.padright = right;
        s.padbottom = bottom;
    });
}

JNIEXPORT void JNICALL Java_fa_F(JNIEnv* env, jobject, jlong handle, jintArray out) {
    runexport(env, [&] {
        arraypin<pinkind::intcriticalwrite> pin(env, out);
        const sprite& s = *peerat<sprite>(handle);
        pin[0] = s.padleft;
        pin[1] = s.padtop;
        pin[2] = s.padright;
        pin[3] = s.padbottom;
    });
}

JNIEXPORT void JNICALL Java_fa_na(JNIEnv* env, jobject, jlong handle, jint x, jint y, jint w, jint h,
                                  jintArray pixels, jint offset, jint scan) {
    runexport(env, [&] {
        arraypin<pinkind::intcriticalwrite> pin(env, pixels);
        copyblock(*peerat<sprite>(handle), x, y, w, h, reinterpret_cast<const uint32_t*>(pin.get()) + offset, scan, false);
    });
}

JNIEXPORT void JNICALL Java_fa_ea(JNIEnv* env, jobject, jlong handle, jint x, jint y, jint w, jint h, jint bufx,
                                  jint bufy) {
    runexport(env, [&] {
        const toolkit& t = colourtarget();
        copyblock(*peerat<sprite>(handle), x, y, w, h, bufferat(t, bufx, bufy), t.width, true);
    });
}

JNIEXPORT void JNICALL Java_fa_j(JNIEnv* env, jobject, jlong handle, jint bufx, jint bufy, jint channel) {
    runexport(env, [&] {
        const toolkit& t = colourtarget();
        rewritealpha(*peerat<sprite>(handle), bufferat(t, bufx, bufy), t.width, channel);
    });
}

}  // extern "C"
