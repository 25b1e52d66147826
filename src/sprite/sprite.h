// The sprite: a 32-bit ARGB image in native memory, straight (not premultiplied) colour, with four
// signed pads that say how much blank margin belongs to it. Peer of the host's `fa`.
#pragma once
#include <jni.h>

#include <cstdint>

struct sprite {
    int padleft, padtop, padright, padbottom;
    int width, height;
    int stride;         // pixels per row of the block; always `width`
    uint32_t* pixels;   // width * height pixels, 16-byte aligned

    int fullwidth() const { return padleft + padright + width; }
    int fullheight() const { return padtop + padbottom + height; }
};
