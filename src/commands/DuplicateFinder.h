// Finding objects drawn one on top of the other and choosing which of them go, apart from the
// drawing: the duplicate commands feed it shapes and the object data of the few that match.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/EntityShape.h"

namespace veltarn {

class DuplicateFinder {
public:
    // Numbers of two objects agree when they differ by at most `tolerance`; below 0 is 0.
    explicit DuplicateFinder(double tolerance);

    // Adds the next object (numbered from 0 in the order added): its type, its layer (any case)
    // and its geometry.
    void add(int entityClass, std::wstring_view layer, const host::EntityShape& shape);
    std::size_t size() const { return items_.size(); }

    // Whether objects a and b have the same type, layer and exact parts and every coordinate and
    // number within the tolerance, in the same order or, when both may be reversed, the other.
    bool same(std::size_t a, std::size_t b) const;

    // Objects linked by `same`, each group in ascending numbers, groups by their first member;
    // objects without a duplicate are in none. Expected linear time: objects are hashed on their
    // exact parts and a grid cell of their first point, and compared only within neighbouring cells.
    std::vector<std::vector<std::size_t>> groups() const;

private:
    struct Item {
        int entityClass;
        int layer;
        std::uint64_t exactHash;
        std::uint32_t firstPoint, pointCount;
        std::uint32_t firstSegment;  // segments, when there are any, are one per point
        std::uint32_t firstValue, valueCount;
        bool hasSegments;
        bool reversible;
    };
    bool sameParts(const Item& a, const Item& b) const;
    bool sameOrder(const Item& a, const Item& b, bool reversed) const;
    host::Point3d anchor(const Item& item) const;

    double tolerance_;
    std::vector<Item> items_;
    std::vector<host::Point3d> points_;
    std::vector<host::SegmentShape> segments_;
    std::vector<double> values_;
    std::unordered_map<std::wstring, int> layers_;  // lower-case name to number
};

// What decides which object of a group stays.
struct DuplicateData {
    // 2: a record of a class the loaded classifier knows; 1: other records; 0: none.
    int rank = 0;
    // Equal numbers for equal records (same tables and values); -1 without records.
    int records = -1;
    // Position in model space: the first stays among equals.
    std::size_t order = 0;
};

// The members of `group` that go, ascending: per round the best-ranked remaining member stays and
// those that are the same as it and carry no records or its records go; what disagrees with it is
// judged again among the rest. data[k] belongs to group[k].
std::vector<std::size_t> erasedOfGroup(const DuplicateFinder& finder, const std::vector<std::size_t>& group,
                                       const std::vector<DuplicateData>& data);

}  // namespace veltarn
