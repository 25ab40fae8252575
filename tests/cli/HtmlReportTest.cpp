// The page of veltarn check for people: its plan and what it shows of the findings. The page as
// a browser draws it is tested end to end (tests/e2e/HtmlReportTest.cpp).
#include "DrawingPlan.h"
#include "HtmlReport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <regex>

namespace {

using namespace veltarn::app;

std::size_t count(const std::string& text, const std::string& what) {
    std::size_t n = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + what.size())) ++n;
    return n;
}

TEST(DrawingPlan, FitsTheDrawingInThePlanWithTheFaultyObjectsAsLinks) {
    DrawingPlan plan;
    EXPECT_EQ(plan.svg(), "") << "no geometry, no plan";
    plan.add({{{{0, 0}, {100, 50}}}, false}, "", "");
    plan.add({{{{10, 10}, {20, 10}, {20, 20}}}, true}, "d1-2A", "2A Polyline <ROADS>");
    const std::string svg = plan.svg();
    // 100 x 50 units into 480 x 320 pixels: 4.8 pixels a unit, kept to half pixels, y upwards.
    EXPECT_NE(svg.find("<path class=\"ok\" d=\"M0 480L960 0\"/>"), std::string::npos) << svg;
    EXPECT_NE(svg.find("<a href=\"#d1-2A\"><path d=\"M96 384L192 384L192 288Z\"><title>2A Polyline &lt;ROADS&gt;</title>"),
              std::string::npos)
        << svg;
    EXPECT_NE(svg.find("width=\"484\" height=\"244\""), std::string::npos) << svg;
}

TEST(DrawingPlan, StaysSmallAndSaneOnCrowdedOrBrokenGeometry) {
    DrawingPlan plan;
    plan.add({{{{0, 0}}}, false}, "", "");
    plan.add({{{{1000, 1000}}}, false}, "", "");
    // Ten thousand points on one spot are one dot; a point with no finite place is left out (the
    // last shape keeps its one finite point), and a shape of nothing else is no shape at all.
    for (int i = 0; i < 10000; ++i) plan.add({{{{500 + i * 1e-6, 500}}}, false}, "", "");
    plan.add({{{{NAN, 3}, {INFINITY, 4}}}, false}, "", "");
    plan.add({{{{-1e308 * 10, 0}, {600, 600}}}, false}, "", "");
    const std::string svg = plan.svg();
    // 1000 x 1000 units into 320 pixels high: 0.64 half pixels a unit.
    EXPECT_EQ(count(svg, "h0"), 4u) << svg;
    EXPECT_NE(svg.find("M0 640h0M640 0h0M320 320h0M384 256h0"), std::string::npos) << svg;
    EXPECT_LT(svg.size(), 400u) << svg;
    EXPECT_EQ(svg.find("nan"), std::string::npos);
    EXPECT_EQ(svg.find("inf"), std::string::npos);
}

class HtmlPage : public ::testing::Test {
protected:
    static CheckFinding finding(std::string drawing, std::string handle, std::string code, std::string message = "") {
        return {std::move(drawing), std::move(handle), "Line", "ROADS", "Road", std::move(code), std::move(message), ""};
    }
    static HtmlDrawing drawing(std::string name, int objects, int valid, int faulty) {
        HtmlDrawing d;
        d.tally.drawing = std::move(name);
        d.tally.read = d.tally.checked = true;
        d.tally.objects = objects, d.tally.valid = valid, d.tally.faulty = faulty;
        return d;
    }
};

TEST_F(HtmlPage, SummarisesEachDrawingAndLinksEachObjectToItsFindings) {
    std::vector<HtmlDrawing> drawings = {drawing("a.dxf", 10, 8, 2), drawing("b.dxf", 5, 5, 0)};
    drawings[1].tally.read = false;
    drawings[0].findings = 5, drawings[1].findings = 1;
    const std::vector<CheckFinding> findings = {
        finding("a.dxf", "1F", "audit-missing-layer"), finding("a.dxf", "", "classifier-message"),
        finding("a.dxf", "1F", "not-in-list"),         finding("a.dxf", "1F", "out-of-range"),
        finding("a.dxf", "20", "not-in-list"),         finding("b.dxf", "", "unreadable-drawing", "b.dxf: not DXF")};
    const std::string page = htmlReport("Check against roads.txt", drawings, findings);

    EXPECT_EQ(count(page, "<tr class=\"finding\">"), findings.size());
    // An object's findings are one link target, its first group when an audit finding comes first.
    EXPECT_EQ(count(page, "id=\"d1-1F\""), 1u);
    EXPECT_EQ(count(page, "id=\"d1-20\""), 1u);
    EXPECT_NE(page.find("<td><a href=\"#d1\">a.dxf</a></td><td class=\"n\">10</td><td class=\"n good\">8</td>"
                        "<td class=\"n bad\">2</td>"),
              std::string::npos);
    EXPECT_NE(page.find("<span class=\"kind\">not-in-list 2</span>"), std::string::npos) << "commonest first";
    EXPECT_LT(page.find("not-in-list 2"), page.find("audit-missing-layer 1"));
    EXPECT_NE(page.find("<td class=\"bad\" colspan=\"7\">unreadable</td>"), std::string::npos);
    EXPECT_NE(page.find("<tr class=\"total\"><td>total</td><td class=\"n\">15</td>"), std::string::npos);
}

TEST_F(HtmlPage, NothingAFindingSaysBecomesMarkup) {
    const std::string hostile = "<script>alert('x')</script> & \"quotes\"";
    std::vector<HtmlDrawing> drawings = {drawing("<b>.dxf", 1, 0, 1)};
    drawings[0].findings = 1;
    const std::string page = htmlReport("Check against <i>", drawings, {finding("<b>.dxf", "1", "wrong-property", hostile)});
    EXPECT_EQ(page.find("<script"), std::string::npos);
    EXPECT_EQ(page.find("<b>"), std::string::npos);
    EXPECT_EQ(page.find("<i>"), std::string::npos);
    EXPECT_NE(page.find("&lt;script&gt;alert(&#39;x&#39;)&lt;/script&gt; &amp; &quot;quotes&quot;"), std::string::npos);
    // Self-contained: nothing is fetched when the page is opened.
    EXPECT_FALSE(std::regex_search(page, std::regex("(src|href)=\"(https?:|//)")));
}

TEST_F(HtmlPage, AMergedReportShowsOnlyWhatItsFindingsTell) {
    HtmlDrawing merged = drawing("a.dxf", 0, 0, 0);
    merged.counted = false;
    merged.tally.audit = 1;
    merged.findings = 1;
    const std::string page = htmlReport("Findings of 2 reports", {merged}, {finding("a.dxf", "1F", "audit-missing-layer")});
    EXPECT_NE(page.find("<td class=\"n\">-</td><td class=\"n good\">-</td><td class=\"n\">-</td><td class=\"n\">-</td>"
                        "<td class=\"n\">-</td><td class=\"n\">1</td>"),
              std::string::npos)
        << page;
    EXPECT_NE(page.find("<p class=\"lead\">1 drawing, 1 finding</p>"), std::string::npos);
}

}  // namespace
