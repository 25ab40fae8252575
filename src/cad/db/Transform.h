// Affine maps of 3D space and DXF's object coordinate systems (OCS): what explode needs to place a
// block's entities where a block reference shows them.
#pragma once

#include "cad/db/TagList.h"

namespace veltarn::db {

Point3 operator+(const Point3& a, const Point3& b);
Point3 operator-(const Point3& a, const Point3& b);
Point3 operator*(const Point3& a, double k);
double dot(const Point3& a, const Point3& b);
Point3 cross(const Point3& a, const Point3& b);
double length(const Point3& a);
Point3 normalized(const Point3& a);

// The axes of the OCS of an extrusion direction, by DXF's arbitrary axis algorithm.
struct Ocs {
    Point3 x, y, z;
    explicit Ocs(const Point3& normal);
    Point3 toWcs(const Point3& p) const { return x * p.x + y * p.y + z * p.z; }
    Point3 fromWcs(const Point3& p) const { return {dot(p, x), dot(p, y), dot(p, z)}; }
};

// p -> linear * p + offset; `column[i]` is the image of the i-th unit vector.
struct Affine {
    Point3 column[3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    Point3 offset;

    Point3 apply(const Point3& p) const { return vector(p) + offset; }
    Point3 vector(const Point3& v) const { return column[0] * v.x + column[1] * v.y + column[2] * v.z; }
    double determinant() const { return dot(column[0], cross(column[1], column[2])); }
    Affine then(const Affine& next) const;  // this map, then `next`
    // A block reference's map: block base point to the origin, scale, rotate (degrees), move to the
    // insertion point (in the OCS of `normal`).
    static Affine blockReference(const Point3& base, const Point3& scale, double rotationDegrees, const Point3& insertion, const Point3& normal);
};

}  // namespace veltarn::db
