// The little the classifier reads of support files itself: the linetype names of a ".lin" file and
// the pattern definitions of a ".pat" file (loading them into a drawing is the host's).
#pragma once

#include <map>
#include <string>
#include <vector>

namespace veltarn {

// The lines of a UTF-8 text file (byte-order mark dropped, line ends removed); false when the file
// cannot be opened, is no regular file or is larger than host::kMaxSupportFileBytes.
bool readTextLines(const std::wstring& path, std::vector<std::wstring>& lines);

// The name of a header line ("*NAME,description", leading blanks allowed), empty for other lines.
std::wstring headerName(std::wstring_view line);

// The names the headers of a ".lin" or ".pat" file define, in file order, as spelled.
std::vector<std::wstring> definedNames(const std::vector<std::wstring>& lines);

// The definitions of a ".pat" file by lower-cased name: the header line, then each descriptor line
// up to the next header (blank and comment lines left out), joined by "\n". The first definition
// of a name counts.
std::map<std::wstring, std::wstring> patternDefinitions(const std::vector<std::wstring>& lines);

}  // namespace veltarn
