// The templates of the members and the table of one file of them: each file that builds members
// includes this and defines its table, at one lane width.
#pragma once
#include "raster/members.h"
#include "raster/span.h"
#include "raster/triangle.h"

template <class File, class V, class F>
constexpr File buildmembers() {
    return {dispatchtable<File::triangles>([]<trianglemember M>() { return drawtriangle<M, V, F>; }),
            dispatchtable<File::spans>([]<spanmember M>() { return drawspan<M, V, F>; })};
}
