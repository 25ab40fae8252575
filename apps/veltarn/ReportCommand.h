// veltarn report --merge OUT.jsonl|OUT.csv|OUT.html FILE.jsonl...: the JSON Lines reports of several
// veltarn check runs (the shards of one list of drawings) joined into one report.
#pragma once

#include <string>
#include <vector>

#include "BulkCheck.h"
#include "HtmlReport.h"

namespace veltarn::app {

// The findings of every report, ordered as one run over the sorted list of drawings orders them:
// by drawing (byte order), and within a drawing as its report gave them. Stable, so a drawing named
// twice keeps the order of the reports given.
std::vector<CheckFinding> mergeFindings(std::vector<std::vector<CheckFinding>> reports);

// The drawings of merged findings, for a page: only what the findings tell (which drawings could
// not be read, their audit findings); the shards' counts of objects are not in their reports.
std::vector<HtmlDrawing> drawingsOf(const std::vector<CheckFinding>& findings);

std::string reportUsageText();

// The whole command; the exit code as veltarn check's: 0, 2 on a usage error, 3 when a report
// cannot be read or is not a report, or OUT cannot be written (it is then left as it was).
int runReport(const std::vector<std::string>& arguments);

}  // namespace veltarn::app
