#include "cad/db/Geometry.h"

#include "cad/db/GroupCodes.h"
#include "cad/db/kinds/EntityKindOps.h"
#include "cad/db/kinds/KindSupport.h"
#include "cad/dxf/NumberText.h"

namespace veltarn::db {

using kind_support::dataEnd;

std::string_view geometrySubclass(std::string_view type) {
    static const TagList kNoTags;
    if (const EntityKindOps* kind = kindOf(type, kNoTags)) return kind->geometrySubclass;
    return {};
}

// --- Polylines --------------------------------------------------------------------------------------

std::vector<Vertex> polylineVertices(const TagList& tags) {
    const EntityKindOps* kind = kindOf(tags);
    return kind && kind->vertices ? kind->vertices(tags) : std::vector<Vertex>{};
}

bool setPolylineVertices(Database& db, TagList& tags, const std::vector<Vertex>& vertices) {
    const EntityKindOps* kind = kindOf(tags);
    return kind && kind->setVertices && kind->setVertices(db, tags, vertices);
}

// --- Point lists -------------------------------------------------------------------------------------

std::vector<Point3> pointList(const TagList& tags, std::string_view marker, int code) {
    std::vector<Point3> out;
    auto [from, to] = tags.subclass(marker);
    if (from == TagList::npos) return out;
    for (std::size_t i = from; i < to; ++i)
        if (tags[i].code == code) out.push_back(tags.pointAt(i).value_or(Point3{}));
    return out;
}

bool setPointList(TagList& tags, std::string_view marker, int code, const std::vector<Point3>& points) {
    std::string_view type = tags.type();
    int countCode = type == "SPLINE" && code == 10 ? 73 : type == "SPLINE" && code == 11 ? 74 : type == "WIPEOUT" && code == 14 ? 91 : 0;
    if (countCode == 0) return false;  // kinds whose points carry per-point data are not rewritten this way
    auto [from, to] = tags.subclass(marker);
    if (from == TagList::npos) return false;
    std::size_t at = tags.find(code, from, to);
    if (at == TagList::npos) at = dataEnd(tags, from, to);
    for (int c : {code, code + 10, code + 20}) {
        tags.removeAll(c, from, to);
        std::tie(from, to) = tags.subclass(marker);
    }
    bool withZ = type != "WIPEOUT";
    for (const Point3& p : points) {
        tags.insert(at++, code, dxf::formatReal(p.x));
        tags.insert(at++, code + 10, dxf::formatReal(p.y));
        if (withZ) tags.insert(at++, code + 20, dxf::formatReal(p.z));
    }
    tags.setIntegerIn(marker, countCode, static_cast<std::int64_t>(points.size()));
    return true;
}

}  // namespace veltarn::db
