// An object of a drawing, opened for read or write; closing is the end of its lifetime.
#pragma once

#include "host/ObjectId.h"

namespace veltarn::host {

enum class OpenMode { kRead, kWrite };

// What Database::openObject() hands out. There is no close(): the object is closed when the
// pointer holding it is destroyed, and changes made through a write open are then in the drawing.
// Several read opens of one object may coexist; a write open excludes every other open of the
// same object while it lives.
class DbObject {
public:
    virtual ~DbObject() = default;
    DbObject(const DbObject&) = delete;
    DbObject& operator=(const DbObject&) = delete;

    virtual ObjectId id() const = 0;
    virtual ObjectId ownerId() const = 0;
    virtual OpenMode openMode() const = 0;

    // Turns a read open into a write open and back. upgradeOpen() fails (false) when the object
    // cannot be written: another open of it exists, or it is an entity on a locked layer.
    virtual bool upgradeOpen() = 0;
    virtual void downgradeOpen() = 0;

    // Marks the object erased (it stays in the drawing until saved, and undo brings it back).
    // Needs a write open; false otherwise.
    virtual bool erase() = 0;

    // The extension dictionary: null when the object has none.
    virtual ObjectId extensionDictionary() const = 0;
    // Creates the extension dictionary when there is none (write open needed); true when the
    // object has one afterwards.
    virtual bool createExtensionDictionary() = 0;
    // Detaches the extension dictionary and erases it, but only when it is empty; a dictionary that
    // still holds entries stays. Write open needed. True when the object has none afterwards.
    virtual bool releaseExtensionDictionary() = 0;

protected:
    DbObject() = default;
};

}  // namespace veltarn::host
