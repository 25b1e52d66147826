#include "sprite/spriterows.h"

constinit const rowtables narrowrows = spriterows<lanes4>::tables();

namespace {

// The bytes of `rows` rows `pitch` pixels apart from `start`, as addresses.
struct span {
    uintptr_t begin, end;
    span(const uint32_t* start, long rows, long pitch)
        : begin(reinterpret_cast<uintptr_t>(start)),
          end(begin + static_cast<uintptr_t>(std::max(rows, 0L)) * static_cast<uintptr_t>(std::max(pitch, 0L)) * 4) {}
};

}  // namespace

const rowtables& rowsfor(const toolkit& t, const spriteimage& image, lanewidth lanes) {
    span source(image.pixels, image.height, image.pitch), target(t.colourbuffer, t.height, t.width);
    return source.begin < target.end && target.begin < source.end ? narrowrows : rowtablesof(lanes);
}
