#include "cad/db/EntityProperties.h"

#include "cad/db/Dictionary.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/SymbolTables.h"
#include "cad/db/kinds/EntityKindOps.h"
#include "cad/dxf/NumberText.h"

#include <array>

namespace veltarn::db {
namespace {

constexpr std::string_view kEntity = "AcDbEntity";
constexpr int kMtextChunk = 3;          // MTEXT text in 250-byte pieces before the final 1
constexpr std::size_t kChunkBytes = 250;
constexpr int kSolidFill = 70;  // HATCH: 1 solid, 0 pattern
constexpr int kStartWidth = 40, kEndWidth = 41;
constexpr int kMleaderStylePointer = 340;
constexpr int kBackgroundFlags = 90, kBackgroundColor = 63, kBackgroundRgb = 421, kBackgroundScale = 45, kBackgroundTransparency = 441;
constexpr int kXdataInteger32 = 1071;
constexpr std::string_view kHatchBackgroundApp = "HATCHBACKGROUNDCOLOR";

const PropertyPlace* placeOf(const TagList& tags, Property which) {
    if (const EntityKindOps* kind = kindOf(tags))
        for (const PropertyPlace& place : kind->properties)
            if (place.property == which) return &place;
    return nullptr;
}

std::pair<std::size_t, std::size_t> ownTags(const TagList& tags) {
    std::size_t end = tags.find(gc::kStructure, 1);
    return {1, end == TagList::npos ? tags.size() : end};
}

// Removes the xdata of one application from the object's own tags.
void removeXdata(TagList& tags, std::string_view application) {
    auto [from, to] = ownTags(tags);
    std::size_t at = tags.find(gc::kXdataApp, application, from, to);
    if (at == TagList::npos) return;
    std::size_t end = tags.find(gc::kXdataApp, at + 1, to);
    tags.erase(at, (end == TagList::npos ? to : end) - at);
}

}  // namespace

// --- Common properties -------------------------------------------------------------------------

CommonProperties commonProperties(const TagList& tags) {
    CommonProperties props;
    auto [from, to] = tags.subclass(kEntity);
    if (from == TagList::npos) std::tie(from, to) = ownTags(tags);
    if (auto layer = tags.text(gc::kLayer, from, to)) props.layer = std::string(dxf::trimSpaces(*layer));
    props.color.index = static_cast<int>(tags.integer(gc::kColor, from, to).value_or(Color::kByLayer));
    if (auto rgb = tags.integer(gc::kTrueColor, from, to)) props.color.rgb = static_cast<std::uint32_t>(*rgb) & 0xFFFFFF;
    if (auto linetype = tags.text(gc::kLinetypeName, from, to)) props.linetype = std::string(dxf::trimSpaces(*linetype));
    props.linetypeScale = tags.real(gc::kLinetypeScale, from, to).value_or(1);
    props.lineweight = static_cast<int>(tags.integer(gc::kLineweight, from, to).value_or(-1));
    return props;
}

std::optional<std::string> entityLayer(const Database& db, Handle entity) {
    TagCursor cursor;
    if (db.read(entity, cursor) != OpenStatus::Ok || !cursor.next()) return std::nullopt;
    bool markers = false;
    bool inEntity = false;
    std::optional<std::string> ownLayer;  // the first of the object's own tags, for objects without markers
    while (cursor.next()) {
        const int code = cursor.code();
        if (code == gc::kStructure) break;
        if (code == gc::kSubclass) {
            if (inEntity) break;
            markers = true;
            inEntity = dxf::trimSpaces(cursor.value()) == kEntity;
            continue;
        }
        if (code != gc::kLayer) continue;
        if (inEntity) return std::string(dxf::trimSpaces(cursor.value()));
        if (!markers && !ownLayer) ownLayer = std::string(dxf::trimSpaces(cursor.value()));
    }
    if (markers) return std::nullopt;
    return ownLayer;
}

void setLayer(TagList& tags, std::string_view layer) { tags.setIn(kEntity, gc::kLayer, std::string(layer)); }

void setColor(TagList& tags, const Color& color) {
    tags.setIntegerIn(kEntity, gc::kColor, color.index);
    auto [from, to] = tags.subclass(kEntity);
    if (color.rgb && tags.hasMarkers()) {
        tags.setIntegerIn(kEntity, gc::kTrueColor, *color.rgb);
    } else if (from != TagList::npos) {
        tags.removeAll(gc::kTrueColor, from, to);
        std::tie(from, to) = tags.subclass(kEntity);
        tags.removeAll(gc::kColorName, from, to);
    }
}

void setLinetype(TagList& tags, std::string_view linetype) { tags.setIn(kEntity, gc::kLinetypeName, std::string(linetype)); }
void setLinetypeScale(TagList& tags, double scale) { tags.setRealIn(kEntity, gc::kLinetypeScale, scale); }
void setLineweight(TagList& tags, int lineweight) {
    if (tags.hasMarkers()) tags.setIntegerIn(kEntity, gc::kLineweight, lineweight);  // R12 has no lineweights
}

// --- Kind-specific properties --------------------------------------------------------------------

std::optional<std::string> property(const TagList& tags, Property which) {
    const PropertyPlace* place = placeOf(tags, which);
    if (!place) return std::nullopt;
    auto [from, to] = tags.subclass(place->marker);
    if (from == TagList::npos) return std::string(place->fallback);
    auto value = tags.text(place->code, from, to);
    return std::string(value ? dxf::trimSpaces(*value) : place->fallback);
}

std::optional<double> realProperty(const TagList& tags, Property which) {
    auto text = property(tags, which);
    return text ? dxf::parseReal(*text) : std::nullopt;
}

bool setProperty(TagList& tags, Property which, std::string value) {
    const PropertyPlace* place = placeOf(tags, which);
    if (!place) return false;
    if (which == Property::PatternName) tags.setIn(place->marker, kSolidFill, sameName(value, "SOLID") ? "1" : "0");
    if (which == Property::ConstantWidth && tags.type() == "POLYLINE") tags.setIn(place->marker, kEndWidth, value);
    tags.setIn(place->marker, place->code, std::move(value));
    return true;
}

bool setRealProperty(TagList& tags, Property which, double value) { return setProperty(tags, which, dxf::formatReal(value)); }

std::optional<bool> closed(const TagList& tags) {
    const EntityKindOps* kind = kindOf(tags);
    if (!kind || !kind->closedFlag) return std::nullopt;
    auto [from, to] = ownTags(tags);
    return (tags.integer(kind->closedFlag->code, from, to).value_or(0) & kind->closedFlag->bit) != 0;
}

bool setClosed(TagList& tags, bool isClosed) {
    const EntityKindOps* kind = kindOf(tags);
    if (!kind || !kind->closedFlag) return false;
    auto [code, bit] = std::pair(kind->closedFlag->code, kind->closedFlag->bit);
    std::string_view marker = kind->closedFlag->marker;
    // A POLYLINE's flags are in the subclass it has, whatever its flags say it is.
    if (tags.type() == "POLYLINE") {
        auto [from, to] = tags.subclass("AcDb2dPolyline");
        marker = from == TagList::npos ? "AcDb3dPolyline" : "AcDb2dPolyline";
    }
    auto [from, to] = ownTags(tags);
    auto flags = tags.integer(code, from, to).value_or(0);
    tags.setIntegerIn(marker, code, isClosed ? (flags | bit) : (flags & ~bit));
    return true;
}

// --- Text ----------------------------------------------------------------------------------------

std::optional<std::string> textContents(const TagList& tags) {
    std::string_view type = tags.type();
    if (type == "TEXT" || type == "ATTRIB" || type == "ATTDEF") {
        auto [from, to] = tags.subclass("AcDbText");
        return std::string(tags.text(gc::kText, from, to).value_or(""));
    }
    if (type != "MTEXT") return std::nullopt;
    auto [from, to] = tags.subclass("AcDbMText");
    std::string text;
    for (std::size_t i = from; i < to; ++i)
        if (tags[i].code == kMtextChunk || tags[i].code == gc::kText) text += tags[i].value;
    return text;
}

bool setTextContents(TagList& tags, std::string_view text) {
    std::string_view type = tags.type();
    if (type == "TEXT" || type == "ATTRIB" || type == "ATTDEF") {
        tags.setIn("AcDbText", gc::kText, std::string(text));
        return true;
    }
    if (type != "MTEXT") return false;
    auto [from, to] = tags.subclass("AcDbMText");
    std::size_t at = tags.find(gc::kText, from, to);
    std::size_t firstChunk = tags.find(kMtextChunk, from, to);
    if (firstChunk != TagList::npos && (at == TagList::npos || firstChunk < at)) at = firstChunk;
    if (at == TagList::npos) at = to;
    tags.removeAll(kMtextChunk, from, to);
    std::tie(from, to) = tags.subclass("AcDbMText");
    tags.removeAll(gc::kText, from, to);
    // Chunks end on a character boundary, never inside a UTF-8 sequence.
    while (text.size() > kChunkBytes) {
        std::size_t cut = kChunkBytes;
        while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80) --cut;
        tags.insert(at++, kMtextChunk, std::string(text.substr(0, cut)));
        text.remove_prefix(cut);
    }
    tags.insert(at, gc::kText, std::string(text));
    return true;
}

