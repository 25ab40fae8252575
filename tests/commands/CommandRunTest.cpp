// The commands over classified objects typed into a workbench session with the module loaded, on
// a drawing saved to a file and opened as a user opens it.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "CommandTestSupport.h"
#include "ExternalTools.h"
#include "ScratchFiles.h"
#include "cad/db/EntityFactory.h"
#include "cad/db/Handle.h"
#include "cad/db/SymbolTables.h"
#include "cad/session/WorkbenchSession.h"
#include "commands/EntityRecords.h"
#include "data/ObjectData.h"
#include "data/ObjectDataTables.h"
#include "module/ModuleState.h"

namespace veltarn {
namespace {

namespace fs = std::filesystem;
using host::ObjectId;
using Names = std::vector<std::string>;  // entities by the names the fixture gives them, sorted

// Street shares the table ROADS with Road but requires NOTE, which Road does not.
constexpr const char* kClasses = R"(class|Transport|1
|obj_name|Road|1|10
||obj_type|Line
||obj_prop|layer|Roads
||od_name|ROADS
|||od_key|ID
|||od_fld|WIDTH|Width|required real|5|2:30
|||od_fld|SURFACE|Surface|character|Asphalt|Asphalt,Gravel
|||od_fld|REF|Ref|required character|r
|||od_fld|NOTE|Note|character
|class|Paths|1
||obj_name|Footpath|1|5
|||obj_type|Line
|||od_name|PATHS
||||od_key|ID
|/class
/class
class|Water|1
|obj_name|Street|1|1
||obj_type|Line
||od_name|ROADS
|||od_key|ID
|||od_fld|WIDTH|Width|required real|5|2:30
|||od_fld|SURFACE|Surface|character|Asphalt|Asphalt,Gravel
|||od_fld|REF|Ref|required character|r
|||od_fld|NOTE|Note|required character
|obj_name|Pipe|1|1
||obj_type|Line
||od_name|PIPES
|||od_key|ID
|||od_fld|DIAMETER|Diameter|real|100
/class
)";

// A palette set that notes what the commands ask of it.
class LoggingPalettes : public ClassificationPaletteSet {
public:
    explicit LoggingPalettes(std::vector<std::wstring>& log) : log_(log) {}
    bool hasClassificationPage() const override { return true; }
    bool hasRecentPage() const override { return true; }
    bool hasFavoritesPage() const override { return true; }
    void setClassifier(const Classifier* c) override { log_.push_back(c ? L"classifier" : L"no classifier"); }
    void loadRecent(const std::wstring& path) override { log_.push_back(L"load " + path); }
    void loadFavorites(const std::wstring& path) override { log_.push_back(L"load " + path); }
    void addRecent(const std::wstring& name) override { log_.push_back(L"recent " + name); }
    void refreshRecent() override { log_.push_back(L"refresh recent"); }
    void refreshFavorites() override { log_.push_back(L"refresh favorites"); }
    void saveRecent(const std::wstring& path) override { log_.push_back(L"save " + path); }
    void saveFavorites(const std::wstring& path) override { log_.push_back(L"save " + path); }
    void destroyWindow() override {}

private:
    std::vector<std::wstring>& log_;
};

class CommandRun : public ::testing::Test {
protected:
    void SetUp() override {
        test::resetModuleState();
        test::writeClassifier(classesFile_, kClasses);
        buildDrawing();
        auto opened = seam::WorkbenchDatabase::read(drawingFile_);
        ASSERT_TRUE(opened.ok()) << opened.message();
        session_.start(std::move(*opened));
        // Read without the drawing: VELTARN_LOAD would refuse PIPES, which the drawing may define
        // otherwise (see RemoveAllLeavesWhatDoesNotResolve).
        moduleState().classifier = test::readClassifier(classesFile_);
        moduleState().classifierPath = host::fromUtf8(classesFile_.string());
    }
    void TearDown() override { session_.finish(); }

