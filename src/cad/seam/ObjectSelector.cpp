#include "cad/seam/ObjectSelector.h"

#include <algorithm>
#include <functional>
#include <unordered_map>
#include <unordered_set>

#include "cad/db/EntityProperties.h"
#include "cad/db/SymbolTables.h"
#include "cad/seam/EntityExtents.h"
#include "cad/seam/ValueConversion.h"
#include "host/Format.h"
#include "host/LowerCase.h"

namespace veltarn::seam {
namespace {

using host::PromptStatus;

bool isWord(const std::wstring& typed, const wchar_t* shortForm, const wchar_t* longForm) {
    return typed == shortForm || typed == longForm;
}

// Whether an entity's layer has a state, each layer looked up once: "all" of a large drawing asks
// for the same few layers a million times. An entity on a layer the table lacks has none.
class LayerStates {
public:
    LayerStates(const db::Database& db, std::function<bool(const db::Layer&)> state) : db_(db), state_(std::move(state)) {}

    bool of(db::Handle entity) {
        std::optional<std::string> name = db::entityLayer(db_, entity);
        if (!name) name = db::commonProperties(db_.tags(entity)).layer;
        auto known = byName_.find(*name);
        if (known == byName_.end()) {
            auto layer = db::readLayer(db_, *name);
            known = byName_.emplace(*name, layer && state_(*layer)).first;
        }
        return known->second;
    }

private:
    const db::Database& db_;
    std::function<bool(const db::Layer&)> state_;
    std::unordered_map<std::string, bool> byName_;
};

}  // namespace

std::vector<db::Handle> ObjectSelector::visibleEntities(const WorkbenchDatabase& drawing) const {
    const db::Database& db = drawing.raw();
    std::vector<db::Handle> out;
    LayerStates hidden(db, [](const db::Layer& layer) { return layer.off || layer.frozen(); });
    for (db::Handle h : db.entitiesOf(db.modelSpace()))
        if (!hidden.of(h)) out.push_back(h);
    return out;
}

std::vector<db::Handle> ObjectSelector::inBox(const WorkbenchDatabase& drawing, host::Point3d a, host::Point3d b,
                                              BoxMode mode) const {
    const Extents box{std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)};
    std::vector<db::Handle> out;
    for (db::Handle h : visibleEntities(drawing)) {
        auto extents = entityExtents(drawing.raw().tags(h));
        if (!extents) continue;
        if (mode == BoxMode::kWindow ? extents->inside(box) : extents->overlaps(box)) out.push_back(h);
    }
    return out;
}

bool ObjectSelector::askCorners(const std::wstring& first, host::Point3d& a, host::Point3d& b, PromptStatus& status) {
    if (!first.empty()) {
        status = commandLine_.getPoint(first, nullptr, a);
        if (status != PromptStatus::kNormal) return false;
    }
    status = commandLine_.getPoint(L"Specify opposite corner: ", &a, b);
    return status == PromptStatus::kNormal;
}

PromptStatus ObjectSelector::select(host::SelectionMode mode, std::vector<host::ObjectId>& ids) {
    WorkbenchDatabase* drawing = drawing_ ? drawing_() : nullptr;
    if (!drawing) {
        commandLine_.print(L"Object selection needs a drawing.\n");
        return PromptStatus::kError;
    }
    const db::Database& db = drawing->raw();
    if (mode == host::SelectionMode::kImplied) {
        const auto pickFirst = commandLine_.pickFirst();
        ids.insert(ids.end(), pickFirst.begin(), pickFirst.end());
        return PromptStatus::kNormal;
    }
    if (mode == host::SelectionMode::kAll) {
        for (db::Handle h : db.entitiesOf(db.modelSpace())) ids.push_back({h});
        return PromptStatus::kNormal;
    }

    std::vector<host::ObjectId> chosen;
    std::unordered_set<db::Handle> in;
    while (true) {
        std::wstring answer;
        const PromptStatus status = commandLine_.getString(L"Select objects: ", false, answer);
        if (status != PromptStatus::kNormal) return status;
        if (answer.empty()) break;
        const std::wstring typed = host::toLower(answer);
        std::vector<db::Handle> found;
        host::Point3d a, b;
        PromptStatus cornerStatus = PromptStatus::kNormal;
        if (typed == L"all") {
            // Every entity that is not on a frozen layer, also those on layers turned off.
            LayerStates frozen(db, [](const db::Layer& layer) { return layer.frozen(); });
            for (db::Handle h : db.entitiesOf(db.modelSpace()))
                if (!frozen.of(h)) found.push_back(h);
        } else if (isWord(typed, L"l", L"last")) {
            const auto visible = visibleEntities(*drawing);
            if (!visible.empty()) found.push_back(visible.back());
        } else if (isWord(typed, L"p", L"previous")) {
            for (host::ObjectId id : previous_)
                if (db.exists(id.handle)) found.push_back(id.handle);
        } else if (isWord(typed, L"w", L"window") || isWord(typed, L"c", L"crossing")) {
            if (!askCorners(L"Specify first corner: ", a, b, cornerStatus)) {
                if (cornerStatus == PromptStatus::kNone) continue;
                return cornerStatus;
            }
            found = inBox(*drawing, a, b, typed[0] == L'w' ? BoxMode::kWindow : BoxMode::kCrossing);
        } else if (auto corner = editor::SystemVariableTable::parse(host::VariableType::kPoint3d, answer)) {
            // A point starts a box: drawn to the right it is a window, to the left a crossing.
            a = corner->point;
            if (!askCorners({}, a, b, cornerStatus)) {
                if (cornerStatus == PromptStatus::kNone) continue;
                return cornerStatus;
            }
            found = inBox(*drawing, a, b, b.x >= a.x ? BoxMode::kWindow : BoxMode::kCrossing);
        } else if (auto handle = db::parseHandle(narrow(answer));
                   handle && db.exists(*handle) && db.blockOf(*handle) == db.modelSpace()) {
            found.push_back(*handle);
        } else {
            commandLine_.print(L"*Invalid selection*\n");
            commandLine_.print(L"Expects a point or Window/Crossing/Last/ALL/Previous or an entity handle\n");
            continue;
        }
        int added = 0, duplicates = 0;
        for (db::Handle h : found) {
            if (in.insert(h).second) {
                chosen.push_back({h});
                ++added;
            } else {
                ++duplicates;
            }
        }
        const int count = added + duplicates;
        const bool first = static_cast<int>(chosen.size()) == added;
        if (duplicates > 0)
            commandLine_.print(host::format(L"%i found (%i duplicate), %i total\n", count, duplicates, static_cast<int>(chosen.size())));
        else if (first)
            commandLine_.print(host::format(L"%i found\n", count));
        else
            commandLine_.print(host::format(L"%i found, %i total\n", count, static_cast<int>(chosen.size())));
    }
    previous_ = chosen;
    ids.insert(ids.end(), chosen.begin(), chosen.end());
    return PromptStatus::kNormal;
}

}  // namespace veltarn::seam
