#include "cad/support/MlineStyleLoader.h"

#include "cad/db/Dictionary.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/SymbolTables.h"

namespace veltarn::support {
namespace {

constexpr char kDictionary[] = "ACAD_MLINESTYLE";
constexpr int kOffset = 49;
constexpr int kStartAngle = 51;
constexpr int kEndAngle = 52;
constexpr int kElementCount = 71;

}  // namespace

Result<db::Handle> addMlineStyle(db::Database& db, const MlineStyleDefinition& style) {
    if (db.isR12()) return dxf::makeError(db.name() + ": an R12 drawing has no multiline styles");
    if (db::namedEntry(db, kDictionary, style.name) != db::kNoHandle)
        return dxf::makeError("the drawing has a multiline style \"" + style.name + "\" already");
    auto dictionary = db::namedDictionary(db, kDictionary, true);
    if (!dictionary) return dictionary.error();
    std::string owner = db::formatHandle(*dictionary);

    db::TagList tags{{0, "MLINESTYLE"}, {102, db::kReactorsGroup}, {db::gc::kSoftPointer, owner}, {102, db::kGroupEnd},
                     {db::gc::kSoftPointer, owner}, {db::gc::kSubclass, "AcDbMlineStyle"}};
    tags.add(db::gc::kName, style.name);
    tags.addInteger(db::gc::kFlags, style.flags);
    tags.add(db::gc::kOtherName, style.description);
    tags.addInteger(db::gc::kColor, style.fillColor);
    tags.addReal(kStartAngle, style.startAngle);
    tags.addReal(kEndAngle, style.endAngle);
    tags.addInteger(kElementCount, static_cast<std::int64_t>(style.elements.size()));
    for (const MlineStyleElement& element : style.elements) {
        tags.addReal(kOffset, element.offset);
        tags.addInteger(db::gc::kColor, element.color);
        tags.add(db::gc::kLinetypeName, element.linetype);
    }
    auto added = db.addObject(std::move(tags));
    if (!added) return added;
    if (auto entry = db::setEntry(db, *dictionary, style.name, *added); !entry) return entry.error();
    return *added;
}

Result<MlineStyleLoad> loadMlineStyle(db::Database& db, const SupportText& file, std::string_view name) {
    auto styles = parseMlineStyles(file);
    if (!styles) return styles.error();
    for (const MlineStyleDefinition& style : *styles) {
        if (!db::sameName(style.name, name)) continue;
        if (db::namedEntry(db, kDictionary, style.name) != db::kNoHandle) return MlineStyleLoad::Kept;
        auto added = addMlineStyle(db, style);
        if (!added) return added.error();
        return MlineStyleLoad::Added;
    }
    return dxf::makeError(file.name() + ": no multiline style \"" + std::string(name) + "\"");
}

Result<MlineStyleLoad> loadMlineStyle(db::Database& db, const std::filesystem::path& file, std::string_view name) {
    auto text = SupportText::load(file);
    if (!text) return text.error();
    return loadMlineStyle(db, *text, name);
}

}  // namespace veltarn::support