    void buildDrawing() {
        seam::WorkbenchDatabase drawing{db::Database::createNew()};
        db::Database& raw = drawing.raw();
        for (const char* layer : {"Roads", "Locked", "Off"})
            ASSERT_TRUE(db::writeLayer(raw, {layer}).ok());
        const std::unique_ptr<Classifier> classifier = test::readClassifier(classesFile_);
        const ClassIndex index(*classifier);
        for (const wchar_t* table : {L"ROADS", L"PATHS"}) {
            ASSERT_EQ(createTableDefinition(drawing, table, test::makeRecord(*index.findTable(table), L"Road")), kOdOk);
        }
        ObjectDataRecord other{L"OTHER", {FieldValue::fromText(L"x")}};
        other.fields[0].setName(L"ID");
        ASSERT_EQ(createTableDefinition(drawing, L"OTHER", other), kOdOk);

        // Each entity: its name, layer and records (class, changes); "" as class is OTHER's record.
        struct Made {
            const char* name;
            const char* layer;
            std::vector<std::pair<std::wstring, std::vector<test::Change>>> records;
        };
        using F = FieldValue;
        const Made made[] = {
            {"road", "Roads", {{L"Road", {}}}},
            {"roadSand", "Roads", {{L"Road", {{L"SURFACE", F::fromText(L"Sand")}}}}},
            {"roadWide", "Roads", {{L"Road", {{L"WIDTH", F::fromReal(99)}}}}},
            {"roadNoRef", "Roads", {{L"Road", {{L"REF", F::fromText(L"")}}}}},
            {"roadNoNote", "Roads", {{L"Road", {{L"NOTE", F::fromText(L"")}}}}},
            {"roadOnZero", "0", {{L"Road", {}}}},
            {"both", "Roads", {{L"Road", {}}, {L"Footpath", {}}}},
            {"footpath", "Roads", {{L"Footpath", {}}}},
            {"street", "Roads", {{L"Street", {{L"NOTE", F::fromText(L"")}}}}},
            {"avenue", "Roads", {{L"Avenue", {}}}},
            {"other", "Roads", {{L"", {}}}},
            {"plain", "Roads", {}},
            {"locked", "Locked", {{L"Road", {}}}},
            {"off", "Off", {{L"Road", {}}}},
        };
        for (const Made& m : made) {
            const ObjectId id{*raw.appendEntity(raw.modelSpace(), db::newLine(raw, {0, 0, 0}, {10, 10, 0}))};
            drawing.openEntity(id, host::OpenMode::kWrite)
                ->setProperty(host::EntityProperty::kLayer, host::fromUtf8(m.layer));
            for (const auto& [className, changes] : m.records) {
                const ObjectDataRecord record =
                    className.empty()
                        ? other
                        : test::makeRecord(*index.findTable(className == L"Footpath" ? L"PATHS" : L"ROADS"), className,
                                           changes);
                ASSERT_EQ(test::appendRecord(drawing, id, record), kOdOk);
            }
            ids_[m.name] = id;
        }
        ids_["circle"] = ObjectId{*raw.appendEntity(raw.modelSpace(), db::newCircle(raw, {0, 0, 0}, 2))};
        // Locked last: an entity on a locked layer cannot be opened for write.
        ASSERT_TRUE(db::writeLayer(raw, {"Locked", db::kLayerLocked}).ok());
        db::Layer off{"Off"};
        off.off = true;
        ASSERT_TRUE(db::writeLayer(raw, off).ok());
        ASSERT_TRUE(raw.save(drawingFile_).ok());
        forgetObjectDataDictionary(drawing);  // the session's drawing may come to the same address
    }

    std::wstring type(const std::wstring& input) {
        transcript_.clear();
        session_.commandLine().input().append(input);
        while (session_.step()) {
        }
        return transcript_;
    }

