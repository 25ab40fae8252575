#include "PlanShapes.h"

namespace veltarn::app {
namespace {

// Drawing units a curve may stray from its pieces on the plan: a plan is a few hundred pixels
// wide, and the outline caps the pieces of a turn, so a finer figure only costs time.
constexpr double kPlanTolerance = 0.05;

}  // namespace

std::optional<PlanShape> planShapeOf(const host::DbEntity& entity) {
    const std::optional<host::EntityOutline> outline = entity.outline(kPlanTolerance);
    if (!outline) return std::nullopt;
    PlanShape shape;
    shape.closed = outline->kind == host::EntityOutline::Kind::kPolygon;
    shape.parts.reserve(outline->parts.size());
    for (const std::vector<host::Point3d>& part : outline->parts) {
        std::vector<PlanPoint>& points = shape.parts.emplace_back();
        points.reserve(part.size());
        for (const host::Point3d& p : part) points.push_back({p.x, p.y});
    }
    return shape;
}

}  // namespace veltarn::app
