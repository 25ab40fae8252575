// One graphic property of a class definition: absent, or the values that its "obj_prop" line gave.
#pragma once

#include <cassert>
#include <optional>
#include <utility>
#include <vector>

namespace veltarn {

// The first value is the one used when drawing; the ones after it are alternatives (other
// colours, other layer names). A value written as "?" is held as an empty entry: the user is
// asked for it when an object of the class is drawn, and until then the property is unset.
template <class T>
class Property {
public:
    using Entry = std::optional<T>;

    // Given by the classifier (the presence flag of the property).
    bool present() const { return !entries_.empty(); }
    // Present with "?" first: to be asked before drawing.
    bool isOpen() const { return present() && !entries_.front().has_value(); }
    // Present with a real first value: what drawing and writing use.
    bool isSet() const { return present() && entries_.front().has_value(); }

    const T& value() const {
        assert(isSet() && "value() of a property that is not set");
        return *entries_.front();
    }
    // The first value, or `absent` (the property's absent-value marker) when it is not set.
    T valueOr(T absent) const { return isSet() ? *entries_.front() : std::move(absent); }

    // Every value in file order, "?" ones empty.
    const std::vector<Entry>& entries() const { return entries_; }

    void set(T value) { entries_.assign(1, Entry(std::move(value))); }
    void assign(std::vector<Entry> entries) { entries_ = std::move(entries); }
    void clear() { entries_.clear(); }

    bool operator==(const Property&) const = default;

private:
    std::vector<Entry> entries_;
};

}  // namespace veltarn
