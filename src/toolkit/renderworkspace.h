// One render client, peer of the host's `a`: the scratch memory that model drawing needs, kept
// here so that a draw allocates nothing. The sizes are hard limits on what one draw may use.
#pragma once
#include <cstdint>

#include "toolkit/toolkit.h"
#include "util/memory/ringlink.h"

inline constexpr int workspacevertices = 16768;
inline constexpr int workspacestamps = 10000;

// Its two links are its node in the toolkit's `clients`.
struct alignas(16) renderworkspace : ringlink {
    ::toolkit* toolkit;  // current when the workspace was made
    int limitone, limittwo;
    alignas(16) float vertices[workspacevertices][4];  // projected x, y, z, z of each model vertex
    float heights[workspacevertices];                   // minus the world y of each vertex, for shade
    uint16_t stamp;                                     // frame stamp of shared light
    uint16_t stampsone[workspacestamps], stampstwo[workspacestamps];
    alignas(16) float reserved[3][4];  // carried for the layout; nothing reads it
};

// A zeroed workspace with stamp 1, linked first into t's clients; null if memory is short.
renderworkspace* makeworkspace(::toolkit& t, int limitone, int limittwo);
void destroyworkspace(renderworkspace* w);
