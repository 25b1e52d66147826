// A presentable frame: colour and depth buffers and a weak reference to the host component that
// shows them.
#pragma once
#include <jni.h>

#include <cstdint>

#include "util/hostseam.h"

struct java_canvas {
    hostmachine* vm;  // nothing reads it: presenting uses the caller's environment
    hostobject* component;  // weak
    int width, height;
    uint32_t* colour;  // 64-byte aligned, width * height pixels
    float* depth;      // the same size
};

// Copies the w by h rectangle at (srcx, srcy) of the canvas to (dstx, dsty) of its component.
// Any failure on the way loses the frame quietly.
void present(JNIEnv* env, const java_canvas& c, int dstx, int dsty, int srcx, int srcy, int w, int h);

// Shows the rectangle at the component's origin. A canvas without a component is a broken
// precondition.
void showcanvas(JNIEnv* env, const java_canvas& c, int x, int y, int w, int h);
