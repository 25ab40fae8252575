#include "cad/editor/SystemVariableTable.h"

#include <cmath>
#include <cwctype>

#include "host/Format.h"
#include "host/NumberRules.h"

namespace veltarn::editor {
namespace {

using host::VariableType;
using host::VariableValue;

std::wstring upper(const std::wstring& name) {
    std::wstring out = name;
    for (wchar_t& c : out) c = static_cast<wchar_t>(std::towupper(static_cast<wint_t>(c)));
    return out;
}

bool isInteger(VariableType type) { return type == VariableType::kShort || type == VariableType::kLong; }
bool isPoint(VariableType type) { return type == VariableType::kPoint2d || type == VariableType::kPoint3d; }

// A whole integer: optional sign and digits, blanks around allowed, nothing else.
std::optional<long long> parseInteger(const std::wstring& text) {
    std::size_t i = 0, end = text.size();
    while (i < end && text[i] == L' ') ++i;
    while (end > i && text[end - 1] == L' ') --end;
    std::size_t digitsStart = i;
    if (i < end && (text[i] == L'+' || text[i] == L'-')) digitsStart = ++i;
    if (digitsStart == end || end - digitsStart > 12) return std::nullopt;
    for (std::size_t k = digitsStart; k < end; ++k)
        if (text[k] < L'0' || text[k] > L'9') return std::nullopt;
    return host::wtoi(text.substr(0, end));
}

// A whole real: sign, digits with at most one point, an optional exponent; blanks around allowed.
std::optional<double> parseReal(const std::wstring& text) {
    std::size_t i = 0, end = text.size();
    while (i < end && text[i] == L' ') ++i;
    while (end > i && text[end - 1] == L' ') --end;
    const std::size_t start = i;
    auto digits = [&] {
        std::size_t from = i;
        while (i < end && text[i] >= L'0' && text[i] <= L'9') ++i;
        return i - from;
    };
    if (i < end && (text[i] == L'+' || text[i] == L'-')) ++i;
    std::size_t mantissa = digits();
    if (i < end && text[i] == L'.') {
        ++i;
        mantissa += digits();
    }
    if (mantissa == 0) return std::nullopt;
    if (i < end && (text[i] == L'e' || text[i] == L'E')) {
        ++i;
        if (i < end && (text[i] == L'+' || text[i] == L'-')) ++i;
        if (digits() == 0) return std::nullopt;
    }
    if (i != end) return std::nullopt;
    const double value = host::wtof(text.substr(start, end - start));
    if (!std::isfinite(value)) return std::nullopt;
    return value;
}

}  // namespace

SystemVariableTable::SystemVariableTable() {
    auto shortVar = [this](const wchar_t* name, int value, int minimum, int maximum) {
        define({name, VariableValue::ofShort(static_cast<std::int16_t>(value)), false, minimum, maximum, nullptr});
    };
    auto stringVar = [this](const wchar_t* name, const wchar_t* value) {
        define({name, VariableValue::ofString(value), false, 0, 0, nullptr});
    };
    shortVar(L"CMDECHO", 1, 0, 1);
    shortVar(L"SORTENTS", 127, 0, 127);
    shortVar(L"INSUNITS", 0, 0, 24);
    shortVar(L"LUPREC", 4, 0, 8);
    shortVar(L"TILEMODE", 1, 0, 1);
    shortVar(L"FILEDIA", 1, 0, 1);
    shortVar(L"ATTREQ", 1, 0, 1);
    shortVar(L"ATTDIA", 0, 0, 1);
    shortVar(L"OSMODE", 0, 0, 32767);
    stringVar(L"CLAYER", L"0");
    stringVar(L"CECOLOR", L"BYLAYER");
    stringVar(L"CELTYPE", L"ByLayer");
    stringVar(L"TEXTSTYLE", L"Standard");
    define({L"TEXTSIZE", VariableValue::ofReal(2.5), false, 0, 0, nullptr});
    define({L"LTSCALE", VariableValue::ofReal(1.0), false, 0, 0, nullptr});
    define({L"INSBASE", VariableValue::ofPoint3d({0, 0, 0}), false, 0, 0, nullptr});
    define({L"LIMMIN", VariableValue::ofPoint2d(0, 0), false, 0, 0, nullptr});
    define({L"LIMMAX", VariableValue::ofPoint2d(420, 297), false, 0, 0, nullptr});
    define({L"CMDNAMES", VariableValue::ofString(L""), true, 0, 0, nullptr});
    define({L"DWGNAME", VariableValue::ofString(L"Drawing1.dxf"), true, 0, 0, nullptr});
    define({L"DWGPREFIX", VariableValue::ofString(L""), true, 0, 0, nullptr});
}

void SystemVariableTable::define(Definition definition) {
    definition.name = upper(definition.name);
    std::wstring key = definition.name;
    variables_[key] = std::move(definition);
}

void SystemVariableTable::defineComputed(const std::wstring& name, VariableType type,
                                         std::function<VariableValue()> getter) {
    Definition definition;
    definition.name = name;
    definition.value.type = type;
    definition.readOnly = true;
    definition.getter = std::move(getter);
    define(std::move(definition));
}

const SystemVariableTable::Definition* SystemVariableTable::find(const std::wstring& name) const {
    auto it = variables_.find(upper(name));
    return it == variables_.end() ? nullptr : &it->second;
}

bool SystemVariableTable::has(const std::wstring& name) const { return find(name) != nullptr; }

bool SystemVariableTable::isReadOnly(const std::wstring& name) const {
    const Definition* d = find(name);
    return d && d->readOnly;
}

std::vector<std::wstring> SystemVariableTable::names() const {
    std::vector<std::wstring> out;
    for (const auto& [name, d] : variables_) out.push_back(name);
    return out;
}

std::optional<VariableValue> SystemVariableTable::get(const std::wstring& name) const {
    const Definition* d = find(name);
    if (!d) return std::nullopt;
    if (d->getter) {
        VariableValue value = d->getter();
        value.type = d->value.type;
        return value;
    }
    return d->value;
}

bool SystemVariableTable::set(const std::wstring& name, const VariableValue& value) {
    auto it = variables_.find(upper(name));
    if (it == variables_.end()) return false;
    Definition& d = it->second;
    if (d.readOnly) return false;
    // A short and a long take each other's values; every other type must match.
    const bool sameKind = value.type == d.value.type || (isInteger(value.type) && isInteger(d.value.type));
    if (!sameKind) return false;
    if (isInteger(d.value.type)) {
        if (d.minimum < d.maximum && (value.integer < d.minimum || value.integer > d.maximum)) return false;
        if (d.value.type == VariableType::kShort && (value.integer < -32768 || value.integer > 32767)) return false;
        d.value.integer = value.integer;
    } else if (d.value.type == VariableType::kReal) {
        if (!std::isfinite(value.real)) return false;
        d.value.real = value.real;
    } else if (isPoint(d.value.type)) {
        d.value.point = value.point;
        if (d.value.type == VariableType::kPoint2d) d.value.point.z = 0;
    } else {
        d.value.text = value.text;
    }
    return true;
}

std::wstring SystemVariableTable::display(const VariableValue& value) const {
    int decimals = 4;
    if (auto precision = get(L"LUPREC")) decimals = precision->integer;
    auto real = [decimals](double v) { return host::format(L"%.*f", decimals, v); };
    switch (value.type) {
        case VariableType::kShort:
        case VariableType::kLong: return host::format(L"%i", value.integer);
        case VariableType::kReal: return real(value.real);
        case VariableType::kPoint2d: return real(value.point.x) + L"," + real(value.point.y);
        case VariableType::kPoint3d:
            return real(value.point.x) + L"," + real(value.point.y) + L"," + real(value.point.z);
        case VariableType::kString: return L"\"" + value.text + L"\"";
    }
    return {};
}

std::optional<VariableValue> SystemVariableTable::parse(VariableType type, const std::wstring& text) {
    switch (type) {
        case VariableType::kShort:
        case VariableType::kLong: {
            auto v = parseInteger(text);
            if (!v) return std::nullopt;
            VariableValue value = type == VariableType::kShort ? VariableValue::ofShort(0) : VariableValue::ofLong(0);
            value.integer = static_cast<std::int32_t>(*v);
            return value;
        }
        case VariableType::kReal: {
            auto v = parseReal(text);
            if (!v) return std::nullopt;
            return VariableValue::ofReal(*v);
        }
        case VariableType::kPoint2d:
        case VariableType::kPoint3d: {
            std::vector<double> parts;
            std::size_t start = 0;
            while (true) {
                std::size_t comma = text.find(L',', start);
                auto v = parseReal(text.substr(start, comma == std::wstring::npos ? std::wstring::npos : comma - start));
                if (!v) return std::nullopt;
                parts.push_back(*v);
                if (comma == std::wstring::npos) break;
                start = comma + 1;
            }
            if (parts.size() == 2) parts.push_back(0);
            if (parts.size() != 3 || (type == VariableType::kPoint2d && parts[2] != 0)) return std::nullopt;
            if (type == VariableType::kPoint2d) return VariableValue::ofPoint2d(parts[0], parts[1]);
            return VariableValue::ofPoint3d({parts[0], parts[1], parts[2]});
        }
        case VariableType::kString: return VariableValue::ofString(text);
    }
    return std::nullopt;
}

}  // namespace veltarn::editor
