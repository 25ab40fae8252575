// The entity properties the module reads and sets, with the type of value each one takes.
#pragma once

#include <string>
#include <variant>

#include "host/Color.h"
#include "host/ObjectId.h"
#include "host/Point3d.h"

namespace veltarn::host {

// A property value; which alternative a property takes is written beside it below.
using PropertyValue = std::variant<std::monostate, bool, int, double, std::wstring, Point3d, Color, ObjectId>;

// Angles are in radians except where a line says degrees (those follow the classifier's units).
enum class EntityProperty {
    // every entity
    kLayer,            // wstring: layer name; setting it also sets the layer of sub-entities
                       // (attributes); refused for a layer the drawing lacks
    kColor,            // Color; setting it also colours sub-entities
    kLinetype,         // wstring: linetype name ("ByLayer", "ByBlock" or a linetype of the drawing)
    kLinetypeScale,    // double
    kLineWeight,       // int: hundredths of a millimetre; -1 ByLayer, -2 ByBlock, -3 Default

    // geometry
    kPosition,         // Point3d: point, text insertion, mtext location, block insertion point
    kCenter,           // Point3d: circle, arc, ellipse
    kRadius,           // double: circle, arc
    kNormal,           // Point3d: extrusion direction (circle, polyline, hatch, text, ...)
    kElevation,        // double: polyline, hatch
    kClosed,           // bool: polyline, 3D polyline, spline, multiline
    kConstantWidth,    // double: polyline (setting it gives every segment this width)

    // styles by name
    kDimensionStyle,   // wstring: dimension
    kMLeaderStyle,     // wstring: multileader (a style of the drawing's multileader styles)
    kMlineStyle,       // wstring: multiline
    kTextStyle,        // wstring: text, mtext

    // multiline
    kMlineJustification,  // int: 0 top, 1 zero, 2 bottom
    kMlineScale,          // double

    // hatch and multi-polygon
    kPatternName,      // wstring: hatch pattern name, predefined or custom
    kPatternAngle,     // double, degrees
    kPatternScale,     // double
    kPatternColor,     // Color: multi-polygon pattern colour
    kBackgroundColor,  // Color: hatch background; index -1 is none
    kAssociative,      // bool: hatch follows its boundary
    kHatchBoundary,    // ObjectId, set only: the closed polyline becomes the outer loop and the
                       // hatch is evaluated; refused for an entity that is not a closed polyline

    // text and mtext
    kTextString,          // wstring: text, or mtext contents
    kTextHeight,          // double
    kRotation,            // double, radians: text, mtext, block reference
    kTextJustification,   // int: 0 left ... 14 bottomright, the codes of the classifier's words
    kHorizontalMode,      // int, text: 0 left, 1 center, 2 right, 3 aligned, 4 middle, 5 fit
    kVerticalMode,        // int, text: 0 baseline, 1 bottom, 2 middle, 3 top
    kAlignmentPoint,      // Point3d, text
    kAttachment,          // int, mtext: 1 top left ... 9 bottom right, and the module's 10 to 24
    kColumnGutter,        // double, mtext
    kDynamicColumnWidth,  // double, mtext, set only: dynamic columns of this width, automatic
                          // height, the gutter kept

    // block reference
    kBlockName,        // wstring: name of the referenced block (set: the block must exist)
    kScaleFactors,     // Point3d: X, Y and Z scale
};

}  // namespace veltarn::host
