#include "cad/db/Transform.h"

#include <cmath>
#include <numbers>

namespace veltarn::db {

Point3 operator+(const Point3& a, const Point3& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
Point3 operator-(const Point3& a, const Point3& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
Point3 operator*(const Point3& a, double k) { return {a.x * k, a.y * k, a.z * k}; }
double dot(const Point3& a, const Point3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Point3 cross(const Point3& a, const Point3& b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }
double length(const Point3& a) { return std::sqrt(dot(a, a)); }
Point3 normalized(const Point3& a) {
    double l = length(a);
    return l > 0 ? a * (1 / l) : Point3{0, 0, 1};
}

Ocs::Ocs(const Point3& normal) : z(normalized(normal)) {
    constexpr double kNear = 1.0 / 64;  // the arbitrary axis algorithm's threshold
    Point3 reference = std::abs(z.x) < kNear && std::abs(z.y) < kNear ? Point3{0, 1, 0} : Point3{0, 0, 1};
    x = normalized(cross(reference, z));
    y = normalized(cross(z, x));
}

Affine Affine::then(const Affine& next) const {
    Affine out;
    for (int i = 0; i < 3; ++i) out.column[i] = next.vector(column[i]);
    out.offset = next.apply(offset);
    return out;
}

Affine Affine::blockReference(const Point3& base, const Point3& scale, double rotationDegrees, const Point3& insertion, const Point3& normal) {
    double a = rotationDegrees * std::numbers::pi / 180;
    Ocs ocs(normal);
    Affine m;
    m.column[0] = ocs.toWcs({std::cos(a) * scale.x, std::sin(a) * scale.x, 0});
    m.column[1] = ocs.toWcs({-std::sin(a) * scale.y, std::cos(a) * scale.y, 0});
    m.column[2] = ocs.toWcs({0, 0, scale.z});
    m.offset = ocs.toWcs(insertion) - m.vector(base);
    return m;
}

}  // namespace veltarn::db
