// The export writers on what the drawings of the end-to-end tests do not give: lines of several
// parts, points off Z = 0, features without geometry, values of every type and texts that need
// quoting. Each file is read back by GDAL (ogr2ogr to GeoJSON), not by our own parser.
#include "GeoCsvWriter.h"
#include "GeoJsonWriter.h"

#include <gtest/gtest.h>

#include <limits>

#include "ExternalTools.h"
#include "ScratchFiles.h"

namespace veltarn::app {
namespace {

std::vector<ExportFeature> features() {
    using Kind = host::EntityOutline::Kind;
    ExportFeature two{
        "1A",    "Mline", "Rails, \"north\"",
        "Track", {},      host::EntityOutline{Kind::kLine, {{{0, 0, 0}, {1, 0, 0}}, {{0, 1, 0}, {1, 1, 0}}}}};
    two.properties = {{"T.COUNT", std::int64_t{-7}},
                      {"T.NOTE", std::string("a, \"quoted\"\nline \xc3\xa9")},
                      {"T.LEVEL", std::numeric_limits<double>::quiet_NaN()},
                      {"T.AT", host::Point3d{1.5, 2, 3}},
                      {"T.EMPTY", std::monostate{}}};
    ExportFeature raised{"2B",
                         "3DFace",
                         "0",
                         "Roof",
                         {{"T.COUNT", std::int64_t{3}}},
                         host::EntityOutline{Kind::kPolygon, {{{0, 0, 5}, {4, 0, 5}, {4, 3, 6}}}}};
    ExportFeature endless{"3C", "Xline", "0", "Axis", {{"T.LEVEL", 0.1}}, std::nullopt};
    return {two, raised, endless};
}

// GDAL's reading of `bytes` written to a file NAME, as GeoJSON GDAL writes itself.
std::string throughGdal(const std::string& name, const std::string& bytes, const std::string& options = "") {
    // A folder a test: ctest runs the tests of this file side by side.
    const auto dir = testtools::scratchDir("cli", std::string("geo_writers_") +
                                                      ::testing::UnitTest::GetInstance()->current_test_info()->name());
    testtools::writeBytes(dir / name, bytes);
    std::string out;
    const int code = testtools::runCommand(
        "ogr2ogr -f GeoJSON /vsistdout/ " + options + " " + testtools::quoted((dir / name).string()) + " 2>&1", &out);
    EXPECT_EQ(code, 0) << "ogr2ogr (Debian: gdal-bin) failed: " << out;
    return out;
}

TEST(GeoWriters, GeoJsonReadsBackWithEveryGeometryAndValue) {
    const std::string gdal = throughGdal("w.geojson", geoJson(features(), "site \"A\""));
    for (
        const char* expected :
        {R"("name": "site \"A\"")",
         R"("type": "MultiLineString", "coordinates": [ [ [ 0.0, 0.0 ], [ 1.0, 0.0 ] ], [ [ 0.0, 1.0 ], [ 1.0, 1.0 ] ] ])",
         R"("type": "Polygon", "coordinates": [ [ [ 0.0, 0.0, 5.0 ], [ 4.0, 0.0, 5.0 ], [ 4.0, 3.0, 6.0 ], [ 0.0, 0.0, 5.0 ] ] ])",
         R"("T.COUNT": -7)", R"("T.NOTE": "a, \"quoted\"\nline é")", R"("T.LEVEL": null)",
         R"("T.AT": [ 1.5, 2.0, 3.0 ])", R"("layer": "Rails, \"north\"")", R"("T.LEVEL": 0.1 }, "geometry": null })"})
        EXPECT_NE(gdal.find(expected), std::string::npos) << expected << "\n" << gdal;
}

TEST(GeoWriters, CsvReadsBackWithItsWktAndQuotedFields) {
    const std::string csv = geoCsv(features());
    EXPECT_EQ(csv.substr(0, csv.find("\r\n")), "WKT,handle,type,layer,class,T.COUNT,T.NOTE,T.LEVEL,T.AT,T.EMPTY");
    EXPECT_NE(csv.find("\r\n,3C,Xline,0,Axis,,,0.1,,\r\n"), std::string::npos) << csv;
    const std::string gdal = throughGdal("w.csv", csv, "-oo AUTODETECT_TYPE=YES -oo KEEP_GEOM_COLUMNS=NO");
    for (
        const char* expected :
        {R"("type": "MultiLineString", "coordinates": [ [ [ 0.0, 0.0 ], [ 1.0, 0.0 ] ], [ [ 0.0, 1.0 ], [ 1.0, 1.0 ] ] ])",
         R"([ 4.0, 3.0, 6.0 ], [ 0.0, 0.0, 5.0 ] ] ])", R"("T.COUNT": -7)", R"("T.NOTE": "a, \"quoted\"\nline é")",
         R"("T.AT": "1.5,2,3")", R"("layer": "Rails, \"north\"")", R"("geometry": null })"})
        EXPECT_NE(gdal.find(expected), std::string::npos) << expected << "\n" << gdal;
}

}  // namespace
}  // namespace veltarn::app
