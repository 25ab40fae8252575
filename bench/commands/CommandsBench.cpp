// The module's selection and check commands over all of a large drawing's model space. The drawing
// is read into one workbench session, built as the veltarn program builds it, and the classifier
// loaded with VELTARN_LOAD, both once; then each command runs once, typed with its answers as a
// script gives them. The pick-first set is emptied before each, so that each works over all of
// model space. Prints entities a second beside the target, and the count each command reported.
// Usage: commands_bench DRAWING CLASSIFIER [benchmark options]
// (scripts/bench-commands.sh makes the drawing and its classifier, then runs this.)
#include "cad/seam/WorkbenchDatabase.h"
#include "cad/session/WorkbenchSession.h"
#include "host/Utf8.h"

#include <benchmark/benchmark.h>

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <clocale>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

using namespace veltarn;

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

// One command as a script types it, answers and the Enter that ends "Select objects: " included.
struct Typed {
    std::string label;
    std::wstring text;
    double target;        // entities a second; 0 for none
    bool timed = true;    // false: a step between timed commands (an undo, another classifier)
};

// In this order; VELTARN_REMOVE_ALL last, as it takes the records away. VELTARN_SORT orders all
// of model space by the priorities of its classes: 1,000,000 in 3 seconds is 333,333 a second.
const std::vector<Typed> kSelectCommands = {
    {"VELTARN_SEL Roads", L"VELTARN_SEL Roads\n", 1e6},
    {"VELTARN_SEL_CLASS Roads", L"VELTARN_SEL_CLASS Roads\n", 0},
    {"VELTARN_SEL_EXT Roads 1 1 1", L"VELTARN_SEL_EXT Roads\n1 1 1\n\n", 0},
    {"VELTARN_SEL_ALL 1 1 1", L"VELTARN_SEL_ALL 1 1 1\n\n", 1e6},
    {"VELTARN_SEL_NULL 1", L"VELTARN_SEL_NULL 1\n\n", 0},
    {"VELTARN_SEL_CLASSIFIED 1", L"VELTARN_SEL_CLASSIFIED 1\n\n", 0},
    {"VELTARN_ASSERT 1", L"VELTARN_ASSERT 1\n\n", 5e5},
    {"VELTARN_STAT", L"VELTARN_STAT\n\n", 500000},
    {"VELTARN_SORT", L"VELTARN_SORT\n\n", 333334},
    {"VELTARN_REMOVE_ALL", L"VELTARN_REMOVE_ALL\n\n", 0},
};

// Over a drawing without object data where every tenth entity is a copy of the one before: both
// under 2 seconds for 1,000,000 entities. The tolerance is asked first; then all of model space.
const std::vector<Typed> kDuplicateCommands = {
    {"VELTARN_SEL_DUPLICATES", L"VELTARN_SEL_DUPLICATES\n\n\n", 500000},
    {"VELTARN_DEL_DUPLICATES", L"VELTARN_DEL_DUPLICATES\n\n\n", 500000},
};

// Over a drawing without object data: one class given to every object by name, taken back, then
// automatic classification with a classifier of 1,000 flagged classes (AUTO_CLASSIFIER).
std::vector<Typed> classifyCommands(const std::wstring& autoClassifier) {
    return {
        // The dialog's boxes: properties, data, no change of other data, Enter; then all objects.
        {"VELTARN_CLASSIFY Roads", L"VELTARN_CLASSIFY Roads\n1\n1\n0\n\nALL\n\n", 300000},
        {"U", L"U\n", 0, false},
        {"VELTARN_LOAD 1,000 classes", L"VELTARN_LOAD\n" + autoClassifier + L"\n", 0, false},
        {"VELTARN_CLASSIFY_AUTO 0", L"VELTARN_CLASSIFY_AUTO 0 0\n\n", 200000},
    };
}

std::string utf8(const std::wstring& text) { return host::toUtf8(text); }

// The last line of `transcript` that says what the command did: its count ("Selected: 12",
// "Completed: 12"), else the last line that is no prompt.
std::string reported(const std::wstring& transcript) {
    std::wstring last;
    std::size_t start = 0;
    while (start < transcript.size()) {
        std::size_t end = transcript.find(L'\n', start);
        if (end == std::wstring::npos) end = transcript.size();
        std::wstring line = transcript.substr(start, end - start);
        start = end + 1;
        for (const wchar_t* word : {L"Selected: ", L"Completed: "}) {
            if (std::size_t at = line.rfind(word); at != std::wstring::npos) line = line.substr(at);
        }
        if (line.starts_with(L"Selected: ") || line.starts_with(L"Completed: ")) return utf8(line);
        if (!line.empty() && !line.starts_with(L"Command: ")) last = line;
    }
    return utf8(last);
}

// The session the commands run in, with the drawing read and the classifier loaded.
class Bench {
public:
    Bench(const fs::path& settings) : session_([this](const std::wstring& text) { transcript_ += text; }, settings) {}

    // Reads the drawing and starts the session on it; false, with a message, when it cannot be read.
    bool open(const fs::path& drawing) {
        const Clock::time_point start = Clock::now();
        auto read = seam::WorkbenchDatabase::read(drawing);
        if (!read) {
            std::fprintf(stderr, "commands_bench: %s\n", read.message().c_str());
            return false;
        }
        entities_ = read.value()->blockEntities(read.value()->modelSpace()).size();
        session_.start(std::move(read.value()));
        std::printf("read %s: %zu entities in model space, %.2f s\n", drawing.filename().c_str(), entities_,
                    seconds(start));
        return true;
    }

