// R12 drawings given object data: converted to 2018 with all their content, checked by an
// independent reader.
#include "TestSupport.h"

#include "cad/db/Dictionary.h"
#include "cad/db/DrawOrder.h"
#include "cad/db/EntityFactory.h"
#include "cad/db/ExtensionDictionary.h"
#include "cad/db/Xrecord.h"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <sstream>

namespace veltarn::db {
namespace {

std::string readBytes(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

// Every entity of every block as the independent reader sees it, without the version line. R12
// texts keep \U+XXXX escapes that the reader leaves as they are; 2018 texts hold the characters.
std::string geometry(const std::filesystem::path& file, std::string* version) {
    std::string out;
    int code = test::runPython(std::string(VELTARN_SOURCE_DIR) + "/tests/cad/db/data/dump_geometry.py '" + file.string() + "'", &out);
    EXPECT_EQ(code, 0) << out;
    std::size_t first = out.find('\n');
    *version = out.substr(0, first);
    std::string rest = out.substr(first + 1), decoded;
    std::regex escape(R"(\\U\+([0-9A-Fa-f]{4}))");
    std::size_t at = 0;
    for (std::sregex_iterator it(rest.begin(), rest.end(), escape), end; it != end; ++it) {
        decoded += rest.substr(at, static_cast<std::size_t>(it->position()) - at);
        auto cp = static_cast<char32_t>(std::stoul((*it)[1].str(), nullptr, 16));
        dxf::appendUtf8(decoded, cp);
        at = static_cast<std::size_t>(it->position() + it->length());
    }
    return decoded + rest.substr(at);
}

class ConvertedR12 : public ::testing::TestWithParam<bool> {};

TEST_P(ConvertedR12, KeepsEveryEntityAndTakesObjectData) {
    const bool binary = GetParam();
    auto source = test::generated(binary ? "all-r12-binary.dxf" : "all-r12.dxf", std::string("40 --kinds all --version R12") + (binary ? " --binary" : ""));
    Database db = test::loadOrFail(source);
    ASSERT_TRUE(db.isR12());
    const Handle model = db.modelSpace(), block = db.findBlock("MARK");
    const std::vector<Handle> entities = db.entitiesOf(model);
    ASSERT_FALSE(entities.empty());

    auto xdictionary = createExtensionDictionary(db, entities[0]);
    ASSERT_TRUE(xdictionary.ok()) << xdictionary.message();
    ResultBuffer values{TypedValue::ofText(1, "Grüße"), TypedValue::ofReal(40, 2.5), TypedValue::ofInteger(90, 7)};
    ASSERT_TRUE(addXrecord(db, *xdictionary, "ROADS", values).ok());
    EXPECT_FALSE(db.isR12());
    EXPECT_NE(db.saveNotice().find("2018"), std::string::npos);
    // Ids held before the conversion still name the same things.
    EXPECT_EQ(db.modelSpace(), model);
    EXPECT_EQ(db.findBlock("MARK"), block);
    EXPECT_EQ(db.entitiesOf(model), entities);

    auto dir = test::scratchDir(binary ? "r12-binary" : "r12-ascii");
    ASSERT_TRUE(db.save(dir / "out.dxf").ok());
    EXPECT_EQ(readBytes(dir / "out.dxf").starts_with(dxf::kBinarySentinel), binary);
    EXPECT_EQ(test::audit(dir / "out.dxf"), "");
    std::string before, after;
    std::string expected = geometry(source, &before), seen = geometry(dir / "out.dxf", &after);
    EXPECT_EQ(before, "AC1009");
    EXPECT_EQ(after, "AC1032");
    EXPECT_EQ(seen, expected);

    std::string xrecords;
    ASSERT_EQ(test::runPython(std::string(VELTARN_SOURCE_DIR) + "/tests/cad/db/data/dump_xrecords.py '" + (dir / "out.dxf").string() + "'", &xrecords), 0);
    EXPECT_EQ(xrecords, formatHandle(entities[0]) + " ROADS 1=Grüße 40=2.5 90=7\n");

    // Saved and read again, it is an ordinary 2018 drawing that round-trips as it is.
    Database back = test::loadOrFail(dir / "out.dxf");
    EXPECT_FALSE(back.isR12());
    EXPECT_TRUE(back.saveNotice().empty());
    EXPECT_EQ(readXrecord(back, findEntry(back, extensionDictionary(back, entities[0]), "ROADS")).value(), values);
    EXPECT_TRUE(back.toText().value() == readBytes(dir / "out.dxf"));
}

INSTANTIATE_TEST_SUITE_P(Forms, ConvertedR12, ::testing::Values(false, true),
                         [](const auto& info) { return info.param ? "Binary" : "Ascii"; });

// A minimal R12 file: no handles, no tables but LAYER, no blocks for the spaces, code-page texts.
constexpr const char* kMinimal =
    "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1009\n9\n$DWGCODEPAGE\n3\nANSI_1252\n0\nENDSEC\n"
    "0\nSECTION\n2\nTABLES\n0\nTABLE\n2\nLAYER\n70\n1\n0\nLAYER\n2\nSTRA\xDF" "E\n70\n0\n62\n3\n6\nCONTINUOUS\n0\nENDTAB\n0\nENDSEC\n"
    "0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n8\n0\n2\nPIN\n70\n0\n10\n0\n20\n0\n0\nCIRCLE\n8\n0\n10\n0\n20\n0\n40\n1\n0\nENDBLK\n8\n0\n0\nENDSEC\n"
    "0\nSECTION\n2\nENTITIES\n0\nLINE\n8\nSTRA\xDF" "E\n10\n0\n20\n0\n11\n3\n21\n4\n"
    "0\nTEXT\n8\n0\n10\n1\n20\n1\n40\n2.5\n1\nCaf\xE9\n"
    "0\nINSERT\n8\n0\n2\nPIN\n10\n5\n20\n5\n0\nLINE\n8\n0\n67\n1\n10\n0\n20\n0\n11\n1\n21\n1\n0\nENDSEC\n0\nEOF\n";

TEST(ConvertedR12Minimal, GetsHandlesTablesSpacesAndUtf8Texts) {
    Database db = test::parseOrFail(kMinimal);
    ASSERT_TRUE(db.isR12());
    const Handle block = db.findBlock("PIN");
    const std::vector<Handle> model = db.entitiesOf(db.modelSpace());
    ASSERT_EQ(model.size(), 3u);

    // The conversion is a step of the command that needed it: undone, the drawing is the R12 one
    // again, byte for byte, and what came before stays undoable; redone, it is converted again.
    db.beginCommand("LINE");
    (void)db.appendEntity(db.modelSpace(), newLine(db, {0, 0, 0}, {9, 9, 0})).value();
    db.endCommand();
    const std::string r12 = db.toText().value();
    db.beginCommand("DRAWORDER");
    ASSERT_TRUE(setRelativeDrawOrder(db, db.modelSpace(), {model[2], model[0]}).ok());
    db.endCommand();
    EXPECT_TRUE(db.convertedFromR12());
    EXPECT_EQ(drawOrder(db, db.modelSpace()).front(), model[2]);
    const std::string converted = db.toText().value();
    ASSERT_TRUE(db.undo());
    EXPECT_TRUE(db.isR12());
    EXPECT_TRUE(db.toText().value() == r12);
    ASSERT_TRUE(db.undo());
    EXPECT_EQ(db.entitiesOf(db.modelSpace()).size(), 3u);
    EXPECT_FALSE(db.undo());
    ASSERT_TRUE(db.redo());
    ASSERT_TRUE(db.redo());
    EXPECT_FALSE(db.isR12());
    EXPECT_TRUE(db.toText().value() == converted);
    EXPECT_EQ(drawOrder(db, db.modelSpace()).front(), model[2]);
    EXPECT_EQ(db.entitiesOf(db.modelSpace()).size(), 4u);
    EXPECT_EQ(db.findBlock("PIN"), block);

    // A conversion rolled back with the step that needed it leaves the R12 drawing as it was.
    Database rolled = test::parseOrFail(kMinimal);
    rolled.beginCommand("IMPORT");
    std::size_t mark = rolled.changeMark();
    ASSERT_TRUE(setRelativeDrawOrder(rolled, rolled.modelSpace(), {model[2], model[0]}).ok());
    rolled.rollBack(mark);
    rolled.endCommand();
    EXPECT_TRUE(rolled.isR12());
    EXPECT_TRUE(rolled.toText().value() == kMinimal);

    const std::string text = db.toText().value();
    EXPECT_NE(text.find("STRA\xC3\x9F" "E"), std::string::npos);
    EXPECT_NE(text.find("Caf\xC3\xA9"), std::string::npos);
    Database back = test::parseOrFail(text);
    EXPECT_FALSE(back.isR12());
    for (Handle entity : back.entitiesOf(back.modelSpace())) {
        EXPECT_EQ(back.ownerOf(entity), back.modelSpace());
        EXPECT_LT(entity, back.handleSeed());
    }
    EXPECT_EQ(back.entitiesOf(back.paperSpace()).size(), 1u);
    EXPECT_EQ(back.ownerOf(back.entitiesOf(back.findBlock("PIN")).at(0)), block);
    EXPECT_NE(back.findRecord("LTYPE", "Continuous"), kNoHandle);
    EXPECT_NE(back.findRecord("STYLE", "Standard"), kNoHandle);
    EXPECT_NE(namedDictionary(back, "ACAD_LAYOUT", false).value(), kNoHandle);

    auto dir = test::scratchDir("r12-minimal");
    ASSERT_TRUE(db.save(dir / "out.dxf").ok());
    EXPECT_EQ(test::audit(dir / "out.dxf"), "");
}

}  // namespace
}  // namespace veltarn::db
