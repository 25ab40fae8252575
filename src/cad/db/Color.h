// Entity colours: an index (0 ByBlock, 256 ByLayer, 1-255 the palette), a true colour, or none.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace veltarn::db {

struct Color {
    static constexpr int kByBlock = 0;
    static constexpr int kByLayer = 256;
    static constexpr int kNone = -1;

    int index = kByLayer;
    std::optional<std::uint32_t> rgb;  // 0xRRGGBB when a true colour

    static Color byLayer() { return {}; }
    static Color byBlock() { return {kByBlock, std::nullopt}; }
    static Color ofIndex(int index) { return {index, std::nullopt}; }
    static Color ofRgb(int r, int g, int b, int nearestIndex = 7);
    bool isTrueColor() const { return rgb.has_value(); }
    bool operator==(const Color&) const = default;

    // The 32-bit form colour objects are stored in where DXF keeps a whole colour in one
    // value (xdata 1071 of a hatch background): method byte then index or RGB.
    std::uint32_t raw() const;
    static Color fromRaw(std::uint32_t raw);
};

}  // namespace veltarn::db
