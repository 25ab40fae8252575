#include "cad/support/LinetypeLoader.h"

#include "cad/db/GroupCodes.h"

#include <numbers>

namespace veltarn::support {
namespace {

// LTYPE record codes past the common ones.
constexpr int kAlignment = 72;        // always 65, "A"
constexpr int kElementCount = 73;
constexpr int kPatternLength = 40;
constexpr int kDashLength = 49;
constexpr int kElementType = 74;      // bits below; 0 for a plain dash
constexpr int kShapeNumber = 75;
constexpr int kStylePointer = 340;
constexpr int kShapeScale = 46;
constexpr int kShapeRotation = 50;    // radians
constexpr int kShapeOffsetX = 44;
constexpr int kShapeOffsetY = 45;
constexpr int kShapeText = 9;
constexpr int kAbsoluteRotation = 1, kElementIsText = 2;
constexpr int kAlignmentA = 65;

}  // namespace

Result<db::Handle> addLinetype(db::Database& db, const LinetypeDefinition& definition) {
    if (!definition.error.empty()) return dxf::makeError(definition.error);
    if (db.findRecord("LTYPE", definition.name) != db::kNoHandle)
        return dxf::makeError("the drawing has a linetype \"" + definition.name + "\" already");

    db::TagList tags{{0, "LTYPE"}};
    if (!db.isR12()) {
        tags.add(db::gc::kSubclass, "AcDbSymbolTableRecord");
        tags.add(db::gc::kSubclass, "AcDbLinetypeTableRecord");
    }
    tags.add(db::gc::kName, definition.name);
    tags.add(db::gc::kFlags, "0");
    tags.add(db::gc::kOtherName, definition.description);
    tags.addInteger(kAlignment, kAlignmentA);
    tags.addInteger(kElementCount, static_cast<std::int64_t>(definition.elements.size()));
    tags.addReal(kPatternLength, definition.patternLength());
    for (const LinetypeElement& element : definition.elements) {
        tags.addReal(kDashLength, element.length);
        if (element.shape == LinetypeShape::Shape)
            return dxf::makeError("linetype \"" + definition.name + "\" draws the shape \"" + element.text +
                                  "\": shapes in linetypes are not supported, only texts");
        if (db.isR12()) {
            if (element.shape != LinetypeShape::None)
                return dxf::makeError("linetype \"" + definition.name + "\" holds text, which an R12 drawing cannot keep");
            continue;
        }
        if (element.shape == LinetypeShape::None) {
            tags.addInteger(kElementType, 0);
            continue;
        }
        db::Handle style = db.findRecord("STYLE", element.styleName);
        if (style == db::kNoHandle)
            return dxf::makeError("linetype \"" + definition.name + "\" needs the text style \"" + element.styleName +
                                  "\", which the drawing lacks");
        tags.addInteger(kElementType, kElementIsText | (element.absoluteRotation ? kAbsoluteRotation : 0));
        tags.addInteger(kShapeNumber, 0);
        tags.add(kStylePointer, db::formatHandle(style));
        tags.addReal(kShapeScale, element.scale);
        tags.addReal(kShapeRotation, element.rotation * std::numbers::pi / 180);
        tags.addReal(kShapeOffsetX, element.offsetX);
        tags.addReal(kShapeOffsetY, element.offsetY);
        tags.add(kShapeText, element.text);
    }
    return db.addRecord("LTYPE", std::move(tags));
}

Result<LoadedNames> loadLinetypes(db::Database& db, const SupportText& file, std::string_view pattern) {
    auto definitions = parseLinetypes(file);
    if (!definitions) return definitions.error();
    LoadedNames names;
    for (const LinetypeDefinition& definition : *definitions) {
        if (definition.name.empty() || !matchesName(pattern, definition.name)) continue;
        if (db.findRecord("LTYPE", definition.name) != db::kNoHandle) {
            names.kept.push_back(definition.name);
        } else if (auto added = addLinetype(db, definition)) {
            names.added.push_back(definition.name);
        } else {
            names.failed.push_back(added.message());
        }
    }
    if (names.added.empty() && names.kept.empty()) {
        if (!names.failed.empty()) return dxf::makeError(names.failed.front());
        return dxf::makeError(file.name() + ": no linetype matches \"" + std::string(pattern) + "\"");
    }
    return names;
}

Result<LoadedNames> loadLinetypes(db::Database& db, const std::filesystem::path& file, std::string_view pattern) {
    auto text = SupportText::load(file);
    if (!text) return text.error();
    return loadLinetypes(db, *text, pattern);
}

}  // namespace veltarn::support
