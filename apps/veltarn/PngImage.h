// A grey image with transparency as a PNG in a data: URI, so that an HTML page carries its
// pictures inside it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace veltarn::app {

class GreyCanvas {
public:
    GreyCanvas(int width, int height);

    int width() const { return width_; }
    int height() const { return height_; }
    // Marks the pixel (outside the canvas: nothing), or every pixel of the line between two.
    void dot(long x, long y);
    void line(long x0, long y0, long x1, long y1);

    // "data:image/png;base64,...": marked pixels in `grey` (0 black .. 255 white), the others
    // transparent.
    std::string pngDataUri(std::uint8_t grey) const;

private:
    int width_, height_;
    std::vector<std::uint8_t> marked_;
};

}  // namespace veltarn::app
