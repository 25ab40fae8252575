// veltarn export: the classified objects of real drawings written as GeoJSON and CSV, read back by
// GDAL (ogrinfo, ogr2ogr) and compared with the drawing as ezdxf reads it (tests/tools/
// check_export.py): feature counts, geometry types, curves within the tolerance, attribute values;
// and the usage and file errors a script meets.
#include <unistd.h>

#include "ProgramRun.h"

namespace {

using namespace veltarn::e2e;
namespace testtools = veltarn::testtools;

const fs::path kCases = fs::path(VELTARN_SOURCE_DIR) / "tests/e2e/cases";

class Export : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(runShell("ogrinfo --version >/dev/null 2>&1").exitCode, 0)
            << "GDAL's ogrinfo is missing: install the Debian package gdal-bin";
        ASSERT_EQ(testtools::missingEzdxf(), "");
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        dir_ = fs::temp_directory_path() / ("veltarn_export_" + std::to_string(::getpid()) + "_" + info->name());
        fs::remove_all(dir_);
        fs::create_directories(dir_);
        fs::copy_file(kCases / "selection.in.dxf", dir_ / "selection.dxf");
        fs::copy_file(kCases / "selection.classes.txt", dir_ / "selection.classes.txt");
    }
    void TearDown() override { fs::remove_all(dir_); }

    // A command line in the test's folder, with a home of its own (reading a classifier brings its
    // patterns into the user's files); standard error after the heading "--- stderr".
    ShellRun in(const std::string& command) {
        ShellRun run = runShell("cd " + quote(dir_.string()) + " && XDG_CONFIG_HOME=config " + command +
                                " </dev/null 2>stderr.txt");
        run.out += "--- stderr\n" + readFile(dir_ / "stderr.txt");
        return run;
    }
    ShellRun exportRun(const std::string& arguments) { return in(quote(kProgram.string()) + " export " + arguments); }

    // The check script's verdict on EXPORTED against DRAWING at TOLERANCE; its last line counts
    // the features and vertices GDAL read.
    ShellRun check(const std::string& drawing, const std::string& exported, const std::string& tolerance) {
        ShellRun run;
        run.exitCode = testtools::runPython(quote((testtools::toolsDir() / "check_export.py").string()) + " " +
                                                quote((dir_ / drawing).string()) + " " +
                                                quote((dir_ / exported).string()) + " " + tolerance,
                                            &run.out);
        return run;
    }
    static int vertices(const ShellRun& checked) {
        const std::size_t at = checked.out.rfind("vertices ");
        return at == std::string::npos ? -1 : std::stoi(checked.out.substr(at + 9));
    }

    fs::path dir_;
};

// The selection case: 16 objects, 8 with data of a known class (veltarn check counts them valid or
// faulty), one of them with a first record whose empty key names no class.
TEST_F(Export, TheClassifiedObjectsOfADrawingAreItsFeatures) {
    const ShellRun geojson = exportRun("--classifier selection.classes.txt selection.dxf out.geojson");
    ASSERT_EQ(geojson.exitCode, 0) << geojson.out;
    EXPECT_EQ(geojson.out, "exported 8 classified objects to out.geojson\n--- stderr\n");
    const ShellRun summary = in("ogrinfo -ro -al -so out.geojson");
    ASSERT_EQ(summary.exitCode, 0) << summary.out;
    EXPECT_NE(summary.out.find("Layer name: selection\n"), std::string::npos) << summary.out;
    EXPECT_NE(summary.out.find("Feature Count: 8\n"), std::string::npos) << summary.out;
    EXPECT_NE(summary.out.find("ROADS.WIDTH: Real"), std::string::npos) << summary.out;
    EXPECT_NE(summary.out.find("ROADS.LANES: Integer"), std::string::npos) << summary.out;

    const ShellRun features = in("ogrinfo -ro -al -q out.geojson");
    ASSERT_EQ(features.exitCode, 0) << features.out;
    for (const char* expected :
         {"  handle (String) = 9E\n  type (String) = Line\n  layer (String) = LAYER_00\n"
          "  class (String) = Roads\n  ROADS.ID (String) = \n",
          "  ROADS[2].ID (String) = Roads\n  ROADS[2].WIDTH (Real) = 18.324\n", "  class (String) = Class 03\n",
          "  handle (String) = C0\n", "  POINT (80.581 449.187)\n", "  PIPES.MATERIAL (String) = Unobtainium\n"})
        EXPECT_NE(features.out.find(expected), std::string::npos) << expected << "\n" << features.out;

    // Every feature against the drawing: geometry type, curves, every record's values.
    const ShellRun checked = check("selection.dxf", "out.geojson", "0.01");
    EXPECT_EQ(checked.exitCode, 0) << checked.out;

    // The same as CSV: GDAL takes the WKT column for the geometry and, asked to, the numbers' types.
    const ShellRun csv = exportRun("--classifier selection.classes.txt selection.dxf out.csv");
    ASSERT_EQ(csv.exitCode, 0) << csv.out;
    const std::string bytes = readFile(dir_ / "out.csv");
    EXPECT_EQ(bytes.rfind("WKT,handle,type,layer,class,ROADS.ID,ROADS.WIDTH,ROADS.LANES,ROADS[2].ID,", 0), 0u) << bytes;
    EXPECT_NE(bytes.find("\r\nPOINT (80.581 449.187),C0,Point,LAYER_01,Roads,Roads,26.735,4,,"), std::string::npos)
        << bytes;
    const ShellRun csvSummary = in("ogrinfo -ro -al -so -oo AUTODETECT_TYPE=YES out.csv");
    EXPECT_NE(csvSummary.out.find("Feature Count: 8\n"), std::string::npos) << csvSummary.out;
    EXPECT_NE(csvSummary.out.find("ROADS.LANES: Integer"), std::string::npos) << csvSummary.out;
    EXPECT_EQ(check("selection.dxf", "out.csv", "0.01").exitCode, 0);
}