    static Names names(std::initializer_list<const char*> list) {
        Names out(list.begin(), list.end());
        std::sort(out.begin(), out.end());
        return out;
    }
    Names pickFirst() {
        Names out;
        for (ObjectId id : session_.commandLine().pickFirst())
            for (const auto& [name, known] : ids_)
                if (known == id) out.push_back(name);
        std::sort(out.begin(), out.end());
        return out;
    }
    void setPickFirst(std::initializer_list<const char*> list) {
        std::vector<ObjectId> picked;
        for (const char* name : list)
            picked.push_back(ids_.at(name));
        session_.commandLine().setPickFirst(picked);
    }

    host::Database& drawing() { return *session_.host().currentDrawing(); }
    // Every record of the entity, one line each: "TABLE key".
    std::vector<std::wstring> recordsOf(const char* name) {
        std::vector<std::wstring> out;
        EntityRecords reader(drawing());
        for (const ObjectDataRecord& r : reader.read(ids_.at(name)))
            out.push_back(r.table + L" " + r.fields.at(0).displayText());
        return out;
    }

    testtools::TempFolder folder_;
    fs::path drawingFile_ = folder_ / "in.dxf";
    fs::path classesFile_ = folder_ / "classes.txt";
    std::wstring transcript_;
    cad::WorkbenchSession session_{[this](const std::wstring& text) { transcript_ += text; }, folder_ / "settings"};
    std::map<std::string, ObjectId> ids_;
    std::vector<std::wstring> paletteLog_;  // outlives the palette set, which goes when the module unloads
};

// The objects a command line selects when nothing is picked first, and the count it prints.
#define EXPECT_SELECTS(input, expected)                                                                 \
    do {                                                                                                \
        session_.commandLine().setPickFirst({});                                                        \
        const std::wstring printed = type(input);                                                       \
        EXPECT_EQ(pickFirst(), expected) << host::toUtf8(printed);                                      \
        EXPECT_NE(printed.find(L"Selected: " + std::to_wstring((expected).size())), std::wstring::npos) \
            << host::toUtf8(printed);                                                                   \
    } while (0)

TEST_F(CommandRun, YesNoAnswersAreRememberedPerCommandAndReadAsClampedIntegers) {
    // "5" is 1 and "-3" is 0. Properties only, not matching: the objects that fail Road's properties.
    EXPECT_EQ(type(L"VELTARN_SEL_EXT\nRoad\n5\n-3\n0\n\n"),
              L"Command: VELTARN_SEL_EXT\nObject: Road\nUse properties? [0/1]<1>: 5\nUse objects? [0/1]<1>: -3\n"
              L"Match [0/1]<1>: 0\nSelect objects: \nSelected: 2");
    EXPECT_EQ(pickFirst(), names({"roadOnZero", "circle"}));

    // "x" is 0, Enter keeps 0: with both options 0 the command ends after the second prompt.
    setPickFirst({"road"});
    EXPECT_EQ(type(L"VELTARN_SEL_EXT\nRoad\nx\n\n"),
              L"Command: VELTARN_SEL_EXT\nObject: Road\nUse properties? [0/1]<1>: x\nUse objects? [0/1]<0>: \n");
    EXPECT_EQ(pickFirst(), names({"road"}));

    // The match prompt shows <1> whatever is remembered; Enter keeps the 0 given before.
    session_.commandLine().setPickFirst({});
    EXPECT_EQ(type(L"VELTARN_SEL_EXT\nRoad\n1\n\n\n\n"),
              L"Command: VELTARN_SEL_EXT\nObject: Road\nUse properties? [0/1]<0>: 1\nUse objects? [0/1]<0>: \n"
              L"Match [0/1]<1>: \nSelect objects: \nSelected: 2");

    // VELTARN_SEL_ALL remembers its own answers; ASSERT and SEL_NULL theirs.
    EXPECT_EQ(type(L"VELTARN_SEL_ALL\n\x03"), L"Command: VELTARN_SEL_ALL\nUse properties? [0/1]<1>: *Cancel*\n");
    type(L"VELTARN_ASSERT\n1\n\x03");
    EXPECT_NE(type(L"VELTARN_SEL_NULL\n\x03").find(L"Check non-required fields [0/1]<0>: "), std::wstring::npos);
    EXPECT_NE(type(L"VELTARN_ASSERT\n\x03").find(L"Check non-required fields [0/1]<1>: "), std::wstring::npos);
}

TEST_F(CommandRun, SelectTakesModelSpaceWithoutPromptingAndDropsUnusableLayers) {
    const Names roads = names({"road", "roadSand", "roadWide", "roadNoRef", "roadNoNote", "roadOnZero", "both"});
    EXPECT_SELECTS(L"VELTARN_SEL\nroad\n", roads);
    EXPECT_EQ(transcript_.find(L"Select objects"), std::wstring::npos);

    // A class group: every class of it and of the groups below, each object once.
    Names transport = roads;
    transport.push_back("footpath");
    std::sort(transport.begin(), transport.end());
    EXPECT_SELECTS(L"VELTARN_SEL\nTransport\n", transport);

    // VELTARN_SEL_CLASS takes group names only.
    EXPECT_SELECTS(L"VELTARN_SEL_CLASS\nRoad\n", Names{});
    EXPECT_SELECTS(L"VELTARN_SEL_CLASS\nPaths\n", names({"both", "footpath"}));

    // A pick-first set of a locked entity only: nothing to test, and the set stays.
    setPickFirst({"locked"});
    EXPECT_EQ(type(L"VELTARN_SEL\nRoad\n"), L"Command: VELTARN_SEL\nObject: Road\nSelected: 0");
    EXPECT_EQ(pickFirst(), names({"locked"}));
    setPickFirst({"locked", "off", "road", "footpath"});
    EXPECT_EQ(type(L"VELTARN_SEL\nRoad\n"), L"Command: VELTARN_SEL\nObject: Road\nSelected: 1");
    EXPECT_EQ(pickFirst(), names({"road"}));
}

TEST_F(CommandRun, SelectionsByPropertiesByStoredClassesAndByClassification) {
    // Road's data and its layer Roads; without a match, everything else that can be used.
    EXPECT_SELECTS(L"VELTARN_SEL_EXT\nRoad\n1\n1\n1\n\n",
                   names({"road", "roadSand", "roadWide", "roadNoRef", "roadNoNote", "both"}));
    EXPECT_SELECTS(L"VELTARN_SEL_EXT\nRoad\n\n\n0\n\n",
                   names({"roadOnZero", "footpath", "street", "avenue", "other", "plain", "circle"}));
    // Each object against the classes its records name: Road's layer, Footpath's none, Street's none.
    EXPECT_SELECTS(L"VELTARN_SEL_ALL\n1\n1\n1\n\n",
                   names({"road", "roadSand", "roadWide", "roadNoRef", "roadNoNote", "both", "footpath", "street"}));

    const Names unclassified = names({"avenue", "other", "plain", "circle"});
    EXPECT_SELECTS(L"VELTARN_SEL_CLASSIFIED\n0\n\n", unclassified);
    EXPECT_SELECTS(L"VELTARN_SEL_CLASSIFIED\n1\n\n", names({"road", "roadSand", "roadWide", "roadNoRef", "roadNoNote",
                                                            "roadOnZero", "both", "footpath", "street"}));
}

TEST_F(CommandRun, SelectNullFindsEmptyTextsInFieldsTheRecordsOwnClassRequiresOrInAnyField) {
    // Street's record leaves NOTE empty: Street requires it, Road (with the same table) does not.
    EXPECT_SELECTS(L"VELTARN_SEL_NULL\n0\n\n", names({"roadNoRef", "street"}));
    EXPECT_SELECTS(L"VELTARN_SEL_NULL\n1\n\n", names({"roadNoRef", "roadNoNote", "street"}));
}

TEST_F(CommandRun, AssertSelectsIllegalValuesOfRequiredOrOfEveryField) {
    EXPECT_SELECTS(L"VELTARN_ASSERT\n0\n\n", names({"roadWide", "roadNoRef", "street"}));
    EXPECT_SELECTS(L"VELTARN_ASSERT\n1\n\n", names({"roadWide", "roadNoRef", "street", "roadSand"}));
    // Records of unknown classes are passed over, however they look.
    setPickFirst({"avenue", "other", "plain"});
    EXPECT_EQ(type(L"VELTARN_ASSERT\n1\n"),
              L"Command: VELTARN_ASSERT\nCheck non-required fields [0/1]<1>: 1\nSelected: 0");
}

TEST_F(CommandRun, TypeListsTheDistinctTypesSorted) {
    EXPECT_EQ(type(L"VELTARN_TYPE\n\n"), L"Command: VELTARN_TYPE\nSelect objects: \nCircle\nLine\n");
    setPickFirst({"locked", "circle"});
    EXPECT_EQ(type(L"VELTARN_TYPE\n"), L"Command: VELTARN_TYPE\nCircle\n");
}

TEST_F(CommandRun, SelectionCommandsLeaveTheSavedDrawingByteForByteAsOpened) {
    for (const wchar_t* input :
         {L"VELTARN_SEL\nRoad\n", L"VELTARN_SEL_CLASS\nTransport\n", L"VELTARN_SEL_EXT\nRoad\n1\n1\n1\n\n",
          L"VELTARN_SEL_ALL\n1\n1\n0\n\n", L"VELTARN_SEL_NULL\n1\n\n", L"VELTARN_ASSERT\n1\n\n",
          L"VELTARN_SEL_CLASSIFIED\n0\n\n", L"VELTARN_TYPE\n\n"}) {
        session_.commandLine().setPickFirst({});
        EXPECT_EQ(type(input).find(L"Unknown command"), std::wstring::npos) << host::toUtf8(input);
    }
    auto saved = session_.save(folder_ / "out.dxf");
    ASSERT_TRUE(saved.ok()) << saved.message();
    EXPECT_TRUE(testtools::readBytes(folder_ / "out.dxf") == testtools::readBytes(drawingFile_));
}

TEST_F(CommandRun, RemoveTakesTheClassesOfAGroupAndCountsEachObjectOnce) {
    setPickFirst({"both", "footpath", "road", "avenue"});
    EXPECT_EQ(type(L"VELTARN_REMOVE\nTransport\n"), L"Command: VELTARN_REMOVE\nObject: Transport\nCompleted: 3\n");
    EXPECT_TRUE(recordsOf("both").empty() && recordsOf("footpath").empty() && recordsOf("road").empty());
    EXPECT_EQ(recordsOf("avenue"), std::vector<std::wstring>{L"ROADS Avenue"});

    session_.commandLine().setPickFirst({});
    // Without a pick-first set the user is asked; selecting nothing is not all of model space.
    EXPECT_EQ(type(L"VELTARN_REMOVE\nRoad\n\n"),
              L"Command: VELTARN_REMOVE\nObject: Road\nSelect objects: \nError: no objects selected.\n");
    EXPECT_EQ(recordsOf("roadSand"), std::vector<std::wstring>{L"ROADS Road"});
}

TEST_F(CommandRun, RemoveAllLeavesWhatDoesNotResolveAndUndoGivesEveryRecordBack) {
    // The drawing's PIPES holds DIAMETER as text; the classifier's as a real.
    ObjectDataRecord pipesDefinition{L"PIPES", {FieldValue::fromText(L"Pipe"), FieldValue::fromText(L"100")}};
    pipesDefinition.fields[0].setName(L"ID");
    pipesDefinition.fields[1].setName(L"DIAMETER");
    db::Database& raw = session_.host().currentDrawing()->raw();
    raw.beginCommand("SETUP");  // a step of its own, before the one undone below
    ASSERT_EQ(createTableDefinition(drawing(), L"PIPES", pipesDefinition), kOdOk);
    ASSERT_EQ(ObjectData::append(drawing(), ids_.at("plain"), pipesDefinition), kOdOk);
    raw.endCommand();

    const char* touched[] = {"road", "both", "street", "avenue", "other", "plain"};
    std::map<std::string, std::vector<std::wstring>> before;
    for (const char* name : touched)
        before[name] = recordsOf(name);
    setPickFirst({"road", "both", "street", "avenue", "other", "plain"});
    EXPECT_EQ(type(L"VELTARN_REMOVE_ALL\n"), L"Command: VELTARN_REMOVE_ALL\nCompleted: 4\n");
    for (const char* name : {"road", "both", "street"})
        EXPECT_TRUE(recordsOf(name).empty()) << name;
    for (const char* name : {"avenue", "other", "plain"})
        EXPECT_EQ(recordsOf(name), before[name]) << name;

    type(L"U\n");
    for (const char* name : touched)
        EXPECT_EQ(recordsOf(name), before[name]) << name;
}

TEST_F(CommandRun, LoadAndReloadHandTheClassifierToThePagesAndKeepTheListsApart) {
    std::vector<std::wstring>& log = paletteLog_;
    moduleState().paletteSet = std::make_unique<LoggingPalettes>(log);
    const std::wstring path = host::fromUtf8(classesFile_.string());
    const Classifier* before = moduleState().classifier.get();

    // Cancelled at the file prompt: nothing changes.
    setPickFirst({"road"});
    type(L"VELTARN_LOAD\n\x03");
    EXPECT_EQ(log, std::vector<std::wstring>{});
    EXPECT_EQ(moduleState().classifier.get(), before);
    EXPECT_EQ(pickFirst(), names({"road"}));

    // Loaded: the old lists are not saved, the new ones are read from beside the file.
    type(L"VELTARN_LOAD\n" + path + L"\n");
    EXPECT_EQ(
        log, (std::vector<std::wstring>{L"classifier", L"load " + path + L".recent", L"load " + path + L".favorites"}));
    EXPECT_NE(moduleState().classifier->find(L"road"), nullptr);
    EXPECT_EQ(pickFirst(), Names{});

    // Reloaded: the lists of the file are refreshed and saved, and not read back.
    log.clear();
    setPickFirst({"road"});
    type(L"VELTARN_RELOAD\n");
    EXPECT_EQ(log, (std::vector<std::wstring>{L"refresh recent", L"save " + path + L".recent", L"refresh favorites",
                                              L"save " + path + L".favorites", L"classifier"}));
    EXPECT_EQ(pickFirst(), Names{});

    // Without a path there is nothing to reload.
    log.clear();
    moduleState().classifierPath.clear();
    EXPECT_EQ(type(L"VELTARN_RELOAD\n"), L"Command: VELTARN_RELOAD\n");
    EXPECT_EQ(log, std::vector<std::wstring>{});
}

}  // namespace
}  // namespace veltarn

