// The example classifier of examples/ read against the example drawing, resources included: what the
// demo shows, kept working.
#include "cad/seam/WorkbenchDatabase.h"
#include "cad/seam/WorkbenchHost.h"
#include "cad/support/UserSupportFolder.h"
#include "classifier/ClassifierReader.h"
#include "classifier/DrawingResources.h"
#include "host/Utf8.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace veltarn {
namespace {

namespace fs = std::filesystem;

const fs::path kExamples = VELTARN_SOURCE_DIR "/examples";

std::string readFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

const std::wstring kClassifier = host::fromUtf8((kExamples / "utility-survey.txt").string());

TEST(ExampleClassifier, ReadsWithoutAMessage) {
    seam::WorkbenchHost host([](const std::wstring&) {}, fs::path(VELTARN_BINARY_DIR) / "tests" / "example-settings");
    std::wstring messages;
    ClassifierReader reader([&](const std::wstring& text) { messages += text; }, &host.systemVariables());
    Classifier classifier = reader.read(kClassifier);
    ASSERT_FALSE(reader.failed()) << host::toUtf8(messages);
    EXPECT_EQ(messages, L"");
    EXPECT_EQ(classifier.classCount(), 12);
    EXPECT_EQ(classifier.objectCount(), 39);
    EXPECT_EQ(classifier.tableCount(), 9);
    EXPECT_EQ(classifier.variables().size(), 2u);
    const ClassDef* station = classifier.find(L"survey station");
    ASSERT_TRUE(station);
    ASSERT_EQ(station->tables.size(), 1u);
    EXPECT_EQ(station->tables[0].fields.back().attributes & kAttributeConst, kAttributeConst);  // autoconst
    EXPECT_FALSE(classifier.find(L"telecom duct")->flag);  // its class's flag is 0
}

TEST(ExampleClassifier, BringsItsResourcesIntoTheExampleDrawing) {
    fs::path home = fs::path(VELTARN_BINARY_DIR) / "tests" / "example-classifier";
    fs::remove_all(home);
    auto supportPath = support::prepareUserSupportFolder(home / "support", VELTARN_SOURCE_DIR "/support");
    ASSERT_TRUE(supportPath) << supportPath.message();

    seam::WorkbenchHost host([](const std::wstring&) {}, home / "settings");
    ASSERT_TRUE(host.environment().setSupportPath(host::fromUtf8(*supportPath)));
    auto drawing = seam::WorkbenchDatabase::read(kExamples / "utility-survey.dxf");
    ASSERT_TRUE(drawing) << drawing.message();
    host.openDocument(std::move(*drawing));
    host::Database& db = *host.currentDrawing();
    // Resources the example drawing lacks: the survey layers and pipe linetypes it already uses
    // would prove nothing.
    ASSERT_FALSE(db.hasSymbol(host::SymbolTable::kLayer, L"SV_GAS"));
    ASSERT_FALSE(db.hasSymbol(host::SymbolTable::kLinetype, L"GAS_PIPE"));
    ASSERT_FALSE(db.hasSymbol(host::SymbolTable::kBlock, L"TREE"));
    DrawingResources resources(host, db);

    std::wstring messages;
    ClassifierReader reader([&](const std::wstring& text) { messages += text; }, &host.systemVariables(), &resources);
    Classifier classifier = reader.read(kClassifier);
    ASSERT_FALSE(reader.failed()) << host::toUtf8(messages);
    EXPECT_EQ(messages, L"");
    EXPECT_EQ(classifier.objectCount(), 39);

    EXPECT_TRUE(db.hasSymbol(host::SymbolTable::kLayer, L"SV_GAS"));
    EXPECT_TRUE(db.hasSymbol(host::SymbolTable::kBlock, L"TREE"));
    EXPECT_TRUE(db.hasSymbol(host::SymbolTable::kTextStyle, L"SV_Labels"));
    EXPECT_TRUE(db.hasSymbol(host::SymbolTable::kDimensionStyle, L"SV_Metric"));
    EXPECT_TRUE(db.hasSymbol(host::SymbolTable::kLinetype, L"GAS_PIPE"));
    EXPECT_FALSE(db.hasSymbol(host::SymbolTable::kLayer, L"SV_ROAD_MARKING"));  // named by no definition
    std::string userPatterns = readFile(home / "support" / "acad.pat");
    EXPECT_NE(userPatterns.find("\n*WETLAND, Wetland: short dashes in rows\n"), std::string::npos);
    EXPECT_EQ(readFile(VELTARN_SOURCE_DIR "/support/acad.pat").find("WETLAND"), std::string::npos);
}

}  // namespace
}  // namespace veltarn
