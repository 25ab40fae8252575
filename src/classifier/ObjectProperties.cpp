#include "classifier/ObjectProperties.h"

namespace veltarn {

std::wstring colorText(const PropertyColor& color) {
    if (color.size() == 1) {
        switch (color[0]) {
            case kColorNone: return L"None";
            case kColorByBlock: return L"ByBlock";
            case kColorByLayer: return L"ByLayer";
            default: return std::to_wstring(color[0]);
        }
    }
    if (color.size() == 3) {
        return L"(" + std::to_wstring(color[0]) + L" " + std::to_wstring(color[1]) + L" " +
               std::to_wstring(color[2]) + L")";
    }
    return {};
}

}  // namespace veltarn
