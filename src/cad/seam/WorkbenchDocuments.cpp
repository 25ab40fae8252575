#include "cad/seam/WorkbenchDocuments.h"

#include "cad/seam/ValueConversion.h"

#include <algorithm>

namespace veltarn::seam {

std::wstring WorkbenchDocument::fileName() const {
    const std::filesystem::path& path = database_->path();
    if (path.empty()) return L"Drawing1.dxf";
    return wide(path.filename().string());
}

std::wstring WorkbenchDocument::folder() const {
    const std::wstring full = database_->fileName();
    if (full.empty()) return {};
    const std::size_t slash = full.find_last_of(L'/');
    return slash == std::wstring::npos ? std::wstring() : full.substr(0, slash + 1);
}

WorkbenchDocument& WorkbenchDocuments::open(std::unique_ptr<WorkbenchDatabase> database) {
    close();
    current_ = std::make_unique<WorkbenchDocument>(std::move(database));
    notify(&host::DocumentReactor::documentActivated, *current_);
    return *current_;
}

void WorkbenchDocuments::close() {
    if (!current_) return;
    notify(&host::DocumentReactor::documentToBeDestroyed, *current_);
    current_.reset();
}

void WorkbenchDocuments::addReactor(host::DocumentReactor* reactor) {
    if (reactor && std::find(reactors_.begin(), reactors_.end(), reactor) == reactors_.end()) reactors_.push_back(reactor);
}

void WorkbenchDocuments::removeReactor(host::DocumentReactor* reactor) { std::erase(reactors_, reactor); }

void WorkbenchDocuments::notify(void (host::DocumentReactor::*event)(host::Document&), host::Document& document) {
    // A reactor may remove itself while it is told: each is told only while still registered.
    const auto snapshot = reactors_;
    for (host::DocumentReactor* reactor : snapshot)
        if (std::find(reactors_.begin(), reactors_.end(), reactor) != reactors_.end()) (reactor->*event)(document);
}

host::Document* WorkbenchDocuments::documentOf(const host::Database& database) {
    if (current_ && &current_->database() == &database) return current_.get();
    return nullptr;
}

void WorkbenchDocuments::sendStringToExecute(host::Document& document, const std::wstring& text, bool, bool, bool) {
    // One document is open at a time, so it is the current one and activating it changes nothing.
    if (&document != current_.get() || !send_) return;
    send_(text);
}

host::DocumentLock WorkbenchDocuments::lock(host::Document& document, host::LockMode) {
    if (&document != current_.get()) return {};
    // Everything runs on one thread: a lock only counts, so that nesting and release can be seen.
    ++lockDepth_;
    return host::DocumentLock([this] { --lockDepth_; });
}

}  // namespace veltarn::seam
