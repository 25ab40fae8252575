#include "cad/db/MlineStyle.h"

#include "cad/db/GroupCodes.h"
#include "cad/db/SymbolTables.h"
#include "cad/dxf/NumberText.h"

namespace veltarn::db {
namespace {

constexpr int kElementCount = 71, kElementOffset = 49, kStylePointer = 340;

}  // namespace

std::optional<MlineStyleDefinition> readMlineStyle(const Database& db, Handle style) {
    if (db.typeName(style) != "MLINESTYLE") return std::nullopt;
    TagList tags = db.tags(style);
    auto [from, to] = tags.subclass("AcDbMlineStyle");
    if (from == TagList::npos) return std::nullopt;
    MlineStyleDefinition out;
    out.handle = style;
    out.name = std::string(dxf::trimSpaces(tags.text(gc::kName, from, to).value_or("")));
    out.flags = static_cast<int>(tags.integer(gc::kFlags, from, to).value_or(0));
    std::size_t count = tags.find(kElementCount, from, to);
    std::size_t head = count == TagList::npos ? to : count;
    out.startAngle = tags.real(gc::kAngle2, from, head).value_or(90);
    out.endAngle = tags.real(52, from, head).value_or(90);
    // Before the element count, 62 is the fill colour; after it, each 49 starts an element.
    for (std::size_t i = head == to ? to : head + 1; i < to; ++i) {
        const TagValue& tag = tags[i];
        if (tag.code == kElementOffset) out.elements.emplace_back().offset = dxf::parseReal(tag.value).value_or(0);
        else if (out.elements.empty()) continue;
        else if (tag.code == gc::kColor) out.elements.back().color = std::string(dxf::trimSpaces(tag.value));
        else if (tag.code == gc::kLinetypeName) out.elements.back().linetype = std::string(dxf::trimSpaces(tag.value));
    }
    return out;
}

std::optional<MlineStyleDefinition> mlineStyleOf(const Database& db, const TagList& mline) {
    auto [from, to] = mline.subclass("AcDbMline");
    if (from == TagList::npos) return std::nullopt;
    if (auto style = readMlineStyle(db, parseHandle(mline.text(kStylePointer, from, to).value_or("")).value_or(kNoHandle))) return style;
    return readMlineStyle(db, namedEntry(db, "ACAD_MLINESTYLE", dxf::trimSpaces(mline.text(gc::kName, from, to).value_or(""))));
}

}  // namespace veltarn::db
