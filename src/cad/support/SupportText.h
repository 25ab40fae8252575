// A support file read as text: its lines, numbered from 1, with the helpers the three formats share.
#pragma once

#include "cad/dxf/Result.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace veltarn::support {

using dxf::Error;
using dxf::Result;

class SupportText {
public:
    // The file as UTF-8 text; a byte-order mark is dropped. Fails with the file's name when it
    // cannot be read.
    static Result<SupportText> load(const std::filesystem::path& path);
    // Text already in memory; `name` is what messages call it.
    SupportText(std::string text, std::string name);

    const std::string& name() const { return name_; }
    // The lines without their line ends ("\n", "\r\n" or "\r"); line i + 1 of the file is [i].
    const std::vector<std::string_view>& lines() const { return lines_; }

    // "name:line: message", the form of every error about the file's contents.
    Error errorAt(std::size_t lineIndex, const std::string& message) const;

private:
    std::string text_;
    std::string name_;
    std::vector<std::string_view> lines_;
};

// `line` without what follows its first ";" (comments), and without surrounding blanks.
std::string_view stripComment(std::string_view line);
std::string_view trimBlanks(std::string_view text);
// Splits at commas that stand outside square brackets and double quotes; items are trimmed.
std::vector<std::string_view> splitItems(std::string_view text);
// A decimal number as support files write them: "-.5", "+2", "1e-3"; nullopt for anything else.
std::optional<double> parseNumber(std::string_view text);
// Symbol names compare without regard to ASCII case. `pattern` may hold "*" (any run) and "?" (any
// one character): "?*" matches every non-empty name.
bool matchesName(std::string_view pattern, std::string_view name);

}  // namespace veltarn::support
