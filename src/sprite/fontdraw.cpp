#include "sprite/fontdraw.h"

#include "toolkit/spanmask.h"
#include "toolkit/toolkit.h"
#include "util/frame.h"
#include "util/peer.h"

namespace {

// The form of the stores and of the coverage and fade blends that a font's draw uses; false when
// a palette font has no palette to read.
bool choosepaint(const font& f, fontkind kind, uint32_t colour, bool mono, glyphpaint& paint) {
    switch (kind) {
    case fontkind::coverage: paint = {glyphform::coverage, colour, nullptr}; return true;
    case fontkind::mono: paint = {colour >> 24 == 255 ? glyphform::colour : glyphform::fade, colour, nullptr}; return true;
    case fontkind::palette:
        if (mono) {
            paint = {glyphform::colour, colour, nullptr};
            return true;
        }
        paint = {glyphform::palette, colour, reinterpret_cast<const uint32_t*>(f.palette.get())};
        return !f.palette.empty();
    }
    return false;
}

bool findglyph(const toolkit& t, const font& f, int index, glyph& g) {
    return t.colourbuffer && f.find(static_cast<int16_t>(index), g);
}

}  // namespace

void drawtext(const toolkit& t, const font& f, fontkind kind, int index, int x, int y, uint32_t colour, bool mono,
              const glyphmask* mask) {
    glyph g;
    glyphpaint paint;
    if (!findglyph(t, f, index, g) || !choosepaint(f, kind, colour, mono, paint)) return;
    if (!mask) {
        // A fully transparent mono glyph is skipped here, but blended through a mask.
        if (kind == fontkind::mono && colour >> 24 == 0) return;
        drawglyph(t, g, x, y, paint);
        return;
    }
    bool opaquemono = kind == fontkind::mono && paint.form == glyphform::colour;
    drawglyphmasked(t, g, x, y, paint, *mask, opaquemono ? 0 : t.cliprect[0]);
}

void drawturnedtext(const toolkit& t, const font& f, fontkind kind, int index, int x, int y, uint32_t colour,
                    bool mono) {
    glyph g;
    glyphpaint paint;
    if (!findglyph(t, f, index, g)) return;
    if (kind == fontkind::mono) paint = {glyphform::colour, colour, nullptr};
    else if (!choosepaint(f, kind, colour, mono, paint)) return;
    drawglyphturned(t, g, x, y, paint);
}

namespace {

// The plain or the turned draw.
void fontentry(JNIEnv* env, hostclass cls, fontkind kind, bool turned, jobject self, jint index, jint x, jint y,
               jint colour, bool mono) {
    runexport(env, [&] {
        const font* f = getpeer<font>(env, cls, self);
        if (!f) return;
        if (turned) drawturnedtext(*currenttoolkit, *f, kind, index, x, y, static_cast<uint32_t>(colour), mono);
        else drawtext(*currenttoolkit, *f, kind, index, x, y, static_cast<uint32_t>(colour), mono, nullptr);
    });
}

// A null mask object is the plain draw; a mask already destroyed has no rows and admits nothing.
void maskedentry(JNIEnv* env, hostclass cls, fontkind kind, jobject self, jint index, jint x, jint y, jint colour,
                 bool mono, jobject maskobject, jint maskx, jint masky) {
    runexport(env, [&] {
        const font* f = getpeer<font>(env, cls, self);
        if (!f) return;
        glyphmask mask{nullptr, nullptr, 0, maskx, masky};
        if (maskobject) {
            if (const spanmask* s = getpeer<spanmask>(env, hostclass::wa, maskobject))
                mask = {s->offsets.get(), s->widths.get(), s->rows(), maskx, masky};
        }
        drawtext(*currenttoolkit, *f, kind, index, x, y, static_cast<uint32_t>(colour), mono, maskobject ? &mask : nullptr);
    });
}

}  // namespace

extern "C" {

JNIEXPORT void JNICALL Java_ea_UA(JNIEnv* env, jobject self, jint index, jint x, jint y, jint colour, jint) {
    fontentry(env, hostclass::ea, fontkind::coverage, false, self, index, x, y, colour, false);
}
JNIEXPORT void JNICALL Java_ea_P(JNIEnv* env, jobject self, jint index, jint x, jint y, jint colour, jint, jobject mask,
                                 jint maskx, jint masky) {
    maskedentry(env, hostclass::ea, fontkind::coverage, self, index, x, y, colour, false, mask, maskx, masky);
}
JNIEXPORT void JNICALL Java_ea_f(JNIEnv* env, jobject self, jint index, jint x, jint y, jint colour, jint) {
    fontentry(env, hostclass::ea, fontkind::coverage, true, self, index, x, y, colour, false);
}

JNIEXPORT void JNICALL Java_m_UA(JNIEnv* env, jobject self, jint index, jint x, jint y, jint colour, jint) {
    fontentry(env, hostclass::m, fontkind::mono, false, self, index, x, y, colour, false);
}
JNIEXPORT void JNICALL Java_m_MA(JNIEnv* env, jobject self, jint index, jint x, jint y, jint colour, jint, jobject mask,
                                 jint maskx, jint masky) {
    maskedentry(env, hostclass::m, fontkind::mono, self, index, x, y, colour, false, mask, maskx, masky);
}
JNIEXPORT void JNICALL Java_m_f(JNIEnv* env, jobject self, jint index, jint x, jint y, jint colour, jint) {
    fontentry(env, hostclass::m, fontkind::mono, true, self, index, x, y, colour, false);
}

JNIEXPORT void JNICALL Java_ia_UA(JNIEnv* env, jobject self, jint index, jint x, jint y, jint colour, jboolean mono) {
    fontentry(env, hostclass::ia, fontkind::palette, false, self, index, x, y, colour, mono);
}
JNIEXPORT void JNICALL Java_ia_GA(JNIEnv* env, jobject self, jint index, jint x, jint y, jint colour, jboolean mono,
                                  jobject mask, jint maskx, jint masky) {
    maskedentry(env, hostclass::ia, fontkind::palette, self, index, x, y, colour, mono, mask, maskx, masky);
}
JNIEXPORT void JNICALL Java_ia_f(JNIEnv* env, jobject self, jint index, jint x, jint y, jint colour, jboolean mono) {
    fontentry(env, hostclass::ia, fontkind::palette, true, self, index, x, y, colour, mono);
}

}  // extern "C"
