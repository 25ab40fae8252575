#include "cad/db/Color.h"

namespace veltarn::db {
namespace {
constexpr std::uint32_t kMethodByLayer = 0xC0, kMethodByBlock = 0xC1, kMethodRgb = 0xC2, kMethodIndex = 0xC3, kMethodNone = 0xC8;
}

Color Color::ofRgb(int r, int g, int b, int nearestIndex) {
    Color color{nearestIndex, static_cast<std::uint32_t>(((r & 255) << 16) | ((g & 255) << 8) | (b & 255))};
    return color;
}

std::uint32_t Color::raw() const {
    if (rgb) return (kMethodRgb << 24) | (*rgb & 0xFFFFFF);
    if (index == kByLayer) return kMethodByLayer << 24;
    if (index == kByBlock) return kMethodByBlock << 24;
    if (index < 0) return kMethodNone << 24;
    return (kMethodIndex << 24) | static_cast<std::uint32_t>(index & 255);
}

Color Color::fromRaw(std::uint32_t raw) {
    switch (raw >> 24) {
        case kMethodRgb: return {7, raw & 0xFFFFFF};
        case kMethodByBlock: return byBlock();
        case kMethodIndex: return ofIndex(static_cast<int>(raw & 255));
        case kMethodNone: return ofIndex(kNone);
        default: return byLayer();
    }
}

}  // namespace veltarn::db
