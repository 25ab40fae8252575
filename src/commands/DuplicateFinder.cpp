#include "commands/DuplicateFinder.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <numeric>

#include "host/LowerCase.h"

namespace veltarn {
namespace {

// Cells are this many tolerances wide: an object near a cell's side also looks in the cell next
// to it, which is rare when the cells are wide against the tolerance.
constexpr double kCellsPerTolerance = 16;
constexpr std::uint32_t kEmpty = std::numeric_limits<std::uint32_t>::max();

std::uint64_t mix(std::uint64_t h, std::uint64_t v) {
    h ^= v + 0x9e3779b97f4a7c15ull + (h << 6) + (h >> 2);
    h ^= h >> 31;
    h *= 0xbf58476d1ce4e5b9ull;
    return h ^ (h >> 29);
}

bool near(double a, double b, double tolerance) { return std::fabs(a - b) <= tolerance; }
bool near(const host::Point3d& a, const host::Point3d& b, double tolerance) {
    return near(a.x, b.x, tolerance) && near(a.y, b.y, tolerance) && near(a.z, b.z, tolerance);
}
bool near(const host::SegmentShape& a, const host::SegmentShape& b, double tolerance) {
    return near(a.bulge, b.bulge, tolerance) && near(a.startWidth, b.startWidth, tolerance) &&
           near(a.endWidth, b.endWidth, tolerance);
}
// What a segment carries when its polyline is drawn the other way round.
host::SegmentShape reversed(const host::SegmentShape& s) { return {-s.bulge, s.endWidth, s.startWidth}; }

// Open addressing from a cell's key to the first object in it; the rest are chained through `next`.
class CellTable {
public:
    explicit CellTable(std::size_t objects) {
        std::size_t capacity = 16;
        while (capacity < 2 * objects)
            capacity *= 2;
        keys_.resize(capacity);
        heads_.assign(capacity, kEmpty);
        next_.assign(objects, kEmpty);
        mask_ = capacity - 1;
    }
    void insert(std::uint64_t key, std::uint32_t object) {
        std::size_t slot = key & mask_;
        while (heads_[slot] != kEmpty && keys_[slot] != key)
            slot = (slot + 1) & mask_;
        keys_[slot] = key;
        next_[object] = heads_[slot];
        heads_[slot] = object;
    }
    std::uint32_t first(std::uint64_t key) const {
        for (std::size_t slot = key & mask_; heads_[slot] != kEmpty; slot = (slot + 1) & mask_)
            if (keys_[slot] == key) return heads_[slot];
        return kEmpty;
    }
    std::uint32_t next(std::uint32_t object) const { return next_[object]; }

private:
    std::vector<std::uint64_t> keys_;
    std::vector<std::uint32_t> heads_;
    std::vector<std::uint32_t> next_;
    std::size_t mask_ = 0;
};

class UnionFind {
public:
    explicit UnionFind(std::size_t n) : parent_(n) { std::iota(parent_.begin(), parent_.end(), 0u); }
    std::uint32_t root(std::uint32_t x) {
        while (parent_[x] != x)
            x = parent_[x] = parent_[parent_[x]];
        return x;
    }
    void join(std::uint32_t a, std::uint32_t b) {
        a = root(a);
        b = root(b);
        if (a != b) parent_[std::max(a, b)] = std::min(a, b);
    }

private:
    std::vector<std::uint32_t> parent_;
};

}  // namespace

DuplicateFinder::DuplicateFinder(double tolerance) : tolerance_(std::max(tolerance, 0.0)) {}

void DuplicateFinder::add(int entityClass, std::wstring_view layer, const host::EntityShape& shape) {
    std::wstring key = host::toLower(layer);
    auto [at, added] = layers_.try_emplace(std::move(key), static_cast<int>(layers_.size()));
    Item item{};
    item.entityClass = entityClass;
    item.layer = at->second;
    item.exactHash = shape.exactHash;
    item.firstPoint = static_cast<std::uint32_t>(points_.size());
    item.pointCount = static_cast<std::uint32_t>(shape.points.size());
    item.firstSegment = static_cast<std::uint32_t>(segments_.size());
    item.firstValue = static_cast<std::uint32_t>(values_.size());
    item.valueCount = static_cast<std::uint32_t>(shape.values.size());
    item.hasSegments = !shape.segments.empty() && shape.segments.size() == shape.points.size();
    item.reversible = shape.reversible && shape.points.size() > 1;
    points_.insert(points_.end(), shape.points.begin(), shape.points.end());
    if (item.hasSegments) segments_.insert(segments_.end(), shape.segments.begin(), shape.segments.end());
    values_.insert(values_.end(), shape.values.begin(), shape.values.end());
    items_.push_back(item);
}

bool DuplicateFinder::sameParts(const Item& a, const Item& b) const {
    return a.entityClass == b.entityClass && a.layer == b.layer && a.exactHash == b.exactHash &&
           a.pointCount == b.pointCount && a.valueCount == b.valueCount && a.hasSegments == b.hasSegments;
}

bool DuplicateFinder::sameOrder(const Item& a, const Item& b, bool reverse) const {
    const std::uint32_t n = a.pointCount;
    for (std::uint32_t k = 0; k < n; ++k) {
        const std::uint32_t other = reverse ? n - 1 - k : k;
        if (!near(points_[a.firstPoint + k], points_[b.firstPoint + other], tolerance_)) return false;
    }
    if (!a.hasSegments) return true;
    // An open polyline's last vertex starts no segment: what it carries is not drawn.
    const std::uint32_t drawn = a.reversible && b.reversible ? n - 1 : n;
    for (std::uint32_t k = 0; k < drawn; ++k) {
        const host::SegmentShape& mine = segments_[a.firstSegment + k];
        const host::SegmentShape& theirs =
            reverse ? reversed(segments_[b.firstSegment + n - 2 - k]) : segments_[b.firstSegment + k];
        if (!near(mine, theirs, tolerance_)) return false;
    }
    return true;
}

bool DuplicateFinder::same(std::size_t ia, std::size_t ib) const {
    const Item& a = items_[ia];
    const Item& b = items_[ib];
    if (!sameParts(a, b)) return false;
    for (std::uint32_t k = 0; k < a.valueCount; ++k)
        if (!near(values_[a.firstValue + k], values_[b.firstValue + k], tolerance_)) return false;
    if (sameOrder(a, b, false)) return true;
    return a.reversible && b.reversible && sameOrder(a, b, true);
}

// The point the grid files an object under: its first point, or for one that may be drawn the other
// way round the middle of its ends, which both directions share.
host::Point3d DuplicateFinder::anchor(const Item& item) const {
    if (item.pointCount == 0) return {};
    const host::Point3d& first = points_[item.firstPoint];
    if (!item.reversible) return first;
    const host::Point3d& last = points_[item.firstPoint + item.pointCount - 1];
    return {(first.x + last.x) / 2, (first.y + last.y) / 2, (first.z + last.z) / 2};
}

std::vector<std::vector<std::size_t>> DuplicateFinder::groups() const {
    const std::size_t n = items_.size();
    // A tolerance of 0 still needs cells of some size; equal coordinates share one whatever it is.
    const double cell = tolerance_ > 0 ? tolerance_ * kCellsPerTolerance : 1.0;
    // The sides within the tolerance (and a little rounding) of which an object also looks next door.
    const double margin = tolerance_ * (1 + 1e-9) + std::numeric_limits<double>::min();

    auto partsKey = [](const Item& item) {
        std::uint64_t h = mix(static_cast<std::uint64_t>(item.entityClass), static_cast<std::uint64_t>(item.layer));
        h = mix(h, item.exactHash);
        return mix(h, (std::uint64_t{item.pointCount} << 32) ^ item.valueCount ^ (item.hasSegments ? 1ull << 63 : 0));
    };
    auto cellKey = [](std::uint64_t parts, const double(&c)[3]) {
        std::uint64_t h = parts;
        for (double v : c)
            h = mix(h, std::bit_cast<std::uint64_t>(v + 0.0));  // -0 and 0 alike
        return h;
    };

    std::vector<std::uint64_t> parts(n);
    std::vector<std::array<double, 3>> cells(n);
    CellTable table(n);
    for (std::size_t i = 0; i < n; ++i) {
        const host::Point3d a = anchor(items_[i]);
        parts[i] = partsKey(items_[i]);
        cells[i] = {std::floor(a.x / cell), std::floor(a.y / cell), std::floor(a.z / cell)};
        const double c[3] = {cells[i][0], cells[i][1], cells[i][2]};
        table.insert(cellKey(parts[i], c), static_cast<std::uint32_t>(i));
    }

    UnionFind links(n);
    std::vector<bool> linked(n, false);
    for (std::size_t i = 0; i < n; ++i) {
        const host::Point3d a = anchor(items_[i]);
        const double coordinate[3] = {a.x, a.y, a.z};
        // Per axis the own cell and, near a side, the cell beyond it.
        double choices[3][2];
        int counts[3];
        for (int axis = 0; axis < 3; ++axis) {
            const double own = cells[i][axis];
            choices[axis][0] = own;
            counts[axis] = 1;
            if (tolerance_ <= 0) continue;
            const double low = own * cell, high = (own + 1) * cell;
            if (coordinate[axis] - low <= margin)
                choices[axis][counts[axis]++] = own - 1;
            else if (high - coordinate[axis] <= margin)
                choices[axis][counts[axis]++] = own + 1;
        }
        for (int x = 0; x < counts[0]; ++x)
            for (int y = 0; y < counts[1]; ++y)
                for (int z = 0; z < counts[2]; ++z) {
                    const double c[3] = {choices[0][x], choices[1][y], choices[2][z]};
                    for (std::uint32_t j = table.first(cellKey(parts[i], c)); j != kEmpty; j = table.next(j)) {
                        // Each pair once, from its first object, which also looks into the other's cell.
                        if (j <= i || parts[j] != parts[i] || !same(i, j)) continue;
                        links.join(static_cast<std::uint32_t>(i), j);
                        linked[i] = linked[j] = true;
                    }
                }
    }

    std::vector<std::vector<std::size_t>> out;
    std::unordered_map<std::uint32_t, std::size_t> groupOfRoot;
    for (std::size_t i = 0; i < n; ++i) {
        if (!linked[i]) continue;
        auto [at, added] = groupOfRoot.try_emplace(links.root(static_cast<std::uint32_t>(i)), out.size());
        if (added) out.emplace_back();
        out[at->second].push_back(i);
    }
    return out;
}

std::vector<std::size_t> erasedOfGroup(const DuplicateFinder& finder, const std::vector<std::size_t>& group,
                                       const std::vector<DuplicateData>& data) {
    std::vector<std::size_t> erased;
    std::vector<std::size_t> remaining(group.size());  // positions in `group`
    std::iota(remaining.begin(), remaining.end(), std::size_t{0});
    auto better = [&](std::size_t a, std::size_t b) {
        if (data[a].rank != data[b].rank) return data[a].rank > data[b].rank;
        return data[a].order < data[b].order;
    };
    while (remaining.size() > 1) {
        const std::size_t kept = *std::min_element(remaining.begin(), remaining.end(), better);
        std::vector<std::size_t> rest;
        for (std::size_t k : remaining) {
            if (k == kept) continue;
            // Records go only with an object whose kept twin carries the same.
            const bool dataSafe = data[k].records < 0 || data[k].records == data[kept].records;
            if (dataSafe && finder.same(group[k], group[kept]))
                erased.push_back(group[k]);
            else
                rest.push_back(k);
        }
        remaining = std::move(rest);
    }
    std::sort(erased.begin(), erased.end());
    return erased;
}

}  // namespace veltarn
