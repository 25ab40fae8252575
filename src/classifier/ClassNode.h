// One group of the class tree ("class" ... "/class").
#pragma once

#include <string>
#include <vector>

namespace veltarn {

struct ClassNode {
    // As written, trimmed; unique in the whole tree.
    std::wstring name;
    bool flag = false;
    // The optional last column of "class", as written.
    std::wstring text;
    // Inner classes in file order.
    std::vector<ClassNode> children;
    // Keys of the object definitions directly inside this class, in file order.
    std::vector<std::wstring> members;

    // Every node below this one (not this one), parents before children, in file order.
    template <class F>
    void forEachDescendant(F&& visit) const {
        for (const auto& child : children) {
            visit(child);
            child.forEachDescendant(visit);
        }
    }
};

}  // namespace veltarn
