// The templates of the members and the table of one file of them: each file that builds members
// includes this and defines its table.
#pragma once
#include "raster/members.h"
#include "raster/span.h"
#include "raster/triangle.h"

template <class File>
constexpr File buildmembers() {
    return {dispatchtable<File::triangles>([]<trianglemember M>() { return drawtriangle<M>; }),
            dispatchtable<File::spans>([]<spanmember M>() { return drawspan<M>; })};
}