// A drawing of every kind the generator writes, all with data: each kind's geometry as GDAL reads
// it, curves within the tolerance asked for, and a coarser tolerance giving fewer vertices that
// stray further.
TEST_F(Export, CurvesStayWithinTheToleranceAsGdalReadsThem) {
    std::string output;
    ASSERT_EQ(testtools::runPython(
                  quote((testtools::toolsDir() / "gen_dxf.py").string()) + " 48 " + quote((dir_ / "all.dxf").string()) +
                      " --kinds all --data all --tables 3 --classifier " + quote((dir_ / "all.txt").string()),
                  &output),
              0)
        << output;
    const ShellRun fine = exportRun("--classifier all.txt all.dxf fine.geojson");
    ASSERT_EQ(fine.exitCode, 0) << fine.out;
    // XLINE, RAY, MESH and the polyface mesh have no finite shape: features without geometry.
    EXPECT_EQ(fine.out, "exported 48 classified objects to fine.geojson (8 without geometry)\n--- stderr\n");
    const ShellRun fineCheck = check("all.dxf", "fine.geojson", "0.01");
    EXPECT_EQ(fineCheck.exitCode, 0) << fineCheck.out;
    EXPECT_NE(fineCheck.out.find("features 48 "), std::string::npos) << fineCheck.out;

    const ShellRun coarse = exportRun("--classifier all.txt --tolerance 0.5 all.dxf coarse.csv");
    ASSERT_EQ(coarse.exitCode, 0) << coarse.out;
    const ShellRun coarseCheck = check("all.dxf", "coarse.csv", "0.5");
    EXPECT_EQ(coarseCheck.exitCode, 0) << coarseCheck.out;
    EXPECT_LT(vertices(coarseCheck), vertices(fineCheck));
    EXPECT_GT(vertices(coarseCheck), 0);
    // The check finds chords that stray: the coarse file does not pass for the fine tolerance.
    const ShellRun strict = check("all.dxf", "coarse.csv", "0.01");
    EXPECT_EQ(strict.exitCode, 1) << strict.out;
    EXPECT_NE(strict.out.find("CIRCLE: a chord strays"), std::string::npos) << strict.out;
}

// Usage errors name what is wrong and show the usage line; a drawing or classifier that cannot be
// read is named; the file to write is then left as it was.
TEST_F(Export, ErrorsNameTheirCauseAndLeaveTheOutputAsItWas) {
    const std::string usage = "usage: veltarn export --classifier FILE [--tolerance T] DRAWING OUT.geojson|OUT.csv\n";
    for (const auto& [arguments, message] : std::vector<std::pair<std::string, std::string>>{
             {"selection.dxf out.geojson", "a classifier is needed: --classifier FILE"},
             {"--classifier selection.classes.txt selection.dxf", "one drawing and one file to write are needed"},
             {"--classifier selection.classes.txt selection.dxf out.shp",
              "out.shp: the file to write ends in .geojson or .csv"},
             {"--classifier selection.classes.txt --tolerance 0 selection.dxf out.csv",
              "--tolerance needs a positive number of drawing units: '0'"},
             {"--classifier selection.classes.txt --tolerance nan selection.dxf out.csv",
              "--tolerance needs a positive number of drawing units: 'nan'"},
             {"--classifier selection.classes.txt --tolerance 1cm selection.dxf out.csv",
              "--tolerance needs a positive number of drawing units: '1cm'"},
             {"--classifier selection.classes.txt --tolerance", "--tolerance needs a value"},
             {"--classifier selection.classes.txt --jobs 2 selection.dxf out.csv", "unknown option '--jobs'"}}) {
        const ShellRun run = exportRun(arguments);
        EXPECT_EQ(run.exitCode, 2) << arguments;
        EXPECT_EQ(run.out, "--- stderr\nveltarn export: " + message + "\n" + usage) << arguments;
    }

    const ShellRun help = exportRun("--help");
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_EQ(help.out, usage + "--- stderr\n");

    writeFile(dir_ / "out.geojson", "the old file\n");
    const ShellRun missing = exportRun("--classifier selection.classes.txt nowhere.dxf out.geojson");
    EXPECT_EQ(missing.exitCode, 3);
    EXPECT_NE(missing.out.find("--- stderr\nveltarn export: nowhere.dxf"), std::string::npos) << missing.out;
    const ShellRun noClassifier = exportRun("--classifier nothing.txt selection.dxf out.geojson");
    EXPECT_EQ(noClassifier.exitCode, 3);
    EXPECT_EQ(noClassifier.out, "--- stderr\nveltarn export: nothing.txt: cannot open the classifier\n");
    const ShellRun folder = exportRun("--classifier selection.classes.txt selection.dxf no/such/folder.csv");
    EXPECT_EQ(folder.exitCode, 3);
    EXPECT_NE(folder.out.find("veltarn export: no/such/folder.csv"), std::string::npos) << folder.out;
    EXPECT_EQ(readFile(dir_ / "out.geojson"), "the old file\n");
    EXPECT_FALSE(fs::exists(dir_ / "no"));
}

}  // namespace
