// The fixed words of property values: justifications and attachment points, both ways.
#pragma once

#include "classifier/ObjectProperties.h"

#include <optional>
#include <string_view>

namespace veltarn {

// Words are matched in lower case ("topleft"); names are the display forms ("TopLeft").
std::optional<TextJustification> textJustificationFromWord(std::wstring_view lowerWord);
std::wstring_view textJustificationName(TextJustification justification);

std::optional<MTextAttachment> attachmentFromWord(std::wstring_view lowerWord);
std::wstring_view attachmentName(MTextAttachment attachment);

// "bottom" and "zero" name themselves; any other word means top.
MlineJustification mlineJustificationFromWord(std::wstring_view lowerWord);
std::wstring_view mlineJustificationName(MlineJustification justification);

}  // namespace veltarn