    // Types `text` and runs the one command it starts; the seconds that command took.
    double type(const std::wstring& text) {
        transcript_.clear();
        session_.commandLine().setPickFirst({});
        session_.commandLine().input().append(text);
        const Clock::time_point start = Clock::now();
        session_.step();
        const double taken = seconds(start);
        // Answers the command did not ask for would run as commands of their own: run them now,
        // untimed, so that the transcript shows them.
        while (session_.step()) {
        }
        return taken;
    }

    const std::wstring& transcript() const { return transcript_; }
    std::size_t entities() const { return entities_; }

private:
    static double seconds(Clock::time_point start) {
        return std::chrono::duration<double>(Clock::now() - start).count();
    }

    std::wstring transcript_;
    cad::WorkbenchSession session_;
    std::size_t entities_ = 0;
};

struct Figure {
    const Typed* command = nullptr;
    double seconds = 0;
    std::string reported;
    std::string problem;  // why there is no figure
};

// The command did not run as asked: not built yet, no classifier, or a prompt it did not expect.
std::string problemOf(const std::wstring& transcript) {
    for (const wchar_t* sign : {L"is not available yet", L"Error: no file loaded", L"Unknown command"}) {
        if (std::size_t at = transcript.find(sign); at != std::wstring::npos) {
            const std::size_t from = transcript.rfind(L'\n', at);
            const std::size_t begin = from == std::wstring::npos ? 0 : from + 1;
            return utf8(transcript.substr(begin, transcript.find(L'\n', at) - begin));
        }
    }
    return {};
}

void run(benchmark::State& state, Bench& bench, const Typed& command, std::vector<Figure>& figures) {
    if (!command.timed) {
        for (auto _ : state) state.SetIterationTime(bench.type(command.text));
        return;
    }
    Figure figure;
    figure.command = &command;
    for (auto _ : state) {
        figure.seconds = bench.type(command.text);
        state.SetIterationTime(figure.seconds);
    }
    figure.reported = reported(bench.transcript());
    figure.problem = problemOf(bench.transcript());
    if (!figure.problem.empty()) state.SkipWithError(figure.problem.c_str());
    state.counters["entities/s"] = static_cast<double>(bench.entities()) / std::max(figure.seconds, 1e-9);
    state.SetLabel(figure.reported);
    figures.push_back(figure);
}

void printSummary(const std::vector<Figure>& figures, std::size_t entities) {
    std::printf("\n%-30s %9s %14s  %-26s %s\n", "over all model space", "seconds", "entities/s", "reported", "target");
    for (const Figure& f : figures) {
        if (!f.problem.empty()) {
            std::printf("%-30s %9s %14s  %s\n", f.command->label.c_str(), "-", "-", f.problem.c_str());
            continue;
        }
        const double rate = static_cast<double>(entities) / std::max(f.seconds, 1e-9);
        std::string target = "-";
        if (f.command->target > 0) {
            char text[64];
            std::snprintf(text, sizeof text, ">= %.0f: %s", f.command->target,
                          rate >= f.command->target ? "target met" : "TARGET MISSED");
            target = text;
        }
        std::printf("%-30s %9.3f %14.0f  %-26s %s\n", f.command->label.c_str(), f.seconds, rate, f.reported.c_str(),
                    target.c_str());
    }
}

}  // namespace

int main(int argc, char** argv) {
    // Names are lower-cased with towlower under a UTF-8 locale, as in the program.
    std::setlocale(LC_CTYPE, "C.UTF-8");
    benchmark::Initialize(&argc, argv);
    if (argc != 3 && argc != 4) {
        std::fprintf(stderr, "usage: commands_bench DRAWING CLASSIFIER [AUTO_CLASSIFIER | --duplicates] [benchmark options]\n"
                             "  with AUTO_CLASSIFIER the drawing is one without data, to be classified;\n"
                             "  with --duplicates one without data whose duplicates are to be found\n");
        return 2;
    }
    const fs::path drawing = argv[1], classifier = fs::absolute(argv[2]);
    const bool duplicates = argc == 4 && std::string(argv[3]) == "--duplicates";
    const std::vector<Typed> commands = duplicates ? kDuplicateCommands
                                        : argc == 4 ? classifyCommands(host::fromUtf8(fs::absolute(argv[3]).string()))
                                                    : kSelectCommands;
    // The user's own settings are neither read nor changed.
    const fs::path scratch = fs::temp_directory_path() / ("veltarn_commands_bench_" + std::to_string(::getpid()));
    {
        Bench bench(scratch / "settings");
        if (!bench.open(drawing)) return 1;
        const double loaded = bench.type(L"VELTARN_LOAD\n" + host::fromUtf8(classifier.string()) + L"\n");
        if (std::string problem = problemOf(bench.transcript()); !problem.empty()) {
            std::printf("VELTARN_LOAD: %s\n", problem.c_str());
        } else {
            std::printf("VELTARN_LOAD %s: %.3f s\n", classifier.filename().c_str(), loaded);
        }

        std::vector<Figure> figures;
        for (const Typed& command : commands) {
            benchmark::RegisterBenchmark(
                command.label.c_str(),
                [&bench, &command, &figures](benchmark::State& state) { run(state, bench, command, figures); })
                ->Iterations(1)
                ->UseManualTime()
                ->Unit(benchmark::kMillisecond);
        }
        benchmark::RunSpecifiedBenchmarks();
        printSummary(figures, bench.entities());
    }  // the session ends, and the module unloads, before the scratch folder goes
    benchmark::Shutdown();
    std::error_code ignored;
    fs::remove_all(scratch, ignored);
    return 0;
}
