#include "cad/db/Xrecord.h"

#include "cad/db/Dictionary.h"
#include "cad/db/GroupCodes.h"
#include "cad/dxf/NumberText.h"

#include <limits>

namespace veltarn::db {

TypedValue TypedValue::ofText(int code, std::string text) {
    TypedValue v;
    v.code = code;
    v.text = std::move(text);
    return v;
}
TypedValue TypedValue::ofReal(int code, double value) {
    TypedValue v;
    v.code = code;
    v.real = value;
    return v;
}
TypedValue TypedValue::ofInteger(int code, std::int64_t value) {
    TypedValue v;
    v.code = code;
    v.integer = value;
    return v;
}
TypedValue TypedValue::ofPoint(int code, const Point3& point) {
    TypedValue v;
    v.code = code;
    v.point = point;
    return v;
}
TypedValue TypedValue::ofHandle(int code, Handle handle) { return ofText(code, formatHandle(handle)); }
TypedValue TypedValue::ofBinary(int code, std::string bytes) { return ofText(code, std::move(bytes)); }

TypedValue::Kind TypedValue::kindOf(int code) {
    if (code >= gc::kPointFirst && code <= gc::kPointLast) return Kind::Point;
    if (code >= gc::kPointerMin && code <= gc::kPointerMax) return Kind::Handle;
    if (code == gc::kHandleCode) return Kind::Handle;
    switch (dxf::valueKindOf(code)) {
        case dxf::ValueKind::Real: return Kind::Real;
        case dxf::ValueKind::Binary: return Kind::Binary;
        case dxf::ValueKind::String: return Kind::Text;
        default: return Kind::Integer;
    }
}

namespace {

bool fits(int code, std::int64_t value) {
    switch (dxf::valueKindOf(code)) {
        case dxf::ValueKind::Int16: return value >= std::numeric_limits<std::int16_t>::min() && value <= std::numeric_limits<std::int16_t>::max();
        case dxf::ValueKind::Int32: return value >= std::numeric_limits<std::int32_t>::min() && value <= std::numeric_limits<std::int32_t>::max();
        case dxf::ValueKind::Bool: return value >= 0 && value <= 255;
        default: return true;
    }
}

// Where an XRECORD's values start: after the AcDbXrecord marker and the cloning flag.
std::size_t valuesStart(const TagList& tags) {
    std::size_t marker = tags.find(gc::kSubclass, "AcDbXrecord");
    if (marker == TagList::npos) return TagList::npos;
    std::size_t at = marker + 1;
    if (at < tags.size() && tags[at].code == gc::kHardOwnerFlag) ++at;
    return at;
}

}  // namespace

Result<void> appendValues(TagList& tags, const ResultBuffer& values) {
    for (const TypedValue& v : values) {
        if (v.code < 0 || v.code == 0 || v.code == gc::kSubclass || v.code > gc::kXdataLast || (v.code >= gc::kXdataFirst && v.code <= gc::kXdataLast))
            return dxf::makeError("group code " + std::to_string(v.code) + " cannot be stored in an xrecord");
        switch (v.kind()) {
            case TypedValue::Kind::Point: tags.addPoint(v.code, v.point); break;
            case TypedValue::Kind::Real: tags.addReal(v.code, v.real); break;
            case TypedValue::Kind::Integer:
                if (!fits(v.code, v.integer))
                    return dxf::makeError("the value " + std::to_string(v.integer) + " does not fit group code " + std::to_string(v.code));
                tags.addInteger(v.code, v.integer);
                break;
            case TypedValue::Kind::Handle:
                if (!parseHandle(v.text) && !v.text.empty()) return dxf::makeError("\"" + v.text + "\" is not a handle");
                tags.add(v.code, v.text);
                break;
            case TypedValue::Kind::Binary:
                if (v.text.size() > 127) return dxf::makeError("a binary chunk holds at most 127 bytes");
                tags.add(v.code, dxf::toHex(v.text));
                break;
            case TypedValue::Kind::Text:
                if (v.text.find_first_of("\r\n") != std::string::npos) return dxf::makeError("a text value cannot hold a line break");
                tags.add(v.code, v.text);
                break;
        }
    }
    return {};
}

ResultBuffer valuesOf(const TagList& tags, std::size_t from, std::size_t to) {
    ResultBuffer out;
    to = std::min(to, tags.size());
    for (std::size_t i = from; i < to; ++i) {
        const TagValue& tag = tags[i];
        TypedValue v;
        v.code = tag.code;
        switch (v.kind()) {
            case TypedValue::Kind::Point: {
                v.point.x = dxf::parseReal(tag.value).value_or(0);
                if (i + 1 < to && tags[i + 1].code == tag.code + 10) {
                    v.point.y = dxf::parseReal(tags[++i].value).value_or(0);
                    if (i + 1 < to && tags[i + 1].code == tag.code + 20) v.point.z = dxf::parseReal(tags[++i].value).value_or(0);
                }
                break;
            }
            case TypedValue::Kind::Real: v.real = dxf::parseReal(tag.value).value_or(0); break;
            case TypedValue::Kind::Integer: v.integer = dxf::parseInteger(tag.value).value_or(0); break;
            case TypedValue::Kind::Binary: v.text = dxf::fromHex(dxf::trimSpaces(tag.value)).value_or(std::string()); break;
            case TypedValue::Kind::Handle: v.text = std::string(dxf::trimSpaces(tag.value)); break;
            case TypedValue::Kind::Text: v.text = tag.value; break;
        }
        out.push_back(std::move(v));
    }
    return out;
}

static Error notAnXrecord(const Database& db, Handle handle) {
    return dxf::makeError("object " + formatHandle(handle) + " is not an xrecord that can be opened (" +
                          std::string(describe(db.status(handle))) + ")");
}

// Straight from the stored tags, as valuesOf reads a TagList: object data reads one xrecord per record.
Result<ResultBuffer> readXrecord(const Database& db, Handle xrecord) {
    TagCursor cursor;
    if (db.typeName(xrecord) != "XRECORD" || db.read(xrecord, cursor) != OpenStatus::Ok) return notAnXrecord(db, xrecord);
    ResultBuffer out;
    bool have = cursor.next();
    while (have && !(cursor.code() == gc::kSubclass && cursor.value() == "AcDbXrecord")) have = cursor.next();
    if (!have) return out;
    have = cursor.next();
    if (have && cursor.code() == gc::kHardOwnerFlag) have = cursor.next();
    while (have) {
        TypedValue v;
        v.code = cursor.code();
        std::string_view value = cursor.value();
        switch (v.kind()) {
            case TypedValue::Kind::Point:
                v.point.x = dxf::parseReal(value).value_or(0);
                have = cursor.next();
                if (have && cursor.code() == v.code + 10) {
                    v.point.y = dxf::parseReal(cursor.value()).value_or(0);
                    have = cursor.next();
                    if (have && cursor.code() == v.code + 20) {
                        v.point.z = dxf::parseReal(cursor.value()).value_or(0);
                        have = cursor.next();
                    }
                }
                out.push_back(std::move(v));
                continue;
            case TypedValue::Kind::Real: v.real = dxf::parseReal(value).value_or(0); break;
            case TypedValue::Kind::Integer: v.integer = dxf::parseInteger(value).value_or(0); break;
            case TypedValue::Kind::Binary: v.text = dxf::fromHex(dxf::trimSpaces(value)).value_or(std::string()); break;
            case TypedValue::Kind::Handle: v.text = std::string(dxf::trimSpaces(value)); break;
            case TypedValue::Kind::Text: v.text = std::string(value); break;
        }
        out.push_back(std::move(v));
        have = cursor.next();
    }
    return out;
}

Result<void> replaceXrecord(Database& db, Handle xrecord, const ResultBuffer& values) {
    if (db.typeName(xrecord) != "XRECORD") return notAnXrecord(db, xrecord);
    TagList fresh;
    if (auto made = appendValues(fresh, values); !made) return made;
    ObjectWriter writer = db.openForWrite(xrecord);
    if (!writer) return notAnXrecord(db, xrecord);
    TagList& tags = writer.tags();
    std::size_t start = valuesStart(tags);
    if (start == TagList::npos) {
        tags.add(gc::kSubclass, "AcDbXrecord");
        tags.add(gc::kHardOwnerFlag, "1");
        start = tags.size();
    }
    tags.erase(start, tags.size() - start);
    for (const TagValue& tag : fresh) tags.add(tag.code, tag.value);
    return {};
}

Result<Handle> addXrecord(Database& db, Handle dictionary, std::string_view key, const ResultBuffer& values) {
    TagList tags{{0, "XRECORD"}, {gc::kSoftPointer, formatHandle(dictionary)}, {gc::kSubclass, "AcDbXrecord"}, {gc::kHardOwnerFlag, "1"}};
    if (auto made = appendValues(tags, values); !made) return made.error();
    if (!isDictionaryType(db.typeName(dictionary)) || !db.exists(dictionary))
        return dxf::makeError("object " + formatHandle(dictionary) + " is not a dictionary");
    auto added = db.addObject(std::move(tags));
    if (!added) return added.error();
    Handle previous = findEntry(db, dictionary, key);
    if (auto set = setEntry(db, dictionary, key, *added); !set) return set.error();
    if (previous != kNoHandle && previous != *added) (void)db.erase(previous);
    return *added;
}

}  // namespace veltarn::db
