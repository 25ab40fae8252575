// The report of veltarn check for people: one self-contained HTML page (no scripts, nothing
// fetched) with a summary table of the drawings, then for each drawing its plan, its objects with
// findings in red linking to them, and its findings.
#pragma once

#include <map>
#include <span>
#include <string>
#include <vector>

#include "BulkCheck.h"

namespace veltarn::app {

// Findings counted by code.
using FindingKinds = std::map<std::string, int>;

struct HtmlDrawing {
    DrawingTally tally;
    std::string planSvg;  // from DrawingPlan; empty: no plan
    bool counted = true;  // false: only the findings are known (a merged report), not the objects
    std::size_t findings = 0;  // how many of the report's findings are this drawing's
    FindingKinds kinds;        // of those findings
};

// The whole page. `heading` heads it ("Check against roads-classes.txt"). `findings` in report
// order, each drawing's in a run, as many as it says (a drawing named twice is checked, and
// shown, twice); the drawings' kinds are counted here.
std::string htmlReport(const std::string& heading, std::vector<HtmlDrawing> drawings,
                       const std::vector<CheckFinding>& findings);

// The same page in pieces, for a report written while the drawings are checked: the start with
// the summary table (of drawings with their kinds counted), a section a drawing, the end.
std::string htmlPageStart(const std::string& heading, const std::vector<HtmlDrawing>& drawings);
std::string htmlDrawingSection(std::size_t index, const HtmlDrawing& drawing, std::span<const CheckFinding> findings);
std::string htmlPageEnd();
FindingKinds findingKinds(std::span<const CheckFinding> findings);

// The fragment an object's findings are found at: "d3-1A2" for handle 1A2 of the third drawing.
std::string findingsAnchor(std::size_t drawingIndex, const std::string& handle);

}  // namespace veltarn::app
