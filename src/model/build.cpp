#include "model/build.h"

#include <algorithm>
#include <cstring>

#include "model/texturemapping.h"
#include "toolkit/tables.h"
#include "toolkit/texturestore.h"
#include "util/arraypin.h"
#include "util/exception.h"
#include "util/frame.h"
#include "util/memory/memorypool.h"
#include "util/peer.h"

namespace {

// Group ids index a table of this many counters.
constexpr int maxgroups = 256;

// The tables are locals of fixed size; an index beyond them is refused before it is written.
void checkslot(int index, int limit) {
    if (index < 0 || index >= limit) fail<ArrayIndexOutOfBoundsException>(index, limit);
}

// Groups of `count` items by their ids; `memberof(i)` is what item i adds to its group, or -1 to
// leave it out, as are items with a negative id.
template <class Member>
void buildgroups(grouptable& table, memorymanager& pool, hostarray<int32_t> ids, int count, Member memberof) {
    if (ids.length == 0) return;
    int counts[maxgroups] = {};
    int largest = -1;
    for (int i = 0; i < count; ++i) {
        int id = ids[i];
        if (id < 0 || memberof(i) < 0) continue;
        checkslot(id, maxgroups);
        ++counts[id];
        if (id > largest) largest = id;
    }
    pool.allocate(table.index, largest + 1);
    int total = 0;
    for (int g = 0; g <= largest; ++g) {
        table.index[g] = {total, counts[g]};
        total += counts[g];
        counts[g] = 0;
    }
    pool.allocate(table.members, total);
    for (int i = 0; i < count; ++i) {
        int id = ids[i];
        int member = memberof(i);
        if (id < 0 || member < 0) continue;
        table.members[table.index[id].start + counts[id]++] = static_cast<uint16_t>(member);
    }
}

struct facesplit {
    int textured = 0, plain = 0;
};

// Gives each host face its model face: textured faces first, then the plain ones, each in host
// order; faces of type 2 and faces whose texture drops them keep -1. `typesneeded` turns true
// once the face types have been consulted.
facesplit remapfaces(const modelsource& s, int* faceremap, bool& typesneeded) {
    facesplit n;
    auto nevershown = [&](int i) {
        if (!s.types) return false;
        typesneeded = true;
        return s.types[i] == 2;
    };
    if (!s.textures) {
        for (int i = 0; i < s.facecount; ++i)
            if (!nevershown(i)) faceremap[i] = n.plain++;
        return n;
    }
    constexpr int untextured = -2;
    for (int i = 0; i < s.facecount; ++i) {
        if (nevershown(i)) continue;
        if (s.textures[i] == -1) {
            faceremap[i] = untextured;
            continue;
        }
        const texturedescriptor* d = getdescriptor(static_cast<uint16_t>(s.textures[i]));
        if ((s.modelflags & MF_SIMPLETEXTURES) && d->hidden) faceremap[i] = untextured;
        else if (!d->flagthree) faceremap[i] = n.textured++;
    }
    for (int i = 0; i < s.facecount; ++i)
        if (faceremap[i] == untextured) faceremap[i] = n.textured + n.plain++;
    return n;
}

template <class T, class H>
void copyarray(memorymanager& pool, allocatedmemory<T>& into, hostarray<H> from) {
    static_assert(sizeof(T) == sizeof(H));
    if (!from) return;
    pool.allocate(into, from.length);
    if (from.length > 0) std::memcpy(into.get(), from.data, sizeof(T) * static_cast<size_t>(from.length));
}

// Billboards, and the faces they anchor that the filter dropped: those join the plain faces.
void buildbillboards(model& m, const modelsource& s, int* faceremap, facesplit& split, bool& typesneeded) {
    memorymanager& pool = *m.pool;
    int n = s.billboardints.length / 8;
    pool.allocate(m.billboards, n);
    pool.allocate(m.billboardstates, n);
    for (int i = 0; i < n; ++i) {
        const int32_t* record = s.billboardints.data + 7 * i;
        int f = record[0];
        checkslot(f, maxmodelitems);
        int r = faceremap[f] & 0xFFFF;
        if (r == 0xFFFF) {
            r = split.textured + split.plain++;
            checkslot(r, maxmodelitems);
            faceremap[f] = static_cast<int16_t>(r);
            // The billboard's own index, not its face's, picks the type entry; a model with more
            // billboards than types has none for the later ones.
            if (i < s.types.length && s.types[i] == 2) typesneeded = true;
        }
        m.billboards[i] = {static_cast<uint16_t>(r),
                           static_cast<uint16_t>(record[1]),
                           static_cast<uint16_t>(record[2]),
                           static_cast<uint16_t>(record[3]),
                           static_cast<uint8_t>(record[5]),
                           static_cast<uint8_t>(record[4]),
                           static_cast<uint8_t>(record[6] != 0),
                           0};
        billboardstate& state = m.billboardstates[i];
        uint32_t alpha = s.alphas ? 255u - static_cast<uint8_t>(s.alphas[f]) : 255u;
        state.colour = (static_cast<uint32_t>(hsltorgb[static_cast<uint16_t>(s.colours[f])]) & 0xFFFFFF) | alpha << 24;
        state.scalex = state.scaley = 1.0f;
        state.offsetx = state.offsety = 0.0f;
    }
    if (s.billboardints && (m.functionmask & FM_ANIMATE_BILLBOARDS))
        buildgroups(m.billboardgroups, pool, {s.billboardints.data + 7 * n, n}, n, [](int i) { return i; });
}

void copyfaces(model& m, const modelsource& s, const int* faceremap, bool typesneeded) {
    memorymanager& pool = *m.pool;
    for (auto* a : {&m.facea, &m.faceb, &m.facec, &m.fhsl}) pool.allocate(*a, m.facecount);
    if (s.priorities) pool.allocate(m.facepriorities, m.facecount);
    if (s.types && typesneeded) pool.allocate(m.facetypes, m.facecount);
    if (s.alphas) pool.allocate(m.facealphas, m.facecount);
    if (s.facemasks) pool.allocate(m.facemasks, m.facecount);
    m.hastranslucency = 0;
    for (int i = 0; i < s.facecount; ++i) {
        int r = faceremap[i];
        if (r == -1) continue;
        m.facea[r] = static_cast<uint16_t>(s.a[i]);
        m.faceb[r] = static_cast<uint16_t>(s.b[i]);
        m.facec[r] = static_cast<uint16_t>(s.c[i]);
        m.fhsl[r] = static_cast<uint16_t>(s.colours[i]);
        if (!m.facepriorities.empty()) m.facepriorities[r] = static_cast<uint8_t>(s.priorities[i]);
        if (!m.facetypes.empty()) m.facetypes[r] = static_cast<uint8_t>(s.types[i]);
        if (!m.facealphas.empty()) m.facealphas[r] = static_cast<uint8_t>(s.alphas[i]);
        if (!m.facemasks.empty()) m.facemasks[r] = static_cast<uint16_t>(s.facemasks[i]);
        if (s.textures && s.textures[i] != -1) {
            const texturedescriptor* d = getdescriptor(static_cast<uint16_t>(s.textures[i]));
            if (d->value == 2) m.hastranslucency = 1;
            if (d->speedu || d->speedv) m.hasscroll = 1;
        }
    }
}

// A billboard is drawn at the centroid of its face, which collapses to that one point.
void foldbillboards(model& m) {
    for (int i = 0; i < m.billboards.length(); ++i) {
        int f = m.billboards[i].face;
        quad* v = m.vertices.get();
        quad& a = v[m.facea[f]];
        quad& b = v[m.faceb[f]];
        quad& c = v[m.facec[f]];
        const float third = 0.33333334f;
        quad mean = {(a.x + b.x + c.x) * third, (a.y + b.y + c.y) * third, (a.z + b.z + c.z) * third,
                     (a.w + b.w + c.w) * third};
        a = b = c = mean;
        m.facea[f] = m.faceb[f] = m.facec[f];
    }
}

}  // namespace

