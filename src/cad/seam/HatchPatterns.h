// Which hatch patterns a drawing can use: the built-in solid fill and those of pattern files.
#pragma once

#include <string>

namespace veltarn::seam {

// True for "SOLID" and for a pattern defined ("*NAME,description") in a ".pat" file of one of the
// folders of `supportPath` (";"-separated). Names compare without regard to case.
bool isKnownHatchPattern(const std::wstring& pattern, const std::wstring& supportPath);

}  // namespace veltarn::seam
