#include "model/clone.h"

#include <algorithm>
#include <cstring>

#include "model/lighting.h"
#include "util/frame.h"
#include "util/peer.h"

namespace {

// Which arrays a clone keeps to itself, by the mask bits that change them.
constexpr uint32_t privatevertices = 0x37;
constexpr uint32_t privatecolours = 0x84080;
constexpr uint32_t privatenormals = 0x218;
constexpr uint32_t privatebillboards = 0xC580;
constexpr uint32_t relightclone = 0x97218;

// `dest` takes the scratch's block of this field, made anew, `spare` entries longer, when it is
// missing or holds fewer than `count`.
template <class T>
void takescratch(memorymanager& pool, allocatedmemory<T>& dest, allocatedmemory<T>& scratch, int count, int spare = 0) {
    if (scratch.empty() || scratch.length() < count) pool.allocate(scratch, count + spare);
    dest.copyfrom(scratch);
}

// The scratch's block with the source's first `count` entries; a source without the array leaves
// `dest` without it.
template <class T>
void copyprivate(memorymanager& pool, const allocatedmemory<T>& source, allocatedmemory<T>& dest,
                 allocatedmemory<T>& scratch, int count, int spare = 0) {
    if (source.empty()) return dest.release();
    takescratch(pool, dest, scratch, count, spare);
    std::copy_n(source.get(), count, dest.get());
}

void sharegroups(const grouptable& source, grouptable& dest) {
    dest.index.copyfrom(source.index);
    dest.members.copyfrom(source.members);
}

}  // namespace

void clonemodel(model& source, model& dest, model& scratch, uint32_t mask, bool grow, bool prelight) {
    if ((source.functionmask & mask) != mask)
        fail<IllegalArgumentException>("Can't re-enable previously disabled functions");
    memorymanager& pool = *source.pool;
    dest.boundsvalid = source.boundsvalid;
    if (source.boundsvalid) {
        dest.radius = source.radius, dest.sphereradius = source.sphereradius;
        dest.miny = source.miny, dest.maxy = source.maxy, dest.minx = source.minx, dest.maxx = source.maxx;
        dest.minz = source.minz, dest.maxz = source.maxz;
    }
    dest.ambient = source.ambient, dest.contrast = source.contrast;
    dest.vertexcount = source.vertexcount, dest.usedvertexcount = source.usedvertexcount;
    dest.facecount = source.facecount, dest.texturedfacecount = source.texturedfacecount;
    const int faces = source.facecount;

    if (mask & privatevertices)
        copyprivate(pool, source.vertices, dest.vertices, scratch.vertices, source.vertexcount);
    else
        dest.vertices.copyfrom(source.vertices);
    if (mask & privatecolours)
        copyprivate(pool, source.fhsl, dest.fhsl, scratch.fhsl, faces);
    else
        dest.fhsl.copyfrom(source.fhsl);

    // Colours a clone may change are made again at its first draw.
    if (mask & relightclone) {
        dest.litcolours.release();
    } else {
        if (prelight && source.litcolours.empty()) lightpass(source);
        if (mask & FM_ANIMATE_COLOUR)
            copyprivate(pool, source.litcolours, dest.litcolours, scratch.litcolours, faces);
        else
            dest.litcolours.copyfrom(source.litcolours);
    }

    if (!(mask & FM_ANIMATE_ALPHA)) {
        dest.facealphas.copyfrom(source.facealphas);
    } else if (source.facealphas.empty()) {
        takescratch(pool, dest.facealphas, scratch.facealphas, faces);
        std::fill_n(dest.facealphas.get(), faces, 0);
    } else {
        copyprivate(pool, source.facealphas, dest.facealphas, scratch.facealphas, faces);
    }

    if (!(mask & privatenormals)) {
        if (prelight && source.normals.empty()) computenormals(source);
        dest.normals.copyfrom(source.normals);
        dest.facenormals.copyfrom(source.facenormals);
    } else {
        if (source.normals.empty()) computenormals(source);
        copyprivate(pool, source.normals, dest.normals, scratch.normals, source.usedvertexcount);
        copyprivate(pool, source.facenormals, dest.facenormals, scratch.facenormals, faces);
    }

    if (mask & FM_RETEXTURE)
        copyprivate(pool, source.facetextures, dest.facetextures, scratch.facetextures, source.texturedfacecount);
    else
        dest.facetextures.copyfrom(source.facetextures);
    dest.uva.copyfrom(source.uva), dest.uvb.copyfrom(source.uvb), dest.uvc.copyfrom(source.uvc);
    if (mask & FM_SHARELIGHT)
        copyprivate(pool, source.facetypes, dest.facetypes, scratch.facetypes, faces, grow ? 100 : 0);
    else
        dest.facetypes.copyfrom(source.facetypes);

    if (mask & privatebillboards) {
        // Only what animation changes is copied; the draw writes the screen fields anew.
        const int count = source.billboardstates.length();
        if (source.billboardstates.empty()) {
            dest.billboardstates.release();
        } else {
            takescratch(pool, dest.billboardstates, scratch.billboardstates, count);
            for (int i = 0; i < count; ++i)
                std::memcpy(&dest.billboardstates[i], &source.billboardstates[i], offsetof(billboardstate, screenx));
        }
    } else {
        dest.billboardstates.copyfrom(source.billboardstates);
    }
    dest.billboards.copyfrom(source.billboards);
    sharegroups(source.vertexgroups, dest.vertexgroups);
    sharegroups(source.facegroups, dest.facegroups);
    sharegroups(source.billboardgroups, dest.billboardgroups);
    dest.vertexmasks.copyfrom(source.vertexmasks);
    dest.facemasks.copyfrom(source.facemasks);
    dest.facepriorities.copyfrom(source.facepriorities);
    dest.facea.copyfrom(source.facea), dest.faceb.copyfrom(source.faceb), dest.facec.copyfrom(source.facec);
    dest.markerlist.copyfrom(source.markerlist);

    dest.hastranslucency = source.hastranslucency, dest.hasscroll = source.hasscroll;
    dest.renderorder = source.renderorder;
    dest.markertriangles = source.markertriangles, dest.markerpoints = source.markerpoints;
    dest.sharednormals.release();
    dest.functionmask = mask;
    dest.modelflags = source.modelflags;
    dest.pool = source.pool;
}

extern "C" JNIEXPORT void JNICALL Java_h_BA(JNIEnv* env, jobject self, jobject dest, jobject scratch, jint mask,
                                            jboolean grow, jboolean prelight) {
    runexport(env, [&] {
        model& source = modelpeer(env, self);
        clonemodel(source, modelpeer(env, dest), modelpeer(env, scratch), static_cast<uint32_t>(mask), grow, prelight);
    });
}
