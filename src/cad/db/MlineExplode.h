// Explode of a multiline into the lines and arcs it shows, each with the look of its element.
#pragma once

#include "cad/db/Database.h"

#include <vector>

namespace veltarn::db {

// The pieces of an MLINE (tags as Database::appendEntity takes them): per segment one LINE for each
// element of its style, broken where the multiline's element breaks say; the miters and the start
// and end caps (square, outer round, inner arcs) its style shows and the multiline does not
// suppress. An element's colour and linetype go to its pieces; ByBlock ones take the multiline's.
// The fill is not kept, as CAD programs explode it. Fails for fewer than two vertices.
Result<std::vector<TagList>> explodeMline(const Database& db, const TagList& tags);

}  // namespace veltarn::db
