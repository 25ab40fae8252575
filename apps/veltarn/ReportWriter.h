// A report of veltarn check written while the drawings are checked, a drawing at a time in their
// order, so that a delivery's findings are never all in memory at once. It grows in an unnamed
// temporary file and appears whole at the end, or not at all.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "BulkCheck.h"
#include "CheckReport.h"
#include "HtmlReport.h"
#include "base/TextFileWrite.h"

namespace veltarn::app {

class ReportWriter {
public:
    // `heading` heads a page.
    ReportWriter(std::string path, ReportFormat format, std::string heading);
    ~ReportWriter();
    ReportWriter(const ReportWriter&) = delete;
    ReportWriter& operator=(const ReportWriter&) = delete;

    // The next drawing's findings (and its plan, for a page).
    void add(const DrawingCheck& check);
    // Empty when the report was written, else why not.
    std::string finish();
    // Why the report cannot be written, known before any drawing is checked; empty if none.
    const std::string& error() const { return error_; }

private:
    void fail(const std::string& error);
    void keep(const std::string& bytes);

    std::string path_, heading_, error_;
    ReportFormat format_;
    std::FILE* pending_ = nullptr;
    std::vector<HtmlDrawing> drawings_;  // without their plans, which are already written
};

}  // namespace veltarn::app
