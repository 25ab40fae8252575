// The standard pattern files (acad.pat and acadiso.pat) of the user's support folder, to which a
// classifier's patterns are added so that hatches find them.
#pragma once

#include <string>
#include <vector>

namespace veltarn {

// The first folder of `supportPath` (";"-separated) whose lower-cased text contains "support" and
// not "program files", and that holds both acad.pat and acadiso.pat, readable. Empty when none:
// patterns are never written under a program's own installation.
std::wstring userSupportFolder(const std::wstring& supportPath);

// Appends to the pattern file `path` each definition (header line first) whose pattern the file
// does not define yet (names compared without regard to case), each as "\n" + definition + "\n".
// The file is only appended to, never rewritten; false when it cannot be opened.
bool appendPatterns(const std::wstring& path, const std::vector<std::wstring>& definitions);

}  // namespace veltarn
