// The veltarn program: opens a drawing, loads the module, runs the command lines it is given (or
// those typed), and saves when asked.
#include <unistd.h>

#include <clocale>
#include <cstdio>
#include <iostream>

#include "CheckCommand.h"
#include "ExportCommand.h"
#include "ReportCommand.h"
#include "ClassifierCheck.h"
#include "ProgramInputFeed.h"
#include "ProgramOptions.h"
#include "cad/audit/Auditor.h"
#include "cad/audit/Recover.h"
#include "cad/seam/HeaderVariables.h"
#include "cad/seam/WorkbenchHost.h"
#include "cad/session/WorkbenchSession.h"
#include "host/Utf8.h"

using namespace veltarn;

namespace {

// The transcript on standard output. At a terminal the text after the last line end is a prompt
// that the line editor shows itself, so it is held back until the next line is read.
class Transcript {
public:
    explicit Transcript(bool holdPrompts) : holdPrompts_(holdPrompts) {}
    ~Transcript() { flush(); }

    void write(const std::wstring& text) {
        std::string bytes = host::toUtf8(text);
        if (!holdPrompts_) {
            std::fwrite(bytes.data(), 1, bytes.size(), stdout);
            return;
        }
        pending_ += bytes;
        const std::size_t end = pending_.rfind('\n');
        if (end == std::string::npos) return;
        std::fwrite(pending_.data(), 1, end + 1, stdout);
        std::fflush(stdout);
        pending_.erase(0, end + 1);
    }
    std::string takePrompt() { return std::exchange(pending_, {}); }
    void flush() {
        std::fwrite(pending_.data(), 1, pending_.size(), stdout);
        pending_.clear();
        std::fflush(stdout);
    }

private:
    bool holdPrompts_;
    std::string pending_;
};

int save(seam::WorkbenchHost& workbench, const std::string& path);
void printNotice(std::string notice);

int fail(int code, const std::string& message) {
    std::fflush(stdout);
    std::cerr << "veltarn: " << message << "\n";
    return code;
}

}  // namespace

