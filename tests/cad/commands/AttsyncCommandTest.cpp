// ATTSYNC and REGEN over a drawing ezdxf made: references to a block whose attribute definitions
// changed after they were inserted (one tag kept, one removed, one added, one constant), in model
// space, paper space, on a locked layer and inside another block. What is written is read back
// by ezdxf.
#include "cad/commands/HostSession.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "ExternalTools.h"
#include "ScriptDrawingTest.h"
#include "cad/db/Geometry.h"
#include "cad/db/GroupCodes.h"
#include "cad/seam/ValueConversion.h"

namespace veltarn::cad {
namespace {

namespace fs = std::filesystem;

constexpr char kDrawing[] = R"(
import sys, ezdxf
doc = ezdxf.new("R2018")
for name in ("Fittings", "Notes", "Held"):
    doc.layers.add(name)
tag = doc.blocks.new("TAG", base_point=(1, 0))
tag.add_line((0, 0), (2, 0))
tag.add_attdef("KEEP", (0, 1), text="k0", dxfattribs={"height": 0.5})
tag.add_attdef("GONE", (0, 2), text="g0", dxfattribs={"layer": "Notes"})
tag.add_attdef("FIXED", (0, 3), text="c", dxfattribs={"flags": 2})
doc.blocks.new("PLAIN").add_circle((0, 0), 1)
msp = doc.modelspace()
a = msp.add_blockref("TAG", (10, 10), dxfattribs={"layer": "Fittings", "xscale": 2, "yscale": 2, "rotation": 90})
a.add_auto_attribs({"KEEP": "user", "GONE": "x"})
for attrib in a.attribs:
    attrib.new_extension_dict().add_xrecord("NOTE").reset([(1, attrib.dxf.tag)])
msp.add_blockref("TAG", (30, 0))
msp.add_blockref("TAG", (40, 0), dxfattribs={"layer": "Held"}).add_auto_attribs({"KEEP": "held"})
msp.add_blockref("PLAIN", (0, 0))
doc.layout("Layout1").add_blockref("TAG", (5, 5)).add_auto_attribs({"KEEP": "sheet", "GONE": "y"})
doc.blocks.new("FRAME").add_blockref("TAG", (0, 0))
tag.delete_entity(tag.query("ATTDEF[tag=='GONE']").first)
tag.add_attdef("NEW", (0, -1), text="n0", dxfattribs={"height": 0.25, "layer": "Notes"})
doc.layers.get("Held").lock()
doc.saveas(sys.argv[1])
)";

// Each reference's attributes as ezdxf reads them: tag=value@x,y/layer/height/rotation/has data.
constexpr char kReadBack[] = R"(
import sys, ezdxf
doc = ezdxf.readfile(sys.argv[1])
for layout in list(doc.layouts) + [doc.blocks.get("FRAME")]:
    for ref in layout.query("INSERT[name=='TAG']"):
        if ref.dxf.layer == "Held":  # locked: left as ezdxf wrote it
            continue
        print(ref.dxf.handle, *(f"{a.dxf.tag}={a.dxf.text}@{a.dxf.insert.x:g},{a.dxf.insert.y:g}/{a.dxf.layer}/"
              f"{a.dxf.height:g}/{a.dxf.rotation:g}/{int(a.has_extension_dict)}" for a in ref.attribs))
)";

class AttsyncTest : public ScriptDrawingTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(open("attsync", kDrawing));
        for (db::Handle h : db().entitiesOf(db().modelSpace()))
            if (db().typeName(h) == "INSERT") model_.push_back(h);
        ASSERT_EQ(model_.size(), 4u);  // rotated, bare, locked, PLAIN
        paper_ = db().entitiesOf(db().paperSpace()).at(0);
        nested_ = db().entitiesOf(db().findBlock("FRAME")).at(0);
    }

    std::string attributesOf(db::Handle reference) {
        std::string out;
        for (const db::Attribute& a : db::attributes(db().tags(reference)))
            out += a.tag + "=" + a.value + " ";
        return out;
    }
    // The extension dictionary of the reference's attribute `tag` (its group comes before the tag).
    db::Handle dictionaryOf(db::Handle reference, const char* tag) {
        const db::TagList tags = db().tags(reference);
        for (std::size_t i = tags.find(db::gc::kTag, tag); i != db::TagList::npos && i > 0; --i)
            if (tags[i].code == db::gc::kHardOwner) return db::parseHandle(tags[i].value).value_or(db::kNoHandle);
        return db::kNoHandle;
    }

    std::vector<db::Handle> model_;
    db::Handle paper_ = 0, nested_ = 0;
};

