// The peer that triangles are measured against: Mesa's llvmpipe through OSMesa, legacy GL, one
// thread, drawing into a framebuffer object of a colour (RGBA8) and a float depth buffer. Its
// shaders use AVX2 where the processor has it; the driver reads the processor's abilities once a
// process, so the SSE2-only peer is a run of its own with GALLIUM_OVERRIDE_CPU_CAPS=sse2.
#pragma once
#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include "trianglework.h"

enum class peerfill { gouraud, textured, blended };

class llvmpipe {
public:
    // The process's one peer, made on first use; null when no context can be made, and then
    // `failure` says why.
    static llvmpipe* instance();
    static const char* failure();

    // Takes the triangles to draw and the way to fill them: depth test less or equal, depth
    // written except when blended; `texels` (rows of `texturepitch`) modulated by the vertex
    // colour, nearest, repeat; or blended by the constant weight `blendweight` of 255.
    void load(const trianglework& work, peerfill fill, const uint32_t* texels, int blendweight);
    void draw();        // all loaded triangles in one call
    void finish();      // waits until they are drawn
    void cleardepth();  // to the far end, finished

private:
    llvmpipe() = default;
    bool open();
    int vertexcount = 0;
    bool writesdepth = true;
    unsigned framebuffer = 0, colour = 0, depth = 0, vertices = 0, texture = 0;
};

// The loaded triangles drawn once, which compiles the fill's shaders, then once an iteration on a
// cleared depth buffer; the clear is not timed.
void drawloaded(benchmark::State& state, llvmpipe& p);
