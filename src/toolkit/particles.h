// Particles: points of the world drawn as discs or as textured squares facing the camera, sized
// by a distance along the camera's x axis.
#pragma once
#include <cstdint>

#include "toolkit/toolkit.h"

// Where a particle lands: its centre truncated to pixels, its mapped depth, and its size d in
// pixels (a NaN size gives the integer indefinite value, which stays negative).
struct particleplace {
    int x, y;
    float z;
    int d;
};

// Projects one particle, its position three ints with 12 fraction bits and its size in 1/2048
// of a world unit. False when its centre lies outside the screen bounds or its size comes to 0.
bool placeparticle(const toolkit& t, const int* position, int size, particleplace& out);

// Draws count particles into the current target: texture id -1 makes a disc blended with the
// colour, any other a square of that texture tinted with it. A texture the store cannot give
// skips its particle.
void drawparticles(toolkit& t, const int* positions, const int* colours, const int* sizes, const int16_t* textures,
                   int count);
