// A drawing whose file gives one handle to two objects: both are kept, the second gets a new
// handle when the drawing is read, and the finding is kept for the user and for AUDIT.
#include "TestSupport.h"
#include "ExternalTools.h"

#include "cad/db/Dictionary.h"
#include "cad/db/EntityFactory.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/Xrecord.h"

#include <gtest/gtest.h>

#include <set>

namespace veltarn::db {
namespace {

namespace fs = std::filesystem;

// The handle line after the first (or last) `type` line, replaced by `handle`.
std::string withHandle(std::string text, const std::string& type, Handle handle, bool last) {
    std::size_t at = last ? text.rfind("\n" + type + "\n") : text.find("\n" + type + "\n");
    EXPECT_NE(at, std::string::npos) << type;
    std::size_t codeLine = text.find('\n', at + 1) + 1;
    EXPECT_EQ(text.compare(codeLine, 4, "  5\n"), 0) << type << " has no handle first";
    std::size_t start = text.find('\n', codeLine) + 1;
    return text.replace(start, text.find('\n', start) - start, formatHandle(handle));
}

struct Drawing {
    std::string text;
    Handle line;    // the first line: its handle is given to the second line and to a VERTEX
    Handle record;  // an xrecord pointing at the first line
};

Drawing drawingWithDuplicates() {
    Database made = Database::createNew();
    Drawing out;
    out.line = made.appendEntity(made.modelSpace(), newLine(made, {0, 0, 0}, {1, 0, 0})).value();
    made.appendEntity(made.modelSpace(), newLine(made, {0, 1, 0}, {1, 1, 0})).value();
    TagList polyline{{0, "POLYLINE"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDb2dPolyline"}, {66, "1"}, {10, "0"}, {20, "0"}, {30, "0"}};
    for (const char* x : {"0", "5"})
        for (const auto& [code, value] : TagList{{0, "VERTEX"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbVertex"}, {100, "AcDb2dVertex"},
                                                  {10, x}, {20, "2"}, {30, "0"}})
            polyline.add(code, value);
    polyline.add(0, "SEQEND");
    polyline.add(100, "AcDbEntity");
    polyline.add(8, "0");
    made.appendEntity(made.modelSpace(), polyline).value();
    out.record = addXrecord(made, made.namedObjectsDictionary(), "POINTS_AT", {TypedValue::ofHandle(330, out.line)}).value();
    out.text = withHandle(withHandle(made.toText().value(), "LINE", out.line, true), "VERTEX", out.line, false);
    return out;
}

TEST(DuplicateHandle, BothObjectsAreKeptAndTheSecondGetsANewHandle) {
    const Drawing drawing = drawingWithDuplicates();
    Database db = test::parseOrFail(drawing.text);

    std::vector<Handle> entities = db.entitiesOf(db.modelSpace());
    ASSERT_EQ(entities.size(), 3u);
    EXPECT_EQ(std::set<Handle>(entities.begin(), entities.end()).size(), 3u);
    // The first object keeps its handle, and what points at that handle still finds it.
    EXPECT_EQ(entities[0], drawing.line);
    EXPECT_EQ(db.tags(drawing.line).real(20), 0.0);
    EXPECT_EQ(readXrecord(db, drawing.record).value().front().text, formatHandle(drawing.line));
    EXPECT_EQ(db.tags(entities[1]).real(20), 1.0);

    const auto& found = db.duplicateHandles();
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].handle, drawing.line);
    EXPECT_EQ(found[0].type, "LINE");
    EXPECT_EQ(found[0].renumbered, entities[1]);
    EXPECT_EQ(found[1].handle, drawing.line);
    EXPECT_EQ(found[1].type, "VERTEX");
    EXPECT_NE(found[1].renumbered, found[0].renumbered);
    // The renumbered VERTEX is the polyline's own, under its new handle.
    TagList polyline = db.tags(entities[2]);
    EXPECT_EQ(polyline.find(gc::kHandle, formatHandle(found[1].renumbered)) != TagList::npos, true);
    EXPECT_EQ(polyline.find(gc::kHandle, formatHandle(drawing.line)), TagList::npos);

    std::vector<std::string> notices = db.loadNotices();
    ASSERT_EQ(notices.size(), 2u);
    EXPECT_EQ(notices[0].rfind("test.dxf:", 0), 0u) << notices[0];
    EXPECT_NE(notices[0].find("handle " + formatHandle(drawing.line) + " is used twice; the second object (LINE) gets handle " +
                              formatHandle(found[0].renumbered)),
              std::string::npos)
        << notices[0];

    // New objects never take the handles given out while reading.
    Handle added = db.appendEntity(db.modelSpace(), newPoint(db, {3, 3, 0})).value();
    EXPECT_GT(added, std::max(found[0].renumbered, found[1].renumbered));
}

TEST(DuplicateHandle, TheSavedDrawingHasNoDuplicateAndReadsAlike) {
    const Drawing drawing = drawingWithDuplicates();
    Database db = test::parseOrFail(drawing.text);
    fs::path file = test::scratchDir("duplicate-handle") / "saved.dxf";
    ASSERT_TRUE(db.save(file).ok());
    EXPECT_EQ(testtools::workbenchAudit(file), "") << "the renumbered drawing saves sound";

    Database again = test::loadOrFail(file);
    EXPECT_TRUE(again.duplicateHandles().empty());
    EXPECT_TRUE(again.loadNotices().empty());
    const std::vector<Handle> entities = again.entitiesOf(again.modelSpace());
    EXPECT_EQ(entities, db.entitiesOf(db.modelSpace()));
    EXPECT_EQ(std::set<Handle>(entities.begin(), entities.end()).size(), 3u);
    for (Handle entity : entities) EXPECT_EQ(again.tags(entity), db.tags(entity));

    // Another reader finds the same handles (entities, the renumbered VERTEX): it had no duplicate
    // to give a handle of its own.
    std::string output, expected;
    for (Handle entity : entities) expected += formatHandle(entity) + " ";
    for (const auto& found : db.duplicateHandles())
        if (found.type == "VERTEX") expected += formatHandle(found.renumbered) + " ";
    ASSERT_EQ(test::runPython("-c \"import sys, ezdxf\n"
                              "doc = ezdxf.readfile(sys.argv[1])\n"
                              "handles = [e.dxf.handle for e in doc.modelspace()]\n"
                              "handles += [v.dxf.handle for e in doc.modelspace() if e.dxftype() == 'POLYLINE' for v in e.vertices][:1]\n"
                              "print(' '.join(handles))\" '" +
                                  file.string() + "'",
                              &output),
              0)
        << output;
    EXPECT_EQ(output, expected.substr(0, expected.size() - 1) + "\n");
}

}  // namespace
}  // namespace veltarn::db
