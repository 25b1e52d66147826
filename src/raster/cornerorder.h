// Top, middle and bottom corner of a triangle by their rows, found by one chain of comparisons in
// a fixed order: ties fall as the chain makes them, and nothing else breaks them.
#pragma once

template <class T>
inline void cornerorder(T y0, T y1, T y2, int order[3]) {
    if (y1 > y0) {
        if (y2 > y1)
            order[0] = 0, order[1] = 1, order[2] = 2;
        else if (y2 > y0)
            order[0] = 0, order[1] = 2, order[2] = 1;
        else
            order[0] = 2, order[1] = 0, order[2] = 1;
    } else if (y2 > y0) {
        order[0] = 1, order[1] = 0, order[2] = 2;
    } else if (y2 > y1) {
        order[0] = 1, order[1] = 2, order[2] = 0;
    } else {
        order[0] = 2, order[1] = 1, order[2] = 0;
    }
}