TEST_F(AttsyncTest, ByNameKeepsValuesAddsDefaultsDropsGoneTagsEverywhereAndUndoBringsThemBack) {
    std::vector<db::TagList> before;
    for (db::Handle h : {model_[0], model_[1], model_[2], paper_, nested_})
        before.push_back(db().tags(h));
    const db::Handle goneData = dictionaryOf(model_[0], "GONE"), keptData = dictionaryOf(model_[0], "KEEP");
    ASSERT_TRUE(db().exists(goneData) && db().exists(keptData));

    // As the module sends it: English name, not redefined; option and block name in any case.
    const std::wstring out = type(L"_.attsync _n tag\n");
    EXPECT_NE(out.find(L"Enter an option [?/Name/Select] <Select>: _n\nEnter name of block to synchronize: tag\n"
                       L"ATTSYNC block TAG\n1 reference on a locked layer was left as it was.\n"),
              std::wstring::npos)
        << out;
    EXPECT_EQ(attributesOf(model_[0]), "KEEP=user NEW=n0 ");
    EXPECT_EQ(attributesOf(model_[1]), "KEEP=k0 NEW=n0 ") << "a reference without attributes gets them";
    EXPECT_EQ(attributesOf(paper_), "KEEP=sheet NEW=n0 ");
    EXPECT_EQ(attributesOf(nested_), "KEEP=k0 NEW=n0 ");
    EXPECT_EQ(db().tags(model_[2]), before[2]) << "on a locked layer";
    EXPECT_EQ(dictionaryOf(model_[0], "KEEP"), keptData);
    EXPECT_EQ(db().status(goneData), db::OpenStatus::Erased) << "the removed attribute's data goes with it";

    const fs::path saved = dir_ / "synced.dxf";
    ASSERT_TRUE(db().save(saved).ok());
    // Both auditors: the kept attribute's extension dictionary is the attribute's, not its reference's.
    EXPECT_EQ(testtools::audit(saved), "");
    std::string read;
    ASSERT_EQ(
        testtools::runPython("-c " + testtools::quoted(kReadBack) + " " + testtools::quoted(saved.string()), &read), 0)
        << read;
    auto hex = [](db::Handle h) { return db::formatHandle(h); };
    // Placed by each reference: the rotated one (scale 2, 90 degrees) turns the definitions'
    // offsets from the base point; a definition on layer 0 takes the reference's layer.
    EXPECT_EQ(read, hex(model_[0]) + " KEEP=user@8,8/Fittings/1/90/1 NEW=n0@12,8/Notes/0.5/90/0\n" + hex(model_[1]) +
                        " KEEP=k0@29,1/0/0.5/0/0 NEW=n0@29,-1/Notes/0.25/0/0\n" + hex(paper_) +
                        " KEEP=sheet@4,6/0/0.5/0/0 NEW=n0@4,4/Notes/0.25/0/0\n" + hex(nested_) +
                        " KEEP=k0@-1,1/0/0.5/0/0 NEW=n0@-1,-1/Notes/0.25/0/0\n");

    // One step of the undo, back to the attributes as they were, data included.
    type(L"U\n");
    const std::vector<db::Handle> references{model_[0], model_[1], model_[2], paper_, nested_};
    for (std::size_t i = 0; i < references.size(); ++i)
        EXPECT_EQ(db().tags(references[i]), before[i]) << i;
    EXPECT_TRUE(db().exists(goneData));

    // Synchronised references stay as they are when synchronised again.
    type(L"REDO\n");
    const std::size_t steps = db().journal().commandCount();
    type(L"ATTSYNC N TAG\n");
    EXPECT_EQ(db().journal().commandCount(), steps) << "a second run changed the drawing again";
}

TEST_F(AttsyncTest, SelectPicksAReferenceAndBlocksThatCannotBeSynchronisedSaySo) {
    EXPECT_NE(type(L"ATTSYNC N no such \n").find(L"Block no such not found.\n"), std::wstring::npos) << output_;
    EXPECT_NE(type(L"ATTSYNC N PLAIN\n").find(L"Block PLAIN has no attributes.\n"), std::wstring::npos) << output_;
    // "?" lists the blocks with attribute definitions and asks again; Enter picks by default.
    const std::wstring listed = type(L"ATTSYNC ?\n\n\n");
    EXPECT_NE(listed.find(L"Blocks with attributes:\n  TAG\nEnter an option"), std::wstring::npos) << listed;
    EXPECT_EQ(listed.find(L"PLAIN"), std::wstring::npos) << listed;
    EXPECT_FALSE(host_.currentDrawing()->modified());

    const std::wstring plain = seam::wide(db::formatHandle(model_[3])), bare = seam::wide(db::formatHandle(model_[1]));
    const std::wstring picked = type(L"ATTSYNC S ZZ\n" + plain + L"\nATTSYNC\n\n" + bare + L"\n");
    EXPECT_NE(picked.find(L"Select a block: ZZ\nNot a block reference.\nSelect a block: " + plain +
                          L"\nBlock PLAIN has no attributes.\n"),
              std::wstring::npos)
        << picked;
    EXPECT_NE(picked.find(L"ATTSYNC block TAG\n"), std::wstring::npos) << picked;
    EXPECT_EQ(attributesOf(model_[1]), "KEEP=k0 NEW=n0 ");
    EXPECT_EQ(attributesOf(model_[0]), "KEEP=user NEW=n0 ") << "the whole block is synchronised";
}

TEST_F(AttsyncTest, RegenChangesNothingAsksTheViewToRedrawAndLeavesRedoPossible) {
    int redraws = 0;
    session_.redrawView = [&redraws] { ++redraws; };
    type(L"ATTSYNC N TAG\nU\n");
    const auto text = db().toText();
    ASSERT_TRUE(text.ok());
    EXPECT_EQ(type(L"_.regen\n"), L"Command: _.regen\nRegenerating model.\n");
    EXPECT_EQ(redraws, 1);
    EXPECT_EQ(db().toText().value(), text.value());
    EXPECT_NE(type(L"REDO\n").find(L"Redo ATTSYNC"), std::wstring::npos) << output_;
}

}  // namespace
}  // namespace veltarn::cad
