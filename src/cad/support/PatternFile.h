// Hatch pattern files (".pat"): a header line "*NAME[,description]" followed by one line of
// descriptors per family of lines: "angle, x-origin, y-origin, delta-x, delta-y[, dash, ...]".
// ";" starts a comment. As with linetypes, a broken definition is kept with its error.
#pragma once

#include "cad/support/SupportText.h"

#include <string>
#include <vector>

namespace veltarn::support {

struct PatternLine {
    double angle = 0;  // degrees
    double originX = 0, originY = 0;
    double deltaX = 0, deltaY = 0;
    std::vector<double> dashes;  // > 0 dash, < 0 gap, 0 dot; none: a continuous line
};

struct PatternDefinition {
    std::string name;
    std::string description;
    std::vector<PatternLine> lines;
    // The definition as the file writes it, comments and blank lines left out: its header line,
    // then its descriptor lines, joined by "\n" (no line end after the last).
    std::string text;
    std::size_t line = 0;  // index of the header line in the file
    std::string error;     // empty when the definition is good; else "file:line: why"
};

// Every definition of the file in file order. Descriptors before the first header are an error of
// the file; a header without descriptors is a broken definition.
Result<std::vector<PatternDefinition>> parsePatterns(const SupportText& file);

// Only the names of the definitions, each as the file spells it: the quick look a lookup needs.
std::vector<std::string> patternNames(const SupportText& file);

}  // namespace veltarn::support
