// The text macros of a classifier ("define"): "$(name)" replaced wherever it occurs.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace veltarn {

class MacroTable {
public:
    // The text a macro is looked up by: "$(" + name lower-cased + ")".
    static std::wstring referenceOf(std::wstring_view name);

    bool contains(const std::wstring& reference) const { return macros_.count(reference) != 0; }
    void set(const std::wstring& reference, std::wstring value) { macros_[reference] = std::move(value); }

    // Replaces each "$(...)" that names a macro (without regard to case) by its value, again and
    // again while the values hold more references; unknown references stay. Macros that refer to
    // each other in a circle stop expanding once the text has been through kMaxExpansions
    // replacements, so a bad file cannot hang the reader.
    std::wstring expand(std::wstring text) const;

    static constexpr int kMaxExpansions = 1000;

private:
    std::map<std::wstring, std::wstring> macros_;
};

}  // namespace veltarn
