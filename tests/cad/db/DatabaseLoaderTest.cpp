// Loading indexes a drawing while its tags are read: every kind of slot (objects, POLYLINE and
// INSERT with their sub-entities, tags outside sections, unknown sections) in ASCII and binary
// files, each written back byte for byte; damaged drawings are refused as the tag layer refuses them.
#include "TestSupport.h"

#include "cad/dxf/TagWriter.h"

#include <gtest/gtest.h>

namespace veltarn::db {
namespace {

std::string lines(std::initializer_list<const char*> parts) {
    std::string out;
    for (const char* part : parts) out += std::string(part) + "\n";
    return out;
}

// Comments and stray tags outside sections, a lower-case table name, entities in both spaces,
// POLYLINE and INSERT chains in a block and in ENTITIES, a tag before the first entity, an
// unknown section, and $HANDSEED as the header's last value.
const std::string kDrawing = lines({
    "999", "written by hand",
    "  0", "SECTION", "  2", "HEADER", "  9", "$ACADVER", "  1", "AC1015", "  9", "$HANDSEED", "  5", "40",
    "  0", "ENDSEC", "  9", "$STRAY", " 70", "1", "  0", "ENDSEC",
    "  0", "SECTION", "  2", "CLASSES", "  0", "CLASS", "  1", "ACDBDICTIONARYWDFLT", "  0", "ENDSEC",
    "  0", "SECTION", "  2", "TABLES",
    "  0", "TABLE", "  2", "layer", "  5", "2",
    "  0", "LAYER", "  5", "10", "  2", "0", "  0", "LAYER", "  5", "11", "  2", "Walls", "  0", "ENDTAB",
    "  0", "TABLE", "  2", "BLOCK_RECORD", "  5", "1",
    "  0", "BLOCK_RECORD", "  5", "1F", "  2", "*Model_Space", "  0", "BLOCK_RECORD", "  5", "1E", "  2", "*Paper_Space",
    "  0", "BLOCK_RECORD", "  5", "20", "  2", "Door", "  0", "ENDTAB",
    "  0", "ENDSEC",
    "  0", "SECTION", "  2", "BLOCKS",
    "  0", "BLOCK", "  5", "21", "  2", "*Model_Space", "  0", "ENDBLK", "  5", "22",
    "  0", "BLOCK", "  5", "23", "  2", "*Paper_Space", "  0", "ENDBLK", "  5", "24",
    "  0", "BLOCK", "  5", "25", "  8", "0", "  2", "Door",
    "  0", "LINE", "  5", "26",
    "  0", "POLYLINE", "  5", "27", " 66", "1", "  0", "VERTEX", "  5", "28", "  0", "VERTEX", "  5", "29", "  0", "SEQEND", "  5", "2A",
    "  0", "ENDBLK", "  5", "2B",
    "  0", "ENDSEC",
    "  0", "SECTION", "  2", "ENTITIES", "  8", "0",
    "  0", "LINE", "  5", "30", "100", "AcDbEntity", "  8", "Walls",
    "  0", "CIRCLE", "  5", "31", "100", "AcDbEntity", " 67", "1",
    "  0", "INSERT", "  5", "32", " 66", "1", "  2", "Door", "  0", "ATTRIB", "  5", "33", "  0", "SEQEND", "  5", "34",
    "  0", "TEXT", "  5", "35", "100", "AcDbEntity", "100", "AcDbText", " 67", "1",  // no space flag after the second marker
    "  0", "ENDSEC",
    "  0", "SECTION", "  2", "THUMBNAILIMAGE", " 90", "0", "  0", "ENDSEC",
    "  0", "SECTION", "  2", "OBJECTS", "  0", "DICTIONARY", "  5", "C", "  0", "DICTIONARY", "  5", "D", "  0", "ENDSEC",
    "  0", "EOF",
});

void expectIndexed(const std::string& bytes, const char* form) {
    SCOPED_TRACE(form);
    Database db = test::parseOrFail(bytes);
    auto text = db.toText();
    ASSERT_TRUE(text.ok()) << text.message();
    EXPECT_TRUE(*text == bytes) << "not written back byte for byte";
    EXPECT_EQ(db.file().size(), 0u);  // no tag vector is held

    EXPECT_EQ(db.headerVariable("$ACADVER"), "AC1015");
    EXPECT_EQ(db.handleSeed(), Handle{0x42});  // from $HANDSEED: the ENDTABs, which have none, took 40 and 41
    EXPECT_TRUE(db.hasTable("LAYER"));
    EXPECT_EQ(db.records("LAYER"), (std::vector<Handle>{0x10, 0x11}));
    EXPECT_EQ(db.entitiesOf(db.modelSpace()), (std::vector<Handle>{0x30, 0x32, 0x35}));
    EXPECT_EQ(db.entitiesOf(db.paperSpace()), (std::vector<Handle>{0x31}));
    Handle door = db.findBlock("DOOR");
    ASSERT_NE(door, kNoHandle);
    EXPECT_EQ(door, Handle{0x20});  // named by its record
    EXPECT_EQ(db.blockName(door), "Door");
    EXPECT_EQ(db.entitiesOf(door), (std::vector<Handle>{0x26, 0x27}));
    EXPECT_EQ(db.namedObjectsDictionary(), Handle{0xC});
    EXPECT_EQ(db.sectionOf(0x30), Section::Entities);
    EXPECT_EQ(db.sectionOf(0xD), Section::Objects);

    // A sub-entity's handle finds the entity that carries it, which holds it to its SEQEND.
    for (Handle vertex : {0x28, 0x29, 0x2A}) EXPECT_EQ(db.typeName(vertex), "POLYLINE") << vertex;
    EXPECT_EQ(db.typeName(0x33), "INSERT");
    TagList insert = db.tags(0x32);
    EXPECT_EQ(insert.find(0, "SEQEND"), insert.size() - 2);
    EXPECT_EQ(db.typeName(0x35), "TEXT");
}

TEST(DatabaseLoader, IndexesEveryKindOfSlotInBothForms) {
    expectIndexed(kDrawing, "ASCII");

    auto file = dxf::TagFile::parse(kDrawing, "hand.dxf");
    ASSERT_TRUE(file.ok()) << file.message();
    for (bool oneByteCodes : {false, true}) {
        dxf::WriteFormat format = dxf::WriteFormat::of(*file);
        format.form = dxf::FileForm::Binary;
        format.oneByteGroupCodes = oneByteCodes;
        dxf::StringSink sink;
        dxf::TagWriter writer(sink, format);
        writer.begin();
        // From the first section: a leading comment would hide the width of the group codes.
        for (std::size_t i = 1; i < file->size(); ++i) writer.write(file->code(i), file->text(i));
        ASSERT_TRUE(writer.status().ok());
        expectIndexed(sink.take(), oneByteCodes ? "binary, one-byte codes" : "binary, two-byte codes");
    }
}

TEST(DatabaseLoader, RefusesADamagedDrawingAsTheTagLayerDoes) {
    for (const char* fixture : {"truncated", "section_never_ends", "tag_outside_sections"}) {
        std::string path = VELTARN_SOURCE_DIR "/tests/cad/dxf/data/bad_" + std::string(fixture) + ".dxf";
        auto db = Database::load(path);
        ASSERT_FALSE(db.ok()) << fixture;
        EXPECT_EQ(db.message(), dxf::TagFile::load(path).message());
    }
}

}  // namespace
}  // namespace veltarn::db
