// Explode: pieces checked against an independent explode, and the EXPLODE command's bookkeeping.
#include "TestSupport.h"
#include "ExternalTools.h"

#include "cad/db/EntityFactory.h"
#include "cad/db/EntityProperties.h"
#include "cad/db/Explode.h"
#include "cad/db/ExtensionDictionary.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/SymbolTables.h"
#include "cad/db/Transform.h"
#include "cad/dxf/NumberText.h"

#include <gtest/gtest.h>

#include <cmath>

namespace veltarn::db {
namespace {

Handle append(Database& db, Handle block, TagList tags) {
    auto added = db.appendEntity(block, std::move(tags));
    EXPECT_TRUE(added.ok()) << added.message();
    return added.ok() ? *added : kNoHandle;
}

// An old-style POLYLINE with its VERTEX entities, as CAD programs write one.
Handle appendPolyline(Database& db, Handle block, std::string_view subclass, int flags, const std::vector<Vertex>& vertices) {
    TagList tags = newEntity(db, "POLYLINE");
    tags.add(100, std::string(subclass));
    tags.add(66, "1");
    tags.addPoint(10, {});
    tags.addInteger(70, flags);
    Handle h = append(db, block, tags);
    ObjectWriter w = db.openForWrite(h);
    EXPECT_TRUE(setPolylineVertices(db, w.tags(), vertices));
    return h;
}

TagList withNormal(TagList tags, const Point3& normal) {
    tags.addPoint(gc::kNormalX, normal);
    return tags;
}

TagList attributeDefinition(const Database& db, std::string_view tag, std::string_view value, int flags) {
    TagList tags = newEntity(db, "ATTDEF");
    tags.add(100, "AcDbText");
    tags.addPoint(10, {0.5, 2, 0});
    tags.addReal(40, 0.5);
    tags.add(1, std::string(value));
    tags.add(100, "AcDbAttributeDefinition");
    tags.add(3, "prompt");
    tags.add(2, std::string(tag));
    tags.addInteger(70, flags);
    return tags;
}

// A block reference with attributes as CAD programs write it.
TagList insertWithAttribute(const Database& db, std::string_view block, const Point3& at, std::string_view value, int flags) {
    TagList tags = newInsert(db, block, at, 1, 0);
    tags.insert(tags.find(100, "AcDbBlockReference") + 1, 66, "1");
    tags.add(0, "ATTRIB");
    tags.add(100, "AcDbEntity");
    tags.add(8, "0");
    tags.add(100, "AcDbText");
    tags.addPoint(10, at + Point3{1, 1, 0});
    tags.addReal(40, 0.5);
    tags.add(1, std::string(value));
    tags.add(100, "AcDbAttribute");
    tags.add(2, "ID");
    tags.addInteger(70, flags);
    tags.add(0, "SEQEND");
    tags.add(100, "AcDbEntity");
    tags.add(8, "0");
    return tags;
}

TEST(Explode, PiecesLieWhereAnIndependentExplodeShowsThem) {
    Database db = Database::createNew();
    Handle model = db.modelSpace();
    Handle inner = db.addBlock("INNER", {0, 0, 0}).value();
    append(db, inner, newLine(db, {0, 0, 0}, {0, 1, 0}));
    Handle symbol = db.addBlock("SYM", {1, 1, 0}).value();
    append(db, symbol, newLine(db, {1, 1, 0}, {3, 1, 0}));
    append(db, symbol, newArc(db, {2, 2, 0}, 1, 10, 100));
    append(db, symbol, newCircle(db, {1, 3, 0}, 0.5));
    append(db, symbol, newLwpolyline(db, {{{0, 0, 0}, 0.5}, {{2, 0, 0}, -1}, {{2, 2, 0}, 0}}, true));
    append(db, symbol, newText(db, {1, 4, 0}, 0.25, "label"));
    append(db, symbol, newInsert(db, "INNER", {3, 3, 0}, 2, 15));
    append(db, symbol, attributeDefinition(db, "C", "constant", 2));
    append(db, symbol, attributeDefinition(db, "ID", "?", 0));
    TagList tilted = newArc(db, {0, 0, 0.5}, 1, 0, 90);
    tilted.setPointIn("AcDbCircle", gc::kNormalX, {0, 0.6, 0.8});
    append(db, symbol, tilted);

    std::vector<Handle> targets;
    targets.push_back(append(db, model, newInsert(db, "SYM", {10, 5, 0}, 2, 30)));
    TagList mirrored = newInsert(db, "SYM", {-4, 2, 1}, 1.5, 45);
    setRealProperty(mirrored, Property::ScaleX, -1.5);
    targets.push_back(append(db, model, mirrored));
    targets.push_back(append(db, model, withNormal(newInsert(db, "SYM", {2, 2, 3}, 1, 60), {0.6, 0, 0.8})));
    targets.push_back(append(db, model, insertWithAttribute(db, "SYM", {20, 0, 0}, "attr:visible", 0)));
    targets.push_back(append(db, model, insertWithAttribute(db, "SYM", {30, 0, 0}, "attr:hidden", 1)));
    targets.push_back(append(db, model, newLwpolyline(db, {{{0, 0, 0}, 1}, {{4, 0, 0}, -0.3}, {{4, 3, 0}, 0}, {{4, 3, 0}, 0}}, true)));
    targets.push_back(append(db, model, withNormal(newLwpolyline(db, {{{1, 1, 2}, 0.4}, {{3, 1, 2}, 0}, {{3, 4, 2}, 0}}, false), {0, 0, -1})));

    auto dir = test::scratchDir("explode");
    ASSERT_TRUE(db.save(dir / "before.dxf").ok());
    EXPECT_EQ(testtools::workbenchAudit(dir / "before.dxf"), "");
    std::string handles;
    for (Handle h : targets) {
        handles += (handles.empty() ? "" : ",") + formatHandle(h);
        auto pieces = explodeInPlace(db, h);
        ASSERT_TRUE(pieces.ok()) << pieces.message();
        EXPECT_FALSE(pieces->empty());
        EXPECT_EQ(db.status(h), OpenStatus::Erased);
    }
    ASSERT_TRUE(db.save(dir / "after.dxf").ok());
    EXPECT_EQ(test::audit(dir / "after.dxf"), "");
    std::string differences;
    EXPECT_EQ(test::runPython(std::string(VELTARN_SOURCE_DIR) + "/tests/cad/db/data/explode_check.py " + (dir / "before.dxf").string() + " " +
                                  (dir / "after.dxf").string() + " " + handles, &differences), 0);
    EXPECT_EQ(differences, "");
}

TEST(Explode, PolylinesBreakIntoLinesAndArcsWithTheirProperties) {
    Database db = Database::createNew();
    Handle model = db.modelSpace();
    TagList polyline = newLwpolyline(db, {{{0, 0, 0}, 1}, {{2, 0, 0}, 0}, {{2, 2, 0}, 0}}, false);
    setLayer(polyline, "ROADS");
    setColor(polyline, Color::ofIndex(3));
    setLinetype(polyline, "DASHED");
    setLineweight(polyline, 50);
    auto pieces = explode(db, append(db, model, polyline)).value();
    ASSERT_EQ(pieces.size(), 2u);  // open: no closing segment
    EXPECT_EQ(pieces[0].type(), "ARC");
    EXPECT_EQ(pieces[1].type(), "LINE");
    for (const TagList& piece : pieces) {
        CommonProperties common = commonProperties(piece);
        EXPECT_EQ(common.layer, "ROADS");
        EXPECT_EQ(common.color, Color::ofIndex(3));
        EXPECT_EQ(common.linetype, "DASHED");
        EXPECT_EQ(common.lineweight, 50);
    }
    // A half circle below the chord from (0,0) to (2,0): centre (1,0), radius 1, from 180 to 0.
    EXPECT_EQ(pieces[0].point(10), (Point3{1, 0, 0}));
    EXPECT_DOUBLE_EQ(pieces[0].real(40).value(), 1);
    EXPECT_DOUBLE_EQ(pieces[0].real(50).value(), 180);
    EXPECT_NEAR(std::fmod(pieces[0].real(51).value(), 360), 0, 1e-9);

    // An old-style 3D polyline: lines between its vertices, closed back to the first.
    Handle h = appendPolyline(db, model, "AcDb3dPolyline", 9, {{{0, 0, 0}}, {{1, 0, 1}}, {{1, 1, 2}}});
    auto lines = explode(db, h).value();
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[1].point(10), (Point3{1, 0, 1}));
    EXPECT_EQ(lines[2].point(11), (Point3{0, 0, 0}));
}

TEST(Explode, RefusesWhatItCannotExplodeAndChangesNothing) {
    Database db = Database::createNew();
    Handle model = db.modelSpace();
    Handle block = db.addBlock("DIMMED").value();
    TagList dimension = newEntity(db, "DIMENSION");
    dimension.add(100, "AcDbDimension");
    dimension.addPoint(10, {});
    append(db, block, dimension);
    Handle dimmed = append(db, model, newInsert(db, "DIMMED", {}));
    Handle circles = db.addBlock("ROUND").value();
    append(db, circles, newCircle(db, {}, 1));
    TagList squashed = newInsert(db, "ROUND", {});
    setRealProperty(squashed, Property::ScaleY, 3);
    Handle squash = append(db, model, squashed);
    Handle line = append(db, model, newLine(db, {}, {1, 1, 0}));
    Handle missing = append(db, model, newInsert(db, "NOSUCH", {}));
    const std::string before = test::withoutSeed(db);
    for (Handle h : {dimmed, squash, line, missing}) EXPECT_FALSE(explodeInPlace(db, h).ok()) << formatHandle(h);
    EXPECT_TRUE(test::withoutSeed(db) == before);

    // Locked layers are refused by the command, not by the plain explode.
    writeLayer(db, {.name = "LOCKED", .flags = kLayerLocked}).value();
    TagList onLocked = newLwpolyline(db, {{{0, 0, 0}}, {{1, 0, 0}}}, false);
    setLayer(onLocked, "LOCKED");
    Handle locked = append(db, model, onLocked);
    EXPECT_TRUE(explode(db, locked).ok());
    EXPECT_FALSE(explodeInPlace(db, locked).ok());
}

// Multilines break into what their style shows; hatches, multilines and wipeouts in a block are
// placed with it (mirrored, scaled, tilted), as an independent explode places them.
TEST(Explode, MultilinesHatchesAndWipeoutsLieWhereAnIndependentExplodeShowsThem) {
    auto dir = test::scratchDir("explode-kinds");
    const auto drawing = test::madeByScript("make_explode_kinds.py");
    Database db = test::loadOrFail(drawing);
    std::string handles;
    std::vector<Handle> hatches;
    for (Handle entity : db.entitiesOf(db.modelSpace())) {
        handles += (handles.empty() ? "" : ",") + formatHandle(entity);
        auto pieces = explodeInPlace(db, entity);
        ASSERT_TRUE(pieces.ok()) << pieces.message();
        for (Handle piece : *pieces) {
            if (db.typeName(piece) == "HATCH" && db.tags(piece).text(2) == "ANSI31") hatches.push_back(piece);
            // A placed multiline is compared by its own pieces.
            if (db.typeName(piece) == "MLINE") {
                ASSERT_TRUE(explodeInPlace(db, piece).ok());
            }
        }
    }
    ASSERT_TRUE(db.save(dir / "after.dxf").ok());
    EXPECT_EQ(test::audit(dir / "after.dxf"), "");
    std::string differences;
    EXPECT_EQ(test::runPython(std::string(VELTARN_SOURCE_DIR) + "/tests/cad/db/data/explode_check.py " + drawing.string() + " " +
                                  (dir / "after.dxf").string() + " " + handles, &differences), 0);
    EXPECT_EQ(differences, "");

    // The pattern goes with the hatch (the independent explode leaves it as it was): scaled and
    // turned by the reference; the copies are no longer tied to boundary objects.
    ASSERT_EQ(hatches.size(), 3u);
    TagList first = db.tags(hatches[0]);
    auto [from, to] = first.subclass("AcDbHatch");
    EXPECT_DOUBLE_EQ(first.real(41, from, to).value(), 1.0);                            // 0.5 x 2
    EXPECT_NEAR(first.real(52, from, to).value(), 45, 1e-9);                           // 15 + 30
    EXPECT_NEAR(first.real(53, from, to).value(), 45 + 45, 1e-9);                       // ANSI31's 45-degree lines
    EXPECT_EQ(first.integer(71, from, to), 0);
    TagList mirrored = db.tags(hatches[1]);
    std::tie(from, to) = mirrored.subclass("AcDbHatch");
    EXPECT_DOUBLE_EQ(mirrored.real(41, from, to).value(), 0.75);
    EXPECT_NEAR(mirrored.real(52, from, to).value(), std::fmod(45 + 180 - 15, 360), 1e-9);  // turned, read backwards
}

// Caps a multiline suppresses are not drawn; an element's breaks leave gaps in its pieces.
TEST(Explode, MultilinesKeepTheirSuppressedCapsAndBreaks) {
    const auto drawing = test::madeByScript("make_explode_kinds.py");
    Database db = test::loadOrFail(drawing);
    Handle open = db.entitiesOf(db.modelSpace()).front();
    ASSERT_EQ(db.typeName(open), "MLINE");
    auto count = [&](std::string_view type) {
        auto pieces = explode(db, open);
        EXPECT_TRUE(pieces.ok()) << pieces.message();
        std::size_t n = 0;
        for (const TagList& piece : pieces.value()) n += piece.type() == type;
        return n;
    };
    // 4 elements x 3 segments, the start's square cap and the two inner miters in halves; at the end
    // the round cap in two colours and one inner arc; at the start one inner arc.
    EXPECT_EQ(count("LINE"), 12u + 2 + 2 * 2);
    EXPECT_EQ(count("ARC"), 2u + 1 + 1);
    {
        ObjectWriter w = db.openForWrite(open);
        auto [from, to] = w.tags().subclass("AcDbMline");
        std::size_t flags = w.tags().find(71, from, to);
        w.tags()[flags].value = std::to_string(dxf::parseInteger(w.tags()[flags].value).value_or(0) | 4 | 8);
        // The first element's first segment: drawn from 0 to 3 and from 5 to its end.
        std::size_t params = w.tags().find(74, from, to);
        w.tags()[params].value = "4";
        w.tags().insert(params + 3, 41, "3");
        w.tags().insert(params + 4, 41, "5");
    }
    EXPECT_EQ(count("ARC"), 0u);
    EXPECT_EQ(count("LINE"), 13u + 2 * 2);
    // The first element runs along y = its offset on the first segment, (0,0) to (10,0).
    TagList mline = db.tags(open);
    auto [from, to] = mline.subclass("AcDbMline");
    double y = mline.point(13, from, to)->y * mline.real(41, from, to).value();
    std::vector<std::pair<double, double>> firstElement;
    auto broken = explode(db, open);
    ASSERT_TRUE(broken.ok());
    for (const TagList& piece : *broken)
        if (piece.type() == "LINE" && std::abs(piece.point(10)->y - y) < 1e-9 && std::abs(piece.point(11)->y - y) < 1e-9)
            firstElement.emplace_back(piece.point(10)->x, piece.point(11)->x);
    EXPECT_EQ(firstElement, (std::vector<std::pair<double, double>>{{0, 3}, {5, 10}}));
}

// Damaged multilines, meshes and hatches (a tag missing, a number wild) explode or fail; they
// never take the program down.
TEST(Explode, DamagedTagsFailOrExplodeButNeverCrash) {
    const auto drawing = test::madeByScript("make_explode_kinds.py");
    Database db = test::loadOrFail(drawing);
    std::vector<Handle> targets;
    Handle reference = kNoHandle;
    for (Handle entity : db.entitiesOf(db.modelSpace())) {
        std::string_view type = db.typeName(entity);
        if (type == "MLINE" || type == "POLYLINE") targets.push_back(entity);
        if (type == "INSERT" && reference == kNoHandle) reference = entity;
    }
    for (Handle entity : db.entitiesOf(db.findBlock("HB"))) targets.push_back(entity);
    ASSERT_EQ(targets.size(), 8u);
    int failed = 0, exploded = 0;
    for (Handle target : targets) {
        const TagList original = db.tags(target);
        bool inBlock = db.blockOf(target) != db.modelSpace();
        for (std::size_t i = 1; i < original.size(); ++i) {
            for (int variant = 0; variant < 2; ++variant) {
                TagList damaged = original;
                if (variant == 0) damaged.erase(i);
                else damaged[i].value = "-9223372036854775808";
                ASSERT_EQ(db.replace(target, damaged), OpenStatus::Ok);
                auto pieces = explode(db, inBlock ? reference : target);
                pieces.ok() ? ++exploded : ++failed;
            }
        }
        ASSERT_EQ(db.replace(target, original), OpenStatus::Ok);
    }
    EXPECT_GT(exploded, 0);
    EXPECT_GT(failed, 0);
}

TEST(Explode, TheCommandIsUndoneWholeAndKeepsHandlesUnique) {
    Database db = Database::createNew();
    Handle model = db.modelSpace();
    Handle block = db.addBlock("P").value();
    appendPolyline(db, block, "AcDb2dPolyline", 0, {{{0, 0, 0}}, {{1, 0, 0}}});
    Handle reference = append(db, model, newInsert(db, "P", {5, 5, 0}));
    (void)createExtensionDictionary(db, reference).value();
    const std::string before = test::withoutSeed(db);
    db.beginCommand("EXPLODE");
    auto pieces = explodeInPlace(db, reference);
    db.endCommand();
    ASSERT_TRUE(pieces.ok()) << pieces.message();
    ASSERT_EQ(pieces->size(), 1u);
    // The copied polyline's vertices got handles of their own, owned by the copy.
    TagList copy = db.tags(pieces->front());
    for (std::size_t i = 1; i < copy.size(); ++i) {
        if (copy[i].code != 0) continue;
        Handle sub = parseHandle(copy.text(5, i).value()).value();
        EXPECT_EQ(db.blockOf(sub), model) << "sub-entity " << formatHandle(sub) << " still belongs to the block";
        EXPECT_EQ(copy.text(330, i).value(), formatHandle(pieces->front()));
    }
    EXPECT_EQ(copy.point(10, copy.find(0, "VERTEX")).value(), (Point3{5, 5, 0}));
    ASSERT_TRUE(db.undo());
    EXPECT_TRUE(test::withoutSeed(db) == before);
}

}  // namespace
}  // namespace veltarn::db

namespace veltarn::db {
namespace {

// Pieces take the form of the drawing they go into: an R12 drawing gets no subclass markers or owners.
TEST(Explode, R12DrawingsStayReadable) {
    Database db = test::loadOrFail(test::generated("all-r12.dxf", "40 --kinds all --version R12"));
    int exploded = 0;
    for (Handle entity : db.entitiesOf(db.modelSpace())) {
        std::string_view type = db.typeName(entity);
        if (type != "INSERT" && type != "POLYLINE") continue;
        auto pieces = explodeInPlace(db, entity);
        if (pieces.ok()) ++exploded;
    }
    EXPECT_GT(exploded, 2);
    auto dir = test::scratchDir("explode-r12");
    ASSERT_TRUE(db.save(dir / "r12.dxf").ok());
    EXPECT_EQ(test::audit(dir / "r12.dxf"), "");
    EXPECT_EQ(db.toText().value().find("AcDb"), std::string::npos);
}

}  // namespace
}  // namespace veltarn::db