// --- Styles kept as objects -------------------------------------------------------------------------

// The multileader's own tags after its context data: the context holds 340s of its own (the
// text style), the style pointer follows the context's closing 301.
static std::pair<std::size_t, std::size_t> afterMleaderContext(const TagList& tags) {
    auto [from, to] = tags.subclass("AcDbMLeader");
    if (from == TagList::npos) return {from, to};
    std::size_t close = tags.find(301, from, to);
    return {close == TagList::npos ? from : close + 1, to};
}

bool setMleaderStyle(const Database& db, TagList& tags, std::string_view name) {
    if (tags.type() != "MULTILEADER" && tags.type() != "MLEADER") return false;
    Handle style = namedEntry(db, "ACAD_MLEADERSTYLE", name);
    auto [from, to] = afterMleaderContext(tags);
    if (style == kNoHandle || from == TagList::npos) return false;
    std::size_t at = tags.find(kMleaderStylePointer, from, to);
    if (at != TagList::npos) tags[at].value = formatHandle(style);
    else tags.insert(from, kMleaderStylePointer, formatHandle(style));
    return true;
}

std::optional<std::string> mleaderStyle(const Database& db, const TagList& tags) {
    if (tags.type() != "MULTILEADER" && tags.type() != "MLEADER") return std::nullopt;
    auto [from, to] = afterMleaderContext(tags);
    if (from == TagList::npos) return std::nullopt;
    Handle style = parseHandle(tags.text(kMleaderStylePointer, from, to).value_or("")).value_or(kNoHandle);
    for (const auto& name : namedEntries(db, "ACAD_MLEADERSTYLE"))
        if (namedEntry(db, "ACAD_MLEADERSTYLE", name) == style) return name;
    return std::nullopt;
}

