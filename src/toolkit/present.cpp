// Presenting a canvas on its host component through the AWT native interface on X11.
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <dlfcn.h>
#include <jawt.h>
#include <jawt_md.h>

#include <algorithm>
#include <string>

#include "toolkit/canvas.h"
#include "util/frame.h"
#include "util/jniseam.h"
#include "util/systemproperty.h"

namespace {

using getawt = jboolean(JNICALL*)(JNIEnv*, JAWT*);

// The AWT's native library is found beside the running JVM, opened the first time a frame is
// shown; a headless runtime may lack it, and then frames are lost.
getawt findawt(JNIEnv* env) {
    static getawt found;
    static bool looked;
    if (looked) return found;
    looked = true;
    std::string home = systemproperty(env, "java.home");
    if (home.empty()) return nullptr;
    std::string path = home + "/lib/libjawt.so";
    if (void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL))
        found = reinterpret_cast<getawt>(dlsym(library, "JAWT_GetAWT"));
    return found;
}

void putimage(const JAWT_X11DrawingSurfaceInfo& x11, const java_canvas& c, int dstx, int dsty, int srcx, int srcy,
              int w, int h) {
    // Only the part of the rectangle that lies inside the canvas is read.
    int cutx = std::max(0, -srcx), cuty = std::max(0, -srcy);
    srcx += cutx, dstx += cutx, w -= cutx;
    srcy += cuty, dsty += cuty, h -= cuty;
    w = std::min(w, c.width - srcx);
    h = std::min(h, c.height - srcy);
    if (w <= 0 || h <= 0 || !c.colour) return;
    XVisualInfo wanted{};
    wanted.visualid = x11.visualID;
    int found = 0;
    XVisualInfo* visual = XGetVisualInfo(x11.display, VisualIDMask, &wanted, &found);
    if (!visual) return;
    XImage* image = XCreateImage(x11.display, visual->visual, static_cast<unsigned>(x11.depth), ZPixmap, 0, reinterpret_cast<char*>(c.colour),
                                 static_cast<unsigned>(c.width), static_cast<unsigned>(c.height), 32, c.width * 4);
    XFree(visual);
    if (!image) return;
    GC gc = XCreateGC(x11.display, x11.drawable, 0, nullptr);
    XPutImage(x11.display, x11.drawable, gc, image, srcx, srcy, dstx, dsty, static_cast<unsigned>(w),
              static_cast<unsigned>(h));
    XFreeGC(x11.display, gc);
    // The pixels are the canvas's; only the image record is freed.
    image->data = nullptr;
    XDestroyImage(image);
    // Without the flush another client may not see a small frame yet.
    XFlush(x11.display);
}

}  // namespace

void present(JNIEnv* env, const java_canvas& c, int dstx, int dsty, int srcx, int srcy, int w, int h) {
    hostcall guard;
    getawt get = findawt(env);
    if (!get) return;
    JAWT awt{};
    awt.version = JAWT_VERSION_1_3;
    if (!get(env, &awt)) return;
    JAWT_DrawingSurface* surface = awt.GetDrawingSurface(env, jniof(c.component));
    if (!surface) return;
    jint lock = surface->Lock(surface);
    if (!(lock & JAWT_LOCK_ERROR)) {
        if (JAWT_DrawingSurfaceInfo* info = surface->GetDrawingSurfaceInfo(surface)) {
            if (auto* x11 = static_cast<JAWT_X11DrawingSurfaceInfo*>(info->platformInfo))
                putimage(*x11, c, dstx, dsty, srcx, srcy, w, h);
            surface->FreeDrawingSurfaceInfo(info);
        }
        surface->Unlock(surface);
    }
    awt.FreeDrawingSurface(surface);
}
