// The features of veltarn export as CSV with a WKT geometry column, which GDAL's CSV driver reads
// as the geometry (RFC 4180: fields quoted where needed, lines ending in CR LF, UTF-8).
#pragma once

#include <string>
#include <vector>

#include "ExportFeatures.h"

namespace veltarn::app {

// A header WKT,handle,type,layer,class and then every record field any feature has, in the order
// they are first met; one line a feature. WKT: POINT, LINESTRING, MULTILINESTRING or POLYGON with
// closed rings, "Z" and three coordinates when a point lies off Z = 0, empty without an outline.
// Integers and reals are written as numbers, points as "x,y,z"; a field the feature lacks, a value
// of no type and a real that is no number are empty.
std::string geoCsv(const std::vector<ExportFeature>& features);

}  // namespace veltarn::app
