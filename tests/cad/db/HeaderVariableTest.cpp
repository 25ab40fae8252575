// Header entries set by the program: replaced in place or added, undone, and left alone when the
// value is what the header holds.
#include "TestSupport.h"

#include "cad/db/EntityFactory.h"

#include <gtest/gtest.h>

namespace veltarn::db {
namespace {

std::string textOf(const Database& db) {
    auto text = db.toText();
    EXPECT_TRUE(text.ok()) << text.message();
    return text.ok() ? *text : std::string();
}

TEST(HeaderVariable, SameValueKeepsTheFileAndNewValueIsUndoneWhole) {
    Database db = Database::createNew();
    const std::string before = textOf(db);
    auto layer = db.headerVariable("$CLAYER");
    auto scale = db.headerVariable("$LTSCALE");
    ASSERT_TRUE(layer && scale);

    // The value the header holds, also written another way, changes nothing.
    ASSERT_TRUE(db.setHeaderVariable("$CLAYER", 8, *layer).ok());
    ASSERT_TRUE(db.setHeaderVariable("$LTSCALE", 40, *scale + "000").ok());
    EXPECT_EQ(textOf(db), before);

    db.beginCommand("SETVAR");
    ASSERT_TRUE(db.setHeaderVariable("$CLAYER", 8, "Roads").ok());
    ASSERT_TRUE(db.setHeaderVariable("$LTSCALE", 40, "2.5").ok());
    ASSERT_TRUE(db.setHeaderVariable("$VELTARNTEST", 70, "3").ok());
    db.endCommand();
    EXPECT_EQ(db.headerVariable("$CLAYER"), "Roads");
    EXPECT_EQ(db.headerVariable("$VELTARNTEST"), "3");

    std::string after = textOf(db);
    Database back = test::parseOrFail(after);
    EXPECT_EQ(back.headerVariable("$CLAYER"), "Roads");
    EXPECT_EQ(back.headerVariable("$LTSCALE"), "2.5");
    // Replaced where they stood; the new entry ends the header.
    EXPECT_EQ(after.find("$CLAYER") < after.find("$LTSCALE"), before.find("$CLAYER") < before.find("$LTSCALE"));
    EXPECT_LT(after.find("$VELTARNTEST"), after.find("ENDSEC"));
    EXPECT_GT(after.find("$VELTARNTEST"), after.find("$HANDSEED"));

    ASSERT_TRUE(db.undo());
    EXPECT_EQ(textOf(db), before);
    EXPECT_EQ(db.headerVariable("$CLAYER"), layer);
    EXPECT_EQ(db.headerVariable("$VELTARNTEST"), std::nullopt);
    ASSERT_TRUE(db.redo());
    EXPECT_EQ(textOf(db), after);
}

TEST(HeaderVariable, ChangedHeaderStillRaisesTheHandleSeed) {
    Database db = Database::createNew();
    ASSERT_TRUE(db.setHeaderVariable("$INSUNITS", 70, "6").ok());
    for (int i = 0; i < 3; ++i) ASSERT_TRUE(db.appendEntity(db.modelSpace(), newLine(db, {0, 0, 0}, {1, 1, 0})).ok());
    Database back = test::parseOrFail(textOf(db));
    EXPECT_EQ(back.headerVariable("$HANDSEED"), formatHandle(db.handleSeed()));
    EXPECT_EQ(back.headerVariable("$INSUNITS"), "6");
}

TEST(HeaderVariable, BinaryDrawingTakesTheValueInItsOwnForm) {
    Database db = test::loadOrFail(test::generated("all-2000-bin.dxf", "40 --kinds all --version R2000 --binary"));
    ASSERT_TRUE(db.setHeaderVariable("$LTSCALE", 40, "0.25").ok());
    ASSERT_TRUE(db.setHeaderVariable("$CECOLOR", 62, "3").ok());
    auto dir = test::scratchDir("header-binary");
    ASSERT_TRUE(db.save(dir / "out.dxf").ok());
    Database back = test::loadOrFail(dir / "out.dxf");
    EXPECT_EQ(back.file().form(), dxf::FileForm::Binary);
    EXPECT_EQ(back.headerVariable("$LTSCALE"), "0.25");
    EXPECT_EQ(back.headerVariable("$CECOLOR"), "3");
    EXPECT_EQ(test::audit(dir / "out.dxf"), "");
}

TEST(HeaderVariable, RefusesWhatTheHeaderCannotHold) {
    Database db = Database::createNew();
    const std::string before = textOf(db);
    EXPECT_FALSE(db.setHeaderVariable("CLAYER", 8, "0").ok());
    EXPECT_FALSE(db.setHeaderVariable("$HANDSEED", 5, "FFFF").ok());
    EXPECT_FALSE(db.setHeaderVariable("$INSUNITS", 70, "metres").ok());
    EXPECT_FALSE(db.setHeaderVariable("$LTSCALE", 40, "").ok());
    EXPECT_EQ(textOf(db), before);

    Database bare = test::parseOrFail("  0\nSECTION\n  2\nENTITIES\n  0\nENDSEC\n  0\nEOF\n");
    auto refused = bare.setHeaderVariable("$INSUNITS", 70, "4");
    ASSERT_FALSE(refused.ok());
    EXPECT_NE(refused.message().find("no HEADER section"), std::string::npos) << refused.message();
}

}  // namespace
}  // namespace veltarn::db
