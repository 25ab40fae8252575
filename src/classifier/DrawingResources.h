// The drawing a classifier is loaded into, through the host: its registered tables, its resources,
// and the import of resources from side drawings and support files.
#pragma once

#include "classifier/ClassifierDrawing.h"
#include "host/Database.h"
#include "host/Host.h"

namespace veltarn {

class DrawingResources : public ClassifierDrawing {
public:
    // `db` is the drawing the classifier goes to (the working drawing, as a rule); `host` reads side
    // drawings and keeps the support path.
    DrawingResources(host::Host& host, host::Database& db) : host_(host), db_(db) {}

    bool tableMatches(const TableDef& table) const override;
    bool hasResource(ResourceKind kind, const std::wstring& name) const override;

    // By the extension of `path` (case-sensitive): a drawing (".dwg", ".dwt", ".dxf") gives every
    // kind asked; ".lin" linetypes, ".mln" multiline styles, ".pat" patterns, each only when its
    // kind is asked. Names are recorded in `loaded` as the import brings them.
    bool importResources(const std::wstring& path, ResourceKinds kinds, const ResourceNames& missing,
                         ResourceNames& loaded) override;

    // Adds the folder of `path` to the support path unless the path holds it already (as text).
    bool registerShapeFile(const std::wstring& path) override;

private:
    bool importLinetypeFile(const std::wstring& path, const std::vector<std::wstring>& missing,
                            std::vector<std::wstring>& loaded);
    void importMlineFile(const std::wstring& path, const std::vector<std::wstring>& missing,
                         std::vector<std::wstring>& loaded);
    void importPatternFile(const std::wstring& path, const std::vector<std::wstring>& missing,
                           std::vector<std::wstring>& loaded);
    bool importDrawing(const std::wstring& path, ResourceKinds kinds, const ResourceNames& missing, ResourceNames& loaded);

    host::Host& host_;
    host::Database& db_;
};

}  // namespace veltarn
