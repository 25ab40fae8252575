// What the module needs to know of a block definition before it inserts a reference to it.
#pragma once

#include <string>
#include <vector>

#include "host/ObjectId.h"

namespace veltarn::host {

struct AttributeDefinitionInfo {
    std::wstring tag;
    std::wstring prompt;
    std::wstring defaultValue;
};

struct BlockInfo {
    ObjectId id;
    std::wstring name;
    bool anonymous = false;     // names starting with "*"
    bool isLayout = false;      // the block of model space or of a layout
    bool uniformScaling = false;  // references may only be scaled alike in X, Y and Z
    // The attribute definitions that ask for a value on insertion (constant ones left out).
    std::vector<AttributeDefinitionInfo> attributes;
};

}  // namespace veltarn::host
