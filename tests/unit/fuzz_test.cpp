// The fuzz families: random calls of every clipping draw and model draw, with positions, sizes,
// pads, matrices and clip rectangles from the ordinary to the extreme, into targets fenced by
// sentinels and inaccessible pages, from images flush against such pages. Nothing may change outside the clip rectangle,
// nothing outside the target or the image may be touched, and wherever the family has a scalar
// reference every pixel must match it. A new family is one function and one row of `families`.
#include "fuzz.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <cstring>
#include <functional>
#include <iterator>
#include <memory>
#include <vector>

#include "fontreference.h"
#include "ground/footprint.h"
#include "ground/shadows.h"
#include "ground/lights.h"
#include "ground/tile.h"
#include "ground/upload.h"
#include "model/render.h"
#include "modelreference.h"
#include "modeltest.h"
#include "raster/raster.h"
#include "shapereference.h"
#include "sprite/drawscaled.h"
#include "sprite/drawsprite.h"
#include "sprite/drawturned.h"
#include "spritereference.h"
#include "target.h"
#include "testhost.h"
#include "testmask.h"
#include "toolkit/disc.h"
#include "toolkit/fill.h"
#include "toolkit/freetriangle.h"
#include "toolkit/line.h"
#include "toolkit/maskfill.h"
#include "toolkit/particles.h"
#include "toolkit/texturestore.h"
#include "toolkit/thickline.h"
#include "toolkit/view.h"
#include "turnedreference.h"
#include "util/frame.h"
#include "util/memory/memorypool.h"

