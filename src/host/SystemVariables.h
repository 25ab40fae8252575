// The host's system variables, typed (CMDECHO, CMDNAMES, SORTENTS, INSUNITS, LUPREC, ...).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "host/Point3d.h"

namespace veltarn::host {

enum class VariableType { kShort, kLong, kReal, kPoint2d, kPoint3d, kString };

// One value; the member that `type` names holds it (z is 0 for a 2D point).
struct VariableValue {
    VariableType type = VariableType::kShort;
    std::int32_t integer = 0;
    double real = 0;
    Point3d point;
    std::wstring text;

    static VariableValue ofShort(std::int16_t v) { VariableValue x; x.type = VariableType::kShort; x.integer = v; return x; }
    static VariableValue ofLong(std::int32_t v) { VariableValue x; x.type = VariableType::kLong; x.integer = v; return x; }
    static VariableValue ofReal(double v) { VariableValue x; x.type = VariableType::kReal; x.real = v; return x; }
    static VariableValue ofPoint2d(double px, double py) { VariableValue x; x.type = VariableType::kPoint2d; x.point = {px, py, 0}; return x; }
    static VariableValue ofPoint3d(Point3d p) { VariableValue x; x.type = VariableType::kPoint3d; x.point = p; return x; }
    static VariableValue ofString(std::wstring v) { VariableValue x; x.type = VariableType::kString; x.text = std::move(v); return x; }
};

class SystemVariables {
public:
    virtual ~SystemVariables() = default;
    // The value of `name` (any case); nullopt when the host has no such variable. Its type tells
    // the variable's type.
    virtual std::optional<VariableValue> get(const std::wstring& name) const = 0;
    // Sets `name`. False, with nothing changed, for an unknown or read-only variable, a value of
    // another type, or a value out of the variable's range.
    virtual bool set(const std::wstring& name, const VariableValue& value) = 0;
};

}  // namespace veltarn::host
