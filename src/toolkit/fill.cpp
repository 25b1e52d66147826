#include "toolkit/fill.h"

#include <algorithm>
#include <cwchar>

#include "toolkit/blend.h"
#include "util/frame.h"

// wchar_t is 32 bits here, so the library's wide fill stores words; its processor-chosen vector
// stores beat a hand-written loop or the string store on runs of a row's length.
void storerun(uint32_t* p, int n, uint32_t value) {
    if (n > 0) wmemset(reinterpret_cast<wchar_t*>(p), static_cast<wchar_t>(value), static_cast<size_t>(n));
}

namespace {

// A whole buffer goes through the string store, which the processor runs as fast as memset over a
// buffer of that size, where the wide fill reaches about 0.8 of it.
void storewhole(uint32_t* p, long n, uint32_t value) {
    asm volatile("rep stosl" : "+D"(p), "+c"(n) : "a"(value) : "memory");
}

}  // namespace

cliprectangle::cliprectangle(const toolkit& t, int x0, int y0, int w0, int h0) {
    // In 64 bits, so that a far-off rectangle cannot wrap back into the target.
    long long l = x0, tp = y0, r = static_cast<long long>(x0) + w0, b = static_cast<long long>(y0) + h0;
    l = std::max<long long>(l, t.cliprect[0]);
    tp = std::max<long long>(tp, t.cliprect[1]);
    r = std::min<long long>(r, t.cliprect[2]);
    b = std::min<long long>(b, t.cliprect[3]);
    x = static_cast<int>(l);
    y = static_cast<int>(tp);
    w = static_cast<int>(std::max<long long>(r - l, 0));
    h = static_cast<int>(std::max<long long>(b - tp, 0));
}

void storerect(uint32_t* buffer, int width, int height, int x, int y, int w, int h, uint32_t value) {
    if (w <= 0 || h <= 0) return;
    if (x == 0 && y == 0 && w == width && h == height) {
        storewhole(buffer, static_cast<long>(width) * height, value);
        return;
    }
    uint32_t* row = buffer + static_cast<long>(y) * width + x;
    for (int j = 0; j < h; ++j, row += width) storerun(row, w, value);
}

namespace {

template <class Rule>
void eachpixel(toolkit& t, const cliprectangle& c, Rule rule) {
    uint32_t* row = t.colourbuffer + static_cast<long>(c.y) * t.width + c.x;
    for (int j = 0; j < c.h; ++j, row += t.width)
        for (int i = 0; i < c.w; ++i) row[i] = rule(row[i]);
}

}  // namespace

void drawrectangle(toolkit& t, int x, int y, int w, int h, uint32_t colour, int mode) {
    if (!t.colourbuffer) return;
    cliprectangle c(t, x, y, w, h);
    checkblendmode(mode);
    if (isstore(mode, colour)) {
        storerect(t.colourbuffer, t.width, t.height, c.x, c.y, c.w, c.h, colour);
    } else if (mode == blend) {
        eachpixel(t, c, blendsource(colour));
    } else {
        eachpixel(t, c, [colour](uint32_t d) { return addsaturate(d, colour); });
    }
}

void cleardepth(toolkit& t) {
    if (!t.depthbuffer) return;
    cliprectangle c(t, 0, 0, t.width, t.height);
    storerect(reinterpret_cast<uint32_t*>(t.depthbuffer), t.width, t.height, c.x, c.y, c.w, c.h, fardepthbits);
}

extern "C" {

JNIEXPORT void JNICALL Java_ja_B(JNIEnv* env, jobject, jint x, jint y, jint w, jint h, jint colour, jint mode) {
    runexport(env, [&] { drawrectangle(*currenttoolkit, x, y, w, h, static_cast<uint32_t>(colour), mode); });
}

JNIEXPORT void JNICALL Java_ja_ba(JNIEnv* env, jobject, jint flags, jint colour) {
    runexport(env, [&] {
        toolkit& t = *currenttoolkit;
        if (flags & 1) drawrectangle(t, 0, 0, t.width, t.height, static_cast<uint32_t>(colour), replace);
        if (flags & 2) cleardepth(t);
    });
}

}  // extern "C"
