// The solid-colour write rules that all 2D drawing of the toolkit shares (`blendmode`).
#pragma once
#include <cstdint>

#include "util/exception.h"

enum blendmode : int { replace = 0, blend = 1, add = 2 };

// Mode 1 with an opaque colour and mode 0 both store the colour as it stands.
inline bool isstore(int mode, uint32_t colour) { return mode == replace || (mode == blend && colour >> 24 == 255); }

inline void checkblendmode(int mode) {
    if (mode < replace || mode > add) fail<IllegalArgumentException>();
}

// The colour's half of a blend; it is the same for every pixel of a shape, so made once.
struct blendsource {
    uint32_t term;     // colour channels times alpha, with alpha in the top byte
    uint32_t inverse;  // 256 - alpha, the weight of the old pixel
    explicit blendsource(uint32_t c) {
        uint32_t a = c >> 24;
        term = ((c & 0xFF00FF) * a >> 8 & 0xFF00FF) + ((c & 0xFF00) * a >> 8 & 0xFF00) + (a << 24);
        inverse = 256 - a;
    }
    // The old pixel's alpha is dropped.
    uint32_t operator()(uint32_t d) const {
        return ((d & 0xFF00FF) * inverse >> 8 & 0xFF00FF) + ((d & 0xFF00) * inverse >> 8 & 0xFF00) + term;
    }
};

// Red, green and blue saturate at 255; alpha adds with wrap.
inline uint32_t addsaturate(uint32_t d, uint32_t c) {
    uint32_t s = d + c;
    uint32_t rb = (c & 0xFF00FF) + (d & 0xFF00FF);
    uint32_t k = ((s - rb) & 0x10000) + (rb & 0x1000100);
    return (k - (k >> 8)) | (s - k);
}

// The rules as functions of the old pixel, for the per-pixel paths of shapes.
struct storerule {
    uint32_t colour;
    uint32_t operator()(uint32_t) const { return colour; }
};
struct addrule {
    uint32_t colour;
    uint32_t operator()(uint32_t d) const { return addsaturate(d, colour); }
};

// Calls draw with the rule of a valid mode; an opaque blend is a store.
template <class Draw>
void withblendrule(int mode, uint32_t colour, Draw&& draw) {
    if (isstore(mode, colour)) draw(storerule{colour});
    else if (mode == blend) draw(blendsource(colour));
    else draw(addrule{colour});
}
