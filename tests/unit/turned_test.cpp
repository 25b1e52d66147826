// Sprites drawn onto parallelograms: the placement's steps and centring on shapes whose result is
// known exactly, the sampled positions against the exact inverse mapping, and the row walk against
// the pixel-by-pixel reference over many shapes, with and without a mask.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <random>
#include <vector>

#include "guarded.h"
#include "sprite/drawturned.h"
#include "toolkit/blend.h"
#include "turnedreference.h"

namespace {

struct scene {
    int width, height;
    std::vector<uint32_t> colour;
    toolkit t{};
    scene(int w, int h, uint32_t fill = 0) : width(w), height(h), colour(size_t(w) * h, fill) {
        t.width = w;
        t.height = h;
        t.colourbuffer = colour.data();
        setcliprect(t, 0, 0, w, h);
    }
    uint32_t at(int x, int y) const { return colour[size_t(y) * width + x]; }
};

// An opaque image whose every pixel tells its own column and row.
struct codedimage {
    int width, height;
    std::vector<uint32_t> pixels;
    codedimage(int w, int h) : width(w), height(h), pixels(size_t(w) * h) {
        for (int r = 0; r < h; ++r)
            for (int c = 0; c < w; ++c) pixels[size_t(r) * w + c] = code(c, r);
    }
    static uint32_t code(int c, int r) { return 0xFF000000u | uint32_t(r) << 12 | uint32_t(c); }
    spriteimage image(int l = 0, int t = 0, int r = 0, int b = 0) const {
        return {pixels.data(), width, height, width, l, t, r, b};
    }
};

constexpr int plain = 1;

// Draws by store and checks every target pixel against `expect`, which gives the source pixel
// (column, row) that lands at (x, y), or false where nothing lands.
void expectmapping(const codedimage& source, corners c, const spriteimage& image,
                   const std::function<bool(int x, int y, int& col, int& row)>& expect) {
    scene s(48, 40);
    drawturned(s.t, image, c, plain, 0, replace);
    for (int y = 0; y < s.height; ++y)
        for (int x = 0; x < s.width; ++x) {
            int col, row;
            uint32_t want = expect(x, y, col, row) ? codedimage::code(col, row) : 0;
            ASSERT_EQ(s.at(x, y), want) << "at " << x << "," << y << " size " << source.width << "x" << source.height;
        }
}

TEST(turneddraw, uprightflippedandquarterturnedcopiesareexact) {
    for (int w : {6, 7})
        for (int h : {4, 5}) {
            codedimage src(w, h);
            const float x = 10, y = 5;
            parallelogram p;
            int clip[4] = {0, 0, 48, 40};
            ASSERT_TRUE(placeparallelogram(src.image(), {x, y, x + w, y, x, y + h}, clip, 48, p));
            EXPECT_EQ(p.du, 4096);
            EXPECT_EQ(p.dv, 0);
            EXPECT_EQ(p.duy, 0);
            EXPECT_EQ(p.dvy, 4096);
            auto inside = [&](int X, int Y) { return X >= 10 && X < 10 + w && Y >= 5 && Y < 5 + h; };
            expectmapping(src, {x, y, x + w, y, x, y + h}, src.image(), [&](int X, int Y, int& c, int& r) {
                c = X - 10, r = Y - 5;
                return inside(X, Y);
            });
            // Swapped corners sample from the far side, to the last pixel inside.
            expectmapping(src, {x + w, y, x, y, x + w, y + h}, src.image(), [&](int X, int Y, int& c, int& r) {
                c = 10 + w - 1 - X, r = Y - 5;
                return inside(X, Y);
            });
            expectmapping(src, {x, y + h, x + w, y + h, x, y}, src.image(), [&](int X, int Y, int& c, int& r) {
                c = X - 10, r = 5 + h - 1 - Y;
                return inside(X, Y);
            });
            // A quarter turn clockwise: the top edge runs down the right side.
            expectmapping(src, {x + h, y, x + h, y + w, x, y}, src.image(), [&](int X, int Y, int& c, int& r) {
                c = Y - 5, r = 10 + h - 1 - X;
                return X >= 10 && X < 10 + h && Y >= 5 && Y < 5 + w;
            });
            // Pads place the image inside the full rectangle, scaled with it.
            expectmapping(src, {x, y, x + w + 5, y, x, y + h + 4}, src.image(2, 1, 3, 3), [&](int X, int Y, int& c, int& r) {
                c = X - 12, r = Y - 6;
                return X >= 12 && X < 12 + w && Y >= 6 && Y < 6 + h;
            });
            // Doubled: the centre of an odd size sits half a source pixel left of (above) the middle,
            // so the first target column (row) falls outside the image and one more lies inside.
            expectmapping(src, {x, y, 2 * w + x, y, x, 2 * h + y}, src.image(), [&](int X, int Y, int& c, int& r) {
                double u = ((w & ~1) - w + X - 10 + 0.5) / 2, v = ((h & ~1) - h + Y - 5 + 0.5) / 2;
                c = int(std::floor(u)), r = int(std::floor(v));
                return u >= 0 && u < w && v >= 0 && v < h && X < 10 + 2 * w && Y < 5 + 2 * h;
            });
        }
}

// Pads that cancel on each axis leave the corners where they are; pads on one axis alone move
// them on both.
TEST(turneddraw, padssummingtozerocountasnone) {
    codedimage src(8, 6);
    int clip[4] = {0, 0, 48, 40};
    corners c{3.25f, 2.5f, 20.75f, 9.125f, -1.5f, 14.0f};
    parallelogram plainp, padded;
    ASSERT_TRUE(placeparallelogram(src.image(), c, clip, 48, plainp));
    ASSERT_TRUE(placeparallelogram(src.image(3, -2, -3, 2), c, clip, 48, padded));
    EXPECT_EQ(std::memcmp(&plainp, &padded, sizeof plainp), 0);
    ASSERT_TRUE(placeparallelogram(src.image(3, 0, -3, 1), c, clip, 48, padded));
    EXPECT_NE(padded.dvy, plainp.dvy);
}

// Each pixel drawn samples the image near where the exact inverse mapping puts it: within half a
// pixel of nearest sampling, half a pixel for the centre of an odd size, and the sixteenth-pixel
// start and 1/4096 steps. The start is set for the bounding box's corner while its rows begin at
// the corner's whole part, so every pixel is sampled at its centre moved by the corner's fraction.
// The count drawn is the image's area on the target up to its border.
TEST(turneddraw, samplesfollowtheexactinversemapping) {
    std::mt19937 random(5);
    auto real = [&](double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(random); };
    for (int round = 0; round < 200; ++round) {
        int w = 1 + int(random() % 20), h = 1 + int(random() % 20);
        int pads[4] = {int(random() % 4), int(random() % 4), int(random() % 4), int(random() % 4)};
        codedimage src(w, h);
        spriteimage image = src.image(pads[0], pads[1], pads[2], pads[3]);
        double fw = image.fullwidth(), fh = image.fullheight();
        double angle = real(0, 2 * M_PI), scale = real(0.6, 2.5), shear = round % 3 ? 0 : real(-0.5, 0.5);
        double ex = std::cos(angle) * scale, ey = std::sin(angle) * scale;
        double gx = -ey + shear * ex, gy = ex + shear * ey;
        double x0 = real(0, 48), y0 = real(0, 40);
        corners c{float(x0), float(y0), float(x0 + ex * fw), float(y0 + ey * fw), float(x0 + gx * fh), float(y0 + gy * fh)};
        scene s(48, 40);
        drawturned(s.t, image, c, plain, 0, replace);
        // Image coordinates of a target point: solve it as corner 0 + a * edge 1 + b * edge 2 of
        // the full rectangle, less the pads.
        double e1x = c.x1 - c.x0, e1y = c.y1 - c.y0, e2x = c.x2 - c.x0, e2y = c.y2 - c.y0;
        double det = e1x * e2y - e2x * e1y;
        auto imageat = [&](double x, double y, double& a, double& b) {
            double px = x - c.x0, py = y - c.y0;
            a = (px * e2y - py * e2x) / det * fw - pads[0];
            b = (e1x * py - e1y * px) / det * fh - pads[1];
        };
        double minx = 1e9, miny = 1e9;
        for (double a : {0.0, double(w)})
            for (double b : {0.0, double(h)}) {
                double pa = (a + pads[0]) / fw, pb = (b + pads[1]) / fh;
                minx = std::min(minx, c.x0 + pa * e1x + pb * e2x);
                miny = std::min(miny, c.y0 + pa * e1y + pb * e2y);
            }
        double fx = std::max(0.0, minx) - std::floor(std::max(0.0, minx));
        double fy = std::max(0.0, miny) - std::floor(std::max(0.0, miny));
        // A corner this close to a whole pixel may round to it in float, or not.
        bool nearwhole = std::min(fx, 1 - fx) < 1e-3 || std::min(fy, 1 - fy) < 1e-3;
        int drawn = 0;
        for (int y = 0; y < s.height; ++y)
            for (int x = 0; x < s.width; ++x) {
                if (!s.at(x, y)) continue;
                ++drawn;
                if (nearwhole) continue;
                double a, b;
                imageat(x + 0.5 + fx, y + 0.5 + fy, a, b);
                uint32_t v = s.at(x, y);
                double col = (v & 0xFFF) + 0.5, row = (v >> 12 & 0xFFF) + 0.5;
                ASSERT_LE(std::abs(col - a), 1.15) << "round " << round << " at " << x << "," << y;
                ASSERT_LE(std::abs(row - b), 1.15) << "round " << round << " at " << x << "," << y;
            }
        double area = 0, border = 2 * (w * std::hypot(ex, ey) + h * std::hypot(gx, gy));
        for (double y = 0.1; y < 40; y += 0.2)
            for (double x = 0.1; x < 48; x += 0.2) {
                double a, b;
                imageat(x, y, a, b);
                if (a >= 0 && a < w && b >= 0 && b < h) area += 0.04;
            }
        EXPECT_NEAR(drawn, area, border + 4) << "round " << round;
    }
}

// Shapes for the walk: rotations at a dense set of angles, flips, shears, scales up and down,
// pads, odd and even sizes, partly and wholly clipped, thinner than a pixel.
struct shape {
    std::vector<uint32_t> pixels;
    spriteimage image;
    corners c;
};

shape makeshape(std::mt19937& random, int round, int targetw, int targeth) {
    auto real = [&](double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(random); };
    auto between = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(random); };
    shape s;
    int w = between(1, 24), h = between(1, 24);
    s.pixels.resize(size_t(w) * h);
    for (uint32_t& p : s.pixels) p = random() % 4 ? uint32_t(random()) : random() % 2 ? 0 : 0xFF000000u | uint32_t(random());
    s.image = {s.pixels.data(), w, h, w, 0, 0, 0, 0};
    if (round % 4 == 1) s.image.padleft = between(-3, 5), s.image.padtop = between(-3, 5), s.image.padright = between(-3, 5),
                        s.image.padbottom = between(-3, 5);
    double fw = s.image.fullwidth(), fh = s.image.fullheight();
    double angle = round * 2 * M_PI / 97;  // every angle differs from the last by a few degrees
    if (round % 7 == 0) angle = (round / 7 % 4) * M_PI / 2;
    double scale = round % 5 == 0 ? real(0.05, 0.5) : real(0.5, 3);
    double sx = scale, sy = scale * (round % 6 == 0 ? real(0.02, 0.2) : real(0.5, 1.5));
    if (round % 3 == 0) sx = -sx;  // flipped
    double shear = round % 8 == 0 ? real(-1, 1) : 0;
    double ex = std::cos(angle) * sx, ey = std::sin(angle) * sx;
    double gx = -std::sin(angle) * sy + shear * ex, gy = std::cos(angle) * sy + shear * ey;
    double cx = real(-8, targetw + 8), cy = real(-8, targeth + 8);
    double x0 = cx - (ex * fw + gx * fh) / 2, y0 = cy - (ey * fw + gy * fh) / 2;
    if (round % 9 == 0) x0 = std::round(x0), y0 = std::round(y0);
    s.c = {float(x0), float(y0), float(x0 + ex * fw), float(y0 + ey * fw), float(x0 + gx * fh), float(y0 + gy * fh)};
    return s;
}

