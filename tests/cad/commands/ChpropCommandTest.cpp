// CHPROP over a drawing ezdxf made: a line and a circle that differ in colour, and a line on a
// locked layer. What is written is read back by ezdxf.
#include "cad/commands/HostSession.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "ExternalTools.h"
#include "ScriptDrawingTest.h"
#include "cad/db/EntityProperties.h"
#include "cad/seam/ValueConversion.h"

namespace veltarn::cad {
namespace {

namespace fs = std::filesystem;

constexpr char kDrawing[] = R"(
import sys, ezdxf
doc = ezdxf.new("R2018", setup=["linetypes"])
doc.layers.add("Fittings")
doc.layers.add("Held")
msp = doc.modelspace()
msp.add_line((0, 0), (10, 0))
msp.add_circle((5, 5), 2, dxfattribs={"color": 3})
msp.add_line((0, 5), (10, 5), dxfattribs={"layer": "Held", "color": 5})
doc.layers.get("Held").lock()
doc.saveas(sys.argv[1])
)";

// Each model-space entity as ezdxf reads it: handle layer colour (the true colour when it has one)
// linetype ltscale lineweight.
constexpr char kReadBack[] = R"(
import sys, ezdxf
doc = ezdxf.readfile(sys.argv[1])
for e in doc.modelspace():
    print(e.dxf.handle, e.dxf.layer, e.rgb or e.dxf.color, e.dxf.linetype, f"{e.dxf.ltscale:g}", e.dxf.lineweight)
)";

class ChpropTest : public ScriptDrawingTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(open("chprop", kDrawing));
        const std::vector<db::Handle> entities = db().entitiesOf(db().modelSpace());
        ASSERT_EQ(entities.size(), 3u);
        line_ = entities[0], circle_ = entities[1], held_ = entities[2];
    }

    std::wstring hex(db::Handle h) { return seam::wide(db::formatHandle(h)); }
    db::Handle line_ = 0, circle_ = 0, held_ = 0;
};

TEST_F(ChpropTest, ChangesEveryPropertyOfTheChosenObjectsButTheLockedOneInOneStepOfTheUndo) {
    const db::TagList line = db().tags(line_), circle = db().tags(circle_), held = db().tags(held_);
    const std::size_t steps = db().journal().commandCount();
    // Keywords in any case, abbreviated; a layer or linetype as typed finds the drawing's spelling.
    const std::wstring out = type(L"CHPROP\n" + hex(line_) + L"\n" + hex(circle_) + L"\n" + hex(held_) +
                                  L"\n\nc\n200,100,0\nla\nfittings\nLT\ndashed\ns\n2.5\nlw\n35\n\n");
    EXPECT_NE(out.find(L"1 was on a locked layer.\nEnter property to change [Color/LAyer/LType/ltScale/LWeight]: c\n"
                       L"Enter new color <varies>: 200,100,0\n"),
              std::wstring::npos)
        << out;
    EXPECT_NE(out.find(L"Enter new layer name <0>: fittings\n"), std::wstring::npos) << out;
    EXPECT_NE(out.find(L"Specify new linetype scale <1>: 2.5\n"), std::wstring::npos) << out;
    EXPECT_NE(out.find(L"Enter new lineweight <BYLAYER>: 35\n"), std::wstring::npos) << out;
    EXPECT_EQ(db().journal().commandCount(), steps + 1);

    const fs::path saved = dir_ / "changed.dxf";
    ASSERT_TRUE(db().save(saved).ok());
    EXPECT_EQ(testtools::audit(saved), "");
    std::string read;
    ASSERT_EQ(
        testtools::runPython("-c " + testtools::quoted(kReadBack) + " " + testtools::quoted(saved.string()), &read), 0)
        << read;
    const std::string changed = " Fittings (200, 100, 0) DASHED 2.5 35\n";
    EXPECT_EQ(read, db::formatHandle(line_) + changed + db::formatHandle(circle_) + changed + db::formatHandle(held_) +
                        " Held 5 BYLAYER 1 -1\n");

    // The colours read back as they were typed once more: the common value is shown.
    EXPECT_NE(type(L"CHPROP\nall\n\nc\n\n\n").find(L"Enter new color <200,100,0>: \n"), std::wstring::npos) << output_;

    type(L"U\n");
    EXPECT_EQ(db().tags(line_), line);
    EXPECT_EQ(db().tags(circle_), circle);
    EXPECT_EQ(db().tags(held_), held);
}

TEST_F(ChpropTest, RefusedValuesAreAskedAgainAndEnterOrLockedLayersLeaveTheObjectsAsTheyAre) {
    // The pick-first set, left by SELECT, is taken without a prompt.
    const std::wstring out = type(L"SELECT\n" + hex(line_) +
                                  L"\n\nCHPROP\nLAyer\nNowhere\n\nColor\n256\n1,2\n\nlwEIGHT\n33\n-1\n\n"
                                  L"lty\nNone\n\nlts\n0\n-2\n\n\n");
    EXPECT_EQ(out.find(L"Select objects: ", out.find(L"CHPROP")), std::wstring::npos) << out;
    EXPECT_NE(out.find(L"Layer Nowhere not found.\nEnter new layer name <0>: \n"), std::wstring::npos) << out;
    EXPECT_NE(out.find(L"Color \"256\" is not"), std::wstring::npos) << out;
    EXPECT_NE(out.find(L"Color \"1,2\" is not"), std::wstring::npos) << out;
    EXPECT_NE(out.find(L"Lineweight \"33\" is not"), std::wstring::npos) << out;
    EXPECT_NE(out.find(L"Lineweight \"-1\" is not"), std::wstring::npos) << out;
    EXPECT_NE(out.find(L"Linetype None not found.\n"), std::wstring::npos) << out;
    EXPECT_NE(out.find(L"Specify new linetype scale <1>: 0\nRequires a positive number.\n"
                       L"Specify new linetype scale <1>: -2\nRequires a positive number.\n"),
              std::wstring::npos)
        << out;
    // Only locked objects: nothing to change, no property asked for.
    const std::wstring alone = type(L"CHPROP\n" + hex(held_) + L"\n\n");
    EXPECT_NE(alone.find(L"1 was on a locked layer.\n"), std::wstring::npos) << alone;
    EXPECT_EQ(alone.find(L"Enter property"), std::wstring::npos) << alone;
    EXPECT_FALSE(host_.currentDrawing()->modified());
}

TEST_F(ChpropTest, AnObjectMovedToALockedLayerIsLeftAloneForTheRestOfTheCommand) {
    const db::TagList line = db().tags(line_);
    const std::wstring moved = type(L"CHPROP\n" + hex(line_) + L"\n\nLA\nHeld\nC\n1\n\n");
    EXPECT_NE(moved.find(L"Enter new color <BYLAYER>: 1\n1 was on a locked layer.\n"), std::wstring::npos) << moved;
    const db::CommonProperties now = db::commonProperties(db().tags(line_));
    EXPECT_EQ(now.layer, "Held");
    EXPECT_EQ(now.color, db::Color::byLayer());
    type(L"U\n");
    EXPECT_EQ(db().tags(line_), line);
}

}  // namespace
}  // namespace veltarn::cad
