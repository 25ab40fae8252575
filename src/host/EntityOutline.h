// What an entity looks like as GIS geometry, in drawing units (WCS): a point, lines, or a
// polygon's rings, its curves already broken into straight pieces. What an export writes.
#pragma once

#include <vector>

#include "host/Point3d.h"

namespace veltarn::host {

struct EntityOutline {
    enum class Kind { kPoint, kLine, kPolygon };
    Kind kind = Kind::kPoint;
    // kPoint: one part of one point. kLine: one polyline a part, each of at least two points.
    // kPolygon: its rings, the outer one first, each of at least three points; a ring does NOT
    // repeat its first point at its end (a writer that needs closed rings adds it). The outer
    // ring runs counter-clockwise seen from above, the others clockwise.
    std::vector<std::vector<Point3d>> parts;
};

}  // namespace veltarn::host
