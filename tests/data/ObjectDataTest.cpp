// The record cursor and the table definitions over real drawings: fixtures written by an
// independent DXF library, damaged ones, and drawings we change and hand back to that library.
#include "ExternalTools.h"
#include "TestDrawing.h"

#include "data/ObjectData.h"
#include "data/ObjectDataListing.h"
#include "data/ObjectDataTables.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

using namespace veltarn;
using host::ObjectId;
using host::OpenMode;
using host::TypedValue;
using test::TestDrawing;

namespace {

// A record in one line, "TABLE: NAME=Type:display; ...", so that one comparison states it whole.
std::wstring describe(const ObjectDataRecord& record) {
    std::wstring out = record.table + L":";
    for (const FieldValue& field : record.fields) {
        out += L" " + field.name() + L"=" + fieldTypeName(field.type()) + L":" + field.displayText() + L";";
    }
    return out;
}

struct ReadResult {
    int result = 0;  // of open, or of the first read that failed
    std::vector<std::wstring> records;
};

// Every record the cursor yields, read the way the commands read them.
ReadResult readAll(host::Database& db, ObjectId entity, std::optional<std::wstring> filter = std::nullopt) {
    ReadResult out;
    ObjectData cursor(db);
    ObjectDataRecord record;
    out.result = cursor.open(entity, filter);
    for (int rc = out.result; rc == kOdOk && !cursor.atEnd(); cursor.next()) {
        rc = cursor.read(record);
        if (rc != kOdOk) {
            out.result = rc;
            break;
        }
        out.records.push_back(describe(record));
    }
    return out;
}

host::ResultBuffer chainOf(host::Database& db, ObjectId xrecord) {
    auto object = db.openXrecord(xrecord, OpenMode::kRead);
    return object ? object->data() : host::ResultBuffer{};
}

std::vector<std::wstring> extensionKeys(host::Database& db, ObjectId entity) {
    std::vector<std::wstring> keys;
    auto object = db.openObject(entity, OpenMode::kRead);
    if (!object) return keys;
    auto dictionary = db.openDictionary(object->extensionDictionary(), OpenMode::kRead);
    if (!dictionary) return keys;
    for (auto& [key, id] : dictionary->entries()) keys.push_back(key);
    return keys;
}

ObjectId extensionEntry(host::Database& db, ObjectId entity, const std::wstring& key) {
    auto object = db.openObject(entity, OpenMode::kRead);
    auto dictionary = object ? db.openDictionary(object->extensionDictionary(), OpenMode::kRead) : nullptr;
    return dictionary ? dictionary->find(key) : ObjectId{};
}

// Saves the drawing and has the independent auditor check it: empty when it finds nothing.
std::string auditSaved(TestDrawing& drawing, const std::string& name) {
    std::filesystem::path file = test::scratchDir(name) / "written.dxf";
    drawing.save(file);
    return testtools::audit(file);
}

const wchar_t* const kMainStreet =
    L"ROADS: NAME=Character:Main street; LANES=Integer:2; WIDTH=Real:7.5; AXIS=Point:1.000000,2.000000,0.000000;";
const wchar_t* const kSideRoad =
    L"ROADS: NAME=Character:Side road; LANES=Integer:1; WIDTH=Real:3.25; AXIS=Point:5.000000,6.000000,7.000000;";

// ---- drawings written by another program ----

TEST(ForeignDrawing, readsEveryRecordOfTheEntitysTable) {
    auto drawing = TestDrawing::load("good_records.dxf");
    ReadResult read = readAll(drawing->db(), drawing->entityOnLayer(L"TWO_RECORDS"));
    EXPECT_EQ(read.result, kOdOk);
    EXPECT_EQ(read.records, (std::vector<std::wstring>{kMainStreet, kSideRoad}));
}

TEST(ForeignDrawing, entitiesWithoutRecordsAndUnopenableEntities) {
    auto drawing = TestDrawing::load("good_records.dxf");
    host::Database& db = drawing->db();
    ObjectData cursor(db);
    EXPECT_EQ(cursor.open(drawing->entityOnLayer(L"OTHERS_ONLY")), kOdNoData) << "other applications' data only";
    EXPECT_EQ(cursor.open(drawing->entityOnLayer(L"NO_XDICT")), kOdNoData);
    EXPECT_EQ(cursor.open(ObjectId{}), kOdCannotOpenEntity);
    ObjectId erased = drawing->entityOnLayer(L"TWO_RECORDS");
    ASSERT_TRUE(db.openObject(erased, OpenMode::kWrite)->erase());
    EXPECT_EQ(cursor.open(erased), kOdCannotOpenEntity);
}

TEST(ForeignDrawing, firstTableInDictionaryOrderUnlessFiltered) {
    auto drawing = TestDrawing::load("good_records.dxf");
    host::Database& db = drawing->db();
    ObjectId entity = drawing->entityOnLayer(L"TWO_TABLES");
    EXPECT_EQ(readAll(db, entity).records,
              std::vector<std::wstring>{L"PARCELS: ID=Character:P-17; AREA=Real:120.5;"});
    EXPECT_EQ(readAll(db, entity, L"ROADS").records,
              std::vector<std::wstring>{
                  L"ROADS: NAME=Character:Ring; LANES=Integer:4; WIDTH=Real:12.0; AXIS=Point:0.000000,0.000000,0.000000;"});

    // The filter is exact: a name in other case finds nothing, and the cursor is at its end.
    ObjectData cursor(db);
    ASSERT_EQ(cursor.open(entity, L"roads"), kOdOk);
    EXPECT_TRUE(cursor.atEnd());
    ObjectDataRecord record;
    EXPECT_EQ(cursor.read(record), kOdCannotRead);
}

TEST(ForeignDrawing, tablesAreListedInListModeOnly) {
    auto drawing = TestDrawing::load("good_records.dxf");
    std::vector<std::wstring> tables{L"kept"};
    EXPECT_EQ(listTables(drawing->db(), 0, tables), kOdOk);
    EXPECT_EQ(tables, std::vector<std::wstring>{L"kept"});
    EXPECT_EQ(listTables(drawing->db(), kListTablesMode, tables), kOdOk);
    EXPECT_EQ(tables, (std::vector<std::wstring>{L"kept", L"ROADS", L"PARCELS"}));
}

TEST(ForeignDrawing, listingShowsEveryTableWithItsFields) {
    auto drawing = TestDrawing::load("good_records.dxf");
    std::vector<std::wstring> lines = listObjectData(drawing->db(), drawing->entityOnLayer(L"TWO_TABLES"));
    EXPECT_EQ(lines, (std::vector<std::wstring>{
                         L"Object data table: PARCELS",
                         L"    ID (Character): P-17",
                         L"    AREA (Real): 120.5",
                         L"Object data table: ROADS",
                         L"    NAME (Character): Ring",
                         L"    LANES (Integer): 4",
                         L"    WIDTH (Real): 12.0",
                         L"    AXIS (Point): 0.000000,0.000000,0.000000",
                     }));
    EXPECT_TRUE(listObjectData(drawing->db(), drawing->entityOnLayer(L"OTHERS_ONLY")).empty());
}

TEST(ForeignDrawing, readingNeverCreatesTheDictionaryTwice) {
    auto drawing = TestDrawing::load("good_records.dxf");
    ObjectId found = findObjectDataDictionary(drawing->db());
    ASSERT_FALSE(found.isNull());
    EXPECT_EQ(getObjectDataDictionary(drawing->db()), found);
    std::vector<std::wstring> tables;
    listTables(drawing->db(), kListTablesMode, tables);
    EXPECT_EQ(tables.size(), 2u);
}

// ---- damaged drawings: read as far as they go, never a crash ----

struct DamagedRow {
    const char* name;
    const char* fixture;
    int result;
    std::vector<std::wstring> records;
};

class DamagedDrawing : public testing::TestWithParam<DamagedRow> {};

TEST_P(DamagedDrawing, readsWhatIsThere) {
    auto drawing = TestDrawing::load(GetParam().fixture);
    ReadResult read = readAll(drawing->db(), drawing->entityOnLayer(L"RECORD"));
    EXPECT_EQ(read.result, GetParam().result);
    EXPECT_EQ(read.records, GetParam().records);
}

INSTANTIATE_TEST_SUITE_P(Fixtures, DamagedDrawing, testing::Values(
    DamagedRow{"unknownGroupCode", "bad_unknown_group_code.dxf", kOdOk,
               {L"ROADS: NAME=Character:Odd; LANES=Unknown:; WIDTH=Real:2.5; AXIS=Point:1.000000,1.000000,1.000000;"}},
    // Records are cut by the definition's field count, whatever the values are.
    DamagedRow{"fewerDefinitionFields", "bad_fewer_definition_fields.dxf", kOdOk,
               {L"ROADS: NAME=Character:Main street; LANES=Integer:2;",
                L"ROADS: NAME=Real:7.5; LANES=Point:1.000000,2.000000,0.000000;"}},
    DamagedRow{"oddDefinition", "bad_odd_definition.dxf", kOdOk,
               {L"ROADS: NAME=Character:A; LANES=Integer:1;", L"ROADS: NAME=Character:B; LANES=Integer:2;"}},
    DamagedRow{"shortRecords", "bad_short_records.dxf", kOdOk,
               {L"ROADS: NAME=Character:Stub; LANES=Integer:3; WIDTH=Unknown:; AXIS=Unknown:;"}},
    DamagedRow{"entryNotXrecord", "bad_entry_not_xrecord.dxf", kOdCannotRead, {}},
    DamagedRow{"danglingHandle", "bad_dangling_handle.dxf", kOdCannotRead, {}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(DamagedDrawing, appendLeavesAnEntryOfAnotherKindAsItIs) {
    for (const char* fixture : {"bad_entry_not_xrecord.dxf", "bad_dangling_handle.dxf"}) {
        SCOPED_TRACE(fixture);
        auto drawing = TestDrawing::load(fixture);
        host::Database& db = drawing->db();
        ObjectId entity = drawing->entityOnLayer(L"RECORD");
        ObjectId entry = extensionEntry(db, entity, L"ROADS");
        host::ResultBuffer foreign = chainOf(db, extensionEntry(db, entity, L"OTHER_APP"));

        ObjectDataRecord record{L"ROADS", {FieldValue::fromText(L"New")}};
        EXPECT_EQ(ObjectData::append(db, entity, record), kOdNoData);
        EXPECT_EQ(extensionEntry(db, entity, L"ROADS"), entry);
        EXPECT_EQ(chainOf(db, extensionEntry(db, entity, L"OTHER_APP")), foreign);
    }
}

// ---- writing ----

class Writing : public testing::Test {
protected:
    void SetUp() override {
        drawing_ = TestDrawing::createNew();
        ObjectDataRecord definition{L"", {FieldValue(L"NAME"), FieldValue(L"LANES"), FieldValue(L"WIDTH"),
                                          FieldValue(L"AXIS")}};
        definition.fields[0].setText(L"");
        definition.fields[1].setInteger(0);
        definition.fields[2].setReal(0);
        definition.fields[3].setPoint({});
        ASSERT_EQ(createTableDefinition(db(), L"ROADS", definition), kOdOk);
    }

    host::Database& db() { return drawing_->db(); }

    static ObjectDataRecord road(const wchar_t* name, std::int32_t lanes, double width, host::Point3d axis) {
        ObjectDataRecord record{L"ROADS", {FieldValue::fromText(name), FieldValue::fromInteger(lanes),
                                           FieldValue::fromReal(width), FieldValue::fromPoint(axis)}};
        return record;
    }

    static constexpr FieldType kRoadTypes[] = {FieldType::Character, FieldType::Integer, FieldType::Real,
                                               FieldType::Point};

    std::unique_ptr<TestDrawing> drawing_;
};

TEST_F(Writing, aDefinitionIsStoredAsNamesAndValuesAndNeverReplaced) {
    ObjectId tables = findObjectDataDictionary(db());
    ASSERT_FALSE(tables.isNull());
    ObjectId definition = db().openDictionary(tables, OpenMode::kRead)->find(L"ROADS");
    host::ResultBuffer expected{
        TypedValue(1, std::wstring(L"NAME")), TypedValue(1, std::wstring()),
        TypedValue(1, std::wstring(L"LANES")), TypedValue(90, std::int32_t{0}),
        TypedValue(1, std::wstring(L"WIDTH")), TypedValue(40, 0.0),
        TypedValue(1, std::wstring(L"AXIS")), TypedValue(10, host::Point3d{}),
    };
    EXPECT_EQ(chainOf(db(), definition), expected);

    ObjectDataRecord other{L"", {FieldValue::fromInteger(5)}};
    EXPECT_EQ(createTableDefinition(db(), L"ROADS", other), kOdTableExists);
    EXPECT_EQ(chainOf(db(), definition), expected);
}

TEST_F(Writing, theDictionaryIsMadeOnFirstRequestOnly) {
    auto fresh = TestDrawing::createNew();
    EXPECT_TRUE(findObjectDataDictionary(fresh->db()).isNull());
    std::vector<std::wstring> tables;
    listTables(fresh->db(), kListTablesMode, tables);
    EXPECT_TRUE(findObjectDataDictionary(fresh->db()).isNull()) << "listing made it";
    ObjectId made = getObjectDataDictionary(fresh->db());
    ASSERT_FALSE(made.isNull());
    EXPECT_EQ(getObjectDataDictionary(fresh->db()), made);
    auto named = fresh->db().openDictionary(fresh->db().namedObjectsDictionary(), OpenMode::kRead);
    EXPECT_EQ(named->find(L"ODEMUDATA"), made);
}

// Records the locks taken on the one document it knows.
class LockRecorder : public host::Documents, public host::Document {
public:
    explicit LockRecorder(host::Database& db) : db_(db) {}

    host::Database& database() override { return db_; }
    std::wstring fileName() const override { return L"test.dxf"; }
    host::Document* current() override { return this; }
    host::Document* documentOf(const host::Database& db) override { return &db == &db_ ? this : nullptr; }
    void sendStringToExecute(host::Document&, const std::wstring&, bool, bool, bool) override {}
    host::DocumentLock lock(host::Document&, host::LockMode mode) override {
        events.push_back(mode == host::LockMode::kExclusiveWrite ? "lock exclusive" : "lock shared");
        return host::DocumentLock([this] { events.push_back("unlock"); });
    }
    void addReactor(host::DocumentReactor*) override {}
    void removeReactor(host::DocumentReactor*) override {}

    std::vector<std::string> events;

private:
    host::Database& db_;
};

TEST_F(Writing, theDictionaryIsMadeUnderAnExclusiveLockOfItsDocument) {
    auto fresh = TestDrawing::createNew();
    LockRecorder documents(fresh->db());
    ObjectId made = getObjectDataDictionary(fresh->db(), &documents);
    ASSERT_FALSE(made.isNull());
    EXPECT_EQ(documents.events, (std::vector<std::string>{"lock exclusive", "unlock"}));
    // Once made, it is only looked up: no further lock.
    EXPECT_EQ(getObjectDataDictionary(fresh->db(), &documents), made);
    EXPECT_EQ(documents.events.size(), 2u);
}

TEST_F(Writing, aDrawingAtAReusedAddressGetsItsOwnDictionary) {
    // Drawings made and dropped in turn tend to reuse an address; a cached id must not leak across.
    for (int i = 0; i < 4; ++i) {
        auto fresh = TestDrawing::createNew();
        EXPECT_TRUE(findObjectDataDictionary(fresh->db()).isNull());
        ObjectId id = getObjectDataDictionary(fresh->db());
        auto dictionary = fresh->db().openDictionary(id, OpenMode::kRead);
        ASSERT_TRUE(dictionary);
        EXPECT_EQ(dictionary->ownerId(), fresh->db().namedObjectsDictionary());
        forgetObjectDataDictionary(fresh->db());
    }
}

TEST_F(Writing, appendStoresWholeRealsAndUpdateKeepsTheFraction) {
    ObjectId line = drawing_->addLine();
    ASSERT_EQ(ObjectData::append(db(), line, road(L"Main", 2, 2.75, {1, 2, 3}), kRoadTypes), kOdOk);
    EXPECT_EQ(readAll(db(), line).records,
              std::vector<std::wstring>{
                  L"ROADS: NAME=Character:Main; LANES=Integer:2; WIDTH=Real:2.0; AXIS=Point:1.000000,2.000000,3.000000;"});

    ObjectData cursor(db());
    ObjectDataRecord record;
    ASSERT_EQ(cursor.open(line), kOdOk);
    ASSERT_EQ(cursor.read(record), kOdOk);
    record.fields[2].setReal(2.75);
    record.fields[3].setPoint({1, 2, 3});
    ASSERT_EQ(cursor.update(record), kOdOk);
    // The point comes back as X, Z, Z: that is how updated points are stored.
    EXPECT_EQ(readAll(db(), line).records,
              std::vector<std::wstring>{
                  L"ROADS: NAME=Character:Main; LANES=Integer:2; WIDTH=Real:2.75; AXIS=Point:1.000000,3.000000,3.000000;"});
}

TEST_F(Writing, oneCursorAndRecordReusedOverTablesOfDifferentShapes) {
    ObjectDataRecord pipes{L"", {FieldValue(L"DIAMETER"), FieldValue(L"NAME")}};
    pipes.fields[0].setReal(0);
    pipes.fields[1].setText(L"");
    ASSERT_EQ(createTableDefinition(db(), L"PIPES", pipes), kOdOk);
    ObjectId road = drawing_->addLine(), pipe = drawing_->addLine();
    ASSERT_EQ(ObjectData::append(db(), road, Writing::road(L"Main", 2, 7, {1, 2, 3}), kRoadTypes), kOdOk);
    ASSERT_EQ(ObjectData::append(db(), pipe, {L"PIPES", {FieldValue::fromReal(3)}}), kOdOk);

    // The second value of the pipe is missing: it must read as None, not as the road's name.
    ObjectData cursor(db());
    ObjectDataRecord record;
    std::vector<std::wstring> seen;
    for (ObjectId id : {road, pipe, road}) {
        ASSERT_EQ(cursor.open(id), kOdOk);
        ASSERT_EQ(cursor.read(record), kOdOk);
        seen.push_back(describe(record));
    }
    EXPECT_EQ(seen, (std::vector<std::wstring>{
                        L"ROADS: NAME=Character:Main; LANES=Integer:2; WIDTH=Real:7.0; AXIS=Point:1.000000,2.000000,3.000000;",
                        L"PIPES: DIAMETER=Real:3.0; NAME=Unknown:;",
                        L"ROADS: NAME=Character:Main; LANES=Integer:2; WIDTH=Real:7.0; AXIS=Point:1.000000,2.000000,3.000000;"}));
}

TEST_F(Writing, appendConvertsEachValueToItsFieldType) {
    ObjectId line = drawing_->addLine();
    ObjectDataRecord record{L"ROADS", {FieldValue::fromReal(2.5), FieldValue::fromText(L"12abc"),
                                       FieldValue::fromText(L"2.75"), FieldValue::fromText(L"1,2,3,4")}};
    ASSERT_EQ(ObjectData::append(db(), line, record, kRoadTypes), kOdOk);
    host::ResultBuffer expected{TypedValue(1, std::wstring(L"2.500000")), TypedValue(90, std::int32_t{12}),
                                TypedValue(40, 2.0), TypedValue(10, host::Point3d{1, 2, 4})};
    EXPECT_EQ(chainOf(db(), extensionEntry(db(), line, L"ROADS")), expected);

    // A second append goes after the first, with reals from integers and integers from reals.
    ObjectDataRecord second{L"ROADS", {FieldValue::fromInteger(7), FieldValue::fromReal(-2.9),
                                       FieldValue::fromInteger(3), FieldValue::fromPoint({5, 6, 7})}};
    ASSERT_EQ(ObjectData::append(db(), line, second, kRoadTypes), kOdOk);
    expected.insert(expected.end(), {TypedValue(1, std::wstring(L"7")), TypedValue(90, std::int32_t{-2}),
                                     TypedValue(40, 3.0), TypedValue(10, host::Point3d{5, 6, 7})});
    EXPECT_EQ(chainOf(db(), extensionEntry(db(), line, L"ROADS")), expected);
}

TEST_F(Writing, aRefusedConversionWritesNothing) {
    ObjectId line = drawing_->addLine();
    ObjectDataRecord pointAsLanes = road(L"x", 1, 1, {});
    pointAsLanes.fields[1] = FieldValue::fromPoint({1, 2, 3});
    try {
        ObjectData::append(db(), line, pointAsLanes, kRoadTypes);
        ADD_FAILURE() << "no error";
    } catch (int code) {
        EXPECT_EQ(code, kConversionNotAllowed);
    }
    ObjectDataRecord realAsAxis = road(L"x", 1, 1, {});
    realAsAxis.fields[3] = FieldValue::fromReal(4);
    EXPECT_THROW(ObjectData::append(db(), line, realAsAxis, kRoadTypes), int);
    EXPECT_TRUE(db().openObject(line, OpenMode::kRead)->extensionDictionary().isNull());
}

TEST_F(Writing, removingARecordKeepsTheOthersAndOtherApplicationsData) {
    ObjectId line = drawing_->addLine();
    {
        auto object = db().openObject(line, OpenMode::kWrite);
        ASSERT_TRUE(object->createExtensionDictionary());
        auto dictionary = db().openDictionary(object->extensionDictionary(), OpenMode::kWrite);
        auto foreign = db().openXrecord(dictionary->addXrecord(L"OTHER_APP"), OpenMode::kWrite);
        ASSERT_TRUE(foreign->setData({TypedValue(1, std::wstring(L"keep me")), TypedValue(70, std::int32_t{5})}));
    }
    host::ResultBuffer foreign = chainOf(db(), extensionEntry(db(), line, L"OTHER_APP"));
    ASSERT_EQ(ObjectData::append(db(), line, road(L"First", 1, 1, {}), kRoadTypes), kOdOk);
    ASSERT_EQ(ObjectData::append(db(), line, road(L"Second", 2, 2, {}), kRoadTypes), kOdOk);

    ObjectData cursor(db());
    ObjectDataRecord record;
    ASSERT_EQ(cursor.open(line), kOdOk);
    ASSERT_EQ(cursor.read(record), kOdOk);
    EXPECT_FALSE(cursor.atEnd());
    ASSERT_EQ(cursor.remove(), kOdOk);
    EXPECT_TRUE(cursor.atEnd());
    EXPECT_EQ(readAll(db(), line).records,
              std::vector<std::wstring>{
                  L"ROADS: NAME=Character:Second; LANES=Integer:2; WIDTH=Real:2.0; AXIS=Point:0.000000,0.000000,0.000000;"});

    // The last record takes the table's entry and xrecord with it; other data stays.
    ObjectId records = extensionEntry(db(), line, L"ROADS");
    ASSERT_EQ(cursor.open(line), kOdOk);
    ASSERT_EQ(cursor.read(record), kOdOk);
    ASSERT_EQ(cursor.remove(), kOdOk);
    EXPECT_EQ(extensionKeys(db(), line), std::vector<std::wstring>{L"OTHER_APP"});
    EXPECT_FALSE(db().openObject(records, OpenMode::kRead));
    EXPECT_EQ(chainOf(db(), extensionEntry(db(), line, L"OTHER_APP")), foreign);
    EXPECT_EQ(cursor.open(line), kOdNoData);
}

TEST_F(Writing, removingTheOnlyRecordReleasesTheExtensionDictionary) {
    ObjectId line = drawing_->addLine();
    ASSERT_EQ(ObjectData::append(db(), line, road(L"Only", 1, 1, {}), kRoadTypes), kOdOk);
    ObjectData cursor(db());
    ObjectDataRecord record;
    ASSERT_EQ(cursor.open(line), kOdOk);
    ASSERT_EQ(cursor.read(record), kOdOk);
    EXPECT_TRUE(cursor.atEnd());
    ASSERT_EQ(cursor.remove(), kOdOk);
    EXPECT_TRUE(db().openObject(line, OpenMode::kRead)->extensionDictionary().isNull());
    // The table's definition and "ODEMUDATA" stay, even with no record left anywhere.
    std::vector<std::wstring> tables;
    listTables(db(), kListTablesMode, tables);
    EXPECT_EQ(tables, std::vector<std::wstring>{L"ROADS"});
    EXPECT_EQ(auditSaved(*drawing_, "released"), "");
}

// ---- the other direction: what we write, an independent reader reads ----

std::string readText(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

TEST(Interop, anIndependentReaderSeesWhatWeWrote) {
    ASSERT_EQ(testtools::missingEzdxf(), "");
    auto drawing = TestDrawing::load("good_records.dxf");
    host::Database& db = drawing->db();

    ObjectDataRecord wells{L"", {FieldValue(L"DEPTH")}};
    wells.fields[0].setReal(0);
    ASSERT_EQ(createTableDefinition(db, L"WELLS", wells), kOdOk);
    ObjectDataRecord well{L"WELLS", {FieldValue::fromReal(12.5)}};
    const FieldType real[] = {FieldType::Real};
    ASSERT_EQ(ObjectData::append(db, drawing->entityOnLayer(L"NO_XDICT"), well, real), kOdOk);

    ObjectData cursor(db);
    ObjectDataRecord record;
    ASSERT_EQ(cursor.open(drawing->entityOnLayer(L"TWO_RECORDS")), kOdOk);
    ASSERT_EQ(cursor.read(record), kOdOk);  // the field count comes with the first read
    cursor.next();
    ASSERT_EQ(cursor.read(record), kOdOk);
    record.fields[2].setReal(2.75);
    ASSERT_EQ(cursor.update(record), kOdOk);

    EXPECT_EQ(auditSaved(*drawing, "interop-audit"), "");
    std::filesystem::path dir = test::scratchDir("interop");
    drawing->save(dir / "written.dxf");
    std::string output;
    std::string script = std::string(VELTARN_SOURCE_DIR) + "/tests/data/data/dump_object_data.py";
    ASSERT_EQ(test::runPython(script + " " + (dir / "written.dxf").string(), &output), 0) << output;

    std::filesystem::path golden = std::filesystem::path(VELTARN_SOURCE_DIR) / "tests/data/data/readback_expected.txt";
    if (std::getenv("VELTARN_UPDATE_GOLDEN")) std::ofstream(golden, std::ios::binary) << output;
    EXPECT_EQ(output, readText(golden));
}

}  // namespace
