#include "sprite/spriterows.h"

constinit const rowtables narrowrows = spriterows<lanes4>::tables();

const rowtables* spriterowtables = widerows() ? widerows() : &narrowrows;

const rowtables& rowsfor(const toolkit& t, const spriteimage& image) {
    auto begin = reinterpret_cast<uintptr_t>(image.pixels);
    auto end = begin + static_cast<uintptr_t>(std::max(image.height, 0)) * static_cast<uintptr_t>(std::max(image.pitch, 0L)) * 4;
    auto targetbegin = reinterpret_cast<uintptr_t>(t.colourbuffer);
    auto targetend = targetbegin + static_cast<uintptr_t>(std::max(t.width, 0)) * static_cast<uintptr_t>(std::max(t.height, 0)) * 4;
    return begin < targetend && targetbegin < end ? narrowrows : *spriterowtables;
}
