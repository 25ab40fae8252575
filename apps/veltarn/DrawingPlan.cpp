#include "DrawingPlan.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "HtmlText.h"
#include "PngImage.h"

namespace veltarn::app {
namespace {

// Half pixels: plan coordinates are whole numbers in a viewBox twice the plan's size.
constexpr double kGrid = 2;
constexpr std::uint8_t kGreyLevel = 0x40;  // dark: the picture is shown at half its size

// Drawing units to grid units. Differences are taken of halves, since the extents of a hostile
// drawing (-1e308 .. 1e308) differ by more than a double holds, and every result is held to the
// plan, so that no coordinate can send a line across the whole range of a long.
struct Mapping {
    double scale = 1, minX = 0, maxY = 0;
    long width = 1, height = 1;
    long x(double v) const { return held((v / 2 - minX / 2) * (2 * scale), width); }
    long y(double v) const { return held((maxY / 2 - v / 2) * (2 * scale), height); }
    static long held(double grid, long most) {
        return std::isfinite(grid) ? std::lround(std::clamp(grid, 0.0, static_cast<double>(most))) : 0;
    }
};

// The path data of a shape, consecutive points that fall on one grid point dropped.
std::string pathData(const PlanShape& shape, const Mapping& map) {
    std::string d;
    for (const std::vector<PlanPoint>& part : shape.parts) {
        long lastX = 0, lastY = 0;
        std::size_t drawn = 0;
        for (const PlanPoint& p : part) {
            const long x = map.x(p.x), y = map.y(p.y);
            if (drawn && x == lastX && y == lastY) continue;
            d += (drawn ? "L" : "M") + std::to_string(x) + " " + std::to_string(y);
            lastX = x, lastY = y;
            ++drawn;
        }
        if (drawn == 1) d += "h0";  // a point, or a shape smaller than the grid: a round dot
        else if (drawn > 1 && shape.closed) d += "Z";
    }
    return d;
}

bool finite(const PlanPoint& p) { return std::isfinite(p.x) && std::isfinite(p.y); }

}  // namespace

void DrawingPlan::add(PlanShape shape, std::string link, std::string title) {
    // What cannot be placed is left out of the plan, never out of the report.
    for (std::vector<PlanPoint>& part : shape.parts)
        part.erase(std::remove_if(part.begin(), part.end(), [](const PlanPoint& p) { return !finite(p); }), part.end());
    std::erase_if(shape.parts, [](const std::vector<PlanPoint>& part) { return part.empty(); });
    if (shape.parts.empty()) return;
    for (const std::vector<PlanPoint>& part : shape.parts)
        for (const PlanPoint& p : part) {
            if (!bounded_) {
                minX_ = maxX_ = p.x, minY_ = maxY_ = p.y;
                bounded_ = true;
            }
            minX_ = std::min(minX_, p.x), maxX_ = std::max(maxX_, p.x);
            minY_ = std::min(minY_, p.y), maxY_ = std::max(maxY_, p.y);
        }
    shapes_.push_back({std::move(shape), std::move(link), std::move(title)});
}

std::string DrawingPlan::svg() const {
    if (shapes_.empty()) return "";
    Mapping map;
    const double halfX = maxX_ / 2 - minX_ / 2, halfY = maxY_ / 2 - minY_ / 2;
    const double fit = std::min(halfX > 0 ? kWidth * kGrid / 2 / halfX : INFINITY,
                                halfY > 0 ? kHeight * kGrid / 2 / halfY : INFINITY);
    map.scale = std::isfinite(fit) && fit > 0 ? fit : 1;
    map.minX = minX_, map.maxY = maxY_;
    auto extent = [&map](double half, double most) {
        return std::max<long>(1, std::lround(std::min(half * (2 * map.scale), most)));
    };
    map.width = extent(halfX, kWidth * kGrid), map.height = extent(halfY, kHeight * kGrid);
    const long width = map.width, height = map.height;
    // A margin of the strokes' width, so that outlines on the extents are not cut in half.
    const long margin = 4;

    // The objects without findings are a picture: its size is the plan's, however many there are.
    GreyCanvas grey(static_cast<int>(width + 2 * margin), static_cast<int>(height + 2 * margin));
    std::string red;
    for (const Entry& entry : shapes_) {
        if (!entry.link.empty()) {
            red += "<a href=\"#" + htmlEscaped(entry.link) + "\"><path d=\"" + pathData(entry.shape, map) + "\"><title>" +
                   htmlEscaped(entry.title) + "</title></path></a>";
            continue;
        }
        for (const std::vector<PlanPoint>& part : entry.shape.parts) {
            long lastX = map.x(part.front().x) + margin, lastY = map.y(part.front().y) + margin;
            grey.dot(lastX, lastY);
            for (std::size_t i = 1; i <= part.size(); ++i) {
                if (i == part.size() && !(entry.shape.closed && part.size() > 2)) break;
                const PlanPoint& p = part[i % part.size()];
                const long x = map.x(p.x) + margin, y = map.y(p.y) + margin;
                grey.line(lastX, lastY, x, y);
                lastX = x, lastY = y;
            }
        }
    }
    const std::string box = std::to_string(-margin) + " " + std::to_string(-margin) + " " +
                            std::to_string(width + 2 * margin) + " " + std::to_string(height + 2 * margin);
    auto pixels = [](long grid) { return std::to_string(std::lround(grid / kGrid)); };
    return "<svg class=\"plan\" xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"" + box + "\" width=\"" +
           pixels(width + 2 * margin) + "\" height=\"" + pixels(height + 2 * margin) + "\">" +
           "<image class=\"ok\" x=\"" + std::to_string(-margin) + "\" y=\"" + std::to_string(-margin) + "\" width=\"" +
           std::to_string(grey.width()) + "\" height=\"" + std::to_string(grey.height()) + "\" href=\"" +
           grey.pngDataUri(kGreyLevel) + "\"/><g class=\"bad\">" + red + "</g></svg>";
}

}  // namespace veltarn::app
