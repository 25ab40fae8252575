// Entity outlines: curves broken into chords within the tolerance and no finer than needed, the
// order of corners and rings, OCS entities placed in WCS, and hostile values that must not crash,
// hang or blow up memory. Entities are made as the workbench makes them, in a real new drawing.
#include "cad/db/Outline.h"

#include "cad/db/EntityFactory.h"
#include "cad/db/GroupCodes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

namespace veltarn::db {
namespace {

using Shape = Outline::Shape;
constexpr double kPi = std::numbers::pi;

double distance(const Point3& a, const Point3& b) { return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z); }
Point3 midpoint(const Point3& a, const Point3& b) { return {(a.x + b.x) / 2, (a.y + b.y) / 2, (a.z + b.z) / 2}; }

// The points of a path with its closing chord when it is a ring.
std::vector<Point3> closedPath(const std::vector<Point3>& ring) {
    std::vector<Point3> out = ring;
    out.push_back(ring.front());
    return out;
}

// Every vertex lies on the circle, and no chord strays from it by more than the tolerance: the
// chord's midpoint is where it strays most (the sagitta).
void expectOnCircle(const std::vector<Point3>& path, const Point3& center, double radius, double tolerance) {
    ASSERT_GE(path.size(), 2u);
    double worst = 0;
    for (std::size_t i = 0; i < path.size(); ++i) {
        EXPECT_NEAR(distance(path[i], center), radius, 1e-9 * std::max(1.0, radius)) << "vertex " << i;
        if (i > 0) worst = std::max(worst, radius - distance(midpoint(path[i - 1], path[i]), center));
    }
    EXPECT_LE(worst, tolerance * (1 + 1e-9)) << "a chord strays further than the tolerance";
}

class OutlineTest : public ::testing::Test {
protected:
    TagList solid(const char* type, const std::vector<Point3>& corners) {
        TagList tags = newEntity(drawing, type);
        tags.add(gc::kSubclass, std::string(type) == "3DFACE" ? "AcDbFace" : "AcDbTrace");
        for (std::size_t i = 0; i < corners.size(); ++i)
            tags.addPoint(gc::kX + static_cast<int>(i), corners[i]);
        return tags;
    }
    TagList spline(int degree, const std::vector<double>& knots, const std::vector<Point3>& controls,
                   const std::vector<double>& weights, int flags = 0) {
        TagList tags = newEntity(drawing, "SPLINE");
        tags.add(gc::kSubclass, "AcDbSpline");
        tags.addInteger(gc::kFlags, flags);
        tags.addInteger(gc::kInt71, degree);
        tags.addInteger(gc::kInt72, static_cast<std::int64_t>(knots.size()));
        tags.addInteger(gc::kInt73, static_cast<std::int64_t>(controls.size()));
        for (double k : knots)
            tags.addReal(gc::kReal, k);
        for (double w : weights)
            tags.addReal(gc::kReal2, w);
        for (const Point3& p : controls)
            tags.addPoint(gc::kX, p);
        return tags;
    }

