#include "commands/FieldRules.h"

#include <algorithm>
#include <cmath>

#include "host/LowerCase.h"

namespace veltarn {
namespace {

bool nearlyEqual(double a, double b) {
    return std::fabs(a - b) <= kRealTolerance * std::max({1.0, std::fabs(a), std::fabs(b)});
}
bool atMost(double a, double b) { return a <= b || nearlyEqual(a, b); }

// `text` read as a value of `type`, the way a classifier's list and range texts are read. Numbers
// are read as reals whatever the field's type, so that "1.5" in the list of an integer field is
// 1.5 and no integer equals it (reading it as an integer would make it 1).
std::optional<FieldValue> parsed(FieldType type, const std::wstring& text) {
    return fieldValueOf(type == FieldType::Integer ? FieldType::Real : type, text);
}

// A number of either stored type, as a real.
double numberOf(const FieldValue& value) {
    return value.type() == FieldType::Integer ? static_cast<double>(value.integerValue()) : value.realValue();
}

bool sameValue(FieldType type, const FieldValue& a, const FieldValue& b) {
    switch (type) {
        case FieldType::Integer: return numberOf(a) == numberOf(b);
        case FieldType::Real: return nearlyEqual(numberOf(a), numberOf(b));
        case FieldType::Character: return host::equalsIgnoringCase(a.text(), b.text());
        case FieldType::Point: {
            const FieldPoint p = a.pointValue(), q = b.pointValue();
            return nearlyEqual(p.x, q.x) && nearlyEqual(p.y, q.y) && nearlyEqual(p.z, q.z);
        }
        default: return false;
    }
}

bool inRange(FieldType type, const FieldValue& low, const FieldValue& value, const FieldValue& high) {
    switch (type) {
        case FieldType::Integer: return numberOf(low) <= numberOf(value) && numberOf(value) <= numberOf(high);
        case FieldType::Real: return atMost(numberOf(low), numberOf(value)) && atMost(numberOf(value), numberOf(high));
        case FieldType::Character: {
            const std::wstring v = host::toLower(value.text());
            return host::toLower(low.text()) <= v && v <= host::toLower(high.text());
        }
        case FieldType::Point: {
            const FieldPoint a = low.pointValue(), p = value.pointValue(), b = high.pointValue();
            return atMost(a.x, p.x) && atMost(p.x, b.x) && atMost(a.y, p.y) && atMost(p.y, b.y) && atMost(a.z, p.z) &&
                   atMost(p.z, b.z);
        }
        default: return false;
    }
}

std::wstring joined(const std::vector<std::wstring>& values, const wchar_t* separator) {
    std::wstring text;
    for (const std::wstring& value : values) {
        if (!text.empty()) text += separator;
        text += value;
    }
    return text;
}

}  // namespace

const FieldRules::Compiled& FieldRules::compiled(const FieldDef& field) {
    if (auto known = compiled_.find(&field); known != compiled_.end()) return known->second;
    Compiled rules;
    if ((field.attributes & kAttributeConst) && field.hasDefault())
        rules.constant = field.value.type() == field.type ? field.value : parsed(field.type, field.value.displayText());
    if (field.kind == ValueKind::List) {
        for (const std::wstring& item : field.values)
            if (auto value = parsed(field.type, item)) rules.allowed.push_back(std::move(*value));
    }
    if (field.kind == ValueKind::Range && field.values.size() == 2) {
        rules.low = parsed(field.type, field.values[0]);
        rules.high = parsed(field.type, field.values[1]);
    }
    return compiled_.emplace(&field, std::move(rules)).first->second;
}

std::optional<Fault> FieldRules::fault(const std::wstring& table, const FieldDef& field, const FieldValue* value) {
    auto fault = [&](FaultCode code, std::wstring expected) {
        return Fault{code, table, field.name, value ? value->displayText() : std::wstring(), std::move(expected)};
    };
    if (!value || value->type() == FieldType::None) return fault(FaultCode::kMissingValue, fieldTypeName(field.type));
    if (value->type() != field.type) return fault(FaultCode::kWrongType, fieldTypeName(field.type));
    if (field.type == FieldType::Character && value->text().empty()) {
        if (field.attributes & (kAttributeNotEmpty | kAttributeRequired)) return fault(FaultCode::kEmptyValue, L"a value");
        return std::nullopt;
    }
    if (field.kind != ValueKind::List && field.kind != ValueKind::Range && !(field.attributes & kAttributeConst))
        return std::nullopt;

    const Compiled& rules = compiled(field);
    if ((field.attributes & kAttributeConst) && field.hasDefault() &&
        !(rules.constant && sameValue(field.type, *rules.constant, *value)))
        return fault(FaultCode::kConstChanged, field.value.displayText());
    if (field.kind == ValueKind::List &&
        std::none_of(rules.allowed.begin(), rules.allowed.end(),
                     [&](const FieldValue& allowed) { return sameValue(field.type, allowed, *value); }))
        return fault(FaultCode::kNotInList, joined(field.values, L", "));
    if (field.kind == ValueKind::Range && !(rules.low && rules.high && inRange(field.type, *rules.low, *value, *rules.high)))
        return fault(FaultCode::kOutOfRange, joined(field.values, L" .. "));
    return std::nullopt;
}

}  // namespace veltarn
