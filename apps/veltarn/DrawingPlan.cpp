#include "DrawingPlan.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "HtmlText.h"

namespace veltarn::app {
namespace {

// Half pixels: plan coordinates are whole numbers in a viewBox twice the plan's size.
constexpr double kGrid = 2;

struct Mapping {
    double scale = 1, minX = 0, maxY = 0, width = 0, height = 0;
    long x(double v) const { return std::lround((v - minX) * scale); }
    long y(double v) const { return std::lround((maxY - v) * scale); }
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
    const double spanX = maxX_ - minX_, spanY = maxY_ - minY_;
    const double fit = std::min(spanX > 0 ? kWidth * kGrid / spanX : INFINITY, spanY > 0 ? kHeight * kGrid / spanY : INFINITY);
    map.scale = std::isfinite(fit) && fit > 0 ? fit : 1;
    map.minX = minX_, map.maxY = maxY_;
    // A margin of the strokes' width, so that outlines on the extents are not cut in half.
    const long margin = 4;
    const long width = std::max<long>(1, std::lround(spanX * map.scale)), height = std::max<long>(1, std::lround(spanY * map.scale));

    std::string grey, red;
    std::unordered_set<std::uint64_t> dots;
    for (const Entry& entry : shapes_) {
        std::string d = pathData(entry.shape, map);
        if (!entry.link.empty()) {
            red += "<a href=\"#" + htmlEscaped(entry.link) + "\"><path d=\"" + d + "\"><title>" +
                   htmlEscaped(entry.title) + "</title></path></a>";
            continue;
        }
        if (d.ends_with("h0") && d.find('L') == std::string::npos && d.find('M', 1) == std::string::npos) {
            const PlanPoint& p = entry.shape.parts.front().front();
            const std::uint64_t key = (static_cast<std::uint64_t>(map.x(p.x)) << 32) ^ static_cast<std::uint32_t>(map.y(p.y));
            if (!dots.insert(key).second) continue;
        }
        grey += d;
    }
    const std::string box = std::to_string(-margin) + " " + std::to_string(-margin) + " " +
                            std::to_string(width + 2 * margin) + " " + std::to_string(height + 2 * margin);
    auto pixels = [](long grid) { return std::to_string(std::lround(grid / kGrid)); };
    return "<svg class=\"plan\" xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"" + box + "\" width=\"" +
           pixels(width + 2 * margin) + "\" height=\"" + pixels(height + 2 * margin) + "\">" +
           (grey.empty() ? "" : "<path class=\"ok\" d=\"" + grey + "\"/>") + "<g class=\"bad\">" + red + "</g></svg>";
}

}  // namespace veltarn::app
