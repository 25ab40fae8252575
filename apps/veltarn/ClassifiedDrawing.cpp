#include "ClassifiedDrawing.h"

#include "base/RegularFile.h"
#include "classifier/ClassifierReader.h"
#include "classifier/DrawingResources.h"
#include "host/Utf8.h"

namespace veltarn::app {

std::vector<std::string> ClassifiedDrawing::readerMessages() const {
    std::vector<std::string> lines;
    for (std::size_t start = 0; start < transcript.size();) {
        std::size_t end = transcript.find(L'\n', start);
        if (end == std::wstring::npos) end = transcript.size();
        const std::wstring line = transcript.substr(start, end - start);
        if (line.find_first_not_of(L" \t\r") != std::wstring::npos) lines.push_back(host::toUtf8(line));
        start = end + 1;
    }
    return lines;
}

std::string classifierFileProblem(const std::string& path) {
    const FileBytes file = checkRegularFile(path);
    if (file.ok()) return {};
    return file.problem == FileProblem::kCannotOpen ? path + ": cannot open the classifier" : file.error;
}

Result<ClassifiedDrawing> readClassifiedDrawing(const std::string& drawing, const std::filesystem::path& classifier,
                                                std::mutex* readingClassifier,
                                                const std::function<void(seam::WorkbenchDatabase&)>& beforeClassifier) {
    auto read = seam::WorkbenchDatabase::read(drawing);
    if (!read) return makeError(read.message());
    if (beforeClassifier) beforeClassifier(*read.value());

    ClassifiedDrawing out;
    out.host = std::make_unique<seam::WorkbenchHost>([](const std::wstring&) {},
                                                     editor::SettingsEnvironment::defaultFile());
    out.host->openDocument(std::move(read.value()));
    out.db = out.host->workingDatabase();
    std::unique_lock<std::mutex> reading;
    if (readingClassifier) reading = std::unique_lock<std::mutex>(*readingClassifier);
    DrawingResources resources(*out.host, *out.db);
    ClassifierReader reader([&out](const std::wstring& text) { out.transcript += text; },
                            &out.host->systemVariables(), &resources);
    out.classifier = reader.read(host::fromUtf8(classifier.string()));
    out.classifierFailed = reader.failed();
    return out;
}

}  // namespace veltarn::app
