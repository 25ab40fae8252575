// Dictionaries, xrecords and extension dictionaries, checked against an independent reader.
#include "TestSupport.h"

#include "cad/db/Dictionary.h"
#include "cad/db/ExtensionDictionary.h"
#include "cad/db/GroupCodes.h"
#include "cad/db/Xrecord.h"

#include <gtest/gtest.h>

namespace veltarn::db {
namespace {

Handle addPoint(Database& db, double x) {
    TagList point{{0, "POINT"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbPoint"}};
    point.addPoint(10, {x, 0, 0});
    return db.appendEntity(db.modelSpace(), std::move(point)).value();
}

// One value of every kind an xrecord can hold.
ResultBuffer everyKind(Handle pointee) {
    return {TypedValue::ofText(1, "Grüße, ĐŽČ"),     TypedValue::ofReal(40, 2.75),
            TypedValue::ofInteger(70, -32768),         TypedValue::ofInteger(90, 2147483647),
            TypedValue::ofInteger(160, 9007199254740993), TypedValue::ofPoint(10, {1.5, -2, 3.25}),
            TypedValue::ofHandle(340, pointee),        TypedValue::ofBinary(310, std::string("\x00\x01\xfe\xff", 4)),
            TypedValue::ofInteger(290, 1),             TypedValue::ofText(1, ""),
            TypedValue::ofReal(40, 1e-300),            TypedValue::ofInteger(280, 7)};
}

TEST(Xrecords, EveryKindOfValueSurvivesSavingAndAnIndependentReader) {
    Database db = Database::createNew();
    Handle entity = addPoint(db, 1);
    auto xdictionary = createExtensionDictionary(db, entity);
    ASSERT_TRUE(xdictionary.ok()) << xdictionary.message();
    ResultBuffer values = everyKind(entity);
    auto xrecord = addXrecord(db, *xdictionary, "ROADS", values);
    ASSERT_TRUE(xrecord.ok()) << xrecord.message();
    EXPECT_EQ(readXrecord(db, *xrecord).value(), values);

    auto dir = test::scratchDir("xrecords");
    ASSERT_TRUE(db.save(dir / "x.dxf").ok());
    Database back = test::loadOrFail(dir / "x.dxf");
    Handle found = findEntry(back, extensionDictionary(back, entity), "roads");
    EXPECT_EQ(found, *xrecord);
    EXPECT_EQ(readXrecord(back, found).value(), values);

    EXPECT_EQ(test::audit(dir / "x.dxf"), "");
    std::string seen;
    ASSERT_EQ(test::runPython(std::string(VELTARN_SOURCE_DIR) + "/tests/cad/db/data/dump_xrecords.py " + (dir / "x.dxf").string(), &seen), 0) << seen;
    EXPECT_EQ(seen, formatHandle(entity) +
                        " ROADS 1=Grüße, ĐŽČ 40=2.75 70=-32768 90=2147483647 160=9007199254740993 10=1.5,-2.0,3.25 340=" +
                        formatHandle(entity) + " 310=0001FEFF 290=1 1= 40=1e-300 280=7\n");
}

TEST(Xrecords, ValuesThatDoNotFitTheirCodeAreRefusedWithoutAChange) {
    Database db = Database::createNew();
    Handle entity = addPoint(db, 1);
    Handle xdictionary = createExtensionDictionary(db, entity).value();
    ResultBuffer good{TypedValue::ofInteger(90, 5)};
    Handle xrecord = addXrecord(db, xdictionary, "T", good).value();
    for (const ResultBuffer& bad : {ResultBuffer{TypedValue::ofInteger(70, 40000)}, ResultBuffer{TypedValue::ofInteger(90, 1ll << 40)},
                                    ResultBuffer{TypedValue::ofText(1, "two\nlines")}, ResultBuffer{TypedValue::ofText(0, "LINE")},
                                    ResultBuffer{TypedValue::ofText(1000, "xdata only")}})
        EXPECT_FALSE(replaceXrecord(db, xrecord, bad).ok());
    EXPECT_EQ(readXrecord(db, xrecord).value(), good);
    EXPECT_FALSE(readXrecord(db, entity).ok());
}

TEST(Dictionaries, AreOrderedMapsThatKeepTheirFlags) {
    Database db = Database::createNew();
    Handle od = namedDictionary(db, "ODEMUDATA", true).value();
    EXPECT_EQ(namedDictionary(db, "odemudata", false).value(), od);  // keys compare without case
    Handle b = addXrecord(db, od, "B", {}).value();
    Handle a = addXrecord(db, od, "A", {}).value();
    Handle c = addXrecord(db, od, "C", {}).value();
    auto keys = [&] {
        std::string out;
        for (const auto& entry : dictionaryEntries(db, od)) out += entry.key;
        return out;
    };
    EXPECT_EQ(keys(), "BAC");  // insertion order, not sorted
    EXPECT_EQ(findEntry(db, od, "a"), a);
    EXPECT_TRUE(removeEntry(db, od, "A").value());
    EXPECT_FALSE(removeEntry(db, od, "A").value());
    EXPECT_EQ(keys(), "BC");
    ASSERT_TRUE(setEntry(db, od, "B", c).ok());  // an existing key is re-pointed, not duplicated
    EXPECT_EQ(keys(), "BC");
    EXPECT_EQ(findEntry(db, od, "B"), c);
    EXPECT_EQ(db.ownerOf(c), od);
    (void)b;

    // A dictionary from another writer keeps its hard-owner and cloning flags when changed.
    Database other = test::loadOrFail(test::generated("od-2018.dxf", "30"));
    Handle root = other.namedObjectsDictionary();
    Handle tables = findEntry(other, root, "ODEMUDATA");
    ASSERT_NE(tables, kNoHandle);
    TagList before = other.tags(tables);
    ASSERT_TRUE(addXrecord(other, tables, "NEW", {TypedValue::ofText(1, "ID")}).ok());
    Dictionary parsedBefore(before), parsedAfter(other.tags(tables));
    EXPECT_EQ(parsedAfter.hardOwner(), parsedBefore.hardOwner());
    EXPECT_EQ(parsedAfter.cloning(), parsedBefore.cloning());
    EXPECT_EQ(parsedAfter.entries().size(), parsedBefore.entries().size() + 1);
    // The table definitions the other writer made read back as it wrote them.
    auto roads = readXrecord(other, findEntry(other, tables, "ROADS")).value();
    ASSERT_EQ(roads.size(), 6u);
    EXPECT_EQ(roads[0].text, "ID");
    EXPECT_EQ(roads[3].real, 5.5);
    EXPECT_EQ(roads[5].integer, 2);
}

TEST(ExtensionDictionaries, AreCreatedOnceReleasedWhenEmptyAndCleanedOnErase) {
    Database db = Database::createNew();
    Handle entity = addPoint(db, 1);
    Handle xdictionary = createExtensionDictionary(db, entity).value();
    EXPECT_EQ(createExtensionDictionary(db, entity).value(), xdictionary);
    EXPECT_EQ(db.ownerOf(xdictionary), entity);
    TagList tags = db.tags(entity);
    std::size_t group = tags.find(gc::kControlString, kXdictionaryGroup);
    ASSERT_NE(group, TagList::npos);
    EXPECT_EQ(tags[group + 1].code, gc::kHardOwner);
    EXPECT_EQ(tags[group - 1].code, gc::kHandle);

    Handle xrecord = addXrecord(db, xdictionary, "T", {TypedValue::ofInteger(90, 1)}).value();
    EXPECT_FALSE(releaseExtensionDictionary(db, entity));  // still holds an entry
    ASSERT_EQ(eraseObject(db, xrecord), OpenStatus::Ok);
    EXPECT_TRUE(dictionaryEntries(db, xdictionary).empty());  // the entry went with the xrecord
    EXPECT_TRUE(releaseExtensionDictionary(db, entity));
    EXPECT_EQ(db.status(xdictionary), OpenStatus::Erased);
    EXPECT_EQ(db.tags(entity).find(gc::kControlString, kXdictionaryGroup), TagList::npos);

    // Erasing an entity takes its extension dictionary and the xrecords in it along.
    Handle other = addPoint(db, 2);
    Handle otherDictionary = createExtensionDictionary(db, other).value();
    Handle otherRecord = addXrecord(db, otherDictionary, "T", {}).value();
    ASSERT_EQ(eraseObject(db, other), OpenStatus::Ok);
    EXPECT_EQ(db.status(otherDictionary), OpenStatus::Erased);
    EXPECT_EQ(db.status(otherRecord), OpenStatus::Erased);

    auto dir = test::scratchDir("xdict");
    ASSERT_TRUE(db.save(dir / "x.dxf").ok());
    Database back = test::loadOrFail(dir / "x.dxf");
    EXPECT_EQ(back.status(otherRecord), OpenStatus::NotFound);
    EXPECT_EQ(back.entitiesOf(back.modelSpace()), std::vector<Handle>{entity});
    EXPECT_EQ(test::audit(dir / "x.dxf"), "");
}

}  // namespace
}  // namespace veltarn::db
