// The geometry of an entity as plain numbers, for comparing entities without knowing their kinds:
// what tells two objects drawn one on top of the other.
#pragma once

#include <cstdint>
#include <vector>

#include "host/Point3d.h"

namespace veltarn::host {

// What a vertex of a polyline carries for the segment that starts at it.
struct SegmentShape {
    double bulge = 0;
    double startWidth = 0;
    double endWidth = 0;

    friend constexpr bool operator==(const SegmentShape&, const SegmentShape&) = default;
};

struct EntityShape {
    // Its points in drawing order (polyline vertices, a line's ends, a centre, an insertion point).
    std::vector<Point3d> points;
    // One per point for entities with vertices, empty otherwise.
    std::vector<SegmentShape> segments;
    // The other geometric numbers in the order the entity stores them: radius, angles, heights,
    // scale factors, rotation, its normal.
    std::vector<double> values;
    // A hash of what must agree exactly: text contents, block and attribute names, flags.
    std::uint64_t exactHash = 0;
    // The points in the other order (with the segments' bulges negated and widths swapped) draw
    // the same shape: an open line or polyline.
    bool reversible = false;
};

}  // namespace veltarn::host
