// The in-memory form of one classifier file: the class tree, the object definitions and the
// settings and resources that go with them. Built by the reader; commands only read it.
#pragma once

#include "classifier/ClassDef.h"
#include "classifier/ClassNode.h"
#include "classifier/ResourceKind.h"
#include "classifier/VariableSetting.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace veltarn {

class Classifier {
public:
    Classifier() = default;
    explicit Classifier(std::wstring path) : path_(std::move(path)) {}

    // The full path of the file it was read from.
    const std::wstring& path() const { return path_; }
    void setPath(std::wstring path) { path_ = std::move(path); }

    // The root's children are the top-level classes; the root itself has no name.
    const ClassNode& root() const { return root_; }
    ClassNode& root() { return root_; }

    // Object definitions by key (lower-case name), in key order.
    const std::map<std::wstring, ClassDef>& objects() const { return objects_; }
    // The definition of `key` (lower case), or null.
    const ClassDef* find(std::wstring_view key) const;
    // Stores `def` under its key; false, with nothing changed, when the key is taken already.
    bool add(ClassDef def);

    // "variable" settings given outside any object definition.
    std::vector<VariableSetting>& variables() { return variables_; }
    const std::vector<VariableSetting>& variables() const { return variables_; }

    // Lower-cased path of a drawing file to the block named after it ("blockreferencefile").
    std::map<std::wstring, std::wstring>& externalBlocks() { return externalBlocks_; }
    const std::map<std::wstring, std::wstring>& externalBlocks() const { return externalBlocks_; }

    // Names brought into the drawing at load, per kind, and the drawing files they came from.
    std::map<ResourceKind, std::vector<std::wstring>>& loadedResources() { return loadedResources_; }
    const std::map<ResourceKind, std::vector<std::wstring>>& loadedResources() const { return loadedResources_; }
    std::vector<std::wstring>& resourceDrawings() { return resourceDrawings_; }
    const std::vector<std::wstring>& resourceDrawings() const { return resourceDrawings_; }

    // Every file the resource keywords named, with the kinds asked of it: where a class's missing
    // resources are fetched from later, when one is classified or drawn.
    struct ResourceFile {
        std::wstring path;
        ResourceKinds kinds = 0;
    };
    std::vector<ResourceFile>& resourceFiles() { return resourceFiles_; }
    const std::vector<ResourceFile>& resourceFiles() const { return resourceFiles_; }

    // No classes, no objects: what a failed read leaves.
    bool empty() const { return root_.children.empty() && objects_.empty(); }
    // Back to a freshly constructed classifier, path included.
    void clear() { *this = Classifier(); }

    // Class nodes of the whole tree.
    int classCount() const;
    int objectCount() const { return static_cast<int>(objects_.size()); }
    // Distinct table names (without regard to case) over all object definitions.
    int tableCount() const;

private:
    std::wstring path_;
    ClassNode root_;
    std::map<std::wstring, ClassDef> objects_;
    std::vector<VariableSetting> variables_;
    std::map<std::wstring, std::wstring> externalBlocks_;
    std::map<ResourceKind, std::vector<std::wstring>> loadedResources_;
    std::vector<std::wstring> resourceDrawings_;
    std::vector<ResourceFile> resourceFiles_;
};

}  // namespace veltarn
