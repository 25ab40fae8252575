// Linetype definition files (".lin"): a header line "*NAME[,description]" followed by a pattern
// line "A,dash,dash,...". A positive length is a dash, a negative one a gap, 0 a dot; an element
// in square brackets puts a text or a shape on the dash before it:
//   ["TEXT",STYLE,S=scale,R=rotation|A=rotation|U=rotation,X=offset,Y=offset]
//   [SHAPE,file.shx,S=...,R=...,X=...,Y=...]
// ";" starts a comment. Definitions are read one by one: a broken one is kept with its error, so
// that it fails only when it is asked for and the others of the file still load.
#pragma once

#include "cad/support/SupportText.h"

#include <string>
#include <vector>

namespace veltarn::support {

// What an element draws beside its dash.
enum class LinetypeShape { None, Text, Shape };

struct LinetypeElement {
    double length = 0;  // > 0 dash, < 0 gap, 0 dot
    LinetypeShape shape = LinetypeShape::None;
    std::string text;       // the text, or the shape's name
    std::string styleName;  // the text style, or the shape file
    double scale = 1;
    double rotation = 0;    // degrees
    bool absoluteRotation = false;  // "A=": fixed to the drawing, not turning with the line
    bool uprightRotation = false;   // "U=": turned to read from below or the right
    double offsetX = 0, offsetY = 0;
};

struct LinetypeDefinition {
    std::string name;
    std::string description;
    std::vector<LinetypeElement> elements;
    std::size_t line = 0;  // index of the header line in the file
    std::string error;     // empty when the definition is good; else "file:line: why"

    // Sum of the absolute lengths: the length of one repetition.
    double patternLength() const;
};

// Every definition of the file, in file order. Text outside any definition is an error of the file.
Result<std::vector<LinetypeDefinition>> parseLinetypes(const SupportText& file);

}  // namespace veltarn::support