// Draws a random shape into a random target by `draw` and into a copy by `reference`, which walks
// the library's placement pixel by pixel; true when the draw changed the target.
template <class Draw, class Reference>
bool matchesreference(std::mt19937& random, int round, Draw draw, Reference reference) {
    scene s(40, 32);
    for (uint32_t& p : s.colour) p = random();
    setcliprect(s.t, random() % 8, random() % 8, 40 - random() % 8, 32 - random() % 8);
    shape sh = makeshape(random, round, 40, 32);
    const std::vector<uint32_t> before = s.colour;
    std::vector<uint32_t> expect = s.colour;
    parallelogram p;
    if (placeparallelogram(sh.image, sh.c, s.t.cliprect, s.width, p)) reference(p, sh.image, expect.data());
    draw(s.t, sh);
    EXPECT_EQ(s.colour, expect) << "round " << round;
    return s.colour != before;
}

TEST(turneddraw, walkmatchesthereferenceforeveryrule) {
    std::mt19937 random(17);
    int drawing = 0;
    for (int round = 0; round < 900 && !HasFailure(); ++round) {
        int tint = round % 15 / 3, blend = round % 3;
        uint32_t colour = random();
        drawing += matchesreference(
            random, round, [&](const toolkit& t, const shape& sh) { drawturned(t, sh.image, sh.c, tint, colour, blend); },
            [&](const parallelogram& p, const spriteimage& image, uint32_t* expect) {
                turnedreference::walk(p, image, expect, 40, tint, colour, blend);
            });
    }
    EXPECT_GT(drawing, 450);  // most shapes meet the target; the rest are thin or off it
}

