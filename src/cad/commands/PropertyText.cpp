#include "cad/commands/PropertyText.h"

#include "host/Format.h"

namespace veltarn::cad {

std::wstring colorText(const host::Color& color) {
    if (color.isRgb) return host::format(L"%i,%i,%i", color.red, color.green, color.blue);
    if (color.index == host::Color::kByLayer) return L"BYLAYER";
    if (color.index == host::Color::kByBlock) return L"BYBLOCK";
    return host::format(L"%i", color.index);
}

}  // namespace veltarn::cad
