#include "llvmpipe.h"

#define GL_GLEXT_PROTOTYPES
#include <GL/osmesa.h>
#include <GL/gl.h>
#include <GL/glext.h>

#include <cstddef>
#include <cstdlib>

#include "target.h"

namespace {

const char* reason = nullptr;

}  // namespace

llvmpipe* llvmpipe::instance() {
    static llvmpipe* peer = [] {
        llvmpipe* p = new llvmpipe;
        if (p->open()) return p;
        delete p;
        return static_cast<llvmpipe*>(nullptr);
    }();
    return peer;
}

const char* llvmpipe::failure() { return reason; }

bool llvmpipe::open() {
    // Rasterise in the calling thread unless the environment asks for threads; the driver reads
    // this when its first context is made.
    setenv("LP_NUM_THREADS", "0", 0);
    const int attributes[] = {OSMESA_FORMAT, OSMESA_RGBA, OSMESA_DEPTH_BITS, 0, OSMESA_PROFILE,
                              OSMESA_COMPAT_PROFILE, 0};
    OSMesaContext context = OSMesaCreateContextAttribs(attributes, nullptr);
    if (!context) {
        reason = "OSMesa could not make a context; the llvmpipe peer is skipped";
        return false;
    }
    // The OSMesa buffer only makes the context current: drawing goes to the framebuffer object,
    // so that no finish copies a whole colour buffer out.
    static uint32_t surface[1];
    if (!OSMesaMakeCurrent(context, surface, GL_UNSIGNED_BYTE, 1, 1)) {
        reason = "OSMesa could not make its context current; the llvmpipe peer is skipped";
        return false;
    }
    constexpr int width = benchtarget::width, height = benchtarget::height;
    glGenRenderbuffers(1, &colour);
    glBindRenderbuffer(GL_RENDERBUFFER, colour);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, width, height);
    glGenRenderbuffers(1, &depth);
    glBindRenderbuffer(GL_RENDERBUFFER, depth);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH_COMPONENT32F, width, height);
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, colour);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, depth);
    if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
        reason = "OSMesa has no complete RGBA8 and float depth framebuffer; the llvmpipe peer is skipped";
        return false;
    }
    glViewport(0, 0, width, height);
    // Pixels one to one with y down; window depth equals the vertex z.
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, width, height, 0, 0, -1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    // Texel coordinates to the unit square.
    glMatrixMode(GL_TEXTURE);
    glLoadIdentity();
    glScalef(1.0f / texturesize, 1.0f / texturesize, 1.0f);
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glShadeModel(GL_SMOOTH);

    glGenBuffers(1, &vertices);
    glBindBuffer(GL_ARRAY_BUFFER, vertices);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    glVertexPointer(3, GL_FLOAT, sizeof(benchvertex), reinterpret_cast<void*>(offsetof(benchvertex, x)));
    glTexCoordPointer(2, GL_FLOAT, sizeof(benchvertex), reinterpret_cast<void*>(offsetof(benchvertex, u)));
    // Our colour word lies in memory as blue, green, red, alpha.
    glColorPointer(GL_BGRA, GL_UNSIGNED_BYTE, sizeof(benchvertex),
                   reinterpret_cast<void*>(offsetof(benchvertex, colour)));

    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    if (glGetError() != GL_NO_ERROR) {
        reason = "OSMesa refused the peer's set-up; the llvmpipe peer is skipped";
        return false;
    }
    return true;
}

void llvmpipe::load(const trianglework& work, peerfill fill, const uint32_t* texels, int blendweight) {
    glBufferData(GL_ARRAY_BUFFER, work.vertices.size() * sizeof(benchvertex), work.vertices.data(), GL_STATIC_DRAW);
    vertexcount = int(work.vertices.size());
    if (fill == peerfill::textured) {
        glPixelStorei(GL_UNPACK_ROW_LENGTH, texturepitch);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, texturesize, texturesize, 0, GL_BGRA, GL_UNSIGNED_BYTE, texels);
        glEnable(GL_TEXTURE_2D);
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    } else {
        glDisable(GL_TEXTURE_2D);
        glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    }
    if (fill == peerfill::blended) {
        glBlendColor(0, 0, 0, blendweight / 255.0f);
        glBlendFunc(GL_CONSTANT_ALPHA, GL_ONE_MINUS_CONSTANT_ALPHA);
        glEnable(GL_BLEND);
    } else {
        glDisable(GL_BLEND);
    }
    writesdepth = fill != peerfill::blended;
    glDepthMask(writesdepth);
}

void llvmpipe::draw() { glDrawArrays(GL_TRIANGLES, 0, vertexcount); }

void llvmpipe::finish() { glFinish(); }

void llvmpipe::cleardepth() {
    // The clear writes depth only under the mask, which blending turns off.
    glDepthMask(GL_TRUE);
    glClearDepth(1.0);
    glClear(GL_DEPTH_BUFFER_BIT);
    glDepthMask(writesdepth);
    glFinish();
}

void drawloaded(benchmark::State& state, llvmpipe& p) {
    p.draw();
    p.finish();
    for (auto _ : state) {
        state.PauseTiming();
        p.cleardepth();
        state.ResumeTiming();
        p.draw();
        p.finish();
    }
}
