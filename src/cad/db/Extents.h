// The 2D box an entity covers: what window and crossing selection compare.
#pragma once

#include <algorithm>

namespace veltarn::db {

struct Extents {
    double minX = 0, minY = 0, maxX = 0, maxY = 0;

    void add(double x, double y) {
        minX = std::min(minX, x);
        maxX = std::max(maxX, x);
        minY = std::min(minY, y);
        maxY = std::max(maxY, y);
    }
    bool inside(const Extents& box) const {
        return minX >= box.minX && maxX <= box.maxX && minY >= box.minY && maxY <= box.maxY;
    }
    bool overlaps(const Extents& box) const {
        return minX <= box.maxX && maxX >= box.minX && minY <= box.maxY && maxY >= box.minY;
    }
};

}  // namespace veltarn::db
