#include "ClassifiedDrawing.h"

#include "classifier/ClassifierReader.h"
#include "classifier/DrawingResources.h"
#include "host/Utf8.h"

namespace veltarn::app {

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
