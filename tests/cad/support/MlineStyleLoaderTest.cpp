// Multiline styles loaded into a real drawing's ACAD_MLINESTYLE dictionary.
#include "cad/support/MlineStyleLoader.h"

#include "cad/db/SymbolTables.h"
#include "SupportScratch.h"

#include <gtest/gtest.h>

namespace veltarn::support {
namespace {

using test::kDataDir;

TEST(MlineStyleLoader, AddsTheStyleToTheDictionaryAndAnIndependentReaderAgrees) {
    db::Database db = db::Database::createNew();
    auto loaded = loadMlineStyle(db, kDataDir / "good_roads.mln", "road_2lane");
    ASSERT_TRUE(loaded) << loaded.message();
    EXPECT_EQ(*loaded, MlineStyleLoad::Added);
    EXPECT_EQ(db::namedEntries(db, "ACAD_MLINESTYLE"), (std::vector<std::string>{"Standard", "ROAD_2LANE"}));

    ASSERT_TRUE(test::haveEzdxf()) << "ezdxf is missing for /usr/bin/python3 (Debian package python3-ezdxf)";
    std::filesystem::path file = test::scratchDir("mlinestyles") / "mlinestyles.dxf";
    ASSERT_TRUE(db.save(file));
    std::string out = test::runPython(R"(
import sys, ezdxf
doc = ezdxf.readfile(sys.argv[1])
auditor = doc.audit()
style = doc.mline_styles.get("ROAD_2LANE")
print(style.dxf.description, style.dxf.flags, style.dxf.fill_color, style.dxf.start_angle, style.dxf.end_angle)
print([(e.offset, e.color, e.linetype) for e in style.elements])
print(style.dxf.owner == doc.rootdict["ACAD_MLINESTYLE"].dxf.handle, len(auditor.errors))
)", file);
    EXPECT_EQ(out,
              "Two-lane road 272 8 90.0 90.0\n"
              "[(3.5, 7, 'BYLAYER'), (0.0, 2, 'DASHED'), (-3.5, 256, 'BYLAYER')]\n"
              "True 0\n");
}

TEST(MlineStyleLoader, KeepsAStyleTheDrawingHasAndFailsOnAnAbsentOne) {
    db::Database db = db::Database::createNew();
    auto standard = loadMlineStyle(db, kDataDir / "good_roads.mln", "wall");
    ASSERT_TRUE(standard);
    EXPECT_EQ(*standard, MlineStyleLoad::Added);
    auto again = loadMlineStyle(db, kDataDir / "good_roads.mln", "WALL");
    ASSERT_TRUE(again);
    EXPECT_EQ(*again, MlineStyleLoad::Kept);
    EXPECT_EQ(db::namedEntries(db, "ACAD_MLINESTYLE").size(), 2u);

    auto absent = loadMlineStyle(db, kDataDir / "good_roads.mln", "canal");
    ASSERT_FALSE(absent);
    EXPECT_EQ(absent.message(), (kDataDir / "good_roads.mln").string() + ": no multiline style \"canal\"");
}

}  // namespace
}  // namespace veltarn::support
