#include "ReportWriter.h"

#include <cerrno>
#include <cstring>

namespace veltarn::app {

ReportWriter::ReportWriter(std::string path, ReportFormat format, std::string heading)
    : path_(std::move(path)), heading_(std::move(heading)), format_(format) {
    // A report that cannot be written is told now, not after hours of checking; the file itself
    // is named only at the end, so that a run cut short leaves nothing beside it.
    AtomicTextFile probe;
    if (std::string error = probe.open(path_); !error.empty()) {
        fail(error);
        return;
    }
    if (!(pending_ = std::tmpfile())) {
        fail(path_ + ": no room for the report: " + std::strerror(errno));
        return;
    }
    if (format_ == ReportFormat::kCsv) keep(csvHeader());
}

ReportWriter::~ReportWriter() {
    if (pending_) std::fclose(pending_);
}

void ReportWriter::fail(const std::string& error) {
    if (error_.empty()) error_ = error;
}

void ReportWriter::keep(const std::string& bytes) {
    if (error_.empty() && std::fwrite(bytes.data(), 1, bytes.size(), pending_) != bytes.size())
        fail(path_ + ": no room for the report: " + std::strerror(errno));
}

void ReportWriter::add(const DrawingCheck& check) {
    if (!error_.empty()) return;
    switch (format_) {
        case ReportFormat::kJsonLines: keep(jsonLinesReport(check.findings)); break;
        case ReportFormat::kCsv: keep(csvRows(check.findings)); break;
        case ReportFormat::kHtml: {
            // The sections wait until the summary that heads them is known.
            HtmlDrawing drawing{check.tally, check.planSvg, true, check.findings.size(), findingKinds(check.findings)};
            keep(htmlDrawingSection(drawings_.size(), drawing, check.findings));
            drawing.planSvg.clear();
            drawings_.push_back(std::move(drawing));
            break;
        }
    }
}

std::string ReportWriter::finish() {
    if (!error_.empty()) return error_;
    AtomicTextFile file;
    if (std::string error = file.open(path_); !error.empty()) return error_ = error;
    if (format_ == ReportFormat::kHtml) file.write(htmlPageStart(heading_, drawings_));
    std::rewind(pending_);
    std::string chunk(1 << 20, '\0');
    for (std::size_t n; (n = std::fread(chunk.data(), 1, chunk.size(), pending_)) > 0;)
        if (!file.write(chunk.substr(0, n))) return error_ = file.error();
    if (std::ferror(pending_)) return error_ = path_ + ": the report could not be read back";
    if (format_ == ReportFormat::kHtml) file.write(htmlPageEnd());
    if (!file.error().empty()) return error_ = file.error();
    return error_ = file.commit();
}

}  // namespace veltarn::app
