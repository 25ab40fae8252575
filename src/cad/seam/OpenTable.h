// The objects of one drawing that are open right now, with their readers and writer. A pass over
// object data opens and closes millions of objects, but only a handful are open at any moment: they
// are kept in a short array searched in place, and a hash index is built only while many are open.
#pragma once

#include <cstddef>
#include <unordered_map>
#include <vector>

#include "cad/db/Handle.h"

namespace veltarn::seam {

class OpenTable {
public:
    struct Counts {
        int readers = 0;
        bool writer = false;
    };

    // The counts of an open object; null when nobody holds it open.
    Counts* find(db::Handle handle);
    // The counts of `handle`, added at zero when it is not open yet.
    Counts& add(db::Handle handle);
    // Forgets `handle` once it has neither readers nor writer.
    void dropIfClosed(db::Handle handle);
    // Opens held, readers and writers together.
    std::size_t openCount() const;

private:
    struct Entry {
        db::Handle handle;
        Counts counts;
    };
    // Past this many open objects the array is indexed; below half of it the index goes again.
    static constexpr std::size_t kScanned = 32;

    std::size_t indexOf(db::Handle handle) const;
    void remove(std::size_t at);

    std::vector<Entry> entries_;
    std::unordered_map<db::Handle, std::size_t> index_;  // empty while the array is short
};

}  // namespace veltarn::seam