    Database drawing = Database::createNew();
};

TEST_F(OutlineTest, CirclesAndArcsStayWithinTheToleranceWithNoMoreChordsThanNeeded) {
    struct Case {
        double radius, tolerance;
    };
    for (const Case c : {Case{10, 0.01}, Case{1000, 0.001}, Case{0.5, 1}, Case{3, 0.2}}) {
        SCOPED_TRACE(testing::Message() << "radius " << c.radius << ", tolerance " << c.tolerance);
        const Point3 center{100, -20, 4};
        auto circle = outline(newCircle(drawing, center, c.radius), c.tolerance);
        ASSERT_TRUE(circle);
        ASSERT_EQ(circle->shape, Shape::Polygon);
        ASSERT_EQ(circle->parts.size(), 1u);
        const std::vector<Point3>& ring = circle->parts[0];
        EXPECT_NE(ring.front(), ring.back()) << "a ring does not repeat its first point";
        expectOnCircle(closedPath(ring), center, c.radius, c.tolerance);
        // One chord fewer would stray too far, unless the circle is at its coarsest.
        const auto n = static_cast<double>(ring.size());
        EXPECT_GE(n, kMinTurnPieces);
        if (n > kMinTurnPieces) {
            EXPECT_GT(c.radius * (1 - std::cos(kPi / (n - 1))), c.tolerance);
        }

        // An arc runs counter-clockwise from its start angle to its end angle, across 0 degrees.
        auto arc = outline(newArc(drawing, center, c.radius, 340, 30), c.tolerance);
        ASSERT_TRUE(arc);
        ASSERT_EQ(arc->shape, Shape::Line);
        const std::vector<Point3>& path = arc->parts[0];
        expectOnCircle(path, center, c.radius, c.tolerance);
        const double start = 340 * kPi / 180, end = 30 * kPi / 180;
        EXPECT_NEAR(path.front().x, center.x + c.radius * std::cos(start), 1e-9 * c.radius);
        EXPECT_NEAR(path.front().y, center.y + c.radius * std::sin(start), 1e-9 * c.radius);
        EXPECT_NEAR(path.back().x, center.x + c.radius * std::cos(end), 1e-9 * c.radius);
        EXPECT_NEAR(path.back().y, center.y + c.radius * std::sin(end), 1e-9 * c.radius);
        for (const Point3& p : path)
            EXPECT_GT(p.x - center.x, 0) << "the arc stays right of its centre";
    }
}

TEST_F(OutlineTest, BulgesAreArcsAndClosedPolylinesArePolygons) {
    // A bulge of 1 is a half circle, counter-clockwise: from (0,0) to (10,0) below the chord.
    auto half = outline(newLwpolyline(drawing, {{{0, 0, 0}, 1}, {{10, 0, 0}, 0}}, false), 0.01);
    ASSERT_TRUE(half);
    ASSERT_EQ(half->shape, Shape::Line);
    const std::vector<Point3>& below = half->parts[0];
    expectOnCircle(below, {5, 0, 0}, 5, 0.01);
    EXPECT_EQ(below.front(), (Point3{0, 0, 0}));
    EXPECT_EQ(below.back(), (Point3{10, 0, 0}));
    double lowest = 0;
    for (const Point3& p : below) {
        EXPECT_LE(p.y, 1e-12);
        lowest = std::min(lowest, p.y);
    }
    EXPECT_NEAR(lowest, -5, 0.01) << "it reaches the bottom of the circle";
    // Clockwise, above the chord.
    auto above = outline(newLwpolyline(drawing, {{{0, 0, 0}, -1}, {{10, 0, 0}, 0}}, false), 0.01);
    ASSERT_TRUE(above);
    for (const Point3& p : above->parts[0])
        EXPECT_GE(p.y, -1e-12);

    // Closed: a polygon whose closing segment bulges too, from (10,10) back to (0,0) round (5,5).
    // Drawn clockwise, its ring is turned counter-clockwise.
    TagList square = newLwpolyline(drawing, {{{0, 0, 0}, 0}, {{0, 10, 0}, 0}, {{10, 10, 0}, -1}}, true);
    auto polygon = outline(square, 0.05);
    ASSERT_TRUE(polygon);
    ASSERT_EQ(polygon->shape, Shape::Polygon);
    const std::vector<Point3>& ring = polygon->parts[0];
    EXPECT_NE(ring.front(), ring.back());
    double area = 0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const Point3& a = ring[i];
        const Point3& b = ring[(i + 1) % ring.size()];
        area += (a.x * b.y - b.x * a.y) / 2;
    }
    // The triangle (50) and the half disc over its hypotenuse (pi * 50 / 2), less what the chords cut.
    EXPECT_NEAR(area, 50 + kPi * 25, 0.05 * 10 * std::sqrt(2.0) * kPi);
    EXPECT_GT(area, 0) << "the outer ring runs counter-clockwise";
    std::vector<Point3> arcPart;
    for (const Point3& p : ring)
        if (p.x - p.y > 1e-9) arcPart.push_back(p);
    ASSERT_GT(arcPart.size(), 4u);
    for (const Point3& p : arcPart)
        EXPECT_NEAR(distance(p, {5, 5, 0}), 5 * std::sqrt(2.0), 1e-9);

    // The same polyline open is a line that ends where its last vertex is.
    auto open = outline(newLwpolyline(drawing, {{{0, 0, 0}, 0}, {{0, 10, 0}, 0}, {{10, 10, 0}, -1}}, false), 0.05);
    ASSERT_TRUE(open);
    EXPECT_EQ(open->shape, Shape::Line);
    EXPECT_EQ(open->parts[0].size(), 3u);
}

