// A point or vector in drawing units.
#pragma once

namespace veltarn::host {

struct Point3d {
    double x = 0;
    double y = 0;
    double z = 0;

    friend constexpr bool operator==(const Point3d&, const Point3d&) = default;
};

}  // namespace veltarn::host
