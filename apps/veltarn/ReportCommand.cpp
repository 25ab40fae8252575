#include "ReportCommand.h"

#include <algorithm>
#include <iostream>

#include "CheckCommand.h"
#include "CheckReport.h"
#include "HtmlReport.h"
#include "base/RegularFile.h"
#include "base/TextFileWrite.h"

namespace veltarn::app {

std::vector<CheckFinding> mergeFindings(std::vector<std::vector<CheckFinding>> reports) {
    std::vector<CheckFinding> all;
    for (std::vector<CheckFinding>& report : reports)
        all.insert(all.end(), std::make_move_iterator(report.begin()), std::make_move_iterator(report.end()));
    std::stable_sort(all.begin(), all.end(),
                     [](const CheckFinding& a, const CheckFinding& b) { return a.drawing < b.drawing; });
    return all;
}

std::vector<HtmlDrawing> drawingsOf(const std::vector<CheckFinding>& findings) {
    std::vector<HtmlDrawing> drawings;
    for (const CheckFinding& finding : findings) {
        if (drawings.empty() || drawings.back().tally.drawing != finding.drawing) {
            HtmlDrawing& drawing = drawings.emplace_back();
            drawing.tally.drawing = finding.drawing;
            drawing.tally.read = drawing.tally.checked = true;
            drawing.counted = false;
        }
        ++drawings.back().findings;
        DrawingTally& tally = drawings.back().tally;
        if (finding.code == "unreadable-drawing") tally.read = false;
        if (finding.code.starts_with("audit-")) ++tally.audit;
    }
    return drawings;
}

std::string reportUsageText() { return "usage: veltarn report --merge OUT.jsonl|OUT.csv|OUT.html REPORT.jsonl...\n"; }

int runReport(const std::vector<std::string>& arguments) {
    auto usage = [](const std::string& message) {
        std::cerr << "veltarn report: " << message << "\n" << reportUsageText();
        return int{kCheckUsage};
    };
    if (arguments.empty() || arguments[0] != "--merge") return usage("only --merge is known");
    if (arguments.size() < 2) return usage("--merge needs a report to write");
    const std::string& out = arguments[1];
    const std::optional<ReportFormat> format = reportFormatOf(out);
    if (!format) return usage(out + ": a report ends in .jsonl, .csv or .html");
    const std::vector<std::string> inputs(arguments.begin() + 2, arguments.end());
    if (inputs.empty()) return usage("no report to merge");
    for (const std::string& input : inputs)
        if (input.size() > 1 && input[0] == '-') return usage("unknown option '" + input + "'");

    std::vector<std::vector<CheckFinding>> reports;
    for (const std::string& input : inputs) {
        const FileBytes file = readRegularFile(input, kMaxTextFileBytes);
        if (!file.ok()) {
            std::cerr << "veltarn report: "
                      << (file.problem == FileProblem::kCannotOpen ? input + ": cannot open the report" : file.error)
                      << "\n";
            return kCheckUnreadable;
        }
        Result<std::vector<CheckFinding>> read = readJsonLinesReport(file.bytes, input);
        if (!read) {
            std::cerr << "veltarn report: " << read.message() << "\n";
            return kCheckUnreadable;
        }
        reports.push_back(std::move(read.value()));
    }
    const std::vector<CheckFinding> merged = mergeFindings(std::move(reports));
    std::string bytes;
    switch (*format) {
        case ReportFormat::kJsonLines: bytes = jsonLinesReport(merged); break;
        case ReportFormat::kCsv: bytes = csvReport(merged); break;
        case ReportFormat::kHtml:
            bytes = htmlReport("Findings of " + std::to_string(inputs.size()) + (inputs.size() == 1 ? " report" : " reports"),
                               drawingsOf(merged), merged);
            break;
    }
    if (const std::string error = writeTextFile(out, bytes); !error.empty()) {
        std::cerr << "veltarn report: " << error << "\n";
        return kCheckUnreadable;
    }
    return kCheckClean;
}

}  // namespace veltarn::app