namespace {

// A clip rectangle as the host's setters can leave it: the whole target, a part of it, or cut to
// the target from anywhere around it, and so empty, inverted or wholly beside it.
void randomclip(toolkit& t, testrng& r) {
    const int w = t.width, h = t.height;
    switch (r.below(8)) {
        case 0: case 1: return setcliprect(t, 0, 0, w, h);
        case 2: case 3: case 4: return setcliprect(t, r.below(w), r.below(h), w - r.below(w), h - r.below(h));
        default: return clampcliprect(t, r.coordinate(w), r.coordinate(h), r.coordinate(w), r.coordinate(h));
    }
}

// Mostly a valid blend mode; now and then one that must raise, or draw nothing.
int anymode(testrng& r) { return r.onein(16) ? (r.below(2) ? 3 : -1) : r.below(3); }

// Checks a drawn target against what was expected of it: every fence, the pixels outside the clip
// rectangle unchanged, and every pixel where the expectation is known.
::testing::AssertionResult drewasexpected(const testtarget& g, const std::vector<uint32_t>& before,
                                          const std::vector<uint32_t>& expected, bool known) {
    if (!g.colour.intact() || !g.depth.intact()) return ::testing::AssertionFailure() << "wrote outside the target";
    for (int i = 0; i < g.pixels(); ++i)
        if (g.colour[i] != before[i] && !g.insideclip(i % g.t.width, i / g.t.width))
            return ::testing::AssertionFailure() << "changed pixel " << i % g.t.width << "," << i / g.t.width
                                                 << " outside the clip";
    return known ? samepixels(g, expected) : ::testing::AssertionSuccess();
}

// The shapes: a corner or end (x, y), a size or the other end (u, v).
struct shape {
    int x, y, u, v, radius, maskx, masky;
    float z;
    const testmask* mask;
};

using painter = std::function<void(long long x, long long y)>;

struct shapekind {
    const char* name;
    bool moded;  // false: stores whatever the mode
    void (*draw)(toolkit&, const shape&, uint32_t colour, int mode);
    // Paints every pixel of the target the shape covers before clipping; false when the reference
    // cannot follow this case, and only the clip and the fences are checked.
    bool (*cover)(const shape&, const testtarget&, const painter&);
};

bool coverrectangle(long long x, long long y, long long w, long long h, const testtarget& g, const painter& paint) {
    for (long long py = std::max(y, 0LL); py < std::min(y + h, static_cast<long long>(g.t.height)); ++py)
        for (long long px = std::max(x, 0LL); px < std::min(x + w, static_cast<long long>(g.t.width)); ++px)
            paint(px, py);
    return true;
}

bool coverline(const shape& s, const testtarget&, const painter& paint, bool masked) {
    for (auto [x, y] : shapereference::linepoints(s.x, s.y, s.u, s.v))
        if (!masked || s.mask->admits(x, y, s.maskx, s.masky)) paint(x, y);
    return true;
}

const shapekind shapekinds[] = {
    {"rectangle", true,
     [](toolkit& t, const shape& s, uint32_t c, int m) { drawrectangle(t, s.x, s.y, s.u, s.v, c, m); },
     [](const shape& s, const testtarget& g, const painter& p) { return coverrectangle(s.x, s.y, s.u, s.v, g, p); }},
    {"row", true, [](toolkit& t, const shape& s, uint32_t c, int m) { drawrow(t, s.x, s.x + (s.u - 1LL), s.y, c, m); },
     [](const shape& s, const testtarget& g, const painter& p) { return coverrectangle(s.x, s.y, s.u, 1, g, p); }},
    {"column", true,
     [](toolkit& t, const shape& s, uint32_t c, int m) { drawcolumn(t, s.x, s.y, s.y + (s.v - 1LL), c, m); },
     [](const shape& s, const testtarget& g, const painter& p) { return coverrectangle(s.x, s.y, 1, s.v, g, p); }},
    {"line", true, [](toolkit& t, const shape& s, uint32_t c, int m) { drawline(t, s.x, s.y, s.u, s.v, c, m); },
     [](const shape& s, const testtarget& g, const painter& p) { return coverline(s, g, p, false); }},
    {"masked line", true,
     [](toolkit& t, const shape& s, uint32_t c, int m) {
         drawmaskedline(t, s.x, s.y, s.u, s.v, c, m, s.mask->mask, s.maskx, s.masky);
     },
     [](const shape& s, const testtarget& g, const painter& p) { return coverline(s, g, p, true); }},
    {"mask fill", false, [](toolkit& t, const shape& s, uint32_t c, int) { fillmask(t, c, s.mask->mask, s.x, s.y); },
     [](const shape& s, const testtarget& g, const painter& paint) {
         for (int y = 0; y < g.t.height; ++y)
             for (int x = 0; x < g.t.width; ++x)
                 if (s.mask->admits(x, y, s.x, s.y)) paint(x, y);
         return true;
     }},
    {"disc", true, [](toolkit& t, const shape& s, uint32_t c, int m) { drawdisc(t, s.x, s.y, s.radius, s.z, c, m); },
     [](const shape& s, const testtarget& g, const painter& paint) {
         // The reference takes the radius one step at a time.
         if (std::abs(static_cast<long long>(s.radius)) > 30000) return false;
         for (const auto& span : shapereference::discspans(g.t.cliprect, s.x, s.y, s.radius))
             for (long long x = span.from; x <= span.to; ++x) paint(x, span.row);
         return true;
     }},
};

bool shapes(fuzzcase& c) {
    // The last kind, the disc, twice: the second time with depth.
    const int kinds = static_cast<int>(std::size(shapekinds)), pick = c.below(kinds + 1);
    const shapekind& kind = shapekinds[std::min(pick, kinds - 1)];
    const bool depth = pick == kinds;
    testtarget g(c.width(), 1 + c.below(21), depth);
    fillrandom(g, c);
    for (int i = 0; i < g.pixels(); ++i) g.depth[i] = static_cast<float>(c.below(4));
    randomclip(g.t, c);
    const int w = g.t.width, h = g.t.height;
    testmask mask;
    mask.randomise(c, 40, 2 * w);
    shape s{c.coordinate(w), c.coordinate(h), c.coordinate(w), c.coordinate(h), 0, c.coordinate(w), c.coordinate(h),
            static_cast<float>(c.below(3)), &mask};
    s.radius = c.below(4) ? c.between(-3, 2 * std::max(w, h)) : c.onein(2) ? s.u : c.between(-20000, 20000);
    if (s.radius > 1000 && c.onein(2)) {
        // A large disc whose edge crosses the target, its first rows widening by thousands of steps.
        double angle = c.real(0, 6.3f), reach = s.radius + c.between(-20, 20);
        s.x = w / 2 + static_cast<int>(std::lround(std::cos(angle) * reach));
        s.y = h / 2 + static_cast<int>(std::lround(std::sin(angle) * reach));
    }
    const uint32_t colour = c.pixel();
    const int mode = kind.moded ? anymode(c) : replace;
    c.note(kind.name, depth ? "at depth" : "", "on", w, h, "clip", g.t.cliprect[0], g.t.cliprect[1], g.t.cliprect[2],
           g.t.cliprect[3], "at", s.x, s.y, "to", s.u, s.v, "radius", s.radius, "mode", mode, "mask at", s.maskx,
           s.masky);

    // Now and then the target has no colour buffer: nothing is drawn and no mode is looked at.
    const bool bare = c.onein(32);
    const std::vector<uint32_t> before(g.colour.get(), g.colour.get() + g.pixels());
    std::vector<uint32_t> expected = before;
    const bool valid = mode >= 0 && mode <= 2;
    bool known = !valid || bare || kind.cover(s, g, [&](long long x, long long y) {
        long long i = y * w + x;
        if (g.insideclip(x, y) && (!depth || g.depth[i] > s.z)) expected[i] = ruledpixel(mode, expected[i], colour);
    });
    if (bare) g.t.colourbuffer = nullptr;
    bool raised = raisesillegalargument([&] { kind.draw(g.t, s, colour, mode); });
    EXPECT_FALSE(raised && (valid || bare)) << "raised for a valid mode or without a colour buffer";
    EXPECT_TRUE(drewasexpected(g, before, expected, known));
    return firstdifference(g, before) >= 0;
}

// Sprites at own size, tiled, scaled, scaled at a depth and through a span mask.
enum class spritecall { single, tiled, scaled, atdepth, masked, count };

bool sprites(fuzzcase& c) {
    testtarget g(c.width() + c.below(8), 1 + c.below(24));
    fillrandom(g, c);
    for (int i = 0; i < g.pixels(); ++i) g.depth[i] = static_cast<float>(c.below(9));
    randomclip(g.t, c);
    if (c.onein(10)) narrowcliprect(g.t, c.coordinate(g.t.width), c.coordinate(g.t.height), c.coordinate(g.t.width),
                                   c.coordinate(g.t.height));
    const int width = g.t.width, height = g.t.height;
    const int clip[4] = {g.t.cliprect[0], g.t.cliprect[1], g.t.cliprect[2], g.t.cliprect[3]};
    const lanewidth lanes = c.lanes();

    // The image's last or first pixel touches an inaccessible page.
    const int iw = c.onein(10) ? c.below(2) * 64 : c.width(), ih = c.onein(10) ? 0 : 1 + c.below(16);
    const long pitch = iw + c.offset();
    guarded<uint32_t> pixels(ih > 0 && iw > 0 ? (ih - 1) * pitch + iw : 0,
                             c.below(2) ? placement::atstart : placement::atend);
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = c.pixel();
    auto pad = [&] { return c.onein(32) ? c.between(-60, 60) : c.between(-2, 4); };
    const spriteimage image{pixels.get(), iw, ih, pitch, pad(), pad(), pad(), pad()};
    auto extent = [&](int size) {
        return c.onein(16) ? c.between(INT_MIN, INT_MAX) : c.onein(16) ? c.between(-5, 0) : c.between(0, 3 * size + 10);
    };
    const auto call = static_cast<spritecall>(c.below(static_cast<int>(spritecall::count)));
    // Positions mostly where some of the image meets the target.
    const int x = c.onein(4) ? c.coordinate(width) : c.between(-iw - 4, width);
    const int y = c.onein(4) ? c.coordinate(height) : c.between(-ih - 4, height);
    const int w = extent(width), h = extent(height);
    const int tint = c.onein(10) ? c.between(-2, 6) : c.below(5), blend = c.onein(10) ? c.between(-2, 4) : c.below(3);
    const uint32_t colour = c.pixel();
    const float z = static_cast<float>(c.between(-1, 9));
    g.t.depthbuffer = c.below(2) ? g.depth.get() : nullptr;
    testmask mask;
    mask.randomise(c, 30, 50);
    mask.mask.width = c.between(-5, 55);
    mask.mask.height = c.between(-5, 35);
    const int maskx = c.coordinate(width), masky = c.coordinate(height);
    c.note("call", static_cast<int>(call), "on", width, height, "clip", clip[0], clip[1], clip[2], clip[3], "image", iw,
           ih, pitch, "pads", image.padleft, image.padtop, image.padright, image.padbottom, "at", x, y, "size", w, h,
           "tint", tint, "blend", blend, "z", z, "depth", g.t.depthbuffer != nullptr, "mask at", maskx, masky);

    const std::vector<uint32_t> before(g.colour.get(), g.colour.get() + g.pixels());
    const std::vector<float> depthbefore(g.depth.get(), g.depth.get() + g.pixels());
    std::vector<uint32_t> expected = before;
    spritereference::view v{expected.data(), nullptr, width, {clip[0], clip[1], clip[2], clip[3]}};
    const bool bare = c.onein(32);  // no colour buffer: nothing is drawn
    if (bare) g.t.colourbuffer = nullptr;
    const bool valid = tint >= 0 && tint < 5 && blend >= 0 && blend < 3 && !bare;
    const int fw = image.fullwidth(), fh = image.fullheight();
    const bool ordinary = std::abs(x) < 1000 && std::abs(y) < 1000 && w >= 0 && h >= 0 && w < 1000 && h < 1000;
    const long long repeats = fw > 0 && fh > 0 ? (w / fw + 1LL) * (h / fh + 1LL) : 0;
    bool known = true;
    auto draw = [&] {
        switch (call) {
            case spritecall::single: return drawsprite(g.t, image, x, y, tint, colour, blend, lanes);
            case spritecall::tiled: return tilesprite(g.t, image, x, y, w, h, tint, colour, blend, lanes);
            case spritecall::scaled: return drawscaled(g.t, image, x, y, w, h, tint, colour, blend, lanes);
            case spritecall::atdepth: return drawscaledatdepth(g.t, image, x, y, z, w, h, tint, colour, blend, lanes);
            default: return drawthroughmask(g.t, image, x, y, mask.mask, maskx, masky, lanes);
        }
    };
    switch (call) {
        case spritecall::single:
            if (valid) spritereference::ownsize(v, image, x, y, tint, colour, blend);
            break;
        case spritecall::tiled:
            // Every repeat in turn under the clip narrowed to the area, as the tiling is defined.
            known = !valid || fw < 1 || fh < 1 || (ordinary && repeats < 5000);
            if (valid && known && fw > 0 && fh > 0) {
                spritereference::view area = v;
                const int bounds[4] = {x, y, x + w, y + h};
                for (int k = 0; k < 4; ++k)
                    area.clip[k] = k < 2 ? std::max(clip[k], bounds[k]) : std::min(clip[k], bounds[k]);
                for (long long j = 0; j * fh < h; ++j)
                    for (long long i = 0; i * fw < w; ++i)
                        spritereference::ownsize(area, image, x + i * fw, y + j * fh, tint, colour, blend);
            }
            break;
        case spritecall::masked:
            if (!bare) spritereference::throughmask(v, image, x, y, mask.mask, maskx, masky);
            break;
        default: {
            known = !valid || (ordinary && iw > 0 && ih > 0 && fw > 0 && fh > 0);
            const int pads[4] = {image.padleft, image.padtop, image.padright, image.padbottom};
            v.depth = call == spritecall::atdepth ? g.t.depthbuffer : nullptr;
            if (valid && known)
                spritereference::scaled(v, pixels.get(), iw, ih, pitch, pads, x, y, w, h, tint, colour, blend, z);
        }
    }
    // Between the image's rows lie other values, which a draw must not read.
    auto fillgaps = [&](uint32_t value) {
        for (int j = 0; iw > 0 && j + 1 < ih; ++j)
            for (long i = iw; i < pitch; ++i) pixels[j * pitch + i] = value;
    };
    fillgaps(0);
    draw();
    EXPECT_TRUE(drewasexpected(g, before, expected, known));
    EXPECT_TRUE(std::equal(depthbefore.begin(), depthbefore.end(), g.depth.get())) << "depth written";
    EXPECT_TRUE(std::equal(clip, clip + 4, g.t.cliprect)) << "clip not restored";
    // The same draw with other values between the rows gives the same pixels, also where the
    // reference cannot follow.
    const std::vector<uint32_t> after(g.colour.get(), g.colour.get() + g.pixels());
    std::copy(before.begin(), before.end(), g.colour.get());
    fillgaps(0xFFFFFFFF);
    draw();
    EXPECT_EQ(firstdifference(g, after), -1) << "read between the image's rows";
    return after != before;
}

// Corners mostly near the target, sometimes far or at the edge of what a float holds, and shapes
// that are degenerate, thinner than a pixel, or rectangles turned at any angle.
float turnedcoordinate(testrng& r) {
    switch (r.below(30)) {
        case 0: return r.real(-1e7f, 1e7f);
        case 1: return (r.below(2) ? 1 : -1) * std::ldexp(r.real(1, 2), r.between(20, 127));
        case 2: case 3: case 4: return static_cast<float>(r.between(-3, 50));
        default: return r.real(-10, 45);
    }
}

corners turnedshape(testrng& r) {
    corners c{turnedcoordinate(r), turnedcoordinate(r), turnedcoordinate(r),
              turnedcoordinate(r), turnedcoordinate(r), turnedcoordinate(r)};
    switch (r.below(10)) {
        case 0: {  // the three corners on one line
            float t = r.real(-2, 2);
            c.x2 = c.x0 + t * (c.x1 - c.x0), c.y2 = c.y0 + t * (c.y1 - c.y0);
            break;
        }
        case 1: c.x2 = c.x0 + r.real(-0.9f, 0.9f), c.y2 = c.y0 + r.real(-0.9f, 0.9f); break;
        case 2: c.x1 = c.x2 = c.x0, c.y1 = c.y2 = c.y0; break;
        case 3: case 4: case 5: {  // turned, scaled, maybe flipped or made thin
            float a = r.real(0, 6.3f), sx = r.real(-40, 40), sy = r.real(-40, 40) * (r.onein(6) ? 0.02f : 1);
            if (r.onein(3)) c.x0 = std::round(c.x0), c.y0 = std::round(c.y0);
            c.x1 = c.x0 + std::cos(a) * sx, c.y1 = c.y0 + std::sin(a) * sx;
            c.x2 = c.x0 - std::sin(a) * sy, c.y2 = c.y0 + std::cos(a) * sy;
            break;
        }
        default: break;
    }
    return c;
}

// Sprites onto parallelograms, with and without a mask, from fenced sprites or from the target
// itself, against the pixel-by-pixel walk.
bool turned(fuzzcase& c) {
    auto size = [&] { return c.onein(10) ? 1 + c.below(7) : c.between(8, 40); };
    const int width = size(), height = size();
    testtarget g(width, height);
    fillrandom(g, c);
    if (c.onein(6)) randomclip(g.t, c);
    else clampcliprect(g.t, c.between(-5, 6), c.between(-5, 6), c.between(10, 45), c.between(10, 45));
    auto pad = [&] {
        int pick = c.below(40);
        if (pick < 2) return pick ? c.between(-1000, 1000) : c.between(INT_MIN, INT_MAX);
        return pick < 7 ? c.between(-8, 8) : 0;
    };
    const int w = c.onein(4) ? 0 : c.between(1, 20), h = c.onein(4) ? 0 : c.between(1, 20);
    guarded<uint32_t> pixels(size_t(w) * h, c.below(2) ? placement::atstart : placement::atend);
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = c();
    spriteimage image{pixels.get(), w, h, w, pad(), pad(), pad(), pad()};
    const corners shape = turnedshape(c);

    const std::vector<uint32_t> before(g.colour.get(), g.colour.get() + g.pixels());
    std::vector<uint32_t> expected = before;
    // Sometimes the target is its own sprite: each pixel is then written before the next is read.
    spriteimage sampled = image;
    if (c.onein(10)) {
        image = {g.colour.get(), width, height, width, 0, 0, 0, 0};
        sampled = {expected.data(), width, height, width, 0, 0, 0, 0};
    }
    parallelogram p;
    const bool placed = placeparallelogram(image, shape, g.t.cliprect, width, p);
    c.note("on", width, height, "sprite", w, h, "pads", image.padleft, image.padtop, image.padright, image.padbottom,
           "corners", shape.x0, shape.y0, shape.x1, shape.y1, shape.x2, shape.y2);
    if (c.below(2)) {
        const int tint = c.onein(20) ? c.between(-1, 5) : c.below(5);
        const int blend = c.onein(20) ? c.between(-1, 3) : c.below(3);
        const uint32_t tone = c();
        if (placed && tint >= 0 && tint < 5 && blend >= 0 && blend < 3)
            turnedreference::walk(p, sampled, expected.data(), width, tint, tone, blend);
        drawturned(g.t, image, shape, tint, tone, blend);
    } else {
        const int rows = c.below(51);
        guarded<int> offsets(rows), widths(rows);
        for (int r = 0; r < rows; ++r) offsets[r] = c.coordinate(width) / 2, widths[r] = c.coordinate(width);
        const int maskx = c.coordinate(width) / 2, masky = c.coordinate(height) / 4;
        const bool opaque = c.below(2);
        turnedreference::mask m{offsets.get(), widths.get(), rows, maskx, masky};
        if (placed) turnedreference::walk(p, sampled, expected.data(), width, 1, 0, opaque ? replace : blend, &m);
        drawturnedmasked(g.t, image, shape, {offsets.get(), widths.get(), rows}, maskx, masky, opaque);
        EXPECT_TRUE(offsets.intact() && widths.intact()) << "wrote into the mask";
    }
    EXPECT_TRUE(pixels.intact()) << "wrote into the sprite";
    EXPECT_TRUE(drewasexpected(g, before, expected, true));
    return firstdifference(g, before) >= 0;
}

// Fonts of random glyphs, bytes biased to 0 and 255; now and then a glyph short of bytes, empty
// or of negative size, or a table a glyph short, which leaves that glyph out.
glyphreference::font randomfont(testrng& r) {
    glyphreference::font f;
    for (int i = 0, count = 1 + r.below(5); i < count; ++i) {
        int w = 1 + r.below(13), h = 1 + r.below(13);
        if (r.onein(16)) w = r.below(2) ? 0 : -w;
        if (r.onein(16)) h = r.below(2) ? 0 : -h;
        std::vector<uint8_t> bytes(static_cast<size_t>(std::max(w, 0) * std::max(h, 0)));
        for (auto& b : bytes) b = r.byte();
        if (!bytes.empty() && r.onein(16)) bytes.pop_back();
        f.glyphs.push_back(bytes);
        f.widths.push_back(w);
        f.heights.push_back(h);
        f.tops.push_back(r.between(-6, 6));
        f.lefts.push_back(r.between(-6, 6));
    }
    if (r.onein(8)) (r.below(2) ? f.tops : f.widths).pop_back();
    if (!r.onein(8)) {
        f.palette.resize(256);
        for (auto& p : f.palette) p = r.pixel();
    }
    return f;
}

// Every entry of the three font classes, eight draws to a case.
bool fonts(fuzzcase& c) {
    int w = 1 + c.below(40), h = 1 + c.below(30);
    if (!c.onein(4)) w = std::max(w, 12), h = std::max(h, 12);
    fontscene s(w, h, randomfont(c));
    fillrandom(s.target, c);
    const std::vector<uint32_t> before(s.target.colour.get(), s.target.colour.get() + s.target.pixels());
    testmask mask;
    for (int draw = 0; draw < 8; ++draw) {
        randomclip(s.target.t, c);
        auto kind = static_cast<fontkind>(c.below(3));
        auto e = static_cast<glyphreference::entry>(c.below(3));
        const int count = static_cast<int>(s.reference.glyphs.size());
        int index = c.onein(8) ? c.between(-2, count + 1) : c.below(count);
        if (c.onein(4)) index += 65536 * c.below(3);
        const uint32_t colour = c.pixel();
        const bool mono = c.below(2);
        const int x = c.coordinate(w), y = c.coordinate(h);
        const spanmask* m = nullptr;
        if (e == glyphreference::entry::masked && !c.onein(8)) {
            mask.randomise(c, h + 4, w + 4);
            m = &mask.mask;
        }
        const int maskx = c.between(-8, w + 1), masky = c.between(-8, h + 1);
        c.note("draw", draw, "kind", static_cast<int>(kind), "entry", static_cast<int>(e), "glyph", index, "at", x, y,
               "colour", colour, "mono", mono, "mask at", maskx, masky);
        EXPECT_TRUE(s.same(kind, e, index, x, y, colour, mono, m, maskx, masky)) << "draw " << draw;
        if (::testing::Test::HasFailure()) break;
    }
    return firstdifference(s.target, before) >= 0;
}

// A render client's draws on targets with and without colour and depth, under a viewport anywhere
// around the target: nothing changes outside the clip rectangle or the buffers, only particle
// squares change depths, and free triangles and thick lines draw only where 0 is not above the
// stored depth.
struct clientscene {
    testtarget g;
    testhost host;
    rasterstatedata saved = rasterstate;
    unsigned mxcsr = _mm_getcsr();
    std::vector<uint32_t> colours;
    std::vector<float> depths;