TEST_F(OutlineTest, SolidCornersAreDrawnOneTwoFourThreeAndFaceCornersInTurn) {
    // The same four corners: a SOLID draws the square, a 3DFACE the corners as given.
    const std::vector<Point3> corners{{0, 0, 0}, {10, 0, 0}, {0, 10, 0}, {10, 10, 0}};
    auto square = outline(solid("SOLID", corners), 0.01);
    ASSERT_TRUE(square);
    ASSERT_EQ(square->shape, Shape::Polygon);
    EXPECT_EQ(square->parts[0], (std::vector<Point3>{{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}}));
    auto face = outline(solid("3DFACE", {{0, 0, 1}, {10, 0, 2}, {10, 10, 3}, {0, 10, 4}}), 0.01);
    ASSERT_TRUE(face);
    EXPECT_EQ(face->parts[0], (std::vector<Point3>{{0, 0, 1}, {10, 0, 2}, {10, 10, 3}, {0, 10, 4}}));
    // A triangle repeats its third corner as its fourth.
    auto triangle = outline(solid("TRACE", {{0, 0, 0}, {10, 0, 0}, {5, 8, 0}, {5, 8, 0}}), 0.01);
    ASSERT_TRUE(triangle);
    EXPECT_EQ(triangle->parts[0].size(), 3u);
}

TEST_F(OutlineTest, EntitiesInTheirOwnPlaneLandInWcs) {
    // Seen from below (extrusion -Z), the OCS X axis is the WCS -X axis.
    TagList below = newCircle(drawing, {5, 0, 2}, 1);
    below.addPoint(gc::kNormalX, {0, 0, -1});
    auto circle = outline(below, 0.01);
    ASSERT_TRUE(circle);
    expectOnCircle(closedPath(circle->parts[0]), {-5, 0, -2}, 1, 0.01);

    // Extruded along +X, the OCS is the WCS YZ plane: X, Y and the elevation go to Y, Z and X.
    TagList wall = newLwpolyline(drawing, {{{0, 0, 0}, 1}, {{4, 0, 0}, 0}}, false);
    wall.set(38, "3", 1, wall.size());
    wall.addPoint(gc::kNormalX, {1, 0, 0});
    auto arc = outline(wall, 0.01);
    ASSERT_TRUE(arc);
    const std::vector<Point3>& path = arc->parts[0];
    expectOnCircle(path, {3, 2, 0}, 2, 0.01);
    EXPECT_EQ(path.front(), (Point3{3, 0, 0}));
    EXPECT_EQ(path.back(), (Point3{3, 4, 0}));

    TagList text = newText(drawing, {3, 4, 0}, 2, "A");
    text.addPoint(gc::kNormalX, {0, 0, -1});
    auto point = outline(text, 0.01);
    ASSERT_TRUE(point);
    EXPECT_EQ(point->shape, Shape::Point);
    EXPECT_EQ(point->parts, (std::vector<std::vector<Point3>>{{{-3, 4, 0}}}));
}

TEST_F(OutlineTest, SplinesFollowTheirCurveAndFitPointsStandInWithoutControlPoints) {
    // A rational quadratic with the middle weight sqrt(2)/2 is exactly a quarter circle.
    const double w = std::sqrt(2.0) / 2;
    auto quarter = outline(spline(2, {0, 0, 0, 1, 1, 1}, {{10, 0, 0}, {10, 10, 0}, {0, 10, 0}}, {1, w, 1}), 0.001);
    ASSERT_TRUE(quarter);
    ASSERT_EQ(quarter->shape, Shape::Line);
    expectOnCircle(quarter->parts[0], {0, 0, 0}, 10, 0.001);
    EXPECT_EQ(quarter->parts[0].front(), (Point3{10, 0, 0}));
    EXPECT_EQ(quarter->parts[0].back(), (Point3{0, 10, 0}));

    // A cubic of two spans with an interior knot: it starts and ends on its end control points,
    // and lies inside their hull (between the lowest and the highest control point).
    auto cubic = outline(
        spline(3, {0, 0, 0, 0, 1, 2, 2, 2, 2}, {{0, 0, 0}, {2, 6, 0}, {5, -4, 0}, {8, 6, 0}, {10, 0, 0}}, {}), 0.01);
    ASSERT_TRUE(cubic);
    const std::vector<Point3>& curve = cubic->parts[0];
    EXPECT_EQ(curve.front(), (Point3{0, 0, 0}));
    EXPECT_EQ(curve.back(), (Point3{10, 0, 0}));
    EXPECT_GT(curve.size(), 10u);
    for (const Point3& p : curve) {
        EXPECT_GE(p.y, -4);
        EXPECT_LE(p.y, 6);
    }

    // Fit points only: joined straight. Closed: a polygon.
    TagList fitted = newEntity(drawing, "SPLINE");
    fitted.add(gc::kSubclass, "AcDbSpline");
    fitted.addInteger(gc::kFlags, 1);
    for (const Point3& p : {Point3{0, 0, 0}, Point3{5, 1, 0}, Point3{3, 6, 0}})
        fitted.addPoint(gc::kX2, p);
    auto ring = outline(fitted, 0.01);
    ASSERT_TRUE(ring);
    EXPECT_EQ(ring->shape, Shape::Polygon);
    EXPECT_EQ(ring->parts[0].size(), 3u);
}

