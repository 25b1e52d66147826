// A tile cut along one of its diagonals, so that every face lies on one side of the line and a
// light can stop there: made from an uploaded tile when a light of one side first reaches it.
#pragma once
#include <memory>

#include "ground/tile.h"

// Which side of a tile's diagonal a point at offsets (ax, az) from its corner is on: bit 0 the
// side of `az >= ax` or `ax + az <= 128.001`, bit 1 the side of `ax >= az` or `ax + az >= 127.99`.
// A point on the line is on both. The anti-diagonal's 128 holds whatever the tile's size.
inline int sideof(bool anti, float ax, float az) {
    if (anti) {
        const float s = ax + az;
        return (s <= 128.001f) | (s >= 127.99f) << 1;
    }
    return (az >= ax) | (ax >= az) << 1;
}

// Modes 3 and 5 light a side of the line x + z = 128, the others one of x = z.
inline bool antidiagonal(int mode) { return mode == 3 || mode == 5; }

// The class of a face whose corners lie on `sides` (the sides all three share): 4 or 3 on the low
// side, 2 or 5 on the high one, 1 across the line.
inline uint8_t faceclassof(bool anti, int sides) {
    return sides & 1 ? (anti ? 3 : 4) : sides & 2 ? (anti ? 5 : 2) : 1;
}

class splitground : public complexground {
public:
    // The faces of `uncut` cut along the line of `anti`, its corner at world (ox, oz).
    splitground(complexground* uncut, const ground& g, float ox, float oz, bool anti);

    // A map shows the tile as uploaded.
    void drawmap(ground& g, int x, int z, float mx, float fy, float step) override;

    std::unique_ptr<complexground> inner;
};

// Replaces the tile in `slot` by a split one for a first light of `mode` and classes its faces,
// if any face is drawn at all.
void splittile(const ground& g, genericground** slot, int x, int z, int mode);
