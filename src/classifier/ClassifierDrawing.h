// What the classifier reader asks of the drawing it loads a classifier into: the object-data
// tables the drawing has registered, and its resources.
#pragma once

#include "classifier/ResourceKind.h"
#include "classifier/TableDef.h"

#include <map>
#include <string>
#include <vector>

namespace veltarn {

// Names per kind of resource.
using ResourceNames = std::map<ResourceKind, std::vector<std::wstring>>;

class ClassifierDrawing {
public:
    virtual ~ClassifierDrawing() = default;

    // False when the drawing has registered a table of this name (without regard to case) whose
    // field names, order or types differ; true when they agree or there is none.
    virtual bool tableMatches(const TableDef& table) const = 0;

    // Whether the drawing has the resource `name` (without regard to case). A pattern is present
    // when a hatch would accept it.
    virtual bool hasResource(ResourceKind kind, const std::wstring& name) const = 0;

    // Brings the resources of `kinds` from the file `path` into the drawing: for each kind the
    // names in `missing` (lower case), or every record of the file when that list is empty, and
    // adds the names it brought to `loaded`. False when nothing could be done: no kinds, a file
    // that cannot be read or is of no known kind.
    virtual bool importResources(const std::wstring& path, ResourceKinds kinds, const ResourceNames& missing,
                                 ResourceNames& loaded) = 0;

    // Puts the folder of the shape file `path` on the support search path; false when refused.
    virtual bool registerShapeFile(const std::wstring& path) = 0;
};

}  // namespace veltarn