namespace veltarn {
namespace {

// The layer an entity of the fixture is on.
std::wstring layerOf(host::Database& db, ObjectId id) { return db.openEntity(id, host::OpenMode::kRead)->layer(); }

TEST_F(CommandRun, ClassifyGivesPropertiesAndARecordPerTableAndLeavesValidDataAlone) {
    // A circle is no type of Road's: skipped, and not selected afterwards.
    setPickFirst({"plain", "roadOnZero", "circle"});
    const std::wstring printed = type(L"VELTARN_CLASSIFY\nRoad\n1\n1\n0\n\n");
    EXPECT_NE(printed.find(L"Completed: 2\n"), std::wstring::npos) << host::toUtf8(printed);
    EXPECT_EQ(pickFirst(), names({"plain", "roadOnZero"}));
    EXPECT_EQ(layerOf(drawing(), ids_.at("roadOnZero")), L"Roads");
    EXPECT_EQ(recordsOf("roadOnZero"), std::vector<std::wstring>{L"ROADS Road"}) << "valid data is not attached twice";

    // The new record: the key from its template, every other field its default, else empty.
    EntityRecords reader(drawing());
    const std::vector<ObjectDataRecord>& records = reader.read(ids_.at("plain"));
    ASSERT_EQ(records.size(), 1u);
    std::wstring values;
    for (const FieldValue& value : records[0].fields) values += value.name() + L"=" + value.displayText() + L" ";
    EXPECT_EQ(values, L"ID=Road WIDTH=5.0 SURFACE=Asphalt REF=r NOTE= ");

    // Another reader sees the class on the object: its layer, and the record in its extension
    // dictionary under the table's name.
    ASSERT_TRUE(session_.save(folder_ / "classified.dxf").ok());
    std::string seen;
    ASSERT_EQ(testtools::runPython("-c \"import sys, ezdxf; e = ezdxf.readfile(sys.argv[1]).entitydb[sys.argv[2]]; "
                                   "x = e.get_extension_dict()['ROADS']; print(e.dxf.layer, [t.value for t in x.tags])\" " +
                                       testtools::quoted((folder_ / "classified.dxf").string()) + " " +
                                       db::formatHandle(ids_.at("roadOnZero").handle),
                                   &seen),
              0)
        << seen;
    EXPECT_EQ(seen, "Roads ['Road', 5.0, 'Asphalt', 'r', 'x']\n");

    // One step of the undo takes both the properties and the data back.
    type(L"U\n");
    EXPECT_EQ(layerOf(drawing(), ids_.at("roadOnZero")), L"0");
    EXPECT_TRUE(recordsOf("plain").empty());
}

TEST_F(CommandRun, RestoreInTheDefaultModeKeepsAnAllowedSecondLayerAndInModeAllTakesTheFirst) {
    std::string classes = kClasses;
    classes.replace(classes.find("||obj_prop|layer|Roads"), 22, "||obj_prop|layer|Roads|0");
    test::writeClassifier(folder_ / "two-layers.txt", classes);
    moduleState().classifier = test::readClassifier(folder_ / "two-layers.txt");

    EXPECT_NE(type(L"VELTARN_RESTORE\n\n1\n\n").find(L"Mode [0 (all)/1 (default)]<0>: 1"), std::wstring::npos);
    EXPECT_EQ(layerOf(drawing(), ids_.at("roadOnZero")), L"0");
    // Objects without data of a known class are not counted; locked and hidden ones not gathered.
    const std::wstring printed = type(L"VELTARN_RESTORE\n\n0\n\n");
    EXPECT_NE(printed.find(L"Mode [0 (all)/1 (default)]<1>: 0"), std::wstring::npos) << host::toUtf8(printed);
    EXPECT_NE(printed.find(L"Completed: 9/13\n"), std::wstring::npos) << host::toUtf8(printed);
    EXPECT_EQ(layerOf(drawing(), ids_.at("roadOnZero")), L"Roads");
}

TEST_F(CommandRun, SortDrawsHigherPrioritiesOverLowerAsAnotherReaderSeesIt) {
    EXPECT_NE(type(L"VELTARN_SORT\n\n").find(L"Regenerating model."), std::wstring::npos);
    ASSERT_TRUE(session_.save(folder_ / "sorted.dxf").ok());
    // Road is numbered 10, Footpath 5: "both" carries both and takes 10; "plain" has no class.
    std::string order;
    ASSERT_EQ(testtools::runPython("-c \"import sys, ezdxf; from ezdxf import reorder; "
                                   "msp = ezdxf.readfile(sys.argv[1]).modelspace(); "
                                   "print(' '.join(e.dxf.handle for e in reorder.ascending(msp, msp.get_redraw_order())))\" " +
                                       testtools::quoted((folder_ / "sorted.dxf").string()),
                                   &order),
              0)
        << order;
    auto at = [&](const char* name) { return order.find(" " + db::formatHandle(ids_.at(name).handle) + " "); };
    order = " " + order.substr(0, order.find('\n')) + " ";
    EXPECT_LT(at("plain"), at("footpath")) << order;
    EXPECT_LT(at("footpath"), at("both")) << order;
    EXPECT_LT(at("footpath"), at("road")) << order;
    const std::optional<host::VariableValue> sortents = session_.host().systemVariables().get(L"SORTENTS");
    ASSERT_TRUE(sortents);
    EXPECT_EQ(sortents->integer & 127, 127);
}

}  // namespace
}  // namespace veltarn
