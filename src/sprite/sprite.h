// The sprite: a 32-bit ARGB image in native memory, straight (not premultiplied) colour, with four
// signed pads that say how much blank margin belongs to it. Peer of the host's `fa`.
#pragma once
#include <cstdint>

struct sprite {
    int padleft, padtop, padright, padbottom;
    int width, height;
    int stride;         // pixels per row of the block; always `width`
    uint32_t* pixels;   // width * height pixels, 16-byte aligned

    int fullwidth() const { return padleft + padright + width; }
    int fullheight() const { return padtop + padbottom + height; }
};

// What a draw reads of an image: its pixels and their row pitch, and the pads that place it in
// its full rectangle. Sprites give theirs; model billboards draw from a texture's pixels.
struct spriteimage {
    const uint32_t* pixels;
    int width, height;
    long pitch;
    int padleft, padtop, padright, padbottom;

    int fullwidth() const { return padleft + padright + width; }
    int fullheight() const { return padtop + padbottom + height; }
};

inline spriteimage imageof(const sprite& s) {
    return {s.pixels, s.width, s.height, s.stride, s.padleft, s.padtop, s.padright, s.padbottom};
}

// A zeroed record with an uninitialised block of width * height pixels.
sprite* makesprite(int width, int height);
void destroysprite(sprite* s);

// Copies a w by h block from `source` (rows `pitch` pixels apart) to (x, y) of the sprite. With
// `key`, a source word of 0 stays 0 and any other word is stored opaque.
void copyblock(sprite& s, int x, int y, int w, int h, const uint32_t* source, long pitch, bool key);

// Builds the pixels from palette indices, rows `scan` bytes apart. Without `alpha`, index 0 is
// transparent and the rest opaque; with it, each pixel takes its alpha from the same position.
void buildfrompalette(sprite& s, const int32_t* palette, const uint8_t* indices, const uint8_t* alpha, int scan);

// Replaces the alpha of every pixel from the buffer at `source` (rows `pitch` apart): channel 3
// makes a mask of the non-zero words, 0 to 2 take the red, green or blue byte.
void rewritealpha(sprite& s, const uint32_t* source, long pitch, int channel);
