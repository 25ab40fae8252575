#include "cad/seam/EntityShapeAccess.h"

#include <string_view>

#include "cad/db/EntityProperties.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/kinds/EntityKindOps.h"
#include "cad/dxf/NumberText.h"

namespace veltarn::seam {
namespace {

constexpr int kNormal = db::gc::kNormalX;
constexpr int kBlockName = 2;
constexpr int kFlagsLast = 78;
constexpr int kRealLast = 48;
constexpr int kAngleLast = 58;
constexpr int kCoordinateLast = 38;  // Z of the last point code; 38 alone is an elevation
constexpr std::string_view kCommonSubclass = "AcDbEntity";

// FNV-1a over the tags that must agree exactly.
class ExactHash {
public:
    void add(int code, std::string_view value) {
        mix(static_cast<unsigned char>(code & 0xff));
        mix(static_cast<unsigned char>(code >> 8));
        for (char c : value)
            mix(static_cast<unsigned char>(c));
        mix(0);
    }
    std::uint64_t value() const { return hash_; }

private:
    void mix(unsigned char c) {
        hash_ ^= c;
        hash_ *= 1099511628211ull;
    }
    std::uint64_t hash_ = 14695981039346656037ull;
};

bool isPointCode(int code) { return code >= db::gc::kPointFirst && code <= db::gc::kPointLast; }
bool isNumberCode(int code) {
    return (code >= db::gc::kReal && code <= kRealLast) || (code >= db::gc::kAngle && code <= kAngleLast);
}
// Per-vertex numbers of polylines (widths and bulge), which their vertices already give.
bool isVertexNumber(int code) { return code >= db::gc::kReal && code <= db::gc::kReal3; }

// The tags after `at` that hold the Y and Z of the point whose X is at `at`.
std::size_t coordinatesAfter(const db::TagList& tags, std::size_t at) {
    const int code = tags[at].code;
    std::size_t n = 0;
    if (at + 1 < tags.size() && tags[at + 1].code == code + 10) {
        ++n;
        if (at + 2 < tags.size() && tags[at + 2].code == code + 20) ++n;
    }
    return n;
}

void readTags(const db::TagList& tags, bool fromVertices, host::EntityShape& shape) {
    const bool markers = tags.hasMarkers();
    ExactHash hash;
    bool common = false, appGroup = false, xdata = false;
    for (std::size_t i = 1; i < tags.size(); ++i) {
        const int code = tags[i].code;
        const std::string_view value = tags[i].value;
        if (code == db::gc::kStructure) {
            // What the entity carries follows (VERTEX of a polyline, ATTRIB of a block reference).
            if (fromVertices) break;
            hash.add(code, value);
            common = appGroup = xdata = false;
            continue;
        }
        if (code == db::gc::kSubclass) {
            common = value == kCommonSubclass;
            continue;
        }
        if (code == db::gc::kControlString) {
            appGroup = value.starts_with('{');
            continue;
        }
        if (code >= db::gc::kXdataFirst) xdata = true;
        if (common || appGroup || xdata) continue;
        // Without markers the common properties are mixed in; only the linetype scale looks like
        // geometry.
        if (!markers && code == db::gc::kLinetypeScale) continue;

        if (isPointCode(code) || code == kNormal) {
            const std::size_t skip = coordinatesAfter(tags, i);
            const db::Point3 p = tags.pointAt(i).value_or(db::Point3{});
            i += skip;
            if (code == kNormal)
                shape.values.insert(shape.values.end(), {p.x, p.y, p.z});
            else if (!fromVertices)
                shape.points.push_back({p.x, p.y, p.z});
        } else if (code > db::gc::kPointLast && code <= kCoordinateLast) {
            shape.values.push_back(dxf::parseReal(value).value_or(0));
        } else if (isNumberCode(code)) {
            if (!(fromVertices && isVertexNumber(code))) shape.values.push_back(dxf::parseReal(value).value_or(0));
        } else if (code == db::gc::kText || code == kBlockName || code == db::gc::kMoreText) {
            hash.add(code, value);
        } else if (code >= db::gc::kFlags && code <= kFlagsLast) {
            // An absent flag is 0: only set ones count, so that writing zeros out makes no difference.
            if (dxf::parseInteger(value).value_or(0) != 0) hash.add(code, value);
        }
    }
    shape.exactHash = hash.value();
}

}  // namespace

std::optional<host::EntityShape> entityShape(const db::TagList& tags) {
    if (tags.empty()) return std::nullopt;
    host::EntityShape shape;
    const db::EntityKindOps* kind = db::kindOf(tags);
    const bool fromVertices = kind && kind->vertices;
    if (fromVertices) {
        for (const db::Vertex& v : kind->vertices(tags)) {
            shape.points.push_back({v.point.x, v.point.y, v.point.z});
            shape.segments.push_back({v.bulge, v.startWidth, v.endWidth});
        }
    }
    readTags(tags, fromVertices, shape);
    shape.reversible = kind && kind->reversible && !db::closed(tags).value_or(false);
    return shape;
}

}  // namespace veltarn::seam
