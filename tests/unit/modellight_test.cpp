// Changes of a model's colours: tint by its arithmetic, recolour and retexture with the colours
// they make stale, and a mask that drops sharelight. The light pass itself is checked by the
// model draws.
#include "model/lighting.h"
#include "model/recolour.h"
#include "modeltest.h"

namespace {

class modellight : public modeltest {};

TEST_F(modellight, recolourretextureandtintchangecodesandreleasestalecolours) {
    randomhostmodel h(rng, texturecount);
    while (h.s.facecount < 10 || h.textures.empty()) h = randomhostmodel(rng, texturecount);
    h.s.functionmask = FM_RECOLOUR | FM_RETEXTURE | FM_TINT;
    std::unique_ptr<model> m = buildmodel(h.s, pool);
    std::vector<uint16_t> before(m->fhsl.get(), m->fhsl.get() + m->facecount);
    tint(*m, 40, -1, 100, 96);
    EXPECT_FALSE(m->litcolours.empty());
    for (int f = 0; f < m->facecount; ++f) {
        int hue = before[f] >> 10, s = before[f] >> 7 & 7, l = before[f] & 127;
        EXPECT_EQ(m->fhsl[f], uint16_t(((hue + (((40 - hue) * 96) >> 7)) * 8 | s) << 7 | (l + (((100 - l) * 96) >> 7))));
    }
    for (int i = 0; i < m->billboards.length(); ++i)
        EXPECT_EQ(m->billboardstates[i].colour & 0xFFFFFF, uint32_t(hsltorgb[m->fhsl[m->billboards[i].face]]));
    recolour(*m, m->fhsl[0], 0x1234);
    EXPECT_TRUE(m->litcolours.empty() && m->fhsl[0] == 0x1234);
    // Only a change of what the light pass reads of a texture lets the colours go.
    descriptors[2].blend = descriptors[3].blend, descriptors[2].bright = descriptors[3].bright;
    for (int to : {3, 4}) {
        lightpass(*m);
        retexture(*m, 2, uint16_t(to));
        bool same = descriptors[4].blend == descriptors[3].blend && descriptors[4].bright == descriptors[3].bright;
        EXPECT_EQ(m->litcolours.empty(), to == 4 && !same) << to;
    }
    // Dropping sharelight shows the faces it hid and makes the colours again, stale or not.
    m->functionmask |= FM_SHARELIGHT;
    pool.allocate(m->facetypes, m->facecount);
    for (int f = 0; f < m->facecount; ++f) m->facetypes[f] = uint8_t(f % 3);
    lightpass(*m);
    for (int f = 0; f < m->facecount; ++f) m->litcolours[f] = {{1, 2, 3}};
    narrowmask(*m, FM_TINT);
    for (int f = 0; f < m->facecount; ++f) EXPECT_TRUE(m->facetypes[f] == f % 3 % 2 && m->litcolours[f].corner[0] != 1);
}

}  // namespace
