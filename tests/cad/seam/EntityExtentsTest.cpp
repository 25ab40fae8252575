// The boxes window and crossing selection compare: curves by their curves, texts by their size.
#include "cad/seam/EntityExtents.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "cad/db/EntityFactory.h"

namespace veltarn::seam {
namespace {

constexpr double kTolerance = 1e-9;

void expectBox(const std::optional<Extents>& box, double minX, double minY, double maxX, double maxY,
               double tolerance = kTolerance) {
    ASSERT_TRUE(box);
    EXPECT_NEAR(box->minX, minX, tolerance);
    EXPECT_NEAR(box->minY, minY, tolerance);
    EXPECT_NEAR(box->maxX, maxX, tolerance);
    EXPECT_NEAR(box->maxY, maxY, tolerance);
}

class EntityExtentsTest : public ::testing::Test {
protected:
    db::TagList ellipse(db::Point3 axis, double ratio, double start, double end) {
        db::TagList tags = db::newEntity(drawing, "ELLIPSE");
        tags.add(100, "AcDbEllipse");
        tags.addPoint(10, {0, 0, 0});
        tags.addPoint(11, axis);
        tags.addReal(40, ratio);
        tags.addReal(41, start);
        tags.addReal(42, end);
        return tags;
    }

    db::Database drawing = db::Database::createNew();
};

TEST_F(EntityExtentsTest, PolylineBulgesReachBeyondTheirVertices) {
    // A bulge of 1 is a half circle, turning counter-clockwise: from (0,0) to (10,0) it dips to y -5.
    expectBox(entityExtents(db::newLwpolyline(drawing, {{{0, 0, 0}, 1}, {{10, 0, 0}, 0}}, false)), 0, -5, 10, 0);
    // Clockwise (negative) it rises; a small bulge stays close to its chord.
    expectBox(entityExtents(db::newLwpolyline(drawing, {{{0, 0, 0}, -1}, {{10, 0, 0}, 0}}, false)), 0, 0, 10, 5);
    const double sagitta = 0.1 * 5;  // the bulge times half the chord
    expectBox(entityExtents(db::newLwpolyline(drawing, {{{0, 0, 0}, -0.1}, {{10, 0, 0}, 0}}, false)), 0, 0, 10, sagitta);
    // The closing segment of a closed polyline counts, bulge and all: a half circle about (5,5)
    // from (10,10) back to (0,0), over the upper left.
    const double reach = 5 * std::numbers::sqrt2;
    expectBox(entityExtents(db::newLwpolyline(drawing, {{{0, 0, 0}, 0}, {{10, 0, 0}, 0}, {{10, 10, 0}, 1}}, true)),
              5 - reach, 0, 10, 5 + reach);
}

TEST_F(EntityExtentsTest, EllipsesByTheirCurveWholeTurnedOrInPart) {
    expectBox(entityExtents(ellipse({10, 0, 0}, 0.5, 0, 2 * std::numbers::pi)), -10, -5, 10, 5);
    // Major axis (6,8), minor (-4,3): half widths sqrt(52) and sqrt(73).
    expectBox(entityExtents(ellipse({6, 8, 0}, 0.5, 0, 2 * std::numbers::pi)), -std::sqrt(52.0), -std::sqrt(73.0),
              std::sqrt(52.0), std::sqrt(73.0));
    // Its first half runs from (6,8) over (-4,3) to (-6,-8).
    expectBox(entityExtents(ellipse({6, 8, 0}, 0.5, 0, std::numbers::pi)), -std::sqrt(52.0), -8, 6, std::sqrt(73.0));
    // An arc that wraps past parameter 0: from three quarters round to a quarter.
    expectBox(entityExtents(ellipse({10, 0, 0}, 0.5, 1.5 * std::numbers::pi, 0.5 * std::numbers::pi)), 0, -5, 10, 5);
}

TEST_F(EntityExtentsTest, TextsCoverTheirLengthAndHeightWhereTheyAreJustified) {
    // Ten characters of height 2 run about 12 units to the right of the insertion point.
    db::TagList text = db::newText(drawing, {100, 50, 0}, 2, "ABCDEFGHIJ");
    auto box = entityExtents(text);
    expectBox(box, 100, 50, 112, 52, 1e-6);
    EXPECT_FALSE(box->inside({99, 49, 105, 53})) << "a window over the first letters does not take it";
    EXPECT_TRUE(box->overlaps({110, 51, 111, 51.5})) << "a crossing over the last letters does";

    // Right justified and turned a quarter: it stands up from its alignment point, leftwards of it.
    text.addInteger(72, 2);
    text.addPoint(11, {0, 0, 0});
    text.addReal(50, 90);
    expectBox(entityExtents(text), -2, -12, 0, 0, 1e-6);

    // Multiline text attached top left, two lines: it hangs below its point.
    db::TagList note = db::newMtext(drawing, {0, 0, 0}, 3, "ABCD\\PEF");
    expectBox(entityExtents(note), 0, -8, 7.2, 0, 1e-6);
}

}  // namespace
}  // namespace veltarn::seam
