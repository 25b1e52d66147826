// Where sprites drawn onto parallelograms land: shapes whose result is known exactly, and the
// sampled positions against the exact inverse mapping. The fuzz test holds the row walk to the
// pixel-by-pixel reference, which takes the placement as given.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <random>
#include <vector>

#include "sprite/drawturned.h"
#include "sprite/parallelogram.h"
#include "target.h"
#include "toolkit/blend.h"

namespace {

// A cleared 48 by 40 target.
struct scene : testtarget {
    const int width = 48, height = 40;
    scene() : testtarget(48, 40) { std::fill(colour.get(), colour.get() + pixels(), 0u); }
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
void expectmapping(corners c, const spriteimage& image,
                   const std::function<bool(int x, int y, int& col, int& row)>& expect) {
    scene s;
    drawturned(s.t, image, c, plain, 0, replace);
    ASSERT_TRUE(s.colour.intact());
    for (int y = 0; y < s.height; ++y)
        for (int x = 0; x < s.width; ++x) {
            int col, row;
            uint32_t want = expect(x, y, col, row) ? codedimage::code(col, row) : 0;
            ASSERT_EQ(s.at(x, y), want) << "at " << x << "," << y << " size " << image.width << "x" << image.height;
        }
}

TEST(turneddraw, uprightflippedandquarterturnedcopiesareexact) {
    for (int w : {6, 7})
        for (int h : {4, 5}) {
            codedimage src(w, h);
            const float x = 10, y = 5;
            // Corners, pads, the covered rectangle's corner and size, and the source column and
            // row at its (dx, dy) as c0 + cx * dx + cy * dy. Swapped corners sample from the far
            // side, to its last pixel; a quarter turn clockwise runs the top edge down the right
            // side; pads place the image inside the full rectangle, scaled with it.
            struct exact {
                corners c;
                spriteimage image;
                int left, top, across, down, c0, cx, cy, r0, rx, ry;
            } cases[] = {
                {{x, y, x + w, y, x, y + h}, src.image(), 10, 5, w, h, 0, 1, 0, 0, 0, 1},
                {{x + w, y, x, y, x + w, y + h}, src.image(), 10, 5, w, h, w - 1, -1, 0, 0, 0, 1},
                {{x, y + h, x + w, y + h, x, y}, src.image(), 10, 5, w, h, 0, 1, 0, h - 1, 0, -1},
                {{x + h, y, x + h, y + w, x, y}, src.image(), 10, 5, h, w, 0, 0, 1, h - 1, -1, 0},
                {{x, y, x + w + 5, y, x, y + h + 4}, src.image(2, 1, 3, 3), 12, 6, w, h, 0, 1, 0, 0, 0, 1},
            };
            for (const exact& e : cases)
                expectmapping(e.c, e.image, [&](int X, int Y, int& c, int& r) {
                    int dx = X - e.left, dy = Y - e.top;
                    c = e.c0 + e.cx * dx + e.cy * dy, r = e.r0 + e.rx * dx + e.ry * dy;
                    return dx >= 0 && dx < e.across && dy >= 0 && dy < e.down;
                });
            // Doubled: the centre of an odd size sits half a source pixel left of (above) the middle,
            // so the first target column (row) falls outside the image and one more lies inside.
            expectmapping({x, y, 2 * w + x, y, x, 2 * h + y}, src.image(), [&](int X, int Y, int& c, int& r) {
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
        corners c{float(x0),          float(y0),          float(x0 + ex * fw),
                  float(y0 + ey * fw), float(x0 + gx * fh), float(y0 + gy * fh)};
        scene s;
        drawturned(s.t, image, c, plain, 0, replace);
        double e1x = c.x1 - c.x0, e1y = c.y1 - c.y0, e2x = c.x2 - c.x0, e2y = c.y2 - c.y0;
        double det = e1x * e2y - e2x * e1y;
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
        if (std::min(fx, 1 - fx) < 1e-3 || std::min(fy, 1 - fy) < 1e-3) continue;
        for (int y = 0; y < s.height; ++y)
            for (int x = 0; x < s.width; ++x) {
                uint32_t v = s.at(x, y);
                if (!v) continue;
                // Solve the sampled point as corner 0 + a * edge 1 + b * edge 2 of the full
                // rectangle, less the pads.
                double px = x + 0.5 + fx - c.x0, py = y + 0.5 + fy - c.y0;
                double a = (px * e2y - py * e2x) / det * fw - pads[0], b = (e1x * py - e1y * px) / det * fh - pads[1];
                ASSERT_LE(std::abs((v & 0xFFF) + 0.5 - a), 1.15) << "round " << round << " at " << x << "," << y;
                ASSERT_LE(std::abs((v >> 12 & 0xFFF) + 0.5 - b), 1.15) << "round " << round << " at " << x << "," << y;
            }
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