TEST_F(OutlineTest, HatchRingsComeOuterFirstWithTheirEdgesCurves) {
    // A hole given first (a circle of one arc edge), then the outer square, flagged external, of
    // line edges, one of them written end first.
    TagList hatch = newHatch(drawing, "SOLID", {});
    HatchPath hole;
    hole.flags = 0;
    hole.edges.push_back({2, {{10, "5"}, {20, "5"}, {40, "2"}, {50, "0"}, {51, "360"}, {73, "1"}}});
    HatchPath outer;
    outer.flags = 1;
    for (auto [a, b] : {std::pair<Point3, Point3>{{0, 0, 0}, {10, 0, 0}},
                        {{10, 0, 0}, {10, 10, 0}},
                        {{0, 10, 0}, {10, 10, 0}},  // written end first
                        {{0, 10, 0}, {0, 0, 0}}}) {
        TagList edge;
        edge.addPoint2(gc::kX, a.x, a.y);
        edge.addPoint2(gc::kX2, b.x, b.y);
        outer.edges.push_back({1, edge});
    }
    ASSERT_TRUE(setHatchPaths(hatch, {hole, outer}));
    auto polygon = outline(hatch, 0.01);
    ASSERT_TRUE(polygon);
    ASSERT_EQ(polygon->shape, Shape::Polygon);
    ASSERT_EQ(polygon->parts.size(), 2u);
    EXPECT_EQ(polygon->parts[0], (std::vector<Point3>{{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}}));
    expectOnCircle(closedPath(polygon->parts[1]), {5, 5, 0}, 2, 0.01);
    const Point3& a = polygon->parts[1][0];
    const Point3& b = polygon->parts[1][1];
    EXPECT_LT((a.x - 5) * (b.y - 5) - (a.y - 5) * (b.x - 5), 0) << "the hole runs clockwise";

    // A half disc whose arc edge runs clockwise (73 = 0, its angles stored negated): from 180
    // degrees over the top to 0.
    TagList dome = newHatch(drawing, "SOLID", {});
    HatchPath path;
    path.flags = 1;
    path.edges.push_back({1, {{10, "5"}, {20, "0"}, {11, "-5"}, {21, "0"}}});
    path.edges.push_back({2, {{10, "0"}, {20, "0"}, {40, "5"}, {50, "180"}, {51, "360"}, {73, "0"}}});
    ASSERT_TRUE(setHatchPaths(dome, {path}));
    auto domed = outline(dome, 0.01);
    ASSERT_TRUE(domed);
    ASSERT_EQ(domed->parts.size(), 1u);
    double highest = 0;
    for (const Point3& p : domed->parts[0]) {
        EXPECT_GE(p.y, -1e-9);
        highest = std::max(highest, p.y);
    }
    EXPECT_NEAR(highest, 5, 0.01);
}

TEST_F(OutlineTest, LeadersMultilinesAndBlockReferencesHaveTheirShapes) {
    TagList leader = newEntity(drawing, "LEADER");
    leader.add(gc::kSubclass, "AcDbLeader");
    for (const Point3& p : {Point3{0, 0, 0}, Point3{5, 5, 0}, Point3{9, 5, 0}})
        leader.addPoint(gc::kX, p);
    auto line = outline(leader, 0.01);
    ASSERT_TRUE(line);
    EXPECT_EQ(line->shape, Shape::Line);
    EXPECT_EQ(line->parts[0].size(), 3u);

    TagList mline = newMline(drawing, {{0, 0, 0}, {10, 0, 0}, {10, 6, 0}}, true);
    ASSERT_FALSE(mline.empty());
    auto loop = outline(mline, 0.01);
    ASSERT_TRUE(loop);
    EXPECT_EQ(loop->shape, Shape::Line);
    EXPECT_EQ(loop->parts[0], (std::vector<Point3>{{0, 0, 0}, {10, 0, 0}, {10, 6, 0}, {0, 0, 0}}));

    auto insert = outline(newInsert(drawing, "*Model_Space", {7, 8, 9}), 0.01);
    ASSERT_TRUE(insert);
    EXPECT_EQ(insert->shape, Shape::Point);
    EXPECT_EQ(insert->parts[0][0], (Point3{7, 8, 9}));
}