    explicit clientscene(fuzzcase& c) : g(c.width(), 1 + c.below(21), true) {
        _mm_setcsr(librarymxcsr);
        const int w = g.t.width, h = g.t.height;
        fillrandom(g, c);
        for (int i = 0; i < g.pixels(); ++i) g.depth[i] = std::array{-1.0f, 0.0f, 0.5f, 1.0f, NAN}[c.below(5)];
        colours.assign(g.colour.get(), g.colour.get() + g.pixels());
        depths.assign(g.depth.get(), g.depth.get() + g.pixels());
        randomclip(g.t, c);
        rasterstate.targetcolour = g.t.colourbuffer = c.onein(4) ? nullptr : g.colour.get();
        rasterstate.targetdepth = g.t.depthbuffer = c.onein(2) ? nullptr : g.depth.get();
        rasterstate.targetstride = w;
        if (c.onein(2)) setviewport(0, 0, w, h, c.real(-0.5f, 0.5f), c.real(0.5f, 1.5f));
        else setviewport(c.between(-w, 2 * w), c.between(-h, 2 * h), c.between(-w, 3 * w), c.between(-h, 3 * h),
                         c.real(-0.5f, 0.5f), c.real(0.5f, 1.5f));
    }
    ~clientscene() { rasterstate = saved, _mm_setcsr(mxcsr); }

