// A model: the native peer of the host's `h`, a triangle mesh in float coordinates with a colour
// per face, optional texture coordinates, groups for animation and camera-facing billboards.
// Every array lives in the model's pool behind a handle; models share arrays by sharing blocks,
// and a block dies with its last handle. The function mask says which later operations the model
// must still support, and so how much of its data it must keep private and alive.
#pragma once
#include <jni.h>

#include <cstdint>

#include "util/memory/allocatedmemory.h"
#include "util/memory/memorymanager.h"

// Operations a model may still undergo. A mask only ever loses bits.
enum : uint32_t {
    FM_MOVE_X = 0x1,
    FM_MOVE_Y = 0x2,
    FM_MOVE_Z = 0x4,
    FM_NORMALS = 0x8,
    FM_MIRROR = 0x10,
    FM_ANIMATE_VERTICES = 0x20,
    FM_ANIMATE_COLOUR = 0x80,
    FM_ANIMATE_ALPHA = 0x100,
    FM_ANIMATE_NORMALS = 0x200,
    FM_ANIMATE_BILLBOARDS = 0x400,
    FM_RELIGHT_A = 0x1000,
    FM_RELIGHT_B = 0x2000,
    FM_RECOLOUR = 0x4000,
    FM_RETEXTURE = 0x8000,
    FM_SHARELIGHT = 0x10000,
    FM_GETSHADOW = 0x40000,
    FM_TINT = 0x80000,
};
// The operations that need the face colour codes after the model has been lit.
inline constexpr uint32_t FM_KEEPCOLOURS = 0x97298;
// Either animation of faces builds the face groups.
inline constexpr uint32_t FM_ANIMATE_FACES = FM_ANIMATE_COLOUR | FM_ANIMATE_ALPHA;

enum : uint32_t {
    MF_POINTLIT = 0x10,
    MF_SIMPLETEXTURES = 0x40,
};

// Vertex and face tables of construction and drawing are this long.
inline constexpr int maxmodelitems = 16768;

struct alignas(16) quad {
    float x, y, z, w;
};

struct texel {
    float u, v;
};

// ARGB of a face's corners a, b and c.
struct facecolours {
    uint32_t corner[3];
};

struct billboard {
    uint16_t face;  // the model face that anchors it
    uint16_t width, height;
    uint16_t texture;
    uint8_t blendmode, tintmode;
    uint8_t flag;
    uint8_t unused;
};
static_assert(sizeof(billboard) == 12);

struct billboardstate {
    uint32_t colour;
    float scalex, scaley;
    float offsetx, offsety;
    int32_t rotation;
    int32_t screenx, screeny;  // written by each draw, as are the three below
    int32_t screenwidth, screenheight;
    float screenz;
};

struct grouprange {
    int32_t start, count;
};

// Members of each group id, group after group; no index means no groups.
struct grouptable {
    allocatedmemory<grouprange> index;
    allocatedmemory<uint16_t> members;
};

// Faces below `texturedfacecount` may have a texture; the texture arrays have that many entries.
// A billboard's face has its three corners on one vertex, the centroid of the original corners.
struct alignas(16) model {
    memorymanager* pool = nullptr;
    uint32_t functionmask = 0;
    uint32_t modelflags = 0;
    int32_t vertexcount = 0;
    int32_t usedvertexcount = 0;  // vertices of faces, with normals; the rest are loose points
    allocatedmemory<quad> vertices;
    allocatedmemory<quad> normals;        // fourth lane 1 on smooth faces' vertices, else 0
    allocatedmemory<quad> sharednormals;  // sums with their weight in the fourth lane; 0 is none
    allocatedmemory<uint16_t> vertexmasks;
    uint16_t texturedfacecount = 0;
    uint16_t facecount = 0;
    allocatedmemory<uint16_t> facea, faceb, facec;
    allocatedmemory<facecolours> litcolours;
    allocatedmemory<uint16_t> facetextures;  // 0xFFFF is none
    allocatedmemory<texel> uva, uvb, uvc;    // in texels of a 128-texel tile
    allocatedmemory<uint8_t> facetypes;      // 0 smooth, 1 flat, 2 not drawn; none is all smooth
    allocatedmemory<uint8_t> facepriorities;
    allocatedmemory<uint8_t> facealphas;     // 0 opaque to 255 invisible; none is all opaque
    allocatedmemory<uint16_t> fhsl;          // HSL16 code of each face
    allocatedmemory<uint16_t> facemasks;
    allocatedmemory<quad> facenormals;       // flat faces' normals
    allocatedmemory<int32_t> markerlist;
    allocatedmemory<billboard> billboards;
    allocatedmemory<billboardstate> billboardstates;
    grouptable vertexgroups;
    grouptable facegroups;
    grouptable billboardgroups;
    uint8_t renderorder = 0xFF;
    int32_t ambient = 0;   // lightness scale, 128 is 1.0
    int32_t contrast = 0;  // divisor of the sun's strength
    uint8_t boundsvalid = 0;
    int16_t radius = 0;        // about the y axis
    int16_t sphereradius = 0;  // about the origin
    int16_t miny = 0, maxy = 0, minx = 0, maxx = 0, minz = 0, maxz = 0;
    int32_t markertriangles = 0, markerpoints = 0;
    float animorigin[3] = {};
    uint8_t originfresh = 0;
    uint8_t colourdirty = 0;
    uint8_t hastranslucency = 0;
    uint8_t hasscroll = 0;
    alignas(16) float modellights[4][4] = {};
};

// Narrows the mask; a mask that would gain a bit is refused and the model keeps its own. Dropping
// FM_SHARELIGHT shows the faces that sharing hid and relights the model.
void narrowmask(model& m, uint32_t newmask);

// Throws IllegalStateException with `words` unless the mask holds every bit of `bits`.
void requiremask(const model& m, uint32_t bits, const char* words = "");

// Box, radii and sphere of the used vertices.
void computebounds(model& m);

// The model of a host `h`; a null object raises NullPointerException.
model& modelpeer(JNIEnv* env, jobject self);
