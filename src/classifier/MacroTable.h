// The text macros of a classifier ("define"): "$(name)" replaced wherever it occurs.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace veltarn {

class MacroTable {
public:
    // The text a macro is looked up by: "$(" + name lower-cased + ")".
    static std::wstring referenceOf(std::wstring_view name);

    bool contains(const std::wstring& reference) const { return macros_.count(reference) != 0; }
    void set(const std::wstring& reference, std::wstring value) { macros_[reference] = std::move(value); }

    // Replaces each "$(...)" that names a macro (without regard to case) by its value, whose own
    // references are replaced in turn; unknown references stay. Each character is written once,
    // so the work grows with the result, not faster. Macros that refer to each other in a circle
    // stop expanding kMaxDepth values deep, so a bad file cannot hang the reader. Nullopt when the
    // result would be longer than kMaxLength characters or take more than kMaxExpansions
    // replacements (macros that double at each level blow up fast).
    std::optional<std::wstring> expand(std::wstring text) const;

    static constexpr std::size_t kMaxDepth = 1000;
    static constexpr std::size_t kMaxLength = std::size_t{16} << 20;
    static constexpr std::size_t kMaxExpansions = std::size_t{4} << 20;

private:
    std::map<std::wstring, std::wstring, std::less<>> macros_;
};

}  // namespace veltarn
