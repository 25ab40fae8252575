// The palette sets as the module's commands see them: pages to hand a new classifier, lists to
// load, refresh and save beside the classifier file, windows to destroy at the end.
#pragma once

#include <string>

namespace veltarn {

class Classifier;

// A docked palette set. Closing one by the user only hides it; destroyWindow() ends it.
class PaletteSet {
public:
    virtual ~PaletteSet() = default;
    virtual void destroyWindow() = 0;
};

// The classification set: the class tree page, and the "Recent" and "Favorites" pages, which
// keep lists beside the classifier file.
class ClassificationPaletteSet : public PaletteSet {
public:
    virtual bool hasClassificationPage() const = 0;
    virtual bool hasRecentPage() const = 0;
    virtual bool hasFavoritesPage() const = 0;

    // The class tree page shows `classifier` from now on (null: nothing); it rebuilds its tree.
    virtual void setClassifier(const Classifier* classifier) = 0;

    // Replace the page's list with the one in `path` ("%s\t%i\n" lines) and show it; a missing
    // file gives an empty list.
    virtual void loadRecent(const std::wstring& path) = 0;
    virtual void loadFavorites(const std::wstring& path) = 0;
    // Puts the class `name` at the top of the recent list.
    virtual void addRecent(const std::wstring& name) = 0;
    // Show the page's list again, against the classifier in use.
    virtual void refreshRecent() = 0;
    virtual void refreshFavorites() = 0;
    // Write the page's list to `path`; a file that cannot be written is reported by the page.
    virtual void saveRecent(const std::wstring& path) = 0;
    virtual void saveFavorites(const std::wstring& path) = 0;
};

// The properties set: a grid of the field values of the selected objects. It does not own the
// classifier it reads.
class PropertiesPaletteSet : public PaletteSet {
public:
    virtual void setClassifier(const Classifier* classifier) = 0;
};

}  // namespace veltarn
