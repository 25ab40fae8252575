// The named collections of a drawing whose records the module looks up, lists and copies.
#pragma once

namespace veltarn::host {

// Blocks, dimension styles, layers, linetypes and text styles are the drawing's symbol tables;
// layouts and multileader and multiline styles live in named dictionaries of the drawing, but the
// module treats all eight alike: records with unique names (compared without regard to case).
enum class SymbolTable {
    kBlock,
    kDimensionStyle,
    kLayer,
    kLayout,
    kLinetype,
    kMLeaderStyle,
    kMlineStyle,
    kTextStyle,
};

}  // namespace veltarn::host
