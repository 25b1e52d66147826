// The textures that drawing samples: the host keeps them all, the store keeps 200 of them ready
// as smoothed 128 by 128 images in one atlas, and asks the host for a texture the moment drawing
// needs one that isn't there. A texture is named by a 16-bit id; 0xFFFF names none.
#pragma once
#include <cstdint>

#include "util/hostseam.h"

inline constexpr int textureslots = 200;
inline constexpr int texturesize = 128;  // pixels on a side
inline constexpr int atlaspitch = 256;   // pixels from one row of a texture to the next
inline constexpr int notexture = 0xFFFF;
inline constexpr uint8_t noslot = 0xFF;  // also the empty mark of `idofslot`

// How the host describes a texture. Fields without a stated use are carried for the host.
struct texturedescriptor {
    uint16_t averagecolour;  // HSL16 code of the average colour, for the ground's map draw
    int value;               // alpha mode of textured spans: 2 alpha, 1 key, any other opaque
    uint8_t type;            // 4, 8 and 9: blended ground faces; 6: a model face kept from relighting
    uint8_t bytetwo;
    int colour;
    bool flagone;
    uint8_t blend, bright;   // grey-mix weight and brightening of a textured colour
    int8_t speedu, speedv;   // animation, one 128-texel period in 64 s per unit; non-zero animates
    bool hidden;             // counts as no texture where the ground or model asks for simple ones
    bool flagthree;          // drops a model face
    bool flagfour;
    bool flagfive, flagsix;  // u and v repeat; otherwise the edge texel is clamped
    uint8_t bytefive;
    bool flagseven, flageight;
    int tail;
};

// One slot of the store: the descriptor of the texture it holds, its animation offsets and its
// image.
struct texturerecord : texturedescriptor {
    alignas(16) float offsetu[4];  // four equal lanes, for four-lane reads
    alignas(16) float offsetv[4];
    uint8_t queued;                // in `animated`, waiting for the next tick
    uint32_t* pixels;              // the slot's image in the atlas, rows `atlaspitch` apart
};

struct alignas(16) texturestore {
    uint32_t* atlas;  // 64-byte aligned, not cleared; slot s at row (s / 2) * 128, column (s & 1) * 128
    texturerecord records[textureslots];
    texturedescriptor* descriptors;  // the host's, by id; undefined until the host gives one
    uint8_t slotofid[65536];
    uint16_t idofslot[textureslots];
    // The slots from least to most recently used, linked both ways by slot number.
    uint8_t oldest, newest;
    uint8_t nextslot[textureslots];  // towards newest
    uint8_t prevslot[textureslots];  // towards oldest
    uint8_t animatedcount;
    uint8_t animated[textureslots];  // slots used since the last tick that animate
    hostobject* source;  // weak: the object the toolkit was made with; nothing calls it
};

// A store with `count` descriptors and every slot empty, in order from 0 oldest to 199 newest;
// null when its memory cannot be had. The caller sets `source`.
texturestore* maketexturestore(int count);
void destroytexturestore(texturestore* s);

// The texture of the current toolkit's store, asking the host to load it when it isn't there,
// and now the most recently used; null for 0xFFFF or when the host doesn't load it. Only the low
// 16 bits of `id` count. An animated texture is queued for the next tick.
texturerecord* gettexture(int id);

// The host's description of a texture, whether it is loaded or not; null for 0xFFFF. The id is
// not checked against the host's count.
const texturedescriptor* getdescriptor(int id);

// Loads a texture into the least recently used slot, which stays where it is in the order: the
// gettexture that asked for the load moves it. `pixels` are 128 rows of 128.
void loadtexture(texturestore& s, int id, const texturedescriptor& d, const uint32_t* pixels);

// Moves the textures queued since the last tick to their place at `tick` milliseconds.
void animatetextures(texturestore& s, int tick);
