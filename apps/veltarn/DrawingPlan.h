// A small SVG plan of a drawing for the HTML report: every object in grey, the objects with
// findings in red, each of those a link to its findings.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace veltarn::app {

struct PlanPoint {
    double x = 0, y = 0;
};

// An object's outline in drawing units: polylines, rings (closed) or single points.
struct PlanShape {
    std::vector<std::vector<PlanPoint>> parts;
    bool closed = false;  // the parts are rings
};

class DrawingPlan {
public:
    // The plan's size on the page, in CSS pixels; the drawing's extents are fitted into it.
    static constexpr double kWidth = 480, kHeight = 320;

    // `link`: the fragment the object links to ("d3-1A2"), empty for an object without findings.
    void add(PlanShape shape, std::string link, std::string title);
    bool empty() const { return shapes_.empty(); }

    // The <svg> element, empty when nothing had geometry. Coordinates are kept to half a pixel.
    // The objects without findings are drawn into a picture (a PNG inside the element), so that
    // the plan of a drawing of a million objects is as small as that of ten; those with findings
    // are outlines over it.
    std::string svg() const;

private:
    struct Entry {
        PlanShape shape;
        std::string link, title;
    };
    std::vector<Entry> shapes_;
    double minX_ = 0, minY_ = 0, maxX_ = 0, maxY_ = 0;
    bool bounded_ = false;
};

}  // namespace veltarn::app
