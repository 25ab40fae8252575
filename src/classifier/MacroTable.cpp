#include "classifier/MacroTable.h"

#include "host/LowerCase.h"

#include <vector>

namespace veltarn {

std::wstring MacroTable::referenceOf(std::wstring_view name) { return L"$(" + host::toLower(name) + L")"; }

std::optional<std::wstring> MacroTable::expand(std::wstring text) const {
    if (macros_.empty() || text.find(L"$(") == std::wstring::npos) return text;
    // What is left to read: the text, and above it the rest of each value being expanded. A
    // value's references are read before the text after the reference that brought it.
    std::vector<std::wstring_view> pending{text};
    std::wstring out;
    std::wstring key;
    std::size_t expansions = 0;
    while (!pending.empty()) {
        std::wstring_view& rest = pending.back();
        const std::size_t start = rest.find(L"$(");
        const std::size_t end = start == std::wstring_view::npos ? start : rest.find(L')', start + 2);
        if (end == std::wstring_view::npos) {
            out.append(rest);
            pending.pop_back();
        } else {
            out.append(rest.substr(0, start));
            const std::wstring_view reference = rest.substr(start, end - start + 1);
            rest.remove_prefix(end + 1);
            key = host::toLower(reference);
            auto macro = macros_.find(key);
            if (macro == macros_.end() || pending.size() > kMaxDepth) {
                out.append(reference);
            } else {
                if (++expansions > kMaxExpansions) return std::nullopt;
                // `rest` may dangle once the vector grows; it has been consumed up to here.
                pending.push_back(macro->second);
            }
        }
        if (out.size() > kMaxLength) return std::nullopt;
    }
    return out;
}

}  // namespace veltarn
