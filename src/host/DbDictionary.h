// A dictionary of the drawing: named entries that own other objects.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/DbObject.h"

namespace veltarn::host {

// Keys compare without regard to case, as drawings store them; the order of entries() is the
// dictionary's own order, which the drawing keeps from load to save.
class DbDictionary : public DbObject {
public:
    using Entry = std::pair<std::wstring, ObjectId>;

    // The object stored under `key`; null when absent.
    virtual ObjectId find(const std::wstring& key) const = 0;
    bool has(const std::wstring& key) const { return !find(key).isNull(); }

    // Every entry, in dictionary order.
    virtual std::vector<Entry> entries() const = 0;

    // Create a new, empty dictionary or xrecord owned by this one under `key` and return its id.
    // Needs a write open; null when it is missing or the key is already taken (nothing changes).
    virtual ObjectId addDictionary(const std::wstring& key) = 0;
    virtual ObjectId addXrecord(const std::wstring& key) = 0;

    // Removes the entry of `key` and returns the id it held (null when absent). The object itself
    // is not erased: the caller erases it when it is no longer wanted. Needs a write open.
    virtual ObjectId remove(const std::wstring& key) = 0;
};

}  // namespace veltarn::host
