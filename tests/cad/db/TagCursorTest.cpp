// The tag cursor reads the same tags as a decoded TagList: in every file form and encoding, and
// for objects changed since loading.
#include "TestSupport.h"

#include "cad/db/Dictionary.h"
#include "cad/db/EntityFactory.h"
#include "cad/db/ExtensionDictionary.h"

#include <gtest/gtest.h>

namespace veltarn::db {
namespace {

// Every object of the drawing, read both ways; returns how many were compared.
std::size_t expectSameTags(const Database& db) {
    std::size_t compared = 0;
    for (Handle handle = 1; handle < db.handleSeed(); ++handle) {
        TagList expected;
        if (db.read(handle, expected) != OpenStatus::Ok) continue;
        TagList seen;
        TagCursor cursor;
        EXPECT_EQ(db.read(handle, cursor), OpenStatus::Ok);
        while (cursor.next()) seen.add(cursor.code(), std::string(cursor.value()));
        EXPECT_EQ(seen, expected) << db.name() << ": object " << formatHandle(handle);
        ++compared;
    }
    return compared;
}

TEST(TagCursor, ReadsWhatTagListsHoldInEveryFormAndEncoding) {
    // Code-page bytes and escapes need decoding; binary numbers need formatting.
    Database codePage = test::parseOrFail(
        "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1009\n9\n$DWGCODEPAGE\n3\nANSI_1252\n0\nENDSEC\n"
        "0\nSECTION\n2\nENTITIES\n0\nTEXT\n5\n20\n8\nSTRA\xDF" "E\n10\n1\n20\n1\n40\n2.5\n1\nCaf\xE9 \\U+03A9\n0\nENDSEC\n0\nEOF\n");
    EXPECT_GT(expectSameTags(codePage), 0u);

    Database changed = Database::createNew();
    Handle line = changed.appendEntity(changed.modelSpace(), newLine(changed, {0, 0, 0}, {1, 2, 3})).value();
    ASSERT_TRUE(createExtensionDictionary(changed, line).ok());
    EXPECT_GT(expectSameTags(changed), 20u);
    EXPECT_EQ(changed.ownerOf(line), changed.modelSpace());

    for (const char* name : {"all-r12.dxf", "all-2000-bin.dxf", "all-2018.dxf"}) {
        std::string arguments = std::string(name) == "all-r12.dxf"        ? "40 --kinds all --version R12"
                                : std::string(name) == "all-2000-bin.dxf" ? "40 --kinds all --version R2000 --binary"
                                                                          : "60 --kinds all";
        Database db = test::loadOrFail(test::generated(name, arguments));
        EXPECT_GT(expectSameTags(db), 100u) << name;
    }
}

TEST(TagCursor, AnErasedOrUnknownObjectHasNoTags) {
    Database db = Database::createNew();
    Handle line = db.appendEntity(db.modelSpace(), newLine(db, {0, 0, 0}, {1, 1, 0})).value();
    ASSERT_EQ(db.erase(line), OpenStatus::Ok);
    TagCursor cursor;
    EXPECT_EQ(db.read(line, cursor), OpenStatus::Erased);
    EXPECT_FALSE(cursor.next());
    EXPECT_EQ(db.read(db.handleSeed() + 100, cursor), OpenStatus::NotFound);
    EXPECT_FALSE(cursor.next());
}

}  // namespace
}  // namespace veltarn::db
