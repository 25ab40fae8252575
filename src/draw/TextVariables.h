// The text variables of classifier texts ("$(obj_name)", "$(year)", ...), filled in when an object
// gets its data or its text.
#pragma once

#include <string>

#include "classifier/ClassDef.h"
#include "host/Host.h"

namespace veltarn {

// `text` with every variable replaced, pass after pass until a pass finds none, so a replacement
// holding a variable is expanded too:
//   $(obj_name)       the class's name as written
//   $(file_name)      the file name of the drawing's document (the drawing's own file name when
//                     it has no document)
//   $(computer_name)  this computer's name, "unknown" when there is none
//   $(user_name)      the user's login name, "unknown" when there is none
//   $(day) $(month) $(year) $(hour) $(minute) $(second)   local date and time, two digits (the
//                     year four)
// A text that keeps producing variables (a class named after "$(obj_name)") stops growing after
// kMaxTextVariablePasses passes or kMaxExpandedTextLength characters, where it is returned as it
// stands.
std::wstring expandTextVariables(host::Host& host, const ClassDef& def, const std::wstring& text);

inline constexpr int kMaxTextVariablePasses = 64;
inline constexpr std::size_t kMaxExpandedTextLength = 1 << 20;

}  // namespace veltarn
