// -LAYER: layers by typed options: ?, Make, Set, New, ON, OFF, Freeze, Thaw, LOck, Unlock.
#include "cad/commands/HostSession.h"

#include <cwctype>

#include "cad/db/SymbolTables.h"
#include "cad/seam/ValueConversion.h"
#include "host/CommandFlags.h"
#include "host/Format.h"
#include "base/Wildcard.h"
#include "host/LowerCase.h"

namespace veltarn::cad {
namespace {

using host::PromptStatus;


// A comma-separated list, blanks around each name dropped.
std::vector<std::wstring> splitNames(const std::wstring& list) {
    std::vector<std::wstring> names;
    std::size_t start = 0;
    while (start <= list.size()) {
        std::size_t comma = list.find(L',', start);
        if (comma == std::wstring::npos) comma = list.size();
        std::wstring name = list.substr(start, comma - start);
        while (!name.empty() && name.front() == L' ') name.erase(0, 1);
        while (!name.empty() && name.back() == L' ') name.pop_back();
        if (!name.empty()) names.push_back(name);
        start = comma + 1;
    }
    return names;
}

class LayerCommand {
public:
    explicit LayerCommand(HostSession& session)
        : session_(session), editor_(session.host.editor()), drawing_(*session.host.currentDrawing()) {}

    void run() {
        const std::vector<std::wstring> options = {L"?", L"Make", L"Set", L"New", L"ON", L"OFF", L"Freeze", L"Thaw", L"LOck", L"Unlock"};
        while (!cancelled_) {
            std::wstring option;
            const PromptStatus status =
                editor_.getKeyword(L"Enter an option [?/Make/Set/New/ON/OFF/Freeze/Thaw/LOck/Unlock]: ", options, option);
            if (status != PromptStatus::kNormal) return;  // Enter ends the command
            if (option == L"?") list();
            else if (option == L"Make") make();
            else if (option == L"Set") setCurrent();
            else if (option == L"New") create();
            else if (option == L"ON") change(L"turn on", [](db::Layer& l) { l.off = false; });
            else if (option == L"OFF") change(L"turn off", [](db::Layer& l) { l.off = true; });
            else if (option == L"Freeze") change(L"freeze", [](db::Layer& l) { l.flags |= db::kLayerFrozen; }, true);
            else if (option == L"Thaw") change(L"thaw", [](db::Layer& l) { l.flags &= ~db::kLayerFrozen; });
            else if (option == L"LOck") change(L"lock", [](db::Layer& l) { l.flags |= db::kLayerLocked; });
            else if (option == L"Unlock") change(L"unlock", [](db::Layer& l) { l.flags &= ~db::kLayerLocked; });
        }
    }

private:
    std::wstring currentLayer() const {
        auto value = session_.host.systemVariables().get(L"CLAYER");
        return value ? value->text : L"0";
    }

    bool ask(const std::wstring& prompt, std::wstring& answer) {
        // A space ends a name, as scripts that drive layers expect ("-LAYER N Roads S Roads ").
        const PromptStatus status = editor_.getString(prompt, false, answer);
        // A cancel ends the whole command, not just the option.
        if (status != PromptStatus::kNormal) cancelled_ = true;
        return status == PromptStatus::kNormal && !answer.empty();
    }

    void list() {
        editor_.print(L"Layer name                       State\n");
        for (db::Handle record : drawing_.raw().records("LAYER")) {
            auto layer = db::readLayer(drawing_.raw(), record);
            if (!layer) continue;
            std::wstring state = layer->off ? L"Off" : L"On";
            if (layer->frozen()) state += L" Frozen";
            if (layer->locked()) state += L" Locked";
            editor_.print(host::format(L"%-32s %s\n", seam::wide(layer->name), state));
        }
    }

    bool createLayer(const std::wstring& name) {
        db::Database& db = drawing_.raw();
        if (db::readLayer(db, seam::narrow(name))) return true;
        if (name.find_first_of(L"<>/\\\":;?*|=`") != std::wstring::npos) {
            editor_.print(L"Invalid layer name \"" + name + L"\".\n");
            return false;
        }
        db::Layer layer;
        layer.name = seam::narrow(name);
        if (auto written = db::writeLayer(db, layer); !written) {
            editor_.print(L"Error: " + seam::wide(written.message()) + L"\n");
            return false;
        }
        return true;
    }

    void create() {
        std::wstring list;
        if (!ask(L"Enter name list for new layer(s): ", list)) return;
        for (const std::wstring& name : splitNames(list)) createLayer(name);
    }

    void make() {
        std::wstring name;
        if (!ask(L"Enter name for new layer (becomes the current layer) <" + currentLayer() + L">: ", name)) return;
        if (createLayer(name)) makeCurrent(name);
    }

    void setCurrent() {
        std::wstring name;
        if (!ask(L"Enter layer name to make current: ", name)) return;
        makeCurrent(name);
    }

    void makeCurrent(const std::wstring& typed) {
        auto layer = db::readLayer(drawing_.raw(), seam::narrow(typed));
        if (!layer) {
            editor_.print(L"Cannot find layer \"" + typed + L"\".\n");
            return;
        }
        if (layer->frozen()) {
            editor_.print(L"Cannot set a frozen layer current.\n");
            return;
        }
        session_.host.systemVariables().set(L"CLAYER", host::VariableValue::ofString(seam::wide(layer->name)));
    }

    template <class Change>
    void change(const std::wstring& verb, Change apply, bool notCurrent = false) {
        std::wstring list;
        if (!ask(L"Enter name list of layer(s) to " + verb + L": ", list)) return;
        db::Database& db = drawing_.raw();
        int matched = 0;
        for (const std::wstring& pattern : splitNames(list)) {
            for (db::Handle record : db.records("LAYER")) {
                auto layer = db::readLayer(db, record);
                if (!layer || !wildcardMatch(pattern, seam::wide(layer->name))) continue;
                ++matched;
                if (notCurrent && host::equalsIgnoringCase(seam::wide(layer->name), currentLayer())) {
                    editor_.print(L"Cannot " + verb + L" layer \"" + seam::wide(layer->name) + L"\". It is the CURRENT layer.\n");
                    continue;
                }
                apply(*layer);
                if (auto written = db::writeLayer(db, *layer); !written)
                    editor_.print(L"Error: " + seam::wide(written.message()) + L"\n");
            }
        }
        if (matched == 0) editor_.print(L"No matching layer names found.\n");
    }

    HostSession& session_;
    host::Editor& editor_;
    seam::WorkbenchDatabase& drawing_;
    bool cancelled_ = false;
};

}  // namespace

void registerLayerCommand(HostSession& session) {
    session.host.commandStack().addCommand(kHostGroup, L"-LAYER", L"-LAYER", host::CommandFlags::kModal, [&session] {
        if (!session.host.currentDrawing()) return;
        LayerCommand(session).run();
    });
}

}  // namespace veltarn::cad