std::unique_ptr<model> buildmodel(const modelsource& s, memorymanager& pool) {
    auto made = std::make_unique<model>();
    model& m = *made;
    m.pool = &pool;
    m.ambient = s.ambient;
    m.contrast = s.contrast;
    m.functionmask = s.functionmask;
    m.modelflags = s.modelflags;
    m.vertexcount = s.vertexcount;
    m.usedvertexcount = s.usedvertexcount;

    // The fourth lane is left as allocated: nothing reads it as a coordinate.
    pool.allocate(m.vertices, s.vertexcount);
    for (int i = 0; i < s.vertexcount; ++i) {
        quad& v = m.vertices[i];
        v.x = static_cast<float>(s.x[i]);
        v.y = static_cast<float>(s.y[i]);
        v.z = static_cast<float>(s.z[i]);
    }
    copyarray(pool, m.vertexmasks, s.vertexmasks);

    if (s.facecount > maxmodelitems) fail<ArrayIndexOutOfBoundsException>(s.facecount, maxmodelitems);
    int faceremap[maxmodelitems];
    std::fill(faceremap, faceremap + maxmodelitems, -1);
    bool typesneeded = false;
    facesplit split = remapfaces(s, faceremap, typesneeded);
    buildbillboards(m, s, faceremap, split, typesneeded);

    m.facecount = static_cast<uint16_t>(split.textured + split.plain);
    m.texturedfacecount = static_cast<uint16_t>(split.textured);
    copyfaces(m, s, faceremap, typesneeded);
    m.renderorder = s.renderorder;
    if (s.textures && m.texturedfacecount != 0) maptextures(m, s, faceremap);
    m.boundsvalid = 0;

    if (s.facegroupids && (m.functionmask & FM_ANIMATE_FACES))
        buildgroups(m.facegroups, pool, s.facegroupids, s.facecount, [&](int i) { return faceremap[i]; });
    if (s.vertexgroupids && (m.functionmask & FM_ANIMATE_VERTICES))
        buildgroups(m.vertexgroups, pool, s.vertexgroupids, s.vertexcount, [](int i) { return i; });
    copyarray(pool, m.markerlist, s.markers);
    m.markertriangles = s.markertriangles;
    m.markerpoints = s.markerpoints;
    if (!m.facealphas.empty()) m.hastranslucency = 1;
    foldbillboards(m);
    return made;
}

