#include "CheckCommand.h"

#include <fstream>
#include <iostream>

#include "BulkCheck.h"
#include "CheckReport.h"
#include "base/RegularFile.h"
#include "base/TextFileWrite.h"

namespace veltarn::app {

std::string checkUsageText() {
    return "usage: veltarn check --classifier FILE [--report OUT.jsonl|OUT.csv]... [--from LIST] DRAWING...\n";
}

ParsedCheckOptions parseCheckOptions(const std::vector<std::string>& arguments) {
    ParsedCheckOptions parsed;
    CheckOptions& options = parsed.options;
    std::vector<std::string> lists;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const bool takesValue = argument == "--classifier" || argument == "--report" || argument == "--from";
        if (takesValue && i + 1 >= arguments.size()) {
            parsed.error = argument + " needs a value";
            return parsed;
        }
        if (argument == "--classifier") {
            if (!options.classifier.empty()) {
                parsed.error = "only one classifier may be given";
                return parsed;
            }
            options.classifier = arguments[++i];
        } else if (argument == "--report") {
            const std::string& path = arguments[++i];
            if (!reportFormatOf(path)) {
                parsed.error = path + ": a report ends in .jsonl or .csv";
                return parsed;
            }
            options.reports.push_back(path);
        } else if (argument == "--from") {
            lists.push_back(arguments[++i]);
        } else if (argument.size() > 1 && argument[0] == '-') {
            parsed.error = "unknown option '" + argument + "'";
            return parsed;
        } else {
            options.drawings.push_back(argument);
        }
    }
    for (const std::string& list : lists) {
        std::ifstream in(list);
        if (!in) {
            parsed.error = list + ": cannot read the list of drawings";
            return parsed;
        }
        for (std::string line; std::getline(in, line);) {
            const std::size_t first = line.find_first_not_of(" \t\r");
            if (first == std::string::npos) continue;
            options.drawings.push_back(line.substr(first, line.find_last_not_of(" \t\r") - first + 1));
        }
    }
    if (options.classifier.empty()) parsed.error = "a classifier is needed: --classifier FILE";
    else if (options.drawings.empty()) parsed.error = "no drawing to check";
    return parsed;
}

int runCheck(const std::vector<std::string>& arguments) {
    const ParsedCheckOptions parsed = parseCheckOptions(arguments);
    if (!parsed.error.empty()) {
        std::cerr << "veltarn check: " << parsed.error << "\n" << checkUsageText();
        return kCheckUsage;
    }
    const CheckOptions& options = parsed.options;
    // The reader is silent about a file it cannot open; nothing could be checked against it.
    if (const FileBytes classifier = checkRegularFile(options.classifier); !classifier.ok()) {
        std::cerr << "veltarn check: "
                  << (classifier.problem == FileProblem::kCannotOpen ? options.classifier + ": cannot open the classifier"
                                                                     : classifier.error)
                  << "\n";
        return kCheckUnreadable;
    }

    std::vector<DrawingTally> tallies;
    std::vector<CheckFinding> findings;
    bool unreadable = false;
    for (const std::string& drawing : options.drawings) {
        DrawingCheck check = checkDrawing(drawing, options.classifier);
        if (check.unreadable) {
            unreadable = true;
            const std::string why = check.tally.read ? drawing + ": the classifier could not be read against it"
                                                     : check.findings.back().message;
            std::cerr << "veltarn check: " << why << "\n";
        }
        tallies.push_back(check.tally);
        findings.insert(findings.end(), std::make_move_iterator(check.findings.begin()),
                        std::make_move_iterator(check.findings.end()));
    }
    std::cout << summaryTable(tallies);
    std::cout.flush();

    int status = unreadable ? kCheckUnreadable : findings.empty() ? kCheckClean : kCheckFindings;
    for (const std::string& path : options.reports) {
        const std::string bytes =
            *reportFormatOf(path) == ReportFormat::kCsv ? csvReport(findings) : jsonLinesReport(findings);
        if (const std::string error = writeTextFile(path, bytes); !error.empty()) {
            std::cerr << "veltarn check: " << error << "\n";
            status = kCheckUnreadable;
        }
    }
    return status;
}

}  // namespace veltarn::app
