// The sample command group and lisp function that every module of this kind carries.
#pragma once

#include "host/Host.h"

namespace veltarn {

inline constexpr std::wstring_view kSampleGroup = L"MyGroup";
inline constexpr std::wstring_view kSampleFunction = L"MyLispFunction";

// Registers "MyCommand", "MyPickFirst" and "MySessionCmd" in the group "MyGroup".
void registerSampleGroup(host::Host& host);
void removeSampleGroup(host::Host& host);

// Defines and undefines "MyLispFunction" (done per document: on its load and its unload).
void defineSampleFunction(host::Host& host);
void undefineSampleFunction(host::Host& host);

}  // namespace veltarn
