#include "cad/db/R12Entity.h"

#include "cad/db/GroupCodes.h"
#include "cad/db/ObjectIdentity.h"
#include "cad/dxf/NumberText.h"

#include <string_view>
#include <vector>

namespace veltarn::db {
namespace {

constexpr int kXdataFirst = 1000;
// POLYLINE flags that choose its subclass, and VERTEX flags of polyface meshes.
constexpr int kPolyline3d = 8, kPolygonMesh = 16, kPolyfaceMesh = 64;
constexpr int kVertexPolyface = 64, kVertexFaceRecord = 128;
constexpr int kDimensionTypeMask = 7;

// The properties every entity has in 2000+ drawings, kept under AcDbEntity.
bool isCommon(int code) {
    switch (code) {
        case gc::kLayer: case gc::kLinetypeName: case gc::kColor: case gc::kPaperSpace: case gc::kLinetypeScale:
        case 60: case 284: case gc::kLineweight: case gc::kTrueColor: case gc::kColorName: case gc::kTransparency:
        case gc::kMaterial: case gc::kPlotStyle:
            return true;
        default:
            return false;
    }
}

// True for the X, Y or Z code of point `x` (13 takes 13, 23 and 33).
bool ofPoint(int code, int x) { return code == x || code == x + 10 || code == x + 20; }

struct Subclass {
    std::string_view marker;
    bool (*takes)(int code);  // null: takes what no later subclass takes
};

bool arcAngles(int code) { return code == gc::kAngle || code == gc::kAngle2; }
bool textVertical(int code) { return code == gc::kInt73; }
bool attdefPart(int code) {
    return code == gc::kTag || code == gc::kPrompt || code == gc::kFlags || code == gc::kFieldLength ||
           code == gc::kVerticalJustification || code == gc::kLockPosition;
}
bool attribPart(int code) {
    return code == gc::kTag || code == gc::kFlags || code == gc::kFieldLength || code == gc::kVerticalJustification ||
           code == gc::kLockPosition;
}
bool definitionPoints(int code) { return ofPoint(code, 13) || ofPoint(code, 14); }
bool rotation(int code) { return code == gc::kAngle || code == gc::kRotation2; }
bool alignedPart(int code) { return definitionPoints(code) || rotation(code); }
bool angularPoints(int code) { return definitionPoints(code) || ofPoint(code, 15) || ofPoint(code, 16); }
bool radialPart(int code) { return ofPoint(code, 15) || code == gc::kReal; }

std::vector<Subclass> subclassesOf(std::string_view type, const TagList& tags, std::size_t from, std::size_t to, std::string_view parent) {
    auto flags = tags.integer(gc::kFlags, from, to).value_or(0);
    if (type == "LINE" || type == "3DLINE") return {{"AcDbLine", nullptr}};
    if (type == "POINT") return {{"AcDbPoint", nullptr}};
    if (type == "CIRCLE") return {{"AcDbCircle", nullptr}};
    if (type == "ARC") return {{"AcDbCircle", nullptr}, {"AcDbArc", arcAngles}};
    if (type == "SOLID" || type == "TRACE") return {{"AcDbTrace", nullptr}};
    if (type == "3DFACE") return {{"AcDbFace", nullptr}};
    if (type == "SHAPE") return {{"AcDbShape", nullptr}};
    if (type == "VIEWPORT") return {{"AcDbViewport", nullptr}};
    if (type == "TEXT") return {{"AcDbText", nullptr}, {"AcDbText", textVertical}};
    if (type == "ATTDEF") return {{"AcDbText", nullptr}, {"AcDbAttributeDefinition", attdefPart}};
    if (type == "ATTRIB") return {{"AcDbText", nullptr}, {"AcDbAttribute", attribPart}};
    if (type == "BLOCK") return {{"AcDbBlockBegin", nullptr}};
    if (type == "ENDBLK") return {{"AcDbBlockEnd", nullptr}};
    if (type == "INSERT") {
        bool array = tags.integer(gc::kFlags, from, to).value_or(1) > 1 || tags.integer(gc::kInt71, from, to).value_or(1) > 1;
        return {{array ? "AcDbMInsertBlock" : "AcDbBlockReference", nullptr}};
    }
    if (type == "POLYLINE") {
        if (flags & kPolyfaceMesh) return {{"AcDbPolyFaceMesh", nullptr}};
        if (flags & kPolygonMesh) return {{"AcDbPolygonMesh", nullptr}};
        if (flags & kPolyline3d) return {{"AcDb3dPolyline", nullptr}};
        return {{"AcDb2dPolyline", nullptr}};
    }
    if (type == "VERTEX") {
        if (parent == "AcDbPolyFaceMesh") {
            if ((flags & kVertexFaceRecord) && !(flags & kVertexPolyface)) return {{"AcDbFaceRecord", nullptr}};
            return {{"AcDbVertex", nullptr}, {"AcDbPolyFaceMeshVertex", [](int) { return true; }}};
        }
        std::string_view kind = parent == "AcDbPolygonMesh" ? "AcDbPolygonMeshVertex"
                                : parent == "AcDb3dPolyline" ? "AcDb3dPolylineVertex"
                                                             : "AcDb2dVertex";
        return {{"AcDbVertex", nullptr}, {kind, [](int) { return true; }}};
    }
    if (type == "DIMENSION") {
        switch (flags & kDimensionTypeMask) {
            case 0: return {{"AcDbDimension", nullptr}, {"AcDbAlignedDimension", definitionPoints}, {"AcDbRotatedDimension", rotation}};
            case 1: return {{"AcDbDimension", nullptr}, {"AcDbAlignedDimension", alignedPart}};
            case 2: return {{"AcDbDimension", nullptr}, {"AcDb2LineAngularDimension", angularPoints}};
            case 3: return {{"AcDbDimension", nullptr}, {"AcDbDiametricDimension", radialPart}};
            case 4: return {{"AcDbDimension", nullptr}, {"AcDbRadialDimension", radialPart}};
            case 5: return {{"AcDbDimension", nullptr}, {"AcDb3PointAngularDimension", angularPoints}};
            default: return {{"AcDbDimension", nullptr}, {"AcDbOrdinateDimension", definitionPoints}};
        }
    }
    return {};  // SEQEND, and types R12 does not have: everything stays under AcDbEntity
}

// One entity, tags [from, to) of `tags`, appended to `out`; returns its subclass (for VERTEX).
std::string_view convertOne(const TagList& tags, std::size_t from, std::size_t to, Handle handle, Handle owner,
                            std::string_view parent, TagList& out) {
    std::string_view type = dxf::trimSpaces(tags[from].value);
    std::vector<Subclass> subclasses = subclassesOf(type, tags, from, to, parent);
    std::vector<TagList> groups(subclasses.size() + 1);  // [0]: AcDbEntity
    TagList xdata;
    for (std::size_t i = from + 1; i < to; ++i) {
        const TagValue& tag = tags[i];
        if (tag.code >= kXdataFirst || !xdata.empty()) {
            xdata.add(tag.code, tag.value);
            continue;
        }
        if (tag.code == gc::kHandle || tag.code == gc::kSoftPointer) continue;
        if (isCommon(tag.code) || subclasses.empty()) {
            groups[0].add(tag.code, tag.value);
            continue;
        }
        std::size_t group = 1;
        for (std::size_t s = subclasses.size(); s-- > 1;)
            if (subclasses[s].takes && subclasses[s].takes(tag.code)) { group = s + 1; break; }
        groups[group].add(tag.code, tag.value);
    }
    out.add(gc::kStructure, std::string(type));
    out.add(gc::kHandle, formatHandle(handle));
    out.add(gc::kSoftPointer, formatHandle(owner));
    out.add(gc::kSubclass, "AcDbEntity");
    for (const TagValue& tag : groups[0]) out.add(tag.code, tag.value);
    for (std::size_t s = 0; s < subclasses.size(); ++s) {
        out.add(gc::kSubclass, std::string(subclasses[s].marker));
        for (const TagValue& tag : groups[s + 1]) out.add(tag.code, tag.value);
    }
    for (const TagValue& tag : xdata) out.add(tag.code, tag.value);
    return subclasses.empty() ? std::string_view() : subclasses.front().marker;
}

}  // namespace

TagList modernEntity(const TagList& tags, Handle handle, Handle owner, const std::function<Handle(Handle)>& subHandle) {
    if (tags.empty()) return tags;
    if (tags.hasMarkers()) {
        TagList out = tags;
        setIdentity(out, handle, gc::kHandle, owner, true);
        return out;
    }
    TagList out;
    out.reserve(tags.size() + 8);
    std::size_t end = tags.find(gc::kStructure, 1);
    if (end == TagList::npos) end = tags.size();
    std::string_view parent = convertOne(tags, 0, end, handle, owner, {}, out);
    while (end < tags.size()) {
        std::size_t from = end;
        end = tags.find(gc::kStructure, from + 1);
        if (end == TagList::npos) end = tags.size();
        std::size_t at = tags.find(gc::kHandle, from + 1, end);
        Handle own = at == TagList::npos ? kNoHandle : parseHandle(tags[at].value).value_or(kNoHandle);
        convertOne(tags, from, end, subHandle(own), handle, parent, out);
    }
    return out;
}

}  // namespace veltarn::db
