// Stand-in for the texture store's interface until the store itself lands: the descriptor and
// record layouts and the two look-ups that model code reads.
#pragma once
#include <cstdint>

#include "toolkit/toolkit.h"

struct texturedescriptor {
    uint16_t averagecolour;
    int value;  // 2 alpha, 1 key, otherwise opaque
    uint8_t type, bytetwo;
    int colour;
    uint8_t flagone;
    uint8_t blend, bright;
    int8_t speedu, speedv;
    uint8_t hidden, flagthree, flagfour, flagfive, flagsix;
    uint8_t bytefive;
    uint8_t flagseven, flageight;
    int tail;
};

struct alignas(16) texturerecord : texturedescriptor {
    alignas(16) float offsetu[4];
    alignas(16) float offsetv[4];
    uint8_t queued;
    const uint32_t* pixels;
};

struct texturestore {
    texturedescriptor* descriptors;
};

// Null for the id 0xFFFF; no bound check otherwise.
inline const texturedescriptor* getdescriptor(int id) {
    if (id == 0xFFFF) return nullptr;
    return currenttoolkit->textures->descriptors + id;
}

texturerecord* gettexture(int id);
