#include "classifier/DrawingResources.h"

#include "classifier/DrawingTables.h"
#include "classifier/ResourcePath.h"
#include "classifier/SupportFileText.h"
#include "classifier/UserPatternFiles.h"
#include "host/LowerCase.h"
#include "base/RegularFile.h"
#include "host/Utf8.h"

#include <algorithm>
#include <cstdio>
#include <set>

namespace veltarn {
namespace {

using host::SymbolTable;

// Drawing kinds in the order they are copied, with the table or dictionary each one fills.
constexpr std::pair<ResourceKind, SymbolTable> kDrawingKinds[] = {
    {ResourceKind::Block, SymbolTable::kBlock},
    {ResourceKind::DimensionStyle, SymbolTable::kDimensionStyle},
    {ResourceKind::Layer, SymbolTable::kLayer},
    {ResourceKind::Layout, SymbolTable::kLayout},
    {ResourceKind::Linetype, SymbolTable::kLinetype},
    {ResourceKind::MleaderStyle, SymbolTable::kMLeaderStyle},
    {ResourceKind::MlineStyle, SymbolTable::kMlineStyle},
    {ResourceKind::TextStyle, SymbolTable::kTextStyle},
};

std::optional<SymbolTable> tableOf(ResourceKind kind) {
    for (const auto& [k, table] : kDrawingKinds)
        if (k == kind) return table;
    return std::nullopt;
}

const std::vector<std::wstring>& namesOf(const ResourceNames& names, ResourceKind kind) {
    static const std::vector<std::wstring> none;
    auto found = names.find(kind);
    return found == names.end() ? none : found->second;
}

bool contains(const std::vector<std::wstring>& names, const std::wstring& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

// A regular file that opens; a FIFO would block a plain open, a device would read for ever.
bool canOpen(const std::wstring& path) { return checkRegularFile(host::toUtf8(path)).ok(); }

std::wstring folderOf(const std::wstring& path) {
    std::size_t separator = path.find_last_of(L"/\\");
    return separator == std::wstring::npos ? std::wstring() : path.substr(0, separator);
}

}  // namespace

bool DrawingResources::tableMatches(const TableDef& table) const {
    return matchesDrawingTable(db_, table, &host_.documents());
}

bool DrawingResources::hasResource(ResourceKind kind, const std::wstring& name) const {
    if (kind == ResourceKind::Pattern) return db_.hasHatchPattern(name);
    auto table = tableOf(kind);
    return table && db_.hasSymbol(*table, name);
}

bool DrawingResources::importResources(const std::wstring& path, ResourceKinds kinds, const ResourceNames& missing,
                                       ResourceNames& loaded) {
    if (kinds == 0 || !canOpen(path)) return false;
    if (isDrawingFile(path)) return importDrawing(path, kinds, missing, loaded);
    auto wants = [&](ResourceKind kind) { return (kinds & bit(kind)) != 0; };
    if (hasExtension(path, L".lin") && wants(ResourceKind::Linetype)) {
        return importLinetypeFile(path, namesOf(missing, ResourceKind::Linetype), loaded[ResourceKind::Linetype]);
    }
    if (hasExtension(path, L".mln") && wants(ResourceKind::MlineStyle)) {
        importMlineFile(path, namesOf(missing, ResourceKind::MlineStyle), loaded[ResourceKind::MlineStyle]);
        return true;
    }
    if (hasExtension(path, L".pat") && wants(ResourceKind::Pattern)) {
        importPatternFile(path, namesOf(missing, ResourceKind::Pattern), loaded[ResourceKind::Pattern]);
        return true;
    }
    return false;
}

bool DrawingResources::importLinetypeFile(const std::wstring& path, const std::vector<std::wstring>& missing,
                                          std::vector<std::wstring>& loaded) {
    if (!missing.empty()) {
        for (const auto& name : missing)
            if (db_.loadLinetypes(name, path)) loaded.push_back(name);
        return true;
    }
    if (!db_.loadLinetypes(L"?*", path)) return false;
    std::vector<std::wstring> lines;
    if (readTextLines(path, lines)) {
        for (const auto& name : definedNames(lines)) loaded.push_back(host::toLower(name));
    }
    return true;
}

void DrawingResources::importMlineFile(const std::wstring& path, const std::vector<std::wstring>& missing,
                                       std::vector<std::wstring>& loaded) {
    for (const auto& name : missing)
        if (db_.loadMlineStyle(name, path)) loaded.push_back(name);
}

void DrawingResources::importPatternFile(const std::wstring& path, const std::vector<std::wstring>& missing,
                                         std::vector<std::wstring>& loaded) {
    if (missing.empty()) return;
    std::wstring folder = userSupportFolder(host_.environment().supportPath());
    if (folder.empty()) return;  // the reader warns for each pattern still missing
    std::vector<std::wstring> lines;
    if (!readTextLines(path, lines)) return;
    std::map<std::wstring, std::wstring> definitions = patternDefinitions(lines);
    std::vector<std::wstring> taken;
    for (const auto& name : missing) {
        auto found = definitions.find(host::toLower(name));
        if (found == definitions.end()) continue;
        taken.push_back(found->second);
        loaded.push_back(name);
    }
    appendPatterns(folder + L"/acad.pat", taken);
    appendPatterns(folder + L"/acadiso.pat", taken);
}

bool DrawingResources::importDrawing(const std::wstring& path, ResourceKinds kinds, const ResourceNames& missing,
                                     ResourceNames& loaded) {
    std::unique_ptr<host::Database> side = host_.readDrawing(path);
    if (!side) return false;
    for (const auto& [kind, table] : kDrawingKinds) {
        if ((kinds & bit(kind)) == 0) continue;
        const std::vector<std::wstring>& wanted = namesOf(missing, kind);
        std::vector<std::wstring>& names = loaded[kind];
        std::set<std::wstring> recorded;
        auto record = [&](const std::wstring& name) {
            if (recorded.insert(host::toLower(name)).second) names.push_back(name);
        };
        std::set<std::wstring> present;  // layouts: those of this drawing are never taken
        if (kind == ResourceKind::Layout) {
            for (const auto& [name, id] : db_.symbols(table)) present.insert(host::toLower(name));
        }
        if (kind == ResourceKind::TextStyle) {
            for (const auto& name : wanted)
                if (side->hasSymbol(table, name)) record(name);
        }

        std::vector<host::ObjectId> ids;
        std::vector<std::wstring> taken;
        for (const auto& [name, id] : side->symbols(table)) {
            std::wstring lower = host::toLower(name);
            if (kind == ResourceKind::Block && !name.empty() && name.front() == L'*') continue;  // anonymous, layouts
            if (kind == ResourceKind::Layout) {
                if (present.count(lower)) continue;
            } else if (!wanted.empty() && !contains(wanted, lower)) {
                continue;
            }
            ids.push_back(id);
            taken.push_back(name);
        }
        if (ids.empty()) continue;
        // Records this drawing has already stay as they are: the copy leaves them alone.
        if (!db_.copyRecordsFrom(*side, ids, table)) return false;
        for (const auto& name : taken) record(name);
    }
    return true;
}

bool DrawingResources::registerShapeFile(const std::wstring& path) {
    if (!canOpen(path)) return false;
    host::Environment& environment = host_.environment();
    std::wstring supportPath = environment.supportPath();
    std::wstring folder = folderOf(path);
    if (supportPath.find(folder) != std::wstring::npos) return true;
    if (!supportPath.empty() && supportPath.back() != L';') supportPath += L';';
    supportPath += folder + L';';
    return environment.setSupportPath(supportPath);
}

}  // namespace veltarn
