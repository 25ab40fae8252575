// The workbench's open drawing: one document at a time, the queue of strings sent to its command
// line, and the document lock.
#pragma once

#include <functional>
#include <memory>

#include "cad/seam/WorkbenchDatabase.h"
#include "host/Documents.h"

namespace veltarn::seam {

class WorkbenchDocument : public host::Document {
public:
    explicit WorkbenchDocument(std::unique_ptr<WorkbenchDatabase> database) : database_(std::move(database)) {}
    WorkbenchDatabase& database() override { return *database_; }
    const WorkbenchDatabase& database() const { return *database_; }
    // The file's name without its folder; "Drawing1.dxf" for a drawing never saved.
    std::wstring fileName() const override;
    // The folder of the file with a trailing "/"; empty for a drawing never saved.
    std::wstring folder() const;

private:
    std::unique_ptr<WorkbenchDatabase> database_;
};

class WorkbenchDocuments : public host::Documents {
public:
    using Sender = std::function<void(const std::wstring&)>;
    // `send` puts text on the command line's queue (CommandLine::sendString).
    explicit WorkbenchDocuments(Sender send) : send_(std::move(send)) {}

    // Makes `database` the current document, closing the one before; returns the new document.
    // Reactors hear of the closing and then of the activation.
    WorkbenchDocument& open(std::unique_ptr<WorkbenchDatabase> database);
    // Closes the current document, telling the reactors first; afterwards there is none.
    void close();
    WorkbenchDocument* currentDocument() { return current_.get(); }

    // Locks held now (nested locks count each).
    int lockDepth() const { return lockDepth_; }

    host::Document* current() override { return current_.get(); }
    host::Document* documentOf(const host::Database& database) override;
    void sendStringToExecute(host::Document& document, const std::wstring& text, bool activate = true,
                             bool wrapUpInactive = false, bool echo = false) override;
    host::DocumentLock lock(host::Document& document, host::LockMode mode) override;
    void addReactor(host::DocumentReactor* reactor) override;
    void removeReactor(host::DocumentReactor* reactor) override;

private:
    void notify(void (host::DocumentReactor::*event)(host::Document&), host::Document& document);

    Sender send_;
    std::vector<host::DocumentReactor*> reactors_;
    std::unique_ptr<WorkbenchDocument> current_;
    int lockDepth_ = 0;
};

}  // namespace veltarn::seam
