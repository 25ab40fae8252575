// The page of veltarn check for people: its plan and what it shows of the findings. The page as
// a browser draws it is tested end to end (tests/e2e/HtmlReportTest.cpp).
#include "DrawingPlan.h"
#include "HtmlReport.h"

#include <gtest/gtest.h>

#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <regex>

namespace {

using namespace veltarn::app;

std::size_t count(const std::string& text, const std::string& what) {
    std::size_t n = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + what.size())) ++n;
    return n;
}

// The pixels of a plan's picture of the objects without findings, as zlib unpacks its PNG:
// true where a pixel is drawn.
std::vector<std::vector<bool>> pictureOf(const std::string& svg) {
    const std::string prefix = "href=\"data:image/png;base64,";
    const std::size_t from = svg.find(prefix) + prefix.size();
    const std::string text = svg.substr(from, svg.find('"', from) - from);
    std::string png;
    unsigned bits = 0, held = 0;
    for (const char c : text) {
        const auto at = std::string("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/").find(c);
        if (at == std::string::npos) break;
        bits = bits << 6 | static_cast<unsigned>(at), held += 6;
        if (held >= 8) png += static_cast<char>((bits >> (held -= 8)) & 0xff);
    }
    auto number = [&png](std::size_t at) {
        return static_cast<unsigned>(static_cast<unsigned char>(png[at])) << 24 |
               static_cast<unsigned char>(png[at + 1]) << 16 | static_cast<unsigned char>(png[at + 2]) << 8 |
               static_cast<unsigned char>(png[at + 3]);
    };
    const unsigned width = number(16), height = number(20);
    const std::size_t idat = png.find("IDAT");
    std::string raw(height * (1 + 2 * width), '\0');
    uLongf size = raw.size();
    EXPECT_EQ(uncompress(reinterpret_cast<Bytef*>(raw.data()), &size,
                         reinterpret_cast<const Bytef*>(png.data() + idat + 4), number(idat - 4)),
              Z_OK);
    std::vector<std::vector<bool>> pixels(height, std::vector<bool>(width));
    for (unsigned y = 0; y < height; ++y)
        for (unsigned x = 0; x < width; ++x) pixels[y][x] = raw[y * (1 + 2 * width) + 1 + 2 * x + 1] != 0;
    return pixels;
}

TEST(DrawingPlan, FitsTheDrawingInThePlanWithTheFaultyObjectsAsLinks) {
    DrawingPlan plan;
    EXPECT_EQ(plan.svg(), "") << "no geometry, no plan";
    plan.add({{{{0, 0}, {100, 50}}}, false}, "", "");
    plan.add({{{{10, 10}, {20, 10}, {20, 20}}}, true}, "d1-2A", "2A Polyline <ROADS>");
    const std::string svg = plan.svg();
    // 100 x 50 units into 480 x 320 pixels: 4.8 pixels a unit, kept to half pixels, y upwards,
    // with a margin of 4 half pixels.
    EXPECT_NE(svg.find("viewBox=\"-4 -4 968 488\" width=\"484\" height=\"244\""), std::string::npos) << svg;
    EXPECT_NE(svg.find("<a href=\"#d1-2A\"><path d=\"M96 384L192 384L192 288Z\"><title>2A Polyline &lt;ROADS&gt;</title>"),
              std::string::npos)
        << svg;
    // The line in grey, from the lower left to the upper right corner: the picture's diagonal.
    const auto pixels = pictureOf(svg);
    ASSERT_EQ(pixels.size(), 488u);
    ASSERT_EQ(pixels[0].size(), 968u);
    EXPECT_TRUE(pixels[484][4] && pixels[4][964] && pixels[244][484]);
    EXPECT_FALSE(pixels[4][4] || pixels[484][964]);
    std::size_t drawn = 0;
    for (const auto& row : pixels) drawn += std::count(row.begin(), row.end(), true);
    EXPECT_EQ(drawn, 961u) << "one pixel a column";
}

TEST(DrawingPlan, StaysSmallAndSaneOnCrowdedOrBrokenGeometry) {
    DrawingPlan plan;
    // A hundred thousand objects make a plan no larger than a few of them would.
    for (long i = 0; i < 100000; ++i) {
        const double a = i * 7919 % 1000, b = i * 104729 % 1000, c = i * 31 % 1000, d = i * 17 % 1000;
        plan.add({{{{a, b}, {c, d}}}, false}, "", "");
    }
    // What has no finite place is left out, and a shape of nothing else is no shape at all.
    plan.add({{{{NAN, 3}, {INFINITY, 4}}}, false}, "", "");
    plan.add({{{{-1e308 * 10, 0}, {600, 600}}}, true}, "d1-1", "");
    const std::string svg = plan.svg();
    EXPECT_LT(svg.size(), 200000u);
    // 0 .. 999 units both ways into 320 pixels high.
    EXPECT_NE(svg.find("viewBox=\"-4 -4 648 648\""), std::string::npos) << svg.substr(0, 200);
    EXPECT_NE(svg.find("<path d=\"M384 256h0\">"), std::string::npos) << svg.substr(svg.find("<g"));
    std::string markup = svg;
    const std::size_t picture = markup.find("data:image/png");
    markup.erase(picture, markup.find('"', picture) - picture);
    EXPECT_EQ(markup.find("nan"), std::string::npos) << markup;
    EXPECT_EQ(markup.find("inf"), std::string::npos) << markup;
}

// Extents wider than a double can tell the difference of: the plan still fits them, promptly.
TEST(DrawingPlan, FitsTheWidestExtentsADoubleHolds) {
    DrawingPlan plan;
    plan.add({{{{-1e308, -1e308}, {1e308, 1e308}}}, false}, "", "");
    plan.add({{{{-1e308, 1e308}, {1e308, -1e308}}}, false}, "d1-A", "");
    const std::string svg = plan.svg();
    EXPECT_NE(svg.find("viewBox=\"-4 -4 648 648\""), std::string::npos) << svg.substr(0, 200);
    EXPECT_NE(svg.find("<path d=\"M0 0L640 640\">"), std::string::npos) << svg.substr(svg.find("<g"));
    const auto pixels = pictureOf(svg);
    // The grey diagonal from the lower left corner (row 644, column 4) to the upper right.
    EXPECT_TRUE(pixels[644][4] && pixels[4][644] && pixels[324][324]);
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
