// MULTILEADER (also spelled MLEADER) geometry: the content (MTEXT or a block), the leaders and their
// lines, read from and written into the entity's tags. Everything is in the CONTEXT_DATA group of
// the AcDbMLeader subclass:
//   300 CONTEXT_DATA{  40 scale, 10 content base point, 41 text height, 140 arrow size, 145 gap
//     290 has text: 304 contents, 12 location, 13 direction, 171 attachment ...
//     296 has block: 341 block record, 15 position, 16 scale, 46 rotation, 47 matrix ...
//     110 plane origin, 111, 112, 297
//     302 LEADER{  10 last leader line point, 11 dogleg direction, 90 index, 40 dogleg length
//       304 LEADER_LINE{  10 vertex ..., 91 index  305 }
//     303 }
//   301 }
// followed by the entity's own settings (style 340, content type 172, block 344, ...).
#pragma once

#include "cad/db/Database.h"

#include <string>
#include <vector>

namespace veltarn::db {

struct Multileader {
    enum class Content : std::uint8_t { None, Mtext, Block };

    struct Line {
        std::vector<Point3> vertices;  // from the arrow head on; the leader's connection point follows
        int index = -1;                // 91; -1: a new line, numbered when written
        bool operator==(const Line&) const = default;
    };
    struct Leader {
        Point3 connection;                // 10: where the lines end and the dogleg starts
        Point3 doglegDirection{1, 0, 0};  // 11: towards the content
        double doglegLength = 0;          // 40
        int index = -1;                   // 90; -1: a new leader, numbered when written
        std::vector<Line> lines;
        bool operator==(const Leader&) const = default;
    };

    Content content = Content::None;
    // The context's own values.
    double scale = 1;       // 40 (mirrored in the entity's 45)
    Point3 basePoint;       // 10
    double textHeight = 0;  // 41, already scaled
    double arrowSize = 0;   // 140 (mirrored in the entity's 42)
    double landingGap = 0;  // 145
    Point3 planeOrigin;     // 110
    // MTEXT content.
    std::string text;               // 304, MTEXT codes and all
    Point3 textLocation;            // 12
    Point3 textDirection{1, 0, 0};  // 13
    int textAttachment = 1;         // 171: 1 left, 2 center, 3 right
    // Block content.
    Handle block = kNoHandle;    // 341, the block record (mirrored in the entity's 344)
    Point3 blockPosition;        // 15
    Point3 blockScale{1, 1, 1};  // 16 (mirrored in the entity's 10)
    double blockRotation = 0;    // 46, radians (mirrored in the entity's 43)

    std::vector<Leader> leaders;

    bool operator==(const Multileader&) const = default;
};

// The geometry of a MULTILEADER or MLEADER. Fails, naming the fault, for other kinds and for tags
// whose groups do not close, nest where they may not, or hold a number that does not read.
Result<Multileader> multileader(const TagList& tags);

// Writes `value` into the tags: only the values that differ from what the tags hold are replaced,
// so what is not modelled stays as it is and an unchanged value leaves the tags unchanged.
// Leaders and lines are matched by index: an existing group keeps its place in the value's order
// and its other tags; a group whose index the value lacks is removed; a new one (index -1 or an
// index not found, and every line of a new leader) copies the layout of the first existing one
// without its breaks, or the defaults, and takes the next index above all others. A change of
// content kind replaces the content's group with defaults (a new block's transformation matrix is
// the identity, as writers leave it); the other kind's values are not written. Fails without a
// change on tags `multileader` refuses, on a block content without block, a number that is not
// finite or a text holding a line break.
Result<void> setMultileader(TagList& tags, const Multileader& value);

// Moves every point of the value by `offset` (directions, sizes and indices stay).
void moveMultileader(Multileader& value, const Point3& offset);

// A new MTEXT multileader of the drawing's "Standard" multileader style, with the style's sizes:
// the text at `textLocation` (its top left corner), one leader line through `vertices` (from the
// arrow head on) landing on the text's left side. `height` 0 takes the style's text height.
// Append it with Database::appendEntity (which gives a drawing that had no multileader its
// CLASSES entry). Fails for R12 drawings and drawings without that style.
Result<TagList> newMultileader(const Database& db, const Point3& textLocation, double height, std::string_view text,
                               const std::vector<Point3>& vertices);

}  // namespace veltarn::db
