#include "cad/db/Geometry.h"

#include "cad/db/GroupCodes.h"
#include "cad/db/kinds/EntityKindOps.h"
#include "cad/db/kinds/KindSupport.h"
#include "cad/dxf/NumberText.h"

namespace veltarn::db {
namespace {

using kind_support::dataEnd;
using kind_support::intAt;
using kind_support::realAt;

constexpr int kBulge = 42;
constexpr int kStartWidth = 40, kEndWidth = 41;
constexpr int kVertexFlags = 70;
constexpr int kPolyline3dFlag = 8;
constexpr int kVertex3dFlag = 32;
constexpr int kFaceRecordFlag = 128, kMeshVertexFlag = 64;

std::pair<std::size_t, std::size_t> ownTags(const TagList& tags) {
    std::size_t end = tags.find(gc::kStructure, 1);
    return {1, end == TagList::npos ? tags.size() : end};
}

}  // namespace

std::string_view geometrySubclass(std::string_view type) {
    static const TagList kNoTags;
    if (const EntityKindOps* kind = kindOf(type, kNoTags)) return kind->geometrySubclass;
    if (type == "INSERT") return "AcDbBlockReference";
    return {};
}

// --- Polylines --------------------------------------------------------------------------------------

std::vector<Vertex> polylineVertices(const TagList& tags) {
    std::vector<Vertex> out;
    if (const EntityKindOps* kind = kindOf(tags)) {
        if (kind->vertices) out = kind->vertices(tags);
        return out;
    }
    if (tags.type() != "POLYLINE") return out;
    for (std::size_t i = 1; i < tags.size(); ++i) {
        if (tags[i].code != gc::kStructure || dxf::trimSpaces(tags[i].value) != "VERTEX") continue;
        std::size_t end = tags.find(gc::kStructure, i + 1);
        if (end == TagList::npos) end = tags.size();
        int flags = static_cast<int>(tags.integer(kVertexFlags, i + 1, end).value_or(0));
        if ((flags & kFaceRecordFlag) && !(flags & kMeshVertexFlag)) continue;  // a polyface face record
        Vertex v;
        v.point = tags.point(gc::kX, i + 1, end).value_or(Point3{});
        v.bulge = tags.real(kBulge, i + 1, end).value_or(0);
        v.startWidth = tags.real(kStartWidth, i + 1, end).value_or(0);
        v.endWidth = tags.real(kEndWidth, i + 1, end).value_or(0);
        out.push_back(v);
    }
    return out;
}

bool setPolylineVertices(Database& db, TagList& tags, const std::vector<Vertex>& vertices) {
    if (const EntityKindOps* kind = kindOf(tags)) return kind->setVertices && kind->setVertices(db, tags, vertices);
    if (tags.type() != "POLYLINE") return false;
    auto [own, ownEnd] = ownTags(tags);
    (void)own;
    bool modern = tags.hasMarkers();
    bool is3d = (tags.integer(gc::kFlags, 1, ownEnd).value_or(0) & kPolyline3dFlag) != 0;
    std::string owner = tags.size() > 1 && tags[1].code == gc::kHandle ? tags[1].value : "0";
    std::string layer = std::string(tags.text(gc::kLayer, 1, ownEnd).value_or("0"));
    // The SEQEND is kept (with its handle); a missing one is made.
    TagList seqend;
    std::size_t seq = tags.find(gc::kStructure, "SEQEND", ownEnd);
    if (!db.handlesLeft(vertices.size() + (seq == TagList::npos ? 1 : 0)).ok()) return false;
    if (seq != TagList::npos) {
        std::size_t seqEnd = tags.find(gc::kStructure, seq + 1);
        for (std::size_t i = seq; i < (seqEnd == TagList::npos ? tags.size() : seqEnd); ++i) seqend.add(tags[i].code, tags[i].value);
    } else {
        seqend = {{0, "SEQEND"}, {5, formatHandle(db.allocateHandle().value())}};
        if (modern) {
            seqend.add(gc::kSoftPointer, owner);
            seqend.add(gc::kSubclass, "AcDbEntity");
        }
        seqend.add(gc::kLayer, layer);
    }
    tags.erase(ownEnd, tags.size() - ownEnd);
    for (const Vertex& v : vertices) {
        tags.add(0, "VERTEX");
        tags.add(gc::kHandle, formatHandle(db.allocateHandle().value()));
        if (modern) {
            tags.add(gc::kSoftPointer, owner);
            tags.add(gc::kSubclass, "AcDbEntity");
        }
        tags.add(gc::kLayer, layer);
        if (modern) {
            tags.add(gc::kSubclass, "AcDbVertex");
            tags.add(gc::kSubclass, is3d ? "AcDb3dPolylineVertex" : "AcDb2dVertex");
        }
        tags.addPoint(gc::kX, v.point);
        if (v.startWidth != 0) tags.addReal(kStartWidth, v.startWidth);
        if (v.endWidth != 0) tags.addReal(kEndWidth, v.endWidth);
        if (v.bulge != 0) tags.addReal(kBulge, v.bulge);
        tags.addInteger(kVertexFlags, is3d ? kVertex3dFlag : 0);
    }
    for (const TagValue& tag : seqend) tags.add(tag.code, tag.value);
    return true;
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

// --- Attributes ----------------------------------------------------------------------------------------

std::vector<Attribute> attributes(const TagList& tags) {
    std::vector<Attribute> out;
    if (tags.type() != "INSERT") return out;
    for (std::size_t i = 1; i < tags.size(); ++i) {
        if (tags[i].code != gc::kStructure || dxf::trimSpaces(tags[i].value) != "ATTRIB") continue;
        std::size_t end = tags.find(gc::kStructure, i + 1);
        if (end == TagList::npos) end = tags.size();
        Attribute a;
        a.handle = parseHandle(tags.text(gc::kHandle, i + 1, end).value_or("")).value_or(kNoHandle);
        a.tag = std::string(tags.text(gc::kName, i + 1, end).value_or(""));
        a.value = std::string(tags.text(gc::kText, i + 1, end).value_or(""));
        out.push_back(std::move(a));
    }
    return out;
}

bool setAttributeValue(TagList& tags, std::string_view tag, std::string_view value) {
    if (tags.type() != "INSERT") return false;
    for (std::size_t i = 1; i < tags.size(); ++i) {
        if (tags[i].code != gc::kStructure || dxf::trimSpaces(tags[i].value) != "ATTRIB") continue;
        std::size_t end = tags.find(gc::kStructure, i + 1);
        if (end == TagList::npos) end = tags.size();
        if (!sameName(tags.text(gc::kName, i + 1, end).value_or(""), tag)) continue;
        tags.set(gc::kText, std::string(value), i + 1, end);
        return true;
    }
    return false;
}

}  // namespace veltarn::db
