// The findings of veltarn check as files for scripts (JSON Lines, CSV), and the summary table
// for a person.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "BulkCheck.h"

namespace veltarn::app {

enum class ReportFormat { kJsonLines, kCsv };

// By the file's extension (".jsonl", ".csv", any case); nullopt for any other.
std::optional<ReportFormat> reportFormatOf(const std::string& path);

// One JSON object a line with the keys drawing, handle, type, layer, class, code, message,
// expected in that order.
std::string jsonLinesReport(const std::vector<CheckFinding>& findings);
// A header line, then one line a finding; fields quoted as RFC 4180 asks, lines end in CRLF.
std::string csvReport(const std::vector<CheckFinding>& findings);

// One row a drawing and a total row, the columns aligned.
std::string summaryTable(const std::vector<DrawingTally>& tallies);

}  // namespace veltarn::app
