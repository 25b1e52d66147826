// Clones against the sharing rules over random models and masks: the source's blocks or the scratch's
// with the source's entries; scratch reused; a private clone moves alone; a wider mask refused.
#include "model/clone.h"
#include "model/transform.h"
#include "motiontest.h"

namespace {

class clone : public motiontest {};

// `dest` holds the source's block, or privately the scratch's block with the source's entries.
template <class T>
bool held(const allocatedmemory<T>& dest, const allocatedmemory<T>& source, const allocatedmemory<T>& scratch,
          bool own, int count, size_t bytes = sizeof(T)) {
    bool ok = !own ? dest.get() == source.get()
                   : source.empty() ? dest.empty() : dest.get() == scratch.get() && dest.get() != source.get();
    for (int i = 0; ok && own && !source.empty() && i < count; ++i) ok = !std::memcmp(&dest[i], &source[i], bytes);
    return ok;
}

TEST_F(clone, arraysaresharedorprivateasthemasksays) {
    model dest, scratch;
    for (int round = 0; round < 300 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        std::unique_ptr<model> source = randommodel(rng() % 8 ? 0xFFFFF : 0xBFFFF);
        if (rng() % 3 == 0) source->litcolours.release();
        // Now and then one bit alone, so that each is seen without the others that act alike.
        const uint32_t wide = rng() % 2 ? 0xFFFFF : 0xFFFFF & ~0x97218;
        uint32_t mask = rng() % 4 ? uint32_t(rng()) & wide : 1u << rng() % 21 >> 1;
        mask |= round % 8 ? 0 : 0x40000;
        const bool grow = rng() % 2, prelight = rng() % 2, hadlight = !source->litcolours.empty();
        const std::vector<uint8_t> untouched = snapshot(dest);
        const int types = scratch.facetypes.length();
        if (refused([&] { clonemodel(*source, dest, scratch, mask, grow, prelight); })) {
            EXPECT_TRUE(!(source->functionmask & 0x40000) && snapshot(dest) == untouched);
            continue;
        }
        const model& s = *source;
        const int faces = s.facecount;
        EXPECT_TRUE(held(dest.vertices, s.vertices, scratch.vertices, mask & 0x37, s.vertexcount));
        EXPECT_TRUE(held(dest.fhsl, s.fhsl, scratch.fhsl, mask & 0x84080, faces));
        EXPECT_TRUE(mask & 0x97218 ? dest.litcolours.empty()
                                   : held(dest.litcolours, s.litcolours, scratch.litcolours, mask & 0x80, faces));
        EXPECT_EQ(s.litcolours.empty(), !hadlight && !(prelight && !(mask & 0x97218)));
        if ((mask & 0x100) && s.facealphas.empty())
            EXPECT_TRUE(dest.facealphas.get() == scratch.facealphas.get() &&
                        std::count(dest.facealphas.get(), dest.facealphas.get() + faces, 0) == faces);
        else EXPECT_TRUE(held(dest.facealphas, s.facealphas, scratch.facealphas, mask & 0x100, faces));
        EXPECT_TRUE(held(dest.normals, s.normals, scratch.normals, mask & 0x218, s.usedvertexcount));
        EXPECT_TRUE(held(dest.facenormals, s.facenormals, scratch.facenormals, mask & 0x218, faces));
        EXPECT_TRUE(held(dest.facetextures, s.facetextures, scratch.facetextures, mask & 0x8000, s.texturedfacecount));
        EXPECT_TRUE(held(dest.facetypes, s.facetypes, scratch.facetypes, mask & 0x10000, faces));
        EXPECT_TRUE(!(mask & 0x10000) || types >= faces || s.facetypes.empty() ||
                    scratch.facetypes.length() == faces + (grow ? 100 : 0));
        EXPECT_TRUE(held(dest.billboardstates, s.billboardstates, scratch.billboardstates, mask & 0xC580,
                         s.billboardstates.length(), offsetof(billboardstate, screenx)));
        EXPECT_TRUE(dest.faceb.get() == s.faceb.get() && dest.uva.get() == s.uva.get() &&
                    dest.vertexgroups.members.get() == s.vertexgroups.members.get() && dest.sharednormals.empty());
        EXPECT_TRUE(dest.functionmask == mask && dest.pool == s.pool && dest.vertexcount == s.vertexcount &&
                    dest.boundsvalid && !std::memcmp(&dest.radius, &s.radius, 16));

        // A private clone moves alone; a second clone with the same scratch takes the same blocks.
        const std::vector<quad> v = contents(s.vertices);
        if (mask & FM_MOVE_X) translatemodel(dest, 5, 0, 0);
        EXPECT_TRUE(samebits(v, s.vertices));
        const quad* blocks = scratch.vertices.get();
        model second;
        clonemodel(*source, second, scratch, mask, grow, false);
        EXPECT_TRUE(!(mask & 0x37) || second.vertices.get() == blocks);
    }
}

}  // namespace