namespace {

template <pinkind K>
auto held(JNIEnv* env, const arraypin<K>& pin) {
    using element = std::conditional_t<K == pinkind::byteread, int8_t,
                                       std::conditional_t<K == pinkind::shortread, int16_t, int32_t>>;
    return hostarray<element>{reinterpret_cast<const element*>(pin.get()), arraylength(env, pin.object())};
}

}  // namespace

extern "C" JNIEXPORT void JNICALL Java_h_U(
    JNIEnv* env, jobject self, jobject, jobject poolobject, jint vertexcount, jint usedvertexcount, jintArray x,
    jintArray y, jintArray z, jintArray vertexgroupids, jshortArray vertexmasks, jint facecount, jshortArray a,
    jshortArray b, jshortArray c, jbyteArray types, jbyteArray priorities, jbyteArray alphas, jbyteArray mappings,
    jshortArray colours, jshortArray textures, jintArray facegroupids, jbyte renderorder, jshortArray facemasks,
    jint mappingcount, jbyteArray maptype, jshortArray mapp, jshortArray mapm, jshortArray mapn, jintArray mapscalex,
    jintArray mapscaley, jintArray mapscalez, jbyteArray maprotation, jbyteArray mapdirection, jintArray mapshift0,
    jintArray mapshift1, jintArray mapshift2, jintArray markers, jint markertriangles, jint markerpoints,
    jint functionmask, jint modelflags, jint ambient, jint contrast, jintArray billboardints) {
    runexport(env, [&] {
        using bytes = arraypin<pinkind::byteread>;
        using shorts = arraypin<pinkind::shortread>;
        using ints = arraypin<pinkind::intread>;
        ints px(env, x), py(env, y), pz(env, z), pvertexgroups(env, vertexgroupids);
        shorts pvertexmasks(env, vertexmasks), pa(env, a), pb(env, b), pc(env, c);
        bytes ptypes(env, types), ppriorities(env, priorities), palphas(env, alphas), pmappings(env, mappings);
        shorts pcolours(env, colours), ptextures(env, textures);
        ints pfacegroups(env, facegroupids);
        shorts pfacemasks(env, facemasks);
        bytes pmaptype(env, maptype);
        shorts pmapp(env, mapp), pmapm(env, mapm), pmapn(env, mapn);
        ints pscalex(env, mapscalex), pscaley(env, mapscaley), pscalez(env, mapscalez);
        bytes protation(env, maprotation), pdirection(env, mapdirection);
        ints pshift0(env, mapshift0), pshift1(env, mapshift1), pshift2(env, mapshift2), pmarkers(env, markers),
            pbillboards(env, billboardints);
        memorypool* pool = getpeer<memorypool>(env, hostclass::ba, poolobject);
        if (!pool) fail<NullPointerException>();

        modelsource s;
        s.vertexcount = vertexcount;
        s.usedvertexcount = usedvertexcount;
        s.x = held(env, px);
        s.y = held(env, py);
        s.z = held(env, pz);
        s.vertexgroupids = held(env, pvertexgroups);
        s.vertexmasks = held(env, pvertexmasks);
        s.facecount = facecount;
        s.a = held(env, pa);
        s.b = held(env, pb);
        s.c = held(env, pc);
        s.types = held(env, ptypes);
        s.priorities = held(env, ppriorities);
        s.alphas = held(env, palphas);
        s.mappings = held(env, pmappings);
        s.colours = held(env, pcolours);
        s.textures = held(env, ptextures);
        s.facegroupids = held(env, pfacegroups);
        s.renderorder = static_cast<uint8_t>(renderorder);
        s.facemasks = held(env, pfacemasks);
        s.mapping = {mappingcount,         held(env, pmaptype),  held(env, pmapp),      held(env, pmapm),
                     held(env, pmapn),     held(env, pscalex),   held(env, pscaley),    held(env, pscalez),
                     held(env, protation), held(env, pdirection), held(env, pshift0),   held(env, pshift1),
                     held(env, pshift2)};
        s.markers = held(env, pmarkers);
        s.markertriangles = markertriangles;
        s.markerpoints = markerpoints;
        s.functionmask = static_cast<uint32_t>(functionmask);
        s.modelflags = static_cast<uint32_t>(modelflags);
        s.ambient = ambient;
        s.contrast = contrast;
        s.billboardints = held(env, pbillboards);
        setpeer(env, hostclass::h, self, buildmodel(s, *pool).release());
    });
}
