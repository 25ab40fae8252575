#include "cad/db/Handle.h"

#include "cad/dxf/NumberText.h"

#include <charconv>

namespace veltarn::db {

std::optional<Handle> parseHandle(std::string_view text) {
    text = dxf::trimSpaces(text);
    if (text.empty() || text.size() > 16) return std::nullopt;
    Handle value = 0;
    auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
    if (ec != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

std::string formatHandle(Handle handle) {
    char buffer[20];
    auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, handle, 16);
    (void)ec;  // 20 characters hold any 64-bit number in hexadecimal
    for (char* c = buffer; c != end; ++c)
        if (*c >= 'a' && *c <= 'f') *c = static_cast<char>(*c - 'a' + 'A');
    return std::string(buffer, end);
}

}  // namespace veltarn::db
