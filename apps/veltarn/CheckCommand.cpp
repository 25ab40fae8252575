#include "CheckCommand.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <thread>

#include "BulkCheck.h"
#include "CheckProgress.h"
#include "ClassifiedDrawing.h"
#include "CheckReport.h"
#include "HtmlReport.h"
#include "ReportWriter.h"

namespace veltarn::app {

std::string checkUsageText() {
    return "usage: veltarn check --classifier FILE [--report OUT.jsonl|OUT.csv|OUT.html]... [--from LIST] [--jobs N] [--shard K/N]\n"
           "                     DRAWING...\n";
}

std::vector<std::string> shardOf(std::vector<std::string> drawings, unsigned shard, unsigned shards) {
    // Plain byte order, as std::string compares: the same on every machine, whatever its locale.
    std::sort(drawings.begin(), drawings.end());
    std::vector<std::string> share;
    for (std::size_t i = shard - 1; i < drawings.size(); i += shards) share.push_back(std::move(drawings[i]));
    return share;
}

namespace {

// "K/N" with 1 <= K <= N; false for anything else.
bool parseShard(const std::string& value, unsigned& shard, unsigned& shards) {
    const std::size_t slash = value.find('/');
    if (slash == std::string::npos) return false;
    const std::string k = value.substr(0, slash), n = value.substr(slash + 1);
    for (const std::string& part : {k, n})
        if (part.empty() || part.size() > 6 || part.find_first_not_of("0123456789") != std::string::npos) return false;
    shard = static_cast<unsigned>(std::stoul(k));
    shards = static_cast<unsigned>(std::stoul(n));
    return shard >= 1 && shard <= shards;
}

}  // namespace

ParsedCheckOptions parseCheckOptions(const std::vector<std::string>& arguments) {
    ParsedCheckOptions parsed;
    CheckOptions& options = parsed.options;
    std::vector<std::string> lists;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const bool takesValue = argument == "--classifier" || argument == "--report" || argument == "--from" ||
                                argument == "--jobs" || argument == "--shard";
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
                parsed.error = path + ": a report ends in .jsonl, .csv or .html";
                return parsed;
            }
            options.reports.push_back(path);
        } else if (argument == "--jobs") {
            const std::string& value = arguments[++i];
            if (value.empty() || value.size() > 4 || value.find_first_not_of("0123456789") != std::string::npos ||
                std::stoi(value) < 1) {
                parsed.error = "--jobs needs a whole number from 1: '" + value + "'";
                return parsed;
            }
            options.jobs = static_cast<unsigned>(std::stoi(value));
        } else if (argument == "--shard") {
            const std::string& value = arguments[++i];
            if (!parseShard(value, options.shard, options.shards)) {
                parsed.error = "--shard needs K/N, whole numbers with 1 <= K <= N: '" + value + "'";
                return parsed;
            }
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
    // A shard with no drawing is no error: more shards than drawings leaves some empty.
    else if (options.shards) options.drawings = shardOf(std::move(options.drawings), options.shard, options.shards);
    return parsed;
}

int runCheck(const std::vector<std::string>& arguments) {
    const ParsedCheckOptions parsed = parseCheckOptions(arguments);
    if (!parsed.error.empty()) {
        std::cerr << "veltarn check: " << parsed.error << "\n" << checkUsageText();
        return kCheckUsage;
    }
    const CheckOptions& options = parsed.options;
    // Nothing could be checked against a classifier that cannot be read.
    if (const std::string problem = classifierFileProblem(options.classifier); !problem.empty()) {
        std::cerr << "veltarn check: " << problem << "\n";
        return kCheckUnreadable;
    }

    // One drawing a worker at a time, each with its own workbench. A drawing's findings go to the
    // reports as soon as those of every drawing before it have, and are then let go: memory holds
    // the drawings in flight and those done early, not the whole delivery's findings.
    const std::size_t count = options.drawings.size();
    std::vector<DrawingCheck> checks(count);
    std::vector<char> done(count, 0);
    const unsigned cores = std::max(1u, std::thread::hardware_concurrency());
    const std::size_t workers = std::min<std::size_t>(options.jobs ? options.jobs : cores, count);
    // None in a pipe: a log would fill with redrawn lines.
    std::unique_ptr<CheckProgress> progress;
    if (::isatty(STDERR_FILENO)) {
        std::vector<std::uintmax_t> sizes;
        for (const std::string& drawing : options.drawings) {
            std::error_code error;
            const std::uintmax_t size = std::filesystem::file_size(drawing, error);
            sizes.push_back(error ? 0 : size);
        }
        progress = std::make_unique<CheckProgress>(std::move(sizes));
    }
    const std::string heading = "Check against " + std::filesystem::path(options.classifier).filename().string();
    std::vector<std::unique_ptr<ReportWriter>> reports;
    std::vector<bool> told;  // the report's error was told before the check
    for (const std::string& path : options.reports) {
        reports.push_back(std::make_unique<ReportWriter>(path, *reportFormatOf(path), heading));
        told.push_back(!reports.back()->error().empty());
        if (told.back()) std::cerr << "veltarn check: " << reports.back()->error() << "\n";
    }
    // Only a page for people shows plans; drawing them costs an outline of every object.
    const bool plans = std::any_of(options.reports.begin(), options.reports.end(), [](const std::string& path) {
        return reportFormatOf(path) == ReportFormat::kHtml;
    });

    std::vector<DrawingTally> tallies;
    std::vector<std::string> unreadable;  // why, for standard error once the progress bar is gone
    bool anyFinding = false;
    std::size_t written = 0;
    std::mutex writing;
    auto hand = [&](std::size_t index, DrawingCheck check) {
        const std::lock_guard<std::mutex> guard(writing);
        checks[index] = std::move(check);
        done[index] = 1;
        for (; written < count && done[written]; ++written) {
            DrawingCheck& next = checks[written];
            if (next.unreadable)
                unreadable.push_back(next.tally.read
                                         ? next.tally.drawing + ": the classifier could not be read against it"
                                         : next.findings.back().message);
            anyFinding = anyFinding || !next.findings.empty();
            tallies.push_back(next.tally);
            for (const auto& report : reports) report->add(next);
            next = DrawingCheck{};
        }
    };
    std::atomic<std::size_t> next{0};
    std::mutex readingClassifier;
    auto work = [&] {
        for (std::size_t i = next++; i < count; i = next++) {
            CheckDrawingOptions checking;
            checking.readingClassifier = &readingClassifier;
            checking.objectsChecked = progress ? &progress->objects() : nullptr;
            checking.plan = plans;
            checking.planIndex = i;
            hand(i, checkDrawing(options.drawings[i], options.classifier, checking));
            if (progress) progress->drawingDone(i);
        }
    };
    std::vector<std::thread> threads;
    for (std::size_t i = 1; i < workers; ++i) threads.emplace_back(work);
    work();
    for (std::thread& thread : threads) thread.join();
    if (progress) progress->finish();

    for (const std::string& why : unreadable) std::cerr << "veltarn check: " << why << "\n";
    std::cout << summaryTable(tallies);
    std::cout.flush();

    int status = !unreadable.empty() ? kCheckUnreadable : anyFinding ? kCheckFindings : kCheckClean;
    for (std::size_t i = 0; i < reports.size(); ++i) {
        if (const std::string error = reports[i]->finish(); !error.empty()) {
            if (!told[i]) std::cerr << "veltarn check: " << error << "\n";
            status = kCheckUnreadable;
        }
    }
    return status;
}

}  // namespace veltarn::app
