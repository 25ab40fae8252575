// The open drawings: the current document, the command queue, the document lock.
#pragma once

#include <functional>
#include <string>
#include <utility>

namespace veltarn::host {

class Database;

// One open drawing.
class Document {
public:
    virtual ~Document() = default;
    virtual Database& database() = 0;
    // The drawing's file name as the user sees it ("roads.dxf"); "Drawing1.dxf" for a new one.
    virtual std::wstring fileName() const = 0;
};

// Held while a command changes a document outside the lock the command line gives it. Unlocks
// when destroyed; a lock that failed is empty (locked() false).
class DocumentLock {
public:
    DocumentLock() = default;
    explicit DocumentLock(std::function<void()> unlock) : unlock_(std::move(unlock)) {}
    DocumentLock(DocumentLock&& other) noexcept : unlock_(std::exchange(other.unlock_, nullptr)) {}
    DocumentLock& operator=(DocumentLock&& other) noexcept {
        if (this != &other) { release(); unlock_ = std::exchange(other.unlock_, nullptr); }
        return *this;
    }
    DocumentLock(const DocumentLock&) = delete;
    DocumentLock& operator=(const DocumentLock&) = delete;
    ~DocumentLock() { release(); }

    bool locked() const { return static_cast<bool>(unlock_); }

private:
    void release() {
        if (unlock_) std::exchange(unlock_, nullptr)();
    }
    std::function<void()> unlock_;
};

enum class LockMode { kExclusiveWrite, kShared };

// Notifications of documents becoming current and going away. Added with Documents::addReactor()
// and removed with removeReactor(), in pairs.
class DocumentReactor {
public:
    virtual ~DocumentReactor() = default;
    // `document` is now the current one (opened, or switched to).
    virtual void documentActivated(Document& /*document*/) {}
    // `document` is about to close; it and its drawing can still be read.
    virtual void documentToBeDestroyed(Document& /*document*/) {}
};

class Documents {
public:
    virtual ~Documents() = default;

    // The document that commands work on; null when no drawing is open.
    virtual Document* current() = 0;

    // The open document whose drawing is `database`; null for a side database read from a file.
    virtual Document* documentOf(const Database& database) = 0;

    // Queues `text` to the command line of `document`, to run after the current command ends, as if
    // typed ("\n" is Enter; character 3 cancels). `activate` makes the document current first;
    // `echo` shows the text on the command line.
    virtual void sendStringToExecute(Document& document, const std::wstring& text, bool activate = true,
                                     bool wrapUpInactive = false, bool echo = false) = 0;

    // Locks `document`. Nesting a lock inside the command's own is allowed.
    virtual DocumentLock lock(Document& document, LockMode mode) = 0;

    virtual void addReactor(DocumentReactor* reactor) = 0;
    virtual void removeReactor(DocumentReactor* reactor) = 0;
};

}  // namespace veltarn::host
