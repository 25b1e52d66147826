// The render context, peer of the host's `ja`, and the process-wide state that the inner loops
// read without going through it.
#pragma once
#include <cstdint>

#include "pixel/lanewidth.h"
#include "util/hostseam.h"
#include "util/memory/ringlink.h"

struct memorypool;
struct texturestore;
struct sprite;
struct surface;

struct alignas(16) toolkit {
    uint8_t marker;  // set by the host's da; nothing reads it
    hostmachine* vm;
    hostobject* hostref;  // weak: the ja object, receiver of the host callbacks
    int state;            // 1 from construction on; nothing reads it
    memorypool* pool;
    texturestore* textures;
    ringlink clients;  // the render clients, self-linked while there are none
    int width, height;
    uint32_t* colourbuffer;
    float* depthbuffer;
    sprite* coloursurface;
    surface* depthsurface;
    int cliprect[4];  // left, top, right, bottom; right and bottom exclusive
    float sundirection[3];
    uint8_t suncolour[3];
    float ambient;
    float diffuse;
    float lightfactor;
    alignas(16) float viewmatrix[16];
    alignas(16) float projectionmatrix[16];
    alignas(16) float viewprojection[16];
    alignas(16) float frustumplanes[6][4];
    float fogdistance;
    bool fogenabled;  // the host's fog switch; drawing goes by fogdistance
    int fogcolour, savedfogcolour;
    uint8_t fogoverride;
    int shadestart, shaderange;
    float shadestartf, shadescale;
    int shadowslopex, shadowslopez;
    int shadowcell, shadowshift;
    int lightcount;
    alignas(16) float lightposition[4][4];
    alignas(16) float lightradius[4];
    int lightcolour[4];
    // The width of every row loop of this context's draws: the widest this processor runs, made
    // narrower only by tests that compare the widths' bits.
    lanewidth lanes = widestlanes();
};

// Everything the rasterisers and transforms read, laid out for four-lane loads.
struct alignas(16) rasterstatedata {
    uint32_t* targetcolour;
    float* targetdepth;
    int targetstride;
    int viewport[4];       // x, y, w, h
    float depthrange[2];   // near, far
    int rasterclip[4];     // cliprect as x, y, w, h
    alignas(16) float viewportscale[4];
    alignas(16) float viewportoffset[4];
    alignas(16) int16_t screenbounds[8];
    alignas(16) uint32_t signmask[4];
    float nearplane, farplane;
    float fogstart;
    float fogscale;
    alignas(16) float fogcolour[4];
    alignas(16) float shadecolour[4];
};
extern rasterstatedata rasterstate;

// Follows the host's fog switch as 0 or 1; kept for the host's sake, drawing goes by the fog
// distance.
extern int fogflag;

extern toolkit* currenttoolkit;
extern int modelcount;
// Live ground tiles; nothing reads it.
extern int tilecount;

// Cleared depth: the float with bits 0x7F7FC99E.
inline constexpr uint32_t fardepthbits = 0x7F7FC99Eu;

void setviewport(int x, int y, int w, int h, float nearz, float farz);

// Sets the clip rectangle and keeps the rasterisers' copy in step.
void setcliprect(toolkit& t, int left, int top, int right, int bottom);
// Sets it with each side clamped to the target.
void clampcliprect(toolkit& t, int left, int top, int right, int bottom);
// Moves each side inward where the new value is tighter; the result may be empty or inverted.
void narrowcliprect(toolkit& t, int left, int top, int right, int bottom);
