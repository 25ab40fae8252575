// Giving an existing object a class: its graphic properties, its object data, or both.
#pragma once

#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "classifier/Classifier.h"
#include "host/DbEntity.h"
#include "host/Host.h"

namespace veltarn {

// How properties are given (the restore mode). kAll sets every property the class prescribes to
// its first value; kDefault changes a property only where the object's value is none of the
// class's values, so an object on an allowed second layer keeps it.
enum class ApplyMode { kAll = 0, kDefault = 1 };

// One per command run: it loads each class's resources once and reports each missing resource
// name once, however many objects ask for it.
class ClassApplication {
public:
    ClassApplication(host::Host& host, Classifier& classifier) : host_(host), classifier_(classifier) {}

    // The class `name` (any case) given to `entity`: its resources brought into the drawing first,
    // then its properties (when `assign`) and one record per table (when `attach`). Prints
    // "error: '%s' undefined\n" for an unknown class and "error: unable to load dependecies for
    // object '%s'\n" when its resources cannot be loaded, and fails then; false also when the
    // object cannot be opened for write.
    bool applyClass(std::wstring_view name, host::ObjectId entity, bool assign, bool attach, ApplyMode mode);

    // The class's properties on `entity`, without loading resources. A property the object's kind
    // does not carry is passed over; a name the drawing lacks is reported once and not set.
    void assignProperties(host::ObjectId entity, const ClassDef& def, ApplyMode mode);

    // One record per table of the class, the table defined in the drawing first when it is not:
    // the key field from its template with the text variables filled in, every other field its
    // default, else an empty text or zero. False when a record could not be written.
    bool attachData(host::ObjectId entity, const ClassDef& def);

    // How many table definitions this run added to the drawing: readers of records refresh their
    // tables when it grows.
    int tablesDefined() const { return tablesDefined_; }

    // Whether the class's resources are in the drawing, loading the missing ones (once per class).
    bool loadResources(const ClassDef& def);

private:
    // A name the drawing lacks: "warning: layer 'X' not found\n", once per kind and name.
    void reportMissing(std::wstring_view kind, const std::wstring& name);

    host::Host& host_;
    Classifier& classifier_;
    std::unordered_map<const ClassDef*, bool> resourcesLoaded_;
    std::set<std::pair<std::wstring, std::wstring>> reported_;
    int tablesDefined_ = 0;
    std::set<std::wstring> knownTables_;  // lower-case names the drawing defines, as found this run
};

}  // namespace veltarn
