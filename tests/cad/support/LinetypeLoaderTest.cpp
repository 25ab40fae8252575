// Linetypes loaded into a real drawing, checked in the records and by an independent DXF reader.
#include "cad/support/LinetypeLoader.h"

#include "cad/db/SymbolTables.h"
#include "SupportScratch.h"

#include <gtest/gtest.h>

namespace veltarn::support {
namespace {

using test::kSupportDir;

using Names = std::vector<std::string>;

TEST(LinetypeLoader, LoadsEveryLinetypeOfTheFileAndAnIndependentReaderAgrees) {
    db::Database db = db::Database::createNew();
    auto loaded = loadLinetypes(db, kSupportDir / "acad.lin", "?*");
    ASSERT_TRUE(loaded) << loaded.message();
    EXPECT_TRUE(loaded->kept.empty());
    EXPECT_TRUE(loaded->failed.empty()) << loaded->failed.front();
    EXPECT_EQ(loaded->added.front(), "DASHED");
    EXPECT_EQ(loaded->added.back(), "GAS_MAIN");
    for (const auto& name : loaded->added) EXPECT_NE(db.findRecord("LTYPE", name), db::kNoHandle) << name;

    ASSERT_TRUE(test::haveEzdxf()) << "ezdxf is missing for /usr/bin/python3 (Debian package python3-ezdxf)";
    std::filesystem::path file = test::scratchDir("linetypes") / "linetypes.dxf";
    ASSERT_TRUE(db.save(file)) << "save failed";
    std::string out = test::runPython(R"(
import sys, ezdxf
doc = ezdxf.readfile(sys.argv[1])
for name in ("DASHDOT", "WATER_MAIN"):
    lt = doc.linetypes.get(name)
    # the style by name, since handles are the writer's to choose; reals as they add up
    value = lambda t: doc.entitydb[t.value].dxf.name if t.code == 340 else round(t.value, 9) if isinstance(t.value, float) else t.value
    print(name, lt.dxf.description, [(t.code, value(t)) for t in lt.pattern_tags.tags])
)", file);
    EXPECT_EQ(out,
              "DASHDOT Dash dot __ . __ . __ . [(72, 65), (73, 4), (40, 1.0), (49, 0.5), (74, 0), (49, -0.25), (74, 0), "
              "(49, 0.0), (74, 0), (49, -0.25), (74, 0)]\n"
              "WATER_MAIN Water main ---- W ---- W ---- [(72, 65), (73, 3), (40, 0.8), (49, 0.5), (74, 0), (49, -0.2), "
              "(74, 2), (75, 0), (340, 'Standard'), (46, 0.1), (50, 0.0), (44, -0.05), (45, -0.05), (9, 'W'), (49, -0.1), "
              "(74, 0)]\n");
}

TEST(LinetypeLoader, KeepsALinetypeTheDrawingHasAndMatchesNamesInAnyCase) {
    db::Database db = db::Database::createNew();
    ASSERT_TRUE(db::addLinetype(db, "Dashed", "ours"));
    auto loaded = loadLinetypes(db, kSupportDir / "acad.lin", "dash*");
    ASSERT_TRUE(loaded) << loaded.message();
    EXPECT_EQ(loaded->kept, Names{"DASHED"});
    EXPECT_EQ(loaded->added, (Names{"DASHED_SHORT", "DASHDOT"}));
    db::TagList tags = db.tags(db.findRecord("LTYPE", "dashed"));
    EXPECT_EQ(tags.text(3).value_or(""), "ours");  // not replaced by the file's

    auto again = loadLinetypes(db, kSupportDir / "acad.lin", "DASHED");
    ASSERT_TRUE(again) << again.message();  // present already: kept, which is success
    EXPECT_EQ(again->kept, Names{"DASHED"});
}

TEST(LinetypeLoader, FailsWithAReasonWhenNothingCouldBeLoaded) {
    db::Database db = db::Database::createNew();
    std::filesystem::path dir = test::scratchDir("linetype-failures");
    test::writeFile(dir / "t.lin",
                    "*LABEL,Label\nA,.5,-.2,[\"L\",NoSuchStyle],-.1\n*PIPE,Pipe\nA,.5,[PIPE_SYMBOL,pipes.shx,S=.1],-.5\n"
                    "*BROKEN\nA,x\n");

    auto none = loadLinetypes(db, dir / "t.lin", "NOTHERE");
    ASSERT_FALSE(none);
    EXPECT_EQ(none.message(), (dir / "t.lin").string() + ": no linetype matches \"NOTHERE\"");
    EXPECT_EQ(loadLinetypes(db, dir / "t.lin", "label").message(),
              "linetype \"LABEL\" needs the text style \"NoSuchStyle\", which the drawing lacks");
    EXPECT_EQ(loadLinetypes(db, dir / "t.lin", "pipe").message(),
              "linetype \"PIPE\" draws the shape \"PIPE_SYMBOL\": shapes in linetypes are not supported, only texts");
    EXPECT_EQ(loadLinetypes(db, dir / "t.lin", "broken").message(), (dir / "t.lin").string() + ":6: expected a dash length, found \"x\"");
    EXPECT_FALSE(loadLinetypes(db, dir / "missing.lin", "?*"));
    EXPECT_EQ(db.findRecord("LTYPE", "LABEL"), db::kNoHandle);  // nothing half made

    // One good linetype among broken ones: loaded, and the others reported.
    test::writeFile(dir / "mixed.lin", "*GOOD,Good\nA,1,-1\n*BROKEN\nA,x\n");
    auto mixed = loadLinetypes(db, dir / "mixed.lin", "?*");
    ASSERT_TRUE(mixed) << mixed.message();
    EXPECT_EQ(mixed->added, Names{"GOOD"});
    ASSERT_EQ(mixed->failed.size(), 1u);
}

}  // namespace
}  // namespace veltarn::support
