// The host's free triangles and thick lines: which member each target gets, what it leaves of
// the depth buffer, and the pixels of whole lines.
#include "toolkit/freetriangle.h"

#include <cmath>
#include <string>
#include <vector>

#include "statetest.h"
#include "target.h"
#include "toolkit/thickline.h"

namespace {

class freetriangle : public statetest {
protected:
    static constexpr int w = 12, h = 8;
    testtarget g{w, h, true};

    // The toolkit and the rasterisers see the buffers asked for; the clip is the whole target.
    void target(bool colour, bool depth) {
        g.t.colourbuffer = colour ? g.colour.get() : nullptr;
        g.t.depthbuffer = depth ? g.depth.get() : nullptr;
        rasterstate.targetcolour = g.t.colourbuffer;
        rasterstate.targetdepth = g.t.depthbuffer;
        rasterstate.targetstride = w;
        setviewport(0, 0, w, h, 0.0f, 1.0f);
        setcliprect(g.t, 0, 0, w, h);
    }
    std::vector<uint32_t> colours() const { return {g.colour.get(), g.colour.get() + g.pixels()}; }
    std::vector<uint32_t> depthbits() const {
        std::vector<uint32_t> bits;
        for (int i = 0; i < g.pixels(); ++i) bits.push_back(bitsof(g.depth[i]));
        return bits;
    }
    // '#' where the pixel is `colour`, '.' where it is 0, '?' elsewhere.
    std::string picture(uint32_t colour) const {
        std::string s;
        for (int i = 0; i < g.pixels(); ++i) {
            s += g.colour[i] == colour ? '#' : g.colour[i] == 0 ? '.' : '?';
            if (i % w == w - 1) s += '\n';
        }
        return s;
    }
};

// With depth, a pixel is drawn as without it where 0 is not above the stored depth, and the
// depths stay as they were; with depth alone, or nothing, no buffer changes.
TEST_F(freetriangle, eachtargetgetsitsmember) {
    const float xy[6] = {1.5f, 0.5f, 10.25f, 3.0f, 3.0f, 7.5f};
    const uint32_t corners[3] = {0xFF102030, 0x80FFFFFF, 0x00FF0000};
    testrng rng(7);
    fillrandom(g, rng);
    const std::vector<uint32_t> before = colours();
    target(true, false);
    drawfreetriangle(xy, corners);
    const std::vector<uint32_t> alone = colours();
    ASSERT_NE(alone, before);

    const float depths[] = {-1.0f, -0.0f, 0.0f, 2.0f, NAN, 3.4e38f};
    for (int i = 0; i < g.pixels(); ++i) g.depth[i] = depths[rng() % 6];
    const std::vector<uint32_t> stored = depthbits();
    std::copy(before.begin(), before.end(), g.colour.get());
    target(true, true);
    drawfreetriangle(xy, corners);
    for (int i = 0; i < g.pixels(); ++i)
        EXPECT_EQ(g.colour[i], 0.0f <= g.depth[i] ? alone[i] : before[i]) << "pixel " << i % w << "," << i / w;
    EXPECT_EQ(depthbits(), stored);

    const std::vector<uint32_t> drawn = colours();
    for (bool depth : {true, false}) {
        target(false, depth);
        drawfreetriangle(xy, corners);
        EXPECT_EQ(depthbits(), stored);
        EXPECT_EQ(colours(), drawn);
    }
    EXPECT_TRUE(g.colour.intact() && g.depth.intact());
}

// The two triangles of a line share their diagonal edge step for step, so they cover the quad
// without gap or overlap whatever the approximate reciprocal gives: rows from the top corner to
// above the bottom one, columns from the left corner to before the right one.
TEST_F(freetriangle, thicklinesfilltheirquadwiththeircolour) {
    const uint32_t colour = 0x80C0FFEE;
    struct {
        int clipleft, cliptop, x1, y1, x2, y2, width;
        bool colour;
        const char* picture;
    } cases[] = {
        {0, 0, 2, 3, 9, 3, 4, true,
         "............\n..#######...\n..#######...\n..#######...\n..#######...\n............\n............\n"
         "............\n"},
        {1, 1, 2, 3, 9, 3, 4, true,
         "............\n.#######....\n.#######....\n.#######....\n............\n............\n............\n"
         "............\n"},
        {0, 0, 5, 1, 5, 6, 6, true,
         "............\n..######....\n..######....\n..######....\n..######....\n..######....\n............\n"
         "............\n"},
        {0, 0, 4, 4, 4, 4, 6, true,
         "............\n............\n............\n............\n............\n............\n............\n"
         "............\n"},
        {0, 0, 2, 3, 9, 3, 4, false,
         "............\n............\n............\n............\n............\n............\n............\n"
         "............\n"},
    };
    for (const auto& c : cases) {
        for (int i = 0; i < g.pixels(); ++i) g.colour[i] = 0, g.depth[i] = 1.0f;
        target(c.colour, true);
        setcliprect(g.t, c.clipleft, c.cliptop, w, h);
        drawthickline(g.t, c.x1, c.y1, c.x2, c.y2, colour, c.width);
        EXPECT_EQ(picture(colour), c.picture) << c.x1 << "," << c.y1 << " to " << c.x2 << "," << c.y2;
    }
}

}  // namespace
