// Entity properties read from and written into an entity's tags: the common ones every entity has
// (layer, colour, linetype, linetype scale, lineweight) and the ones of particular kinds that
// classes set (block name and scale, closed, widths, hatch pattern, styles, text settings).
// Writers take the tags of an entity opened for write; a property the kind does not carry is
// refused (false) without a change.
#pragma once

#include "cad/db/Color.h"
#include "cad/db/Database.h"

#include <optional>
#include <string>

namespace veltarn::db {

struct CommonProperties {
    std::string layer = "0";
    Color color;
    std::string linetype = "ByLayer";
    double linetypeScale = 1;
    int lineweight = -1;  // -1 ByLayer, -2 ByBlock, -3 default, else hundredths of a millimetre
};

CommonProperties commonProperties(const TagList& tags);

// The layer commonProperties() gives, read tag by tag without decoding the object: the layer
// filter of the module's commands asks it of every object of a drawing. nullopt where the object
// is laid out unusually (no layer where one is expected); commonProperties() then decides.
std::optional<std::string> entityLayer(const Database& db, Handle entity);
void setLayer(TagList& tags, std::string_view layer);
void setColor(TagList& tags, const Color& color);
void setLinetype(TagList& tags, std::string_view linetype);
void setLinetypeScale(TagList& tags, double scale);
void setLineweight(TagList& tags, int lineweight);

// Properties held in one tag of one subclass, per entity kind.
enum class Property : std::uint8_t {
    BlockName,       // INSERT
    ScaleX, ScaleY, ScaleZ,  // INSERT
    Rotation,        // INSERT, TEXT, MTEXT (degrees; MTEXT as stored)
    ConstantWidth,   // LWPOLYLINE; POLYLINE (both default widths)
    Elevation,       // LWPOLYLINE, POLYLINE, HATCH
    PatternName,     // HATCH ("SOLID" also sets the solid-fill flag)
    PatternAngle,    // HATCH (degrees)
    PatternScale,    // HATCH
    MlineJustification, MlineScale,  // MLINE (0 top, 1 zero, 2 bottom)
    DimensionStyle,  // DIMENSION (the style's name)
    TextStyle,       // TEXT, MTEXT (the style's name)
    TextHeight,      // TEXT, MTEXT
    AttachmentPoint, // MTEXT, 1 (top left) to 9
};

std::optional<std::string> property(const TagList& tags, Property which);
std::optional<double> realProperty(const TagList& tags, Property which);
bool setProperty(TagList& tags, Property which, std::string value);
bool setRealProperty(TagList& tags, Property which, double value);

// Closed: LWPOLYLINE, POLYLINE and SPLINE flag bit 1, MLINE flag 2.
std::optional<bool> closed(const TagList& tags);
bool setClosed(TagList& tags, bool closed);

// TEXT justification in the module's numbering: 0 left, 1 center, 2 right, 3 aligned, 4 middle,
// 5 fit, 6-8 top left/center/right, 9-11 middle ..., 12-14 bottom ...
std::optional<int> textJustification(const TagList& tags);
bool setTextJustification(TagList& tags, int justification);

// The text of TEXT, ATTRIB and MTEXT (MTEXT's chunks joined).
std::optional<std::string> textContents(const TagList& tags);
bool setTextContents(TagList& tags, std::string_view text);

// Styles kept as objects: MLINE's style (name and pointer), MULTILEADER's style (pointer); the
// name must be an entry of ACAD_MLINESTYLE / ACAD_MLEADERSTYLE.
bool setMlineStyle(const Database& db, TagList& tags, std::string_view name);
std::optional<std::string> mlineStyle(const TagList& tags);
bool setMleaderStyle(const Database& db, TagList& tags, std::string_view name);
std::optional<std::string> mleaderStyle(const Database& db, const TagList& tags);

// Background colours: a hatch's (xdata HATCHBACKGROUNDCOLOR; needs the APPID record, see
// `ensureAppId`) and an MTEXT's background fill. Color::kNone removes the background.
bool setBackgroundColor(TagList& tags, const Color& color);
std::optional<Color> backgroundColor(const TagList& tags);
Result<void> ensureAppId(Database& db, std::string_view application);

}  // namespace veltarn::db