TEST_F(OutlineTest, HostileValuesGiveSaneOutlinesOrNone) {
    const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
    EXPECT_FALSE(outline(newCircle(drawing, {0, 0, 0}, nan), 0.01)) << "a radius that is no number";
    EXPECT_FALSE(outline(newLine(drawing, {0, 0, 0}, {inf, 0, 0}), 0.01));

    // A huge radius or a tolerance of nothing asks for no more than the cap.
    for (double tolerance : {0.0, -1.0, nan, 1e-300}) {
        auto huge = outline(newCircle(drawing, {0, 0, 0}, 1e12), tolerance);
        ASSERT_TRUE(huge);
        EXPECT_LE(huge->parts[0].size(), static_cast<std::size_t>(kMaxTurnPieces));
        auto bulge = outline(newLwpolyline(drawing, {{{0, 0, 0}, 1e300}, {{1, 0, 0}, 0}}, false), tolerance);
        ASSERT_TRUE(bulge) << "a bulge near a full turn is a huge circle, but a finite one";
        EXPECT_LE(bulge->parts[0].size(), static_cast<std::size_t>(kMaxTurnPieces) + 1);
        auto curve =
            outline(spline(3, {0, 0, 0, 0, 1, 1, 1, 1}, {{0, 0, 0}, {1, 5, 0}, {4, -5, 0}, {5, 0, 0}}, {}), tolerance);
        ASSERT_TRUE(curve);
        // Past the cap, the pieces already begun are finished unhalved.
        EXPECT_LE(curve->parts[0].size(), 4u * kMaxTurnPieces + 32);
    }
    // An endless tolerance still draws a circle round.
    auto coarse = outline(newCircle(drawing, {0, 0, 0}, 1), inf);
    ASSERT_TRUE(coarse);
    EXPECT_EQ(coarse->parts[0].size(), static_cast<std::size_t>(kMinTurnPieces));

    // What collapses is given as what it still is.
    auto dot = outline(newCircle(drawing, {3, 4, 0}, 0), 0.01);
    ASSERT_TRUE(dot);
    EXPECT_EQ(dot->shape, Shape::Point);
    EXPECT_EQ(dot->parts[0][0], (Point3{3, 4, 0}));
    auto zero = outline(newLine(drawing, {1, 1, 0}, {1, 1, 0}), 0.01);
    ASSERT_TRUE(zero);
    EXPECT_EQ(zero->shape, Shape::Point);
    auto flat = outline(solid("SOLID", {{0, 0, 0}, {5, 0, 0}, {0, 0, 0}, {5, 0, 0}}), 0.01);
    ASSERT_TRUE(flat);
    EXPECT_EQ(flat->shape, Shape::Line);

    // Control data that make no spline fall back to the control points, joined straight.
    const std::vector<Point3> controls{{0, 0, 0}, {1, 5, 0}, {4, -5, 0}, {5, 0, 0}};
    for (const TagList& broken : {spline(3, {1, 0, 0, 0, 1, 1, 1, 1}, controls, {}),        // knots run backwards
                                  spline(0, {0, 0, 0, 0}, controls, {}),                    // degree 0
                                  spline(1000000, {0, 0, 0, 0, 1, 1, 1, 1}, controls, {}),  // counts disagree
                                  spline(3, {0, 0, 0, 0, 1, 1, 1, 1}, controls, {1, -1, 1, 1})}) {
        auto fallback = outline(broken, 0.01);
        ASSERT_TRUE(fallback);
        EXPECT_EQ(fallback->parts[0], controls);
    }

    // No geometry to give.
    TagList xline = newEntity(drawing, "XLINE");
    xline.add(gc::kSubclass, "AcDbXline");
    xline.addPoint(gc::kX, {0, 0, 0});
    xline.addPoint(gc::kX2, {1, 0, 0});
    EXPECT_FALSE(outline(xline, 0.01));
    EXPECT_FALSE(outline(newLwpolyline(drawing, {}, true), 0.01));
    EXPECT_FALSE(outline(newHatch(drawing, "SOLID", {}), 0.01));
    EXPECT_FALSE(outline(TagList{}, 0.01));
}

}  // namespace
}  // namespace veltarn::db
