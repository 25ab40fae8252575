// Text put into an HTML page: what the page shows must never become markup.
#pragma once

#include <string>

namespace veltarn::app {

// `text` (UTF-8) with &, <, >, " and ' written as character references.
std::string htmlEscaped(const std::string& text);

}  // namespace veltarn::app
