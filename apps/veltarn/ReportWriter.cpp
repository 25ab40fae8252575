#include "ReportWriter.h"

#include <cerrno>
#include <cstring>

namespace veltarn::app {

ReportWriter::ReportWriter(std::string path, ReportFormat format, std::string heading)
    : path_(std::move(path)), heading_(std::move(heading)), format_(format) {
    if (std::string error = file_.open(path_); !error.empty()) {
        fail(error);
        return;
    }
    if (format_ == ReportFormat::kCsv) file_.write(csvHeader());
    if (format_ == ReportFormat::kHtml && !(sections_ = std::tmpfile()))
        fail(path_ + ": no room for the page's sections: " + std::strerror(errno));
}

ReportWriter::~ReportWriter() {
    if (sections_) std::fclose(sections_);
}

void ReportWriter::fail(const std::string& error) {
    if (error_.empty()) error_ = error;
}

void ReportWriter::add(const DrawingCheck& check) {
    if (!error_.empty()) return;
    switch (format_) {
        case ReportFormat::kJsonLines: file_.write(jsonLinesReport(check.findings)); break;
        case ReportFormat::kCsv: file_.write(csvRows(check.findings)); break;
        case ReportFormat::kHtml: {
            HtmlDrawing drawing{check.tally, check.planSvg, true, check.findings.size(), findingKinds(check.findings)};
            const std::string section = htmlDrawingSection(drawings_.size(), drawing, check.findings);
            if (std::fwrite(section.data(), 1, section.size(), sections_) != section.size())
                return fail(path_ + ": the page's sections could not be kept: " + std::strerror(errno));
            drawing.planSvg.clear();
            drawings_.push_back(std::move(drawing));
            break;
        }
    }
    if (!file_.error().empty()) fail(file_.error());
}

std::string ReportWriter::finish() {
    if (error_.empty() && format_ == ReportFormat::kHtml) {
        file_.write(htmlPageStart(heading_, drawings_));
        std::rewind(sections_);
        std::string chunk(1 << 20, '\0');
        for (std::size_t n; (n = std::fread(chunk.data(), 1, chunk.size(), sections_)) > 0;)
            if (!file_.write(chunk.substr(0, n))) break;
        if (std::ferror(sections_)) fail(path_ + ": the page's sections could not be read back");
        file_.write(htmlPageEnd());
        if (!file_.error().empty()) fail(file_.error());
    }
    if (!error_.empty()) return error_;
    return file_.commit();
}

}  // namespace veltarn::app
