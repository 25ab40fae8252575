// The graphic and drawing properties of a class definition, as its "obj_prop" lines give them.
// They live beside ClassDef rather than in src/draw: the drawing engine reads class definitions,
// so draw depends on classifier and never the reverse.
#pragma once

#include "classifier/Property.h"

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace veltarn {

// One colour: a single element is a colour index (0 ByBlock, 256 ByLayer, -1 None), three
// elements are red, green and blue.
using PropertyColor = std::vector<std::int32_t>;

inline constexpr std::int32_t kColorNone = -1;
inline constexpr std::int32_t kColorByBlock = 0;
inline constexpr std::int32_t kColorByLayer = 256;

// The host's lineweight codes: hundredths of a millimetre, or one of these.
inline constexpr std::int32_t kLineWeightByLayer = -1;
inline constexpr std::int32_t kLineWeightByBlock = -2;
inline constexpr std::int32_t kLineWeightDefault = -3;

// Absent-value markers, for code that wants a plain value where a property is not set.
inline constexpr double kAbsentReal = std::numeric_limits<double>::lowest();
inline constexpr std::int8_t kAbsentSmallInteger = -128;
inline constexpr std::int32_t kAbsentLineWeight = -2147483647;
inline constexpr std::uint8_t kAbsentJustification = 254;

// Scale factors of an inserted block; "blockscale 2" is uniform.
struct BlockScale {
    double x = 1;
    double y = 1;
    double z = 1;
    bool isUniform() const { return x == y && y == z; }
    bool operator==(const BlockScale&) const = default;
};

// The host's multiline justification codes.
enum class MlineJustification : std::uint8_t { Top = 0, Zero = 1, Bottom = 2 };

// The host's single-line text alignment codes.
enum class TextJustification : std::uint8_t {
    Left = 0, Center = 1, Right = 2, Aligned = 3, Middle = 4, Fit = 5,
    TopLeft = 6, TopCenter = 7, TopRight = 8,
    MiddleLeft = 9, MiddleCenter = 10, MiddleRight = 11,
    BottomLeft = 12, BottomCenter = 13, BottomRight = 14,
};

// The host's multiline-text attachment points, numbered as the host numbers them (1 to 24).
enum class MTextAttachment : std::uint8_t {
    TopLeft = 1, TopCenter = 2, TopRight = 3,
    MiddleLeft = 4, MiddleCenter = 5, MiddleRight = 6,
    BottomLeft = 7, BottomCenter = 8, BottomRight = 9,
    BaseLeft = 10, BaseCenter = 11, BaseRight = 12,
    BaseAlign = 13, BottomAlign = 14, MiddleAlign = 15, TopAlign = 16,
    BaseFit = 17, BottomFit = 18, MiddleFit = 19, TopFit = 20,
    BaseMid = 21, BottomMid = 22, MiddleMid = 23, TopMid = 24,
};

// Names that the table marks "lower-cased" are stored lower-cased; layer, linetype and text are
// kept as written.
struct ObjectProperties {
    Property<PropertyColor> color;
    Property<std::wstring> layer;
    Property<std::wstring> linetype;
    Property<double> linetypeScale;
    Property<std::int32_t> lineWeight;
    Property<double> angle;
    Property<std::wstring> blockName;
    Property<std::int8_t> rotate;
    Property<BlockScale> blockScale;
    Property<std::wstring> circleMode;
    Property<double> circleRadius;
    Property<std::int8_t> closed;
    Property<std::wstring> dimensionMode;
    Property<std::wstring> dimensionStyle;
    Property<std::wstring> ellipseMode;
    Property<PropertyColor> backgroundColor;
    Property<std::wstring> hatchMode;
    Property<std::wstring> pattern;
    Property<double> patternAngle;
    Property<double> patternScale;
    Property<std::wstring> meshMode;
    Property<std::wstring> mleaderStyle;
    Property<MlineJustification> mlineJustification;
    Property<double> mlineScale;
    Property<std::wstring> mlineStyle;
    Property<PropertyColor> patternColor;
    // Present also means "an attachment point is given".
    Property<MTextAttachment> mtextAttachmentPoint;
    Property<double> constantWidth;
    Property<double> elevation;
    Property<double> textHeight;
    Property<TextJustification> textJustification;
    Property<std::wstring> textStyle;
    Property<std::wstring> text;
    // Drawn objects are exploded and the pieces classified instead.
    bool explode = false;

    bool operator==(const ObjectProperties&) const = default;
};

// "None", "ByBlock", "ByLayer", the index in decimal, or "(%i %i %i)"; "" for any other length.
std::wstring colorText(const PropertyColor& color);

}  // namespace veltarn