    // Whether the target changed, after checking each pixel against what the draw may do there.
    bool check(bool squares) {
        EXPECT_TRUE(g.colour.intact() && g.depth.intact()) << "wrote outside the target";
        bool changed = false;
        for (int i = 0; i < g.pixels() && !::testing::Test::HasFailure(); ++i) {
            const bool colour = g.colour[i] != colours[i], depth = memcmp(&g.depth[i], &depths[i], 4) != 0;
            const bool drawable = g.insideclip(i % g.t.width, i / g.t.width) &&
                                  (squares || !g.t.depthbuffer || 0.0f <= depths[i]);
            EXPECT_TRUE((!colour || drawable) && (!depth || (drawable && squares)))
                << (colour ? "colour" : "depth") << " changed at " << i % g.t.width << "," << i / g.t.width;
            changed |= colour || depth;
        }
        return changed;
    }
};

// Particles anywhere and of any size through a camera that mostly keeps them round the target, as
// discs and as squares of textures that the host loads with the alpha and wrap modes of their id,
// or declines.
bool particles(fuzzcase& c) {
    static const std::unique_ptr<texturestore, void (*)(texturestore*)> store(maketexturestore(256),
                                                                              destroytexturestore);
    static const std::vector<uint32_t> texels = [] {
        testrng r(1);
        std::vector<uint32_t> v(128 * 128);
        for (uint32_t& p : v) p = r.pixel();
        return v;
    }();
    clientscene s(c);
    s.host.t.textures = store.get();
    s.host.load = [](int id) {
        texturedescriptor d{};
        d.value = id % 3, d.flagfive = id & 4;
        if (id < 200) loadtexture(*store, id, d, texels.data());
        return id < 200;
    };
    toolkit& t = s.g.t;
    for (int i = 0; i < 16; ++i) t.viewprojection[i] = c.onein(8) ? c.real(-2, 2) : i % 5 ? 0.0f : c.real(-0.2f, 0.2f);
    for (int i : {0, 4, 8}) t.viewmatrix[i] = c.real(-2, 2);
    t.viewprojection[15] = 1.0f;
    const int n = 1 + c.below(24);
    std::vector<int> positions(3 * n), colours(n), sizes(n);
    std::vector<int16_t> textures(n);
    for (int i = 0; i < n; ++i) {
        for (int k = 0; k < 3; ++k)
            positions[3 * i + k] = c.onein(8) ? c.between(INT_MIN, INT_MAX) : c.between(-8, 8) << 12;
        colours[i] = static_cast<int>(c.pixel());
        sizes[i] = c.onein(8) ? c.coordinate(1 << 20) : c.between(0, 2048 * 40);
        textures[i] = static_cast<int16_t>(c.below(3) ? -1 : c.below(250));
    }
    drawparticles(t, positions.data(), colours.data(), sizes.data(), textures.data(), n);
    return s.check(true);
}

// Thick lines of any ends and width, and free Gouraud triangles of any corners.
bool thicklines(fuzzcase& c) {
    clientscene s(c);
    const int w = s.g.t.width, h = s.g.t.height;
    const uint32_t colours[3] = {c.pixel(), c.pixel(), c.pixel()};
    if (c.onein(3)) {
        float xy[6];
        for (int k = 0; k < 6; ++k) xy[k] = c.onein(16) ? c.real(-1e9f, 1e9f) : c.real(-1, 2) * (k % 2 ? h : w);
        c.note("triangle", xy[0], xy[1], xy[2], xy[3], xy[4], xy[5]);
        drawfreetriangle(xy, colours);
    } else {
        const int x1 = c.coordinate(w), y1 = c.coordinate(h), x2 = c.coordinate(w), y2 = c.coordinate(h);
        const int width = c.onein(8) ? c.coordinate(1 << 16) : c.between(-40, 40);
        c.note("thick line", x1, y1, x2, y2, "width", width);
        drawthickline(s.g.t, x1, y1, x2, y2, colours[0], width);
    }
    return s.check(false);
}

// Ground tiles of any corners, heights, depths, scales and textures on grounds of any shape, drawn
// through random cameras, fog and the distance's shade, and drawn as maps anywhere at any scale:
// nothing changes outside the clip or the buffers, and the pool's blocks stay whole.
bool grounds(fuzzcase& c) {
    // The host describes 256 textures and loads the first 200 when asked.
    static const std::unique_ptr<texturestore, void (*)(texturestore*)> store(maketexturestore(256),
                                                                              destroytexturestore);
    static const std::vector<uint32_t> texels(128 * 128, 0xFF8040C0u);
    for (int id = 0; id < 256; ++id) {
        texturedescriptor& d = store->descriptors[id] = {};
        d.type = uint8_t(id % 10), d.blend = uint8_t(id), d.bright = uint8_t(id * 3), d.hidden = id % 7 == 0;
    }
    clientscene s(c);
    s.host.t.textures = store.get();
    s.host.load = [](int id) { return id < 200 && (loadtexture(*store, id, store->descriptors[id], texels.data()), 1); };
    toolkit& t = s.g.t;
    // Room for an atlas block of tile slices, which spans every row a span can read.
    memorypool pool(1 << 18, &t);
    t.pool = &pool, t.shadowshift = 3, t.lanes = c.lanes();
    const int sizex = c.onein(16) ? 0 : 1 + c.below(6), sizez = c.onein(16) ? 0 : 1 + c.below(6),
              tilesize = c.onein(8) ? c.coordinate(1 << 20) : 32 << c.below(3);
    // A shadow map over tiles of a million units would fill the pool.
    std::unique_ptr<ground> g(makeground(t, sizex, sizez, tilesize, 0, c() & ~(tilesize > 256 ? GF_SHADOWMAP : 0)));
    for (int i = 0; i < g->heights.length(); ++i) g->heights[i] = c.onein(8) ? c.coordinate(1 << 16) : c.between(-99, 99);
    computenormals(*g, g->heights.get());
    const int n = 3 * c.below(c.onein(8) ? 120 : 24), ts = g->tilesize;
    std::vector<int32_t> v[8];  // texture ids stay among those described, whatever their high bits
    for (int i = 0; i < 8 * n; ++i)
        v[i % 8].push_back(i % 8 < 3 && c.below(16) ? c.between(0, i % 8 == 1 ? 50 : ts)
                           : i % 8 == 6 ? (c.onein(8) ? 0xFFFF : c.between(-1, 255)) | c.below(2) << 20 : c.coordinate(ts));
    auto maybe = [&](int a) { return c.onein(2) ? nullptr : v[a].data(); };
    const tilesource h{n, v[0].data(), maybe(1), v[2].data(), maybe(3), v[4].data(), maybe(5), v[6].data(), maybe(7),
                       c(), c.below(2) == 0, false};
    const bool off = c.onein(16) || !sizex || !sizez;
    const int x = off ? c.between(-1, sizex) : c.below(std::min(sizex, sizez)), z = off ? c.between(-1, sizez) : c.below(sizez);
    genericground** slot = g->slot(x, z);
    if (!slot) return false;
    // A camera tilted over the tile at any distance, or any matrix at all.
    const float cx = (float(x) + c.real(0, 1)) * float(ts), cz = (float(z) + c.real(0, 1)) * float(ts), f = c.real(0.5f, 3);
    alignas(16) float view[16] = {1, 0, 0, 0, 0, 0.6f, -0.8f, 0, 0, 0.8f, 0.6f, 0, -cx, -0.8f * cz,
                                  (c.onein(8) ? c.real(-50, 600) : c.real(10, 200)) - 0.6f * cz, 1};
    alignas(16) float projection[16] = {f, 0, 0, 0, 0, f, 0, 0, 0, 0, 1.001f, 1, 0, 0, -2.001f, 0};
    setviewmatrix(t, view), setprojectionmatrix(t, projection);
    for (int i = 0; i < 16 && c.onein(8); ++i) t.viewprojection[i] = c.real(-2, 2), t.viewmatrix[i] = c.real(-2, 2);
    t.fogoverride = c.below(2), t.fogdistance = c.onein(2) ? 0.0f : c.real(1, 3000);
    rasterstate.fogstart = c.real(0, 1.5f), rasterstate.fogscale = c.real(-4, 4);
    c.note("ground", sizex, sizez, tilesize, "tile", x, z, "faces", n / 3);
    *slot = buildtile(*g, x, z, h);
    // Lights at and past the edges, of any reach and mode, a 256th, modes and intensities short, on
    // a stream of their own so that the cases stay as they were; after the draws, removals.
    testrng l(0x116A7ull + uint64_t(c.number));
    std::vector<int32_t> modes(1 + l.below(40), 1);
    std::vector<float> levels(l.below(300), l.real(-2, 2));
    for (int i = l.onein(8) ? 257 : l.below(6), reach = int(std::min(8LL * ts, 1LL << 30)); i > 0; --i, modes[0] = l.between(-1, 7))
        addlight(*g, l.below(8), l.coordinate(reach), l.coordinate(500), l.coordinate(reach),
                 l.onein(4) ? l.between(-ts, ts / 2) : l.coordinate(reach / 2), l(), modes.data(), int(modes.size()));
    setintensities(*g, levels.data(), int(levels.size()));
    try {
        (*slot)->draw(t, *g, x, z);
    } catch (Exception* e) {
        delete e;
    }
    (*slot)->drawmap(*g, x, z, c.real(-10, 30), c.real(-10, 30), c.onein(8) ? c.real(-1e6f, 1e6f) : c.real(2, 20));
    // Footprints of any placement and size standing anywhere, on the grid, at its edges and far
    // past them, added and taken, and the tile drawn again with its slice; and the tile's own footprint.
    for (int k = c.below(4); k > 0; --k) {
        shadowmask mask(pool, c.below(24), c.below(24));
        for (int i = 0; i < mask.cells.length(); ++i) mask.cells[i] = uint8_t(c());
        mask.x = c.coordinate(64), mask.y = c.coordinate(64), mask.usedwidth = c.coordinate(64), mask.usedheight = c.coordinate(64);
        const int fx = c.onein(4) ? c.coordinate(1 << 30) : c.between(-2, sizex + 2) * ts, fz = c.between(-2, sizez + 2) * ts;
        c.note("footprint", mask.width, mask.height, mask.x, mask.y, mask.usedwidth, mask.usedheight, "at", fx, fz);
        changeshadows(*g, mask, fx, c.coordinate(512), fz, c.onein(2));
    }
    if (ts >> t.shadowshift <= 1024) delete tilefootprint(*g, **slot, x, z, nullptr);
    try {
        (*slot)->draw(t, *g, x, z);
    } catch (Exception* e) {
        delete e;
    }
    for (int i = l.below(12); i > 0; --i) removelight(*g, l.below(10));
    EXPECT_EQ(pool.verify(), nullptr);
    return s.check(true);
}

// Raster triangles of every member the buffers allow, their corners, depths and texel coordinates
// ordinary, huge, infinite or undefined, drawn without the accept test: besides what any client
// draw keeps to, nothing changes outside the viewport, and no texel is read past the texture's
// last row, which lies against an inaccessible page.
bool triangles(fuzzcase& c) {
    static const guarded<uint32_t> texels(127 * 256 + 128, placement::atend);
    clientscene s(c);
    const bool colour = s.g.t.colourbuffer, depth = s.g.t.depthbuffer;
    const float w = static_cast<float>(s.g.t.width), h = static_cast<float>(s.g.t.height);
    auto any = [&](float low, float high) {
        return c.onein(12) ? std::array{NAN, INFINITY, -INFINITY, 1e30f, -3e9f, 3e9f}[c.below(6)] : c.real(low, high);
    };
    rastertriangle t{};
    for (int v = 0; v < 3; ++v) {
        // Now and then a corner's x or y repeats the last one's, for edges of no width or height.
        for (int k = 0; k < 2; ++k) t.position[v][k] = v && c.onein(6) ? t.position[v - 1][k] : any(-w, 2 * (k ? h : w));
        t.position[v][2] = t.position[v][3] = any(-0.5f, 1.5f);
        for (int k = 0; k < 4; ++k) t.colour[v][k] = static_cast<uint16_t>(c()), t.uv[v][k] = any(-300.0f, 300.0f);
        t.shadefactor[v] = c.real(0.0f, 1.0f), t.shadetint[v] = c.real(0.0f, 65280.0f);
    }
    t.blendfactor = c.below(256) * 0x10001u;
    t.texels[0] = texels.get();
    rasterstate.fogstart = c.real(-1.0f, 1.0f), rasterstate.fogscale = c.real(0.0f, 4.0f);
    const lanewidth lanes = c.lanes();
    const trianglefunction draw =
        c.onein(4) ? rawtriangle(lanes, colour, depth)
                   : choosetriangle(lanes, recipe(c.below(4)), c.below(2) ? shading::textured : shading::gouraud,
                                    alphamode(c.below(3)), wrapmode(c.below(2)), blended(c.below(2)), colour, depth);
    if (!draw) return false;
    c.note("triangle", t.position[0][0], t.position[0][1], t.position[1][0], t.position[1][1], t.position[2][0],
           t.position[2][1]);
    draw(&t);
    const int* v = rasterstate.viewport;
    for (int i = 0; i < s.g.pixels(); ++i) {
        const long long x = i % s.g.t.width, y = i / s.g.t.width;
        const bool changed = s.g.colour[i] != s.colours[i] || memcmp(&s.g.depth[i], &s.depths[i], 4);
        EXPECT_TRUE(!changed || (x >= v[0] && y >= v[1] && x < v[0] + 0LL + v[2] && y < v[1] + 0LL + v[3]))
            << "changed " << x << "," << y << " outside the viewport";
    }
    return s.check(true);
}

// Random models of the host's sizes, textures loaded or declined, each under four random matrices
// (some not numbers, infinite, huge or singular) with random lights, fog and shade, on every form
// of target: nothing changes outside the clip or the buffers; the model is culled as its capsule
// lies outside the view; a model that passes the cull gives
// its extent and is counted, one that does not leaves the result and the count as they were; and
// the model is drawn as the references of the chosen member and of the billboards draw it, to the
// bit, where the sprite reference can follow the billboards, asking for the same textures in the
// same order.
bool models(fuzzcase& c) {
    static const std::unique_ptr<texturestore, void (*)(texturestore*)> store(maketexturestore(8),
                                                                              destroytexturestore);
    [[maybe_unused]] static const bool made = [] {
        buildtrigtables(), buildhsltorgb();
        testrng r(3);
        return filltextures(*store, 8, 6, r), true;
    }();
    clientscene s(c);
    // The current toolkit, which billboards draw through, draws into the scene's target.
    toolkit& t = s.host.t;
    t.textures = store.get(), t.lanes = c.lanes();
    t.colourbuffer = s.g.t.colourbuffer, t.depthbuffer = s.g.t.depthbuffer;
    t.width = s.g.t.width, t.height = s.g.t.height;
    std::copy(s.g.t.cliprect, s.g.t.cliprect + 4, t.cliprect);
    randomscene(t, *store, c);
    memorymanager pool{1 << 12};
    const std::unique_ptr<model> m = buildmodel(randomhostmodel(c, 8).s, pool);
    const std::unique_ptr<renderworkspace, void (*)(renderworkspace*)> w(makeworkspace(t, 0, 0), destroyworkspace);
    testtarget& g = s.g;
    const size_t n = size_t(g.pixels());
    // Mostly far depths, that faces pass, and a depth range that the screen bounds can hold.
    for (size_t i = 0; i < n; ++i) g.depth[i] = s.depths[i] = c.onein(4) ? s.depths[i] : 2.0f;
    const int* v = rasterstate.viewport;
    setviewport(v[0], v[1], v[2], v[3], c.real(-0.5f, 0.5f), c.onein(4) ? c.real(1, 1.5f) : c.real(0.5f, 1));
    for (int draw = 0; draw < 4 && !::testing::Test::HasFailure(); ++draw) {
        alignas(16) float matrix[16];
        randommatrix(matrix, c, true);
        int result[6] = {}, untouched[6] = {};
        const bool twopasses = m->hastranslucency;
        const std::vector<uint32_t> colours(g.colour.get(), g.colour.get() + n);
        const std::vector<float> depths(g.depth.get(), g.depth.get() + n);
        const size_t asked = s.host.loads.size();
        const int counted = modelcount, member = drawmodel(*m, *w, matrix, result);
        const std::vector<int> asks(s.host.loads.begin() + long(asked), s.host.loads.end());
        EXPECT_EQ(std::memcmp(result, untouched, sizeof result) != 0, member >= 0) << "draw " << draw;
        EXPECT_EQ(modelcount - counted, member >= 0) << "draw " << draw;
        EXPECT_EQ(member < 0, !m->facecount || (!rasterstate.targetcolour && !rasterstate.targetdepth) ||
                                  modelreference::culled(*m, t, matrix))
            << "draw " << draw;
        if (member < 0) continue;
        // The reference draws the model again over the target as it was.
        const std::vector<uint32_t> drawn(g.colour.get(), g.colour.get() + n);
        const std::vector<float> drawndepths(g.depth.get(), g.depth.get() + n);
        std::copy(colours.begin(), colours.end(), g.colour.get());
        std::copy(depths.begin(), depths.end(), g.depth.get());
        const modelmember chosen = modelmembers[size_t(member)];
        EXPECT_EQ(modelreference::draw(*m, t, matrix, twopasses),
                  (std::array<bool, 3>{chosen.get<memberlight>() == memberlight::pointlit,
                                       chosen.get<membershade>() == membershade::shade,
                                       chosen.get<memberfog>() == memberfog::fog}))
            << "draw " << draw;
        if (!modelreference::billboards(*m, t, matrix)) std::copy(drawn.begin(), drawn.end(), g.colour.get());
        EXPECT_TRUE(std::equal(asks.begin(), asks.end(), s.host.loads.begin() + long(asked + asks.size()),
                               s.host.loads.end())) << "textures asked for, draw " << draw;
        EXPECT_TRUE(samepixels(g, drawn)) << "draw " << draw << " member " << member;
        EXPECT_EQ(std::memcmp(drawndepths.data(), g.depth.get(), n * 4), 0) << "draw " << draw;
    }
    return s.check(true);
}

const fuzzfamily families[] = {
    {"shapes", 100000, shapes},
    {"sprites", 60000, sprites},
    {"turned", 8000, turned},
    {"fonts", 1500, fonts},
    {"particles", 10000, particles},
    {"thicklines", 20000, thicklines},
    {"triangles", 100000, triangles},
    {"models", 4000, models},
    {"grounds", 6000, grounds},
};

class fuzz : public ::testing::TestWithParam<fuzzfamily> {};

TEST_P(fuzz, drawsmatchtheirreferencesinsidethefences) { runfuzz(GetParam()); }

INSTANTIATE_TEST_SUITE_P(all, fuzz, ::testing::ValuesIn(families),
                         [](const ::testing::TestParamInfo<fuzzfamily>& info) { return std::string(info.param.name); });

}  // namespace