// --- Background colours -----------------------------------------------------------------------------

bool setBackgroundColor(TagList& tags, const Color& color) {
    std::string_view type = tags.type();
    if (type == "HATCH") {
        removeXdata(tags, kHatchBackgroundApp);
        if (color.index == Color::kNone && !color.rgb) return true;
        std::size_t at = ownTags(tags).second;  // after any other application's xdata
        tags.insert(at, gc::kXdataApp, std::string(kHatchBackgroundApp));
        tags.insert(at + 1, kXdataInteger32, std::to_string(static_cast<std::int32_t>(color.raw())));
        return true;
    }
    if (type != "MTEXT") return false;
    auto [from, to] = tags.subclass("AcDbMText");
    for (int code : {kBackgroundColor, kBackgroundRgb, kBackgroundScale, kBackgroundTransparency}) {
        tags.removeAll(code, from, to);
        std::tie(from, to) = tags.subclass("AcDbMText");
    }
    if (color.index == Color::kNone && !color.rgb) {
        tags.setIn("AcDbMText", kBackgroundFlags, "0");
        return true;
    }
    tags.setIn("AcDbMText", kBackgroundFlags, "1");
    tags.setIntegerIn("AcDbMText", kBackgroundColor, color.index < 1 || color.index > 255 ? 7 : color.index);
    if (color.rgb) tags.setIntegerIn("AcDbMText", kBackgroundRgb, *color.rgb);
    tags.setIn("AcDbMText", kBackgroundScale, "1.5");
    tags.setIn("AcDbMText", kBackgroundTransparency, "0");
    return true;
}

std::optional<Color> backgroundColor(const TagList& tags) {
    std::string_view type = tags.type();
    if (type == "HATCH") {
        auto [from, to] = ownTags(tags);
        std::size_t at = tags.find(gc::kXdataApp, kHatchBackgroundApp, from, to);
        if (at == TagList::npos) return Color::ofIndex(Color::kNone);
        auto raw = tags.integer(kXdataInteger32, at + 1, to);
        return raw ? Color::fromRaw(static_cast<std::uint32_t>(*raw)) : Color::ofIndex(Color::kNone);
    }
    if (type != "MTEXT") return std::nullopt;
    auto [from, to] = tags.subclass("AcDbMText");
    if ((tags.integer(kBackgroundFlags, from, to).value_or(0) & 1) == 0) return Color::ofIndex(Color::kNone);
    Color color = Color::ofIndex(static_cast<int>(tags.integer(kBackgroundColor, from, to).value_or(7)));
    if (auto rgb = tags.integer(kBackgroundRgb, from, to)) color.rgb = static_cast<std::uint32_t>(*rgb) & 0xFFFFFF;
    return color;
}

Result<void> ensureAppId(Database& db, std::string_view application) {
    if (db.findRecord("APPID", application) != kNoHandle) return {};
    TagList tags{{0, "APPID"}};
    if (!db.isR12()) {
        tags.add(gc::kSubclass, "AcDbSymbolTableRecord");
        tags.add(gc::kSubclass, "AcDbRegAppTableRecord");
    }
    tags.add(gc::kName, std::string(application));
    tags.add(gc::kFlags, "0");
    auto added = db.addRecord("APPID", std::move(tags));
    if (!added) return added.error();
    return {};
}

}  // namespace veltarn::db
