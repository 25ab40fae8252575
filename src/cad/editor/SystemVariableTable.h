// The workbench's system variables: typed values with their ranges, readable and settable by name.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/SystemVariables.h"

namespace veltarn::editor {

class SystemVariableTable : public host::SystemVariables {
public:
    // A variable's definition. A computed variable (CMDNAMES, DWGNAME) has a getter and is read-only.
    struct Definition {
        std::wstring name;  // upper case
        host::VariableValue value;
        bool readOnly = false;
        int minimum = 0, maximum = 0;  // for short and long values, when minimum < maximum
        std::function<host::VariableValue()> getter;
    };

    // The variables every drawing session has, with their start values.
    SystemVariableTable();

    std::optional<host::VariableValue> get(const std::wstring& name) const override;
    bool set(const std::wstring& name, const host::VariableValue& value) override;

    // Adds or replaces a variable.
    void define(Definition definition);
    // Makes `name` read-only with its value computed on each read.
    void defineComputed(const std::wstring& name, host::VariableType type, std::function<host::VariableValue()> getter);
    bool has(const std::wstring& name) const;
    bool isReadOnly(const std::wstring& name) const;
    // Every variable name, sorted.
    std::vector<std::wstring> names() const;

    // A value as the command line shows it: integers in decimal, reals with LUPREC decimals,
    // points as "x,y" or "x,y,z", texts in double quotes.
    std::wstring display(const host::VariableValue& value) const;
    // Reads an answer typed for a variable of `type`: whole integers, reals, points as "x,y" (and
    // "x,y,z" for 3D), texts as they stand. nullopt when the text does not fit the type.
    static std::optional<host::VariableValue> parse(host::VariableType type, const std::wstring& text);

private:
    const Definition* find(const std::wstring& name) const;
    std::map<std::wstring, Definition> variables_;
};

}  // namespace veltarn::editor
