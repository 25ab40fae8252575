// The features of veltarn export as a GeoJSON FeatureCollection (RFC 7946's structure). The
// coordinates are the drawing's own units, not longitude and latitude.
#pragma once

#include <string>
#include <vector>

#include "ExportFeatures.h"

namespace veltarn::app {

// One feature a line: properties handle, type, layer, class and the records' fields (integers and
// reals as numbers, texts as strings, points as [x, y, z], values of no type and reals that are
// no number as null); geometry a Point, LineString, MultiLineString (lines of several parts) or
// Polygon with closed rings, 2D unless a point lies off Z = 0, null without an outline. `name`
// becomes the collection's "name", which GDAL takes for the layer's name.
std::string geoJson(const std::vector<ExportFeature>& features, const std::string& name);

}  // namespace veltarn::app
