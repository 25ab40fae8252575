// Symbol tables, named styles and layouts of new and existing drawings.
#include "TestSupport.h"

#include "cad/db/SymbolTables.h"

#include <gtest/gtest.h>

namespace veltarn::db {
namespace {

TEST(SymbolTables, NewDrawingHoldsTheStandardRecordsStylesAndLayouts) {
    Database db = Database::createNew();
    EXPECT_EQ(recordNames(db, "LAYER"), std::vector<std::string>{"0"});
    EXPECT_EQ(recordNames(db, "LTYPE"), (std::vector<std::string>{"ByBlock", "ByLayer", "Continuous"}));
    EXPECT_EQ(recordNames(db, "STYLE"), std::vector<std::string>{"Standard"});
    EXPECT_EQ(recordNames(db, "DIMSTYLE"), std::vector<std::string>{"Standard"});
    EXPECT_EQ(recordNames(db, "APPID"), std::vector<std::string>{"ACAD"});
    for (const char* table : {"VPORT", "VIEW", "UCS", "BLOCK_RECORD"}) EXPECT_TRUE(db.hasTable(table)) << table;
    EXPECT_EQ(namedEntries(db, "ACAD_MLINESTYLE"), std::vector<std::string>{"Standard"});
    EXPECT_EQ(namedEntries(db, "ACAD_MLEADERSTYLE"), std::vector<std::string>{"Standard"});
    EXPECT_EQ(layoutNames(db), (std::vector<std::string>{"Layout1", "Model"}));
    EXPECT_EQ(layoutBlock(db, "Model"), db.modelSpace());
    EXPECT_EQ(layoutBlock(db, "layout1"), db.paperSpace());
    EXPECT_EQ(currentLayout(db), "Model");
}

TEST(SymbolTables, LayerFlagsAndOffStateAreWrittenIntoTheRecord) {
    Database db = Database::createNew();
    Layer roads{.name = "Roads", .flags = kLayerFrozen | kLayerLocked, .color = 3, .off = true, .linetype = "Continuous", .lineweight = 25, .plot = false};
    ASSERT_TRUE(writeLayer(db, roads).ok());
    Database back = test::parseOrFail(db.toText().value());
    auto layer = readLayer(back, "ROADS");
    ASSERT_TRUE(layer.has_value());
    EXPECT_TRUE(layer->frozen());
    EXPECT_TRUE(layer->locked());
    EXPECT_TRUE(layer->off);
    EXPECT_EQ(layer->color, 3);
    EXPECT_EQ(layer->lineweight, 25);
    EXPECT_FALSE(layer->plot);
    EXPECT_EQ(back.tags(back.findRecord("LAYER", "Roads")).integer(62), -3);  // off is a negative colour

    layer->flags = 0;
    layer->off = false;
    ASSERT_TRUE(writeLayer(back, *layer).ok());
    EXPECT_FALSE(readLayer(back, "Roads")->locked());
    EXPECT_FALSE(readLayer(back, "Roads")->off);
    EXPECT_FALSE(readLayer(back, "missing").has_value());
    auto dir = test::scratchDir("layers");
    ASSERT_TRUE(back.save(dir / "l.dxf").ok());
    EXPECT_EQ(test::audit(dir / "l.dxf"), "");
}

TEST(SymbolTables, RecordsOfAnotherWritersDrawingAreFound) {
    Database db = test::loadOrFail(test::generated("all-2018.dxf", "60 --kinds all"));
    EXPECT_NE(db.findRecord("LAYER", "layer_19"), kNoHandle);
    EXPECT_NE(db.findBlock("TAG"), kNoHandle);
    EXPECT_FALSE(addTextStyle(db, "standard").ok());  // the name is taken, in any case
    EXPECT_TRUE(addTextStyle(db, "Labels", "arial.ttf", 2.5).ok());
    EXPECT_NE(db.findRecord("STYLE", "LABELS"), kNoHandle);
}

}  // namespace
}  // namespace veltarn::db
