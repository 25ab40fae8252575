// The file arguments of the classifier's resource keywords: resolving, wild cards, extensions.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace veltarn {

// `argument` as a path: backslashes read as folder separators; a relative path is taken from the
// folder of `classifierPath`.
std::wstring resolveResourcePath(std::wstring_view argument, std::wstring_view classifierPath);

// The files that `pattern` names: its folder part literal, its file-name part matched with "*"
// and "?" (case-sensitive), in name order; folders and "." and ".." are passed over.
std::vector<std::wstring> matchFiles(const std::wstring& pattern);

// True when the first occurrence of `extension` (".dwg") lies at the end of `path`. Case-
// sensitive on purpose, and so "a.dwg.dwg" does not count: a file that fails is passed over.
bool hasExtension(std::wstring_view path, std::wstring_view extension);

// A drawing that resources are copied from: ".dwg" or ".dwt" as named in classifiers, and ".dxf",
// the drawings this platform reads.
bool isDrawingFile(std::wstring_view path);

// The file name without folder and without its four-character extension.
std::wstring blockNameOfFile(std::wstring_view path);

}  // namespace veltarn
