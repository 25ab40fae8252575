// Resources a classifier names, brought into a real workbench drawing from side drawings and support
// files, with the user's support folder in a temporary home.
#include "classifier/DrawingResources.h"

#include "cad/db/SymbolTables.h"
#include "cad/seam/WorkbenchDatabase.h"
#include "cad/seam/WorkbenchHost.h"
#include "classifier/ClassifierReader.h"
#include "host/Utf8.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace veltarn {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::wstring>;

const fs::path kShippedSupport = VELTARN_SOURCE_DIR "/support";

std::wstring wide(const fs::path& path) { return host::fromUtf8(path.string()); }

void writeFile(const fs::path& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

std::string readFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

db::Layer layer(std::string name, int color, std::string linetype = "Continuous") {
    db::Layer l;
    l.name = std::move(name);
    l.color = color;
    l.linetype = std::move(linetype);
    return l;
}

class DrawingResourcesTest : public testing::Test {
protected:
    void SetUp() override {
        dir_ = fs::path(VELTARN_BINARY_DIR) / "tests" / "classifier-resources" /
               testing::UnitTest::GetInstance()->current_test_info()->name();
        fs::remove_all(dir_);
        fs::create_directories(dir_ / "home" / "support");
        host_ = std::make_unique<seam::WorkbenchHost>([](const std::wstring&) {}, dir_ / "home" / "settings");
        db::Database db = db::Database::createNew();
        EXPECT_TRUE(db::writeLayer(db, layer("Roads", 1)));
        host_->openDocument(std::make_unique<seam::WorkbenchDatabase>(std::move(db)));
        resources_ = std::make_unique<DrawingResources>(*host_, *host_->currentDrawing());
    }

    db::Database& drawing() { return host_->currentDrawing()->raw(); }

    // A side drawing with three layers (one the drawing has, in another colour), a linetype and
    // two text styles, written as DXF.
    fs::path writeSideDrawing(const std::string& name) {
        db::Database side = db::Database::createNew();
        EXPECT_TRUE(db::addLinetype(side, "FENCE", "Fence"));
        EXPECT_TRUE(db::writeLayer(side, layer("Roads", 5, "FENCE")));
        EXPECT_TRUE(db::writeLayer(side, layer("Water", 4, "FENCE")));
        EXPECT_TRUE(db::writeLayer(side, layer("Unused", 2)));
        EXPECT_TRUE(db::addTextStyle(side, "Labels", "romans"));
        EXPECT_TRUE(db::addTextStyle(side, "Titles", "romanc"));
        fs::path path = dir_ / name;
        EXPECT_TRUE(side.save(path));
        return path;
    }

    // The user's support folder holding both standard pattern files, on the support path.
    fs::path prepareUserSupport() {
        fs::path folder = dir_ / "home" / "support";
        writeFile(folder / "acad.pat", "*SOLID,Solid fill\n45,0,0,0,.125\n");
        writeFile(folder / "acadiso.pat", "*SOLID,Solid fill\n45,0,0,0,3.175\n");
        EXPECT_TRUE(host_->environment().setSupportPath(wide(dir_ / "nothing") + L";" + wide(folder)));
        return folder;
    }

    fs::path dir_;
    std::unique_ptr<seam::WorkbenchHost> host_;
    std::unique_ptr<DrawingResources> resources_;
};

TEST_F(DrawingResourcesTest, SideDrawingBringsTheMissingNamesAndLeavesExistingRecordsAlone) {
    fs::path side = writeSideDrawing("side.dxf");
    ResourceNames missing{{ResourceKind::Layer, {L"water"}}, {ResourceKind::TextStyle, {L"labels"}}};
    ResourceNames loaded;
    ASSERT_TRUE(resources_->importResources(wide(side), bit(ResourceKind::Layer) | bit(ResourceKind::TextStyle), missing,
                                            loaded));
    EXPECT_EQ(loaded[ResourceKind::Layer], Names{L"Water"});
    EXPECT_EQ(loaded[ResourceKind::TextStyle], Names{L"labels"});  // recorded once, as it was missing
    EXPECT_EQ(db::readLayer(drawing(), "Water")->color, 4);
    EXPECT_EQ(db::readLayer(drawing(), "Water")->linetype, "FENCE");
    EXPECT_NE(drawing().findRecord("LTYPE", "FENCE"), db::kNoHandle);  // a layer brings its linetype
    EXPECT_FALSE(db::readLayer(drawing(), "Unused"));
    EXPECT_EQ(drawing().findRecord("STYLE", "Titles"), db::kNoHandle);

    // Nothing named as missing: every record of the file; the drawing's own Roads keeps its colour.
    ResourceNames all;
    ASSERT_TRUE(resources_->importResources(wide(side), bit(ResourceKind::Layer), {}, all));
    EXPECT_EQ(db::readLayer(drawing(), "Roads")->color, 1);
    EXPECT_EQ(db::readLayer(drawing(), "Roads")->linetype, "Continuous");
    EXPECT_EQ(db::readLayer(drawing(), "Unused")->color, 2);
}

TEST_F(DrawingResourcesTest, FilesThatCannotServeFailTheImport) {
    fs::path side = writeSideDrawing("side.dxf");
    ResourceNames loaded;
    EXPECT_FALSE(resources_->importResources(wide(side), 0, {}, loaded));  // no kinds
    EXPECT_FALSE(resources_->importResources(wide(dir_ / "absent.dxf"), bit(ResourceKind::Layer), {}, loaded));
    writeFile(dir_ / "real.dwg", std::string("AC1032\0\0\0\0\0\x01\x02", 13));
    EXPECT_FALSE(resources_->importResources(wide(dir_ / "real.dwg"), bit(ResourceKind::Layer), {}, loaded));
    // A ".lin" asked only for layers, and a file of no known kind.
    fs::copy_file(kShippedSupport / "acad.lin", dir_ / "types.lin");
    EXPECT_FALSE(resources_->importResources(wide(dir_ / "types.lin"), bit(ResourceKind::Layer), {}, loaded));
    writeFile(dir_ / "notes.txt", "layers\n");
    EXPECT_FALSE(resources_->importResources(wide(dir_ / "notes.txt"), bit(ResourceKind::Layer), {}, loaded));
    // The extension test is case-sensitive: "SIDE.DXF" is no drawing file.
    fs::copy_file(side, dir_ / "SIDE.DXF");
    EXPECT_FALSE(resources_->importResources(wide(dir_ / "SIDE.DXF"), bit(ResourceKind::Layer), {}, loaded));
}

TEST_F(DrawingResourcesTest, PatternsAreAppendedToBothUserPatternFilesOnceAndNeverTwice) {
    fs::path folder = prepareUserSupport();
    writeFile(dir_ / "survey.pat", ";; survey patterns\n*MARSH, Marsh\n0, 0,0, .5,.5, .25,-.25\n\n90, 0,0, .5,.5, .1,-.4\n"
                                   "*Solid\n45,0,0,0,.2\n");
    std::string acadBefore = readFile(folder / "acad.pat");
    std::string isoBefore = readFile(folder / "acadiso.pat");
    // "solid": the user's files define it already (as "SOLID"), so it is taken but not appended.
    ResourceNames missing{{ResourceKind::Pattern, {L"marsh", L"absent", L"solid"}}};
    ResourceNames loaded;
    ASSERT_TRUE(resources_->importResources(wide(dir_ / "survey.pat"), bit(ResourceKind::Pattern), missing, loaded));
    EXPECT_EQ(loaded[ResourceKind::Pattern], (Names{L"marsh", L"solid"}));
    const std::string added = "\n*MARSH, Marsh\n0, 0,0, .5,.5, .25,-.25\n90, 0,0, .5,.5, .1,-.4\n";
    EXPECT_EQ(readFile(folder / "acad.pat"), acadBefore + added);
    EXPECT_EQ(readFile(folder / "acadiso.pat"), isoBefore + added);
    EXPECT_TRUE(resources_->hasResource(ResourceKind::Pattern, L"Marsh"));

    ResourceNames again;
    ASSERT_TRUE(resources_->importResources(wide(dir_ / "survey.pat"), bit(ResourceKind::Pattern), missing, again));
    EXPECT_EQ(readFile(folder / "acad.pat"), acadBefore + added);  // never twice
    EXPECT_EQ(readFile(folder / "acadiso.pat"), isoBefore + added);
}

TEST_F(DrawingResourcesTest, WithoutAUserPatternFolderNoPatternFileIsTouched) {
    writeFile(dir_ / "survey.pat", "*MARSH\n0,0,0,0,.5\n");
    const ResourceNames missing{{ResourceKind::Pattern, {L"marsh"}}};
    // A folder under "Program Files", one without acadiso.pat, and one not named "support".
    fs::path programs = dir_ / "Program Files" / "Support";
    fs::path half = dir_ / "half-support";
    fs::path plain = dir_ / "patterns";
    for (const fs::path& folder : {programs, half, plain}) {
        fs::create_directories(folder);
        writeFile(folder / "acad.pat", "*SOLID\n45,0,0,0,1\n");
        if (folder != half) writeFile(folder / "acadiso.pat", "*SOLID\n45,0,0,0,1\n");
    }
    ASSERT_TRUE(host_->environment().setSupportPath(wide(programs) + L";" + wide(half) + L";" + wide(plain)));
    ResourceNames loaded;
    EXPECT_TRUE(resources_->importResources(wide(dir_ / "survey.pat"), bit(ResourceKind::Pattern), missing, loaded));
    EXPECT_TRUE(loaded[ResourceKind::Pattern].empty());
    for (const fs::path& folder : {programs, half, plain}) EXPECT_EQ(readFile(folder / "acad.pat"), "*SOLID\n45,0,0,0,1\n");
}

TEST_F(DrawingResourcesTest, AShapeFolderJoinsTheSupportPathOnce) {
    fs::create_directories(dir_ / "fonts");
    writeFile(dir_ / "fonts" / "symbols.shx", "compiled shapes\r\n");
    ASSERT_TRUE(host_->environment().setSupportPath(L"/opt/a"));
    EXPECT_TRUE(resources_->registerShapeFile(wide(dir_ / "fonts" / "symbols.shx")));
    const std::wstring expected = L"/opt/a;" + wide(dir_ / "fonts") + L";";
    EXPECT_EQ(host_->environment().supportPath(), expected);
    EXPECT_TRUE(resources_->registerShapeFile(wide(dir_ / "fonts" / "symbols.shx")));
    EXPECT_EQ(host_->environment().supportPath(), expected);  // unchanged the second time
    EXPECT_FALSE(resources_->registerShapeFile(wide(dir_ / "fonts" / "absent.shx")));
}

TEST_F(DrawingResourcesTest, LinetypeFileLoadsTheMissingNamesOrEverything) {
    fs::copy_file(kShippedSupport / "acad.lin", dir_ / "survey.lin");
    ASSERT_TRUE(host_->currentDrawing()->loadLinetypes(L"DASHED", wide(dir_ / "survey.lin")));
    EXPECT_NE(drawing().findRecord("LTYPE", "DASHED"), db::kNoHandle);
    ResourceNames loaded;
    ASSERT_TRUE(resources_->importResources(wide(dir_ / "survey.lin"), bit(ResourceKind::Linetype),
                                            {{ResourceKind::Linetype, {L"dotted", L"nosuch"}}}, loaded));
    EXPECT_EQ(loaded[ResourceKind::Linetype], Names{L"dotted"});
    EXPECT_NE(drawing().findRecord("LTYPE", "DOTTED"), db::kNoHandle);
    EXPECT_EQ(drawing().findRecord("LTYPE", "DASHDOT"), db::kNoHandle);

    ResourceNames all;
    ASSERT_TRUE(resources_->importResources(wide(dir_ / "survey.lin"), bit(ResourceKind::Linetype), {}, all));
    EXPECT_EQ(all[ResourceKind::Linetype].front(), L"dashed");  // every name of the file, lower case
    EXPECT_NE(drawing().findRecord("LTYPE", "GAS_MAIN"), db::kNoHandle);
}

// The whole road: the reader gathers what the definitions lack, imports it and warns for the rest.
TEST_F(DrawingResourcesTest, TheReaderImportsWhatTheClassifierNamesAndWarnsForTheRest) {
    writeSideDrawing("side.dxf");
    fs::path folder = prepareUserSupport();
    writeFile(dir_ / "survey.pat", "*MARSH\n0,0,0,0,.5\n");
    writeFile(dir_ / "survey.txt",
              "layer\tside.dxf\ntextstyle\tside.dxf\npattern\tsurvey.pat\n"
              "class\tSurvey\t1\n"
              "obj_name\tStream\t1\t1\n\tobj_type\tLine\n\tobj_prop\tlayer\tWater\n"
              "obj_name\tWetland\t1\t2\n\tobj_type\tHatch\n\tobj_prop\tlayer\tMissingLayer\n"
              "\tobj_prop\tpattern\tMARSH\n"
              "obj_name\tLabel\t1\t3\n\tobj_type\tText\n\tobj_prop\ttextstyle\tLabels\n"
              "obj_name\tNote\t1\t4\n\tobj_type\tText\n\tobj_prop\tpattern\tNOPATTERN\n"
              "/class\n");
    std::wstring messages;
    ClassifierReader reader([&](const std::wstring& text) { messages += text; }, &host_->systemVariables(),
                            resources_.get());
    Classifier classifier = reader.read(wide(dir_ / "survey.txt"));
    EXPECT_FALSE(reader.failed()) << host::toUtf8(messages);
    EXPECT_EQ(messages, L"warning: layer 'MissingLayer' not found\nwarning: pattern 'nopattern' not found\n");
    EXPECT_EQ(db::readLayer(drawing(), "Water")->color, 4);
    EXPECT_FALSE(db::readLayer(drawing(), "Unused"));
    EXPECT_NE(drawing().findRecord("STYLE", "Labels"), db::kNoHandle);
    EXPECT_NE(readFile(folder / "acad.pat").find("*MARSH"), std::string::npos);
    EXPECT_EQ(classifier.resourceDrawings(), Names{wide(dir_ / "side.dxf")});
}

TEST_F(DrawingResourcesTest, ADrawingThatCannotBeReadEmptiesTheClassifier) {
    writeFile(dir_ / "real.dwg", std::string("AC1032\0\0\0\0\0\x01\x02", 13));
    writeFile(dir_ / "survey.txt", "layer\treal.dwg\nobj_name\tStream\t1\t1\n\tobj_type\tLine\n\tobj_prop\tlayer\tWater\n");
    std::wstring messages;
    ClassifierReader reader([&](const std::wstring& text) { messages += text; }, &host_->systemVariables(),
                            resources_.get());
    Classifier classifier = reader.read(wide(dir_ / "survey.txt"));
    EXPECT_TRUE(reader.failed());
    EXPECT_EQ(messages, L"error: unable to load '" + wide(dir_ / "real.dwg") + L"'\n");
    EXPECT_TRUE(classifier.empty());
}

}  // namespace
}  // namespace veltarn