int main(int argc, char** argv) {
    // Names and keywords are lower-cased with towlower under a UTF-8 locale.
    std::setlocale(LC_CTYPE, "C.UTF-8");
    std::vector<std::string> arguments(argv + 1, argv + argc);
    if (!arguments.empty() && arguments.front() == "check")
        return app::runCheck(std::vector<std::string>(arguments.begin() + 1, arguments.end()));
    if (!arguments.empty() && arguments.front() == "report")
        return app::runReport(std::vector<std::string>(arguments.begin() + 1, arguments.end()));
    if (!arguments.empty() && arguments.front() == "export")
        return app::runExport(std::vector<std::string>(arguments.begin() + 1, arguments.end()));
    app::ParsedOptions parsed = app::parseProgramOptions(arguments);
    if (!parsed.error.empty()) {
        std::cerr << "veltarn: " << parsed.error << "\n" << app::usageText();
        return app::kExitUsage;
    }
    const app::ProgramOptions& options = parsed.options;
    if (options.help) {
        std::cout << app::usageText();
        return app::kExitOk;
    }
    if (options.version) {
        std::cout << "veltarn " VELTARN_VERSION "\n";
        return app::kExitOk;
    }

    // A damaged drawing read as far as it can be; the file itself is only read.
    if (options.recover) {
        auto recovered = audit::recoverDrawing(*options.drawing);
        if (!recovered) return fail(app::kExitFileError, recovered.message());
        std::vector<audit::Finding> all = recovered->skipped;
        all.insert(all.end(), recovered->audit.begin(), recovered->audit.end());
        for (const audit::Finding& finding : all)
            std::cout << finding.code << ": " << finding.message << "\n";
        std::cout << audit::summary(all) << "\n";
        std::cout.flush();
        if (options.saveAs) {
            if (auto saved = recovered->drawing.save(*options.saveAs); !saved)
                return fail(app::kExitFileError, saved.message());
        }
        return app::kExitOk;
    }

    // Everything that can fail on a file is read before the first command runs.
    std::unique_ptr<seam::WorkbenchDatabase> drawing;
    if (options.drawing) {
        auto read = seam::WorkbenchDatabase::read(*options.drawing);
        if (!read) return fail(app::kExitFileError, read.message());
        drawing = std::move(read.value());
        // An audit's findings include what reading repaired; the drawing is not changed or saved.
        if (options.audit) {
            const std::vector<audit::Finding> findings = audit::auditDrawing(drawing->raw());
            for (const audit::Finding& finding : findings)
                std::cout << finding.code << ": " << finding.message << "\n";
            std::cout << audit::summary(findings) << "\n";
            std::cout.flush();
            return findings.empty() ? app::kExitOk : app::kExitFindings;
        }
        // What reading repaired (handles used twice): the drawing opens, but the user is told.
        for (const std::string& notice : drawing->raw().loadNotices()) std::cerr << "veltarn: " << notice << "\n";
    } else {
        drawing = std::make_unique<seam::WorkbenchDatabase>(db::Database::createNew());
    }
    if (options.checkClassifier) {
        seam::WorkbenchHost workbench([](const std::wstring& text) {
            const std::string bytes = host::toUtf8(text);
            std::fwrite(bytes.data(), 1, bytes.size(), stdout);
        }, editor::SettingsEnvironment::defaultFile());
        workbench.openDocument(std::move(drawing));
        const app::ClassifierCheck check = app::checkClassifier(workbench, *options.checkClassifier,
                                                                [&workbench](const std::wstring& text) { workbench.editor().print(text); });
        if (!check.opened) return fail(app::kExitFileError, check.problem);
        if (options.saveAs) {
            if (int status = save(workbench, *options.saveAs); status != app::kExitOk) return status;
        }
        std::fflush(stdout);
        return check.failed ? app::kExitFileError : app::kExitOk;
    }

    const bool interactive = options.inputs.empty() && ::isatty(STDIN_FILENO);
    Transcript transcript(interactive);
    app::LineSource source;
    editor::CommandInput::SourceScript sourceScript;
    if (!options.inputs.empty()) {
        auto feed = app::feedOfInputs(options.inputs);
        if (!feed) return fail(app::kExitFileError, feed.message());
        source = std::move(feed->lines);
        sourceScript = std::move(feed->script);
    } else if (interactive) {
        source = app::feedOfTerminal([&transcript] { return transcript.takePrompt(); });
    } else {
        source = app::feedOfStandardInput();
    }

    cad::WorkbenchSession session([&transcript](const std::wstring& text) { transcript.write(text); },
                                  editor::SettingsEnvironment::defaultFile());
    session.start(std::move(drawing));
    // A person at a terminal sees the typing; a script's transcript shows each answer after its prompt.
    session.commandLine().setEcho(!interactive);
    session.setInput(editor::CommandInput(std::move(source), std::move(sourceScript)));
    while (session.step()) {
    }
    session.finish();
    transcript.flush();

    if (options.saveAs) {
        auto saved = session.save(*options.saveAs);
        if (!saved) return fail(app::kExitFileError, saved.message());
        printNotice(*saved);
    }
    // A save the commands asked for failed: its message is in the transcript, the status says so.
    if (!session.saveError().empty()) return fail(app::kExitFileError, session.saveError());
    return app::kExitOk;
}

namespace {

void printNotice(std::string notice) {
    // Information, not an error: it goes with the transcript.
    if (notice.empty()) return;
    notice += "\n";
    std::fwrite(notice.data(), 1, notice.size(), stdout);
    std::fflush(stdout);
}

int save(seam::WorkbenchHost& workbench, const std::string& path) {
    seam::WorkbenchDatabase* current = workbench.currentDrawing();
    if (!current) return fail(app::kExitFileError, "no drawing is open to save");
    seam::writeHeaderVariables(current->raw(), workbench.variables());
    if (auto saved = current->raw().save(path); !saved) return fail(app::kExitFileError, saved.message());
    printNotice(current->raw().saveNotice());
    return app::kExitOk;
}

}  // namespace
