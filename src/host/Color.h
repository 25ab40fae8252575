// An entity colour as the drawing stores it: a colour index or a true colour.
#pragma once

#include <cstdint>

namespace veltarn::host {

// Index 0 is ByBlock, 256 ByLayer, 1 to 255 the palette; -1 is "None" (used only for backgrounds).
struct Color {
    static constexpr int kByBlock = 0;
    static constexpr int kByLayer = 256;
    static constexpr int kNone = -1;

    bool isRgb = false;
    int index = kByLayer;  // meaningful when !isRgb
    std::uint8_t red = 0, green = 0, blue = 0;  // meaningful when isRgb

    static constexpr Color fromIndex(int index) { return Color{false, index, 0, 0, 0}; }
    static constexpr Color fromRgb(std::uint8_t r, std::uint8_t g, std::uint8_t b) {
        return Color{true, kByLayer, r, g, b};
    }
    friend constexpr bool operator==(const Color&, const Color&) = default;
};

}  // namespace veltarn::host