TEST(turneddraw, maskedwalkmatchesthereferenceinbothwriteforms) {
    std::mt19937 random(23);
    auto between = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(random); };
    int drawing = 0;
    for (int round = 0; round < 900 && !HasFailure(); ++round) {
        int rows = between(0, 40);
        std::vector<int> offsets(rows), widths(rows);
        for (int r = 0; r < rows; ++r) offsets[r] = between(-8, 16), widths[r] = between(-2, 40);
        int maskx = between(-8, 12), masky = between(-8, 12);
        bool opaque = round % 2;
        turnedreference::mask m{offsets.data(), widths.data(), rows, maskx, masky};
        drawing += matchesreference(
            random, round,
            [&](const toolkit& t, const shape& sh) {
                drawturnedmasked(t, sh.image, sh.c, {offsets.data(), widths.data(), rows}, maskx, masky, opaque);
            },
            [&](const parallelogram& p, const spriteimage& image, uint32_t* expect) {
                turnedreference::walk(p, image, expect, 40, plain, 0, opaque ? replace : blend, &m);
            });
    }
    EXPECT_GT(drawing, 250);  // many shapes meet the mask
}

// A sprite that is its own target: each pixel is written before the next one is read, as one
// pixel at a time defines it.
TEST(turneddraw, animagedrawnintoitselfgoespixelbypixel) {
    std::mt19937 random(29);
    auto real = [&](double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(random); };
    constexpr int w = 24, h = 20;
    for (int round = 0; round < 200; ++round) {
        std::vector<uint32_t> drawn(w * h), expect;
        for (uint32_t& p : drawn) p = random();
        expect = drawn;
        toolkit t{};
        t.width = w;
        t.height = h;
        t.colourbuffer = drawn.data();
        setcliprect(t, 0, 0, w, h);
        double angle = real(0, 2 * M_PI), scale = real(0.5, 1.5), x0 = real(0, w), y0 = real(0, h);
        double ex = std::cos(angle) * scale * w, ey = std::sin(angle) * scale * w;
        double gx = -std::sin(angle) * scale * h, gy = std::cos(angle) * scale * h;
        corners c{float(x0), float(y0), float(x0 + ex), float(y0 + ey), float(x0 + gx), float(y0 + gy)};
        int tint = round % 5, blend = round % 3;
        drawturned(t, {drawn.data(), w, h, w, 0, 0, 0, 0}, c, tint, 0x80402010u, blend);
        parallelogram p;
        spriteimage itself{expect.data(), w, h, w, 0, 0, 0, 0};
        if (placeparallelogram(itself, c, t.cliprect, w, p))
            turnedreference::walk(p, itself, expect.data(), w, tint, 0x80402010u, blend);
        ASSERT_EQ(drawn, expect) << "round " << round;
    }
}

// On a target past 2^24 pixels the float sum of the first index lands a pixel to the right; on the
// last row that must not carry a write past the buffer.
TEST(turneddraw, arowstartroundedrightstaysinsidethebuffer) {
    constexpr int width = 4096, height = 4097;
    guarded<uint32_t> buffer(size_t(width) * height);
    toolkit t{};
    t.width = width;
    t.height = height;
    t.colourbuffer = buffer.get();
    setcliprect(t, 0, 0, width, height);
    codedimage src(width - 7, 1);
    drawturned(t, src.image(), {7, 4096, 4096, 4096, 7, 4097}, plain, 0, replace);
    EXPECT_TRUE(buffer.intact());
    size_t row = size_t(width) * 4096;
    EXPECT_EQ(buffer[row + 8], codedimage::code(0, 0));
    EXPECT_EQ(buffer[row + width - 1], codedimage::code(width - 9, 0));
}

}  // namespace
