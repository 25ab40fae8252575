// The module's palette sets as the host docks them, made by factories as side panels are in IDEs:
// the module registers one factory per set; the host makes the set the first time it is shown and
// keeps each set's state (shown or not, and what the set saves of itself) in the user's settings
// under the set's id, so that a later session opens it as it was left.
#pragma once

#include <memory>
#include <string>

namespace veltarn::host {

// What a factory makes: the set's pages. A front end with windows docks them; on the command line
// they exist and keep their state without being drawn.
class PaletteContent {
public:
    virtual ~PaletteContent() = default;
};

class PaletteSetFactory {
public:
    virtual ~PaletteSetFactory() = default;
    // The set's tool id ("{4E00EAC5-...}"), also its key in the settings.
    virtual std::wstring id() const = 0;
    virtual std::wstring title() const = 0;
    virtual std::unique_ptr<PaletteContent> create() = 0;
    // What the set keeps of itself between sessions (the page shown, column widths), as one line of
    // text without line ends; restoreState gets it back when the set is made again.
    virtual std::wstring saveState(const PaletteContent& /*content*/) const { return {}; }
    virtual void restoreState(PaletteContent& /*content*/, const std::wstring& /*state*/) {}
};

class Palettes {
public:
    virtual ~Palettes() = default;
    // False, and `factory` dropped, when one of the same id is registered already.
    virtual bool addFactory(std::unique_ptr<PaletteSetFactory> factory) = 0;
    // Ends the set of `id` as destroy() does, then forgets its factory.
    virtual void removeFactory(const std::wstring& id) = 0;
    // Makes the set on first use (restoring its saved state) and shows it. Its content; null for
    // an id without a factory.
    virtual PaletteContent* show(const std::wstring& id) = 0;
    virtual void hide(const std::wstring& id) = 0;
    virtual bool isVisible(const std::wstring& id) const = 0;
    // The set's content while it exists; null before it is made and after it is destroyed.
    virtual PaletteContent* content(const std::wstring& id) = 0;
    // Saves the set's state and whether it is shown, then ends it; the next show makes it afresh.
    virtual void destroy(const std::wstring& id) = 0;
    // Whether the set was shown when it was last saved, in this session or an earlier one.
    virtual bool wasVisible(const std::wstring& id) const = 0;
};

}  // namespace veltarn::host
