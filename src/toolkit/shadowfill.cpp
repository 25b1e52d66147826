#include "toolkit/shadowfill.h"

#include <emmintrin.h>

#include <algorithm>
#include <cstring>

#include "raster/cornerorder.h"
#include "toolkit/toolkit.h"
#include "util/truncate.h"

namespace {

// Rows [y, y + rows) between the two edges, each left where its next row starts. A row runs on
// into the next at the pitch; cells past the mask's block are not written.
void fillrows(long long cellcount, long long y, long long rows, float& left, float leftstep, float& right,
              float rightstep) {
    uint8_t* cells = reinterpret_cast<uint8_t*>(rasterstate.targetcolour);
    const long long pitch = rasterstate.targetstride;
    for (long long end = y + rows; y < end; ++y) {
        const long long from = std::max(y * pitch + truncate(left), 0LL);
        const long long to = std::min(y * pitch + truncate(right), cellcount);
        if (to > from) std::memset(cells + from, 1, static_cast<size_t>(to - from));
        left += leftstep, right += rightstep;
    }
}

void filltriangle(long long cellcount, const int corners[3][2]) {
    const int y0 = corners[0][1], y1 = corners[1][1], y2 = corners[2][1];
    int order[3];
    cornerorder(y0, y1, y2, order);
    float x[3];
    int row[3];
    for (int i = 0; i < 3; ++i) {
        x[i] = static_cast<float>(corners[order[i]][0]);
        row[i] = corners[order[i]][1];
    }
    // Steps of top-middle, top-bottom, middle-bottom, each height at least 0.000001 (bits 0x358637BD).
    const __m128 heights = _mm_cvtepi32_ps(_mm_setr_epi32(row[1] - row[0], row[2] - row[0], row[2] - row[1], 0));
    alignas(16) float reciprocal[4];
    _mm_store_ps(reciprocal, _mm_rcp_ps(_mm_max_ps(heights, _mm_castsi128_ps(_mm_set1_epi32(0x358637BD)))));
    const float tm = (x[1] - x[0]) * reciprocal[0], tb = (x[2] - x[0]) * reciprocal[1],
                mb = (x[2] - x[1]) * reciprocal[2];

    const rasterstatedata& state = rasterstate;
    const long long bottom =
        std::min(state.viewport[1] + state.viewport[3], state.rasterclip[1] + state.rasterclip[3]);
    long long y = row[0], skip = 0;
    if (y < state.viewport[1]) skip = state.viewport[1] - y, y = state.viewport[1];
    if (y < state.rasterclip[1]) skip += state.rasterclip[1] - y, y = state.rasterclip[1];
    long long rows = std::min(static_cast<long long>(row[1]), bottom) - y;

    const bool tbleft = tm > tb;
    float leftstep = tbleft ? tb : tm, rightstep = tbleft ? tm : tb;
    const float skipped = static_cast<float>(skip);
    float left = x[0] + skipped * leftstep, right = x[0] + skipped * rightstep;
    long long skip2 = 0, lower = static_cast<long long>(row[2]) - row[1];
    if (rows > 0) {
        fillrows(cellcount, y, rows, left, leftstep, right, rightstep);
        y += rows;
    } else {
        skip2 = -rows;
        lower += rows;
    }
    rows = std::min(lower, bottom - y);
    if (rows <= 0) return;
    // The lower half replaces the side that ran to the middle corner.
    const float start = x[1] + static_cast<float>(skip2) * mb;
    if (tb > mb)
        right = start, rightstep = mb;
    else
        left = start, leftstep = mb;
    fillrows(cellcount, y, rows, left, leftstep, right, rightstep);
}

}  // namespace

void fillshadowtriangle(shadowmask& mask, const int corners[3][2]) {
    rasterstatedata& state = rasterstate;
    uint32_t* const colour = state.targetcolour;
    const int stride = state.targetstride, width = state.viewport[2];
    state.targetcolour = reinterpret_cast<uint32_t*>(mask.cells.get());
    state.targetstride = mask.width;
    state.viewport[2] = mask.width;
    filltriangle(mask.cells.length(), corners);
    state.targetcolour = colour;
    state.targetstride = stride;
    state.viewport[2] = width;
}

void fillfacingtriangle(shadowmask& mask, const int c[3][2]) {
    const long long turn = static_cast<long long>(c[1][1] - c[2][1]) * (c[0][0] - c[1][0]) -
                           static_cast<long long>(c[1][1] - c[0][1]) * (c[2][0] - c[1][0]);
    if (turn > 0) fillshadowtriangle(mask, c);
}
