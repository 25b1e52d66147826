// Clones against the sharing rules over random models and masks: which arrays are the source's
// blocks, which the scratch's with the source's entries, which are gone; scratch blocks reused; a
// private clone independent of its source; a wider mask refused with the clone left alone.
#include "model/clone.h"
#include "model/transform.h"
#include "motiontest.h"

namespace {

class clone : public motiontest {};

// `dest` holds the source's block, or privately the scratch's block with the source's entries.
template <class T>
::testing::AssertionResult held(const char* name, const allocatedmemory<T>& dest, const allocatedmemory<T>& source,
                                const allocatedmemory<T>& scratch, bool own, int count, size_t bytes = sizeof(T)) {
    bool ok = !own ? dest.get() == source.get()
                   : source.empty() ? dest.empty() : dest.get() == scratch.get() && dest.get() != source.get();
    for (int i = 0; ok && own && !source.empty() && i < count; ++i) ok = !std::memcmp(&dest[i], &source[i], bytes);
    return ok ? ::testing::AssertionSuccess() : ::testing::AssertionFailure() << name << (own ? " private" : " shared");
}

TEST_F(clone, arraysaresharedorprivateasthemasksays) {
    model dest, scratch;
    for (int round = 0; round < 300 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        std::unique_ptr<model> source = randommodel(0xFFFFF);
        if (rng() % 3 == 0) source->litcolours.release();
        const uint32_t mask = rng() % 8 ? uint32_t(rng()) & (rng() % 2 ? 0xFFFFF : 0xFFFFF & ~0x97218) : 0;
        const bool grow = rng() % 2, prelight = rng() % 2;
        const modelsnapshot untouched(dest);
        if (rng() % 8 == 0) {  // a bit the source lacks
            source->functionmask &= ~0x40000u;
            ASSERT_TRUE(refused([&] { clonemodel(*source, dest, scratch, mask | 0x40000, grow, prelight); }));
            EXPECT_TRUE(modelsnapshot(dest) == untouched);
            continue;
        }
        const bool hadlight = !source->litcolours.empty();
        const int types = scratch.facetypes.length();
        clonemodel(*source, dest, scratch, mask, grow, prelight);
        const model& s = *source;
        const int faces = s.facecount;
        EXPECT_TRUE(held("vertices", dest.vertices, s.vertices, scratch.vertices, mask & 0x37, s.vertexcount));
        EXPECT_TRUE(held("fhsl", dest.fhsl, s.fhsl, scratch.fhsl, mask & 0x84080, faces));
        if (mask & 0x97218) EXPECT_TRUE(dest.litcolours.empty());
        else EXPECT_TRUE(held("lit", dest.litcolours, s.litcolours, scratch.litcolours, mask & 0x80, faces));
        EXPECT_EQ(s.litcolours.empty(), !hadlight && !(prelight && !(mask & 0x97218)));
        if ((mask & 0x100) && s.facealphas.empty())
            EXPECT_TRUE(dest.facealphas.get() == scratch.facealphas.get() &&
                        std::all_of(dest.facealphas.get(), dest.facealphas.get() + faces, [](uint8_t a) { return !a; }));
        else EXPECT_TRUE(held("alphas", dest.facealphas, s.facealphas, scratch.facealphas, mask & 0x100, faces));
        EXPECT_TRUE(held("normals", dest.normals, s.normals, scratch.normals, mask & 0x218, s.usedvertexcount));
        EXPECT_TRUE(held("facenormals", dest.facenormals, s.facenormals, scratch.facenormals, mask & 0x218, faces));
        EXPECT_TRUE(held("textures", dest.facetextures, s.facetextures, scratch.facetextures, mask & 0x8000,
                         s.texturedfacecount));
        EXPECT_TRUE(held("types", dest.facetypes, s.facetypes, scratch.facetypes, mask & 0x10000, faces));
        if ((mask & 0x10000) && types < faces && !s.facetypes.empty()) {
            EXPECT_EQ(scratch.facetypes.length(), faces + (grow ? 100 : 0));
        }
        EXPECT_TRUE(held("billboards", dest.billboardstates, s.billboardstates, scratch.billboardstates,
                         mask & 0xC580, s.billboardstates.length(), offsetof(billboardstate, screenx)));
        EXPECT_TRUE(dest.faceb.get() == s.faceb.get() && dest.uva.get() == s.uva.get() &&
                    dest.vertexgroups.members.get() == s.vertexgroups.members.get() && dest.sharednormals.empty());
        EXPECT_TRUE(dest.functionmask == mask && dest.pool == s.pool && dest.vertexcount == s.vertexcount);
        EXPECT_TRUE(dest.boundsvalid && !std::memcmp(&dest.radius, &s.radius, 16));

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
