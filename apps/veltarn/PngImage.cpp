#include "PngImage.h"

#include <zlib.h>

#include <algorithm>
#include <cstdlib>

namespace veltarn::app {
namespace {

// zlib's default: the best level takes many times as long on a sparse picture, for little.
constexpr int kLevel = 6;

void put32(std::string& out, std::uint32_t v) {
    for (int shift = 24; shift >= 0; shift -= 8) out += static_cast<char>((v >> shift) & 0xff);
}

void chunk(std::string& png, const char* type, const std::string& data) {
    put32(png, static_cast<std::uint32_t>(data.size()));
    const std::string typed = std::string(type, 4) + data;
    png += typed;
    put32(png, static_cast<std::uint32_t>(
                   crc32(0, reinterpret_cast<const Bytef*>(typed.data()), static_cast<uInt>(typed.size()))));
}

std::string base64(const std::string& bytes) {
    static constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string out;
    out.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::uint32_t a = static_cast<std::uint8_t>(bytes[i]);
        const std::uint32_t b = i + 1 < bytes.size() ? static_cast<std::uint8_t>(bytes[i + 1]) : 0;
        const std::uint32_t c = i + 2 < bytes.size() ? static_cast<std::uint8_t>(bytes[i + 2]) : 0;
        const std::uint32_t n = (a << 16) | (b << 8) | c;
        out += kDigits[(n >> 18) & 63];
        out += kDigits[(n >> 12) & 63];
        out += i + 1 < bytes.size() ? kDigits[(n >> 6) & 63] : '=';
        out += i + 2 < bytes.size() ? kDigits[n & 63] : '=';
    }
    return out;
}

}  // namespace

GreyCanvas::GreyCanvas(int width, int height)
    : width_(std::max(1, width)), height_(std::max(1, height)), marked_(static_cast<std::size_t>(width_) * height_) {}

void GreyCanvas::dot(long x, long y) {
    if (x < 0 || y < 0 || x >= width_ || y >= height_) return;
    marked_[static_cast<std::size_t>(y) * width_ + x] = 1;
}

void GreyCanvas::line(long x0, long y0, long x1, long y1) {
    // Bresenham. Ends far outside are not drawn at all: the plan holds its points to the canvas,
    // and a caller that does not must not make this loop run for ages.
    const long reach = 4L * (width_ + height_);
    for (const long v : {x0, y0, x1, y1})
        if (v < -reach || v > reach) return;
    const long dx = std::labs(x1 - x0), dy = -std::labs(y1 - y0);
    const long sx = x0 < x1 ? 1 : -1, sy = y0 < y1 ? 1 : -1;
    long error = dx + dy;
    for (;;) {
        dot(x0, y0);
        if (x0 == x1 && y0 == y1) return;
        const long twice = 2 * error;
        if (twice >= dy) error += dy, x0 += sx;
        if (twice <= dx) error += dx, y0 += sy;
    }
}

std::string GreyCanvas::pngDataUri(std::uint8_t grey) const {
    // Rows of grey and alpha, each after filter byte 0.
    std::string raw;
    raw.reserve(static_cast<std::size_t>(height_) * (1 + 2 * width_));
    for (int y = 0; y < height_; ++y) {
        raw += '\0';
        for (int x = 0; x < width_; ++x) {
            const bool on = marked_[static_cast<std::size_t>(y) * width_ + x];
            raw += static_cast<char>(on ? grey : 0);
            raw += static_cast<char>(on ? 255 : 0);
        }
    }
    uLongf size = compressBound(static_cast<uLong>(raw.size()));
    std::string packed(size, '\0');
    if (compress2(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(raw.data()),
                  static_cast<uLong>(raw.size()), kLevel) != Z_OK)
        return "";
    packed.resize(size);

    std::string header;
    put32(header, static_cast<std::uint32_t>(width_));
    put32(header, static_cast<std::uint32_t>(height_));
    header += std::string("\x08\x04\x00\x00\x00", 5);  // 8 bits, grey with alpha, deflate, no interlace
    std::string png = "\x89PNG\r\n\x1a\n";
    chunk(png, "IHDR", header);
    chunk(png, "IDAT", packed);
    chunk(png, "IEND", "");
    return "data:image/png;base64," + base64(png);
}

}  // namespace veltarn::app
