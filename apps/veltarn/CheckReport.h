// The findings of veltarn check as files for scripts (JSON Lines, CSV), and the summary table
// for a person.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "BulkCheck.h"
#include "base/Result.h"

namespace veltarn::app {

enum class ReportFormat { kJsonLines, kCsv, kHtml };

// By the file's extension (".jsonl", ".csv", ".html", any case); nullopt for any other.
std::optional<ReportFormat> reportFormatOf(const std::string& path);

// One JSON object a line with the keys drawing, handle, type, layer, class, code, message,
// expected in that order.
std::string jsonLinesReport(const std::vector<CheckFinding>& findings);
// The findings of a JSON Lines report, as jsonLinesReport writes them: every line one object with
// exactly those eight keys (any order, any JSON spacing and escapes), all strings; blank lines
// skipped. The error names `name` and the line: "shard-2.jsonl:7: ...".
Result<std::vector<CheckFinding>> readJsonLinesReport(const std::string& bytes, const std::string& name);
// A header line, then one line a finding; fields quoted as RFC 4180 asks, lines end in CRLF.
std::string csvReport(const std::vector<CheckFinding>& findings);
// The same in two pieces: the header line, and the lines of findings.
std::string csvHeader();
std::string csvRows(const std::vector<CheckFinding>& findings);

// One row a drawing and a total row, the columns aligned.
std::string summaryTable(const std::vector<DrawingTally>& tallies);

}  // namespace veltarn::app
