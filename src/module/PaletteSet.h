// The palette sets as the module's lifecycle sees them: things to save and then destroy.
#pragma once

#include <string>

namespace veltarn {

// A docked palette set. Closing one by the user only hides it; destroyWindow() ends it.
class PaletteSet {
public:
    virtual ~PaletteSet() = default;
    virtual void destroyWindow() = 0;
};

// The classification set, with its "Recent" and "Favorites" pages, which keep lists beside the
// classifier file.
class ClassificationPaletteSet : public PaletteSet {
public:
    virtual bool hasRecentPage() const = 0;
    virtual bool hasFavoritesPage() const = 0;
    // Write the page's list to `path` ("%s\t%i\n" lines); a file that cannot be written is reported
    // by the page itself.
    virtual void saveRecent(const std::wstring& path) = 0;
    virtual void saveFavorites(const std::wstring& path) = 0;
};

}  // namespace veltarn
