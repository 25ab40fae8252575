#include "classifier/FieldDef.h"

#include "host/LowerCase.h"

#include <algorithm>
#include <optional>

namespace veltarn {

std::optional<FieldValue> fieldValueOf(FieldType type, const std::wstring& text) {
    FieldValue value;
    switch (type) {
        case FieldType::Integer: value.setInteger(0); break;
        case FieldType::Real: value.setReal(0); break;
        case FieldType::Point: value.setPoint({}); break;
        default: value.setText({}); break;
    }
    try {
        value.assign(FieldValue::fromText(text));
    } catch (int) {
        return std::nullopt;
    }
    return value;
}

namespace {

bool sameValue(const FieldValue& a, const FieldValue& b) {
    if (a.type() != b.type()) return false;
    switch (a.type()) {
        case FieldType::None: return true;
        case FieldType::Integer: return a.integerValue() == b.integerValue();
        case FieldType::Real: return a.realValue() == b.realValue();
        case FieldType::Character: return a.text() == b.text();
        case FieldType::Point: {
            FieldPoint p = a.pointValue(), q = b.pointValue();
            return p.x == q.x && p.y == q.y && p.z == q.z;
        }
    }
    return false;
}

bool isListMember(const FieldDef& field, const std::wstring& item) {
    try {
        switch (field.type) {
            case FieldType::Character:
                return host::toLower(item) == host::toLower(field.value.asText());
            case FieldType::Integer: {
                auto v = fieldValueOf(field.type, item);
                return v && v->integerValue() == field.value.asInteger();
            }
            case FieldType::Real: {
                auto v = fieldValueOf(field.type, item);
                return v && v->realValue() == field.value.asReal();
            }
            case FieldType::Point: {
                auto v = fieldValueOf(field.type, item);
                if (!v) return false;
                FieldPoint p = v->pointValue(), d = field.value.asPoint();
                return p.x == d.x && p.y == d.y && p.z == d.z;
            }
            default: return false;
        }
    } catch (int) {
        return false;  // a default that does not convert to the field's type
    }
}

bool isInRange(const FieldDef& field) {
    if (field.values.size() != 2) return false;
    const std::wstring& low = field.values[0];
    const std::wstring& high = field.values[1];
    try {
        switch (field.type) {
            case FieldType::Character: {
                std::wstring d = host::toLower(field.value.asText());
                return host::toLower(low) <= d && d <= host::toLower(high);
            }
            case FieldType::Integer: {
                std::int32_t d = field.value.asInteger();
                return fieldValueOf(field.type, low)->integerValue() <= d && d <= fieldValueOf(field.type, high)->integerValue();
            }
            case FieldType::Real: {
                double d = field.value.asReal();
                return fieldValueOf(field.type, low)->realValue() <= d && d <= fieldValueOf(field.type, high)->realValue();
            }
            case FieldType::Point: {
                auto lo = fieldValueOf(field.type, low), hi = fieldValueOf(field.type, high);
                if (!lo || !hi) return false;
                FieldPoint a = lo->pointValue(), b = hi->pointValue(), d = field.value.asPoint();
                return a.x <= d.x && d.x <= b.x && a.y <= d.y && d.y <= b.y && a.z <= d.z && d.z <= b.z;
            }
            default: return false;
        }
    } catch (int) {
        return false;
    }
}

}  // namespace

bool FieldDef::isValid() const {
    switch (kind) {
        case ValueKind::List:
            return hasDefault() && std::any_of(values.begin(), values.end(),
                                               [this](const std::wstring& item) { return isListMember(*this, item); });
        case ValueKind::Range: return hasDefault() && isInRange(*this);
        default: return true;
    }
}

bool FieldDef::operator==(const FieldDef& other) const {
    return description == other.description && kind == other.kind && name == other.name &&
           attributes == other.attributes && type == other.type && sameValue(value, other.value) &&
           values == other.values;
}

FieldAttributes parseAttributes(std::wstring_view text) {
    std::wstring lower = host::toLower(text);
    std::vector<std::wstring_view> words;
    std::wstring_view rest = lower;
    while (!rest.empty()) {
        std::size_t space = rest.find(L' ');
        std::wstring_view word = rest.substr(0, space);
        if (!word.empty()) words.push_back(word);
        if (space == std::wstring_view::npos) break;
        rest.remove_prefix(space + 1);
    }
    if (words.empty()) return {};

    FieldAttributes result;
    std::wstring_view typeWord = words.back();
    if (typeWord == L"character") {
        result.type = FieldType::Character;
    } else if (typeWord == L"integer") {
        result.type = FieldType::Integer;
    } else if (typeWord == L"real") {
        result.type = FieldType::Real;
    } else {
        return {};
    }
    for (std::size_t i = 0; i + 1 < words.size(); ++i) {
        if (words[i] == L"const") {
            result.attributes |= kAttributeConst;
        } else if (words[i] == L"notempty") {
            result.attributes |= kAttributeNotEmpty;
        } else if (words[i] == L"required") {
            result.attributes |= kAttributeRequired;
        } else {
            return {};
        }
    }
    return result;
}

FieldDef makeKeyField(std::wstring name) {
    FieldDef field;
    field.kind = ValueKind::Key;
    field.name = std::move(name);
    field.type = FieldType::Character;
    field.value = FieldValue::fromText(L"$(obj_name)");
    return field;
}

}  // namespace veltarn
