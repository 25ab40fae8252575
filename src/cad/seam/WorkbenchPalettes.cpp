#include "cad/seam/WorkbenchPalettes.h"

namespace veltarn::seam {
namespace {

std::wstring visibleKey(const std::wstring& id) { return L"palette." + id + L".visible"; }
std::wstring stateKey(const std::wstring& id) { return L"palette." + id + L".state"; }

}  // namespace

WorkbenchPalettes::~WorkbenchPalettes() {
    // Sets still open when the session ends keep their state for the next one.
    for (auto& [id, set] : sets_) destroy(id);
}

bool WorkbenchPalettes::addFactory(std::unique_ptr<host::PaletteSetFactory> factory) {
    if (!factory) return false;
    const std::wstring id = factory->id();
    if (id.empty() || sets_.contains(id)) return false;
    sets_[id].factory = std::move(factory);
    return true;
}

void WorkbenchPalettes::removeFactory(const std::wstring& id) {
    destroy(id);
    sets_.erase(id);
}

host::PaletteContent* WorkbenchPalettes::show(const std::wstring& id) {
    auto found = sets_.find(id);
    if (found == sets_.end()) return nullptr;
    Set& set = found->second;
    if (!set.content) {
        set.content = set.factory->create();
        if (!set.content) return nullptr;
        if (auto state = settings_.setting(stateKey(id))) set.factory->restoreState(*set.content, *state);
    }
    set.visible = true;
    return set.content.get();
}

void WorkbenchPalettes::hide(const std::wstring& id) {
    if (auto found = sets_.find(id); found != sets_.end()) found->second.visible = false;
}

bool WorkbenchPalettes::isVisible(const std::wstring& id) const {
    auto found = sets_.find(id);
    return found != sets_.end() && found->second.content && found->second.visible;
}

host::PaletteContent* WorkbenchPalettes::content(const std::wstring& id) {
    auto found = sets_.find(id);
    return found == sets_.end() ? nullptr : found->second.content.get();
}

void WorkbenchPalettes::destroy(const std::wstring& id) {
    auto found = sets_.find(id);
    if (found == sets_.end() || !found->second.content) return;
    Set& set = found->second;
    // A state the settings cannot hold (a line end in it) is not kept; the set still ends.
    (void)settings_.setSetting(stateKey(id), set.factory->saveState(*set.content));
    (void)settings_.setSetting(visibleKey(id), set.visible ? L"1" : L"0");
    set.content.reset();
    set.visible = false;
}

bool WorkbenchPalettes::wasVisible(const std::wstring& id) const {
    auto value = settings_.setting(visibleKey(id));
    return value && *value == L"1";
}

}  // namespace veltarn::seam
