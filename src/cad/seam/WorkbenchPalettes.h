// The workbench's palette sets: made by the module's factories, their state kept in the user's
// settings. The command line draws none of them; the desktop window docks what they make.
#pragma once

#include <map>
#include <memory>

#include "host/Environment.h"
#include "host/Palettes.h"

namespace veltarn::seam {

class WorkbenchPalettes : public host::Palettes {
public:
    // Settings are read and written through `settings`, under "palette.<id>.visible" and
    // "palette.<id>.state".
    explicit WorkbenchPalettes(host::Environment& settings) : settings_(settings) {}
    ~WorkbenchPalettes() override;

    bool addFactory(std::unique_ptr<host::PaletteSetFactory> factory) override;
    void removeFactory(const std::wstring& id) override;
    host::PaletteContent* show(const std::wstring& id) override;
    void hide(const std::wstring& id) override;
    bool isVisible(const std::wstring& id) const override;
    host::PaletteContent* content(const std::wstring& id) override;
    void destroy(const std::wstring& id) override;
    bool wasVisible(const std::wstring& id) const override;

private:
    struct Set {
        std::unique_ptr<host::PaletteSetFactory> factory;
        std::unique_ptr<host::PaletteContent> content;
        bool visible = false;
    };

    host::Environment& settings_;
    std::map<std::wstring, Set> sets_;
};

}  // namespace veltarn::seam
