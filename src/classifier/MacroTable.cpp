#include "classifier/MacroTable.h"

#include "host/LowerCase.h"

namespace veltarn {

std::wstring MacroTable::referenceOf(std::wstring_view name) { return L"$(" + host::toLower(name) + L")"; }

std::wstring MacroTable::expand(std::wstring text) const {
    if (macros_.empty()) return text;
    std::size_t position = 0;
    int expansions = 0;
    for (;;) {
        std::size_t start = text.find(L"$(", position);
        if (start == std::wstring::npos) break;
        std::size_t end = text.find(L')', start + 2);
        if (end == std::wstring::npos) break;
        const std::wstring reference = text.substr(start, end - start + 1);
        auto macro = macros_.find(host::toLower(reference));
        if (macro == macros_.end()) {
            position = end + 1;
            continue;
        }
        if (++expansions > kMaxExpansions) break;
        // Every occurrence of this very spelling; others are found when the search reaches them.
        for (std::size_t at = start; (at = text.find(reference, at)) != std::wstring::npos;
             at += macro->second.size()) {
            text.replace(at, reference.size(), macro->second);
        }
        position = start;
    }
    return text;
}

}  // namespace veltarn
