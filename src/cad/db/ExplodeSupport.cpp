#include "cad/db/ExplodeSupport.h"

namespace veltarn::db::explode_support {

TagList pieceStart(const TagList& source, std::string_view type) {
    static constexpr int kCommon[] = {gc::kLayer, gc::kLinetypeName, gc::kColor, gc::kTrueColor, gc::kColorName,
                                      gc::kTransparency, gc::kLineweight, gc::kLinetypeScale, 60};
    bool modern = source.hasMarkers();
    TagList tags{{gc::kStructure, std::string(type)}};
    if (modern) tags.add(gc::kSubclass, "AcDbEntity");
    std::size_t end = ownEnd(source);
    auto [from, to] = modern ? source.subclass("AcDbEntity") : source.subclass("");
    if (from == TagList::npos) from = 1, to = end;
    for (int code : kCommon)
        if (auto value = source.text(code, from, to)) tags.add(code, std::string(*value));
    if (tags.find(gc::kLayer) == TagList::npos) tags.add(gc::kLayer, "0");
    return tags;
}

void addNormal(TagList& tags, const Point3& normal) {
    if (!isDefaultNormal(normal)) tags.addPoint(gc::kNormalX, normal);
}

}  // namespace veltarn::db::explode_support
