// The duplicate commands typed into a workbench session with the module loaded, on a drawing saved
// to a file and opened as a user opens it; the drawing they leave read back by ezdxf.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "CommandTestSupport.h"
#include "ExternalTools.h"
#include "ScratchFiles.h"
#include "cad/db/EntityFactory.h"
#include "cad/db/SymbolTables.h"
#include "cad/session/WorkbenchSession.h"
#include "data/ObjectDataTables.h"
#include "module/ModuleState.h"

namespace veltarn {
namespace {

namespace fs = std::filesystem;
using host::ObjectId;
using Names = std::vector<std::string>;  // sorted

constexpr const char* kClasses = R"(class|Transport|1
|obj_name|Road|1|10
||obj_type|Line
||od_name|ROADS
|||od_key|ID
|||od_fld|WIDTH|Width|real|5
/class
)";

// Prints the handles of model space's entities, sorted.
constexpr const char* kHandles = R"(import sys
import ezdxf
print(" ".join(sorted(e.dxf.handle for e in ezdxf.readfile(sys.argv[1]).modelspace())))
)";

class DuplicateCommands : public ::testing::Test {
protected:
    void SetUp() override {
        test::resetModuleState();
        test::writeClassifier(classesFile_, kClasses);
        buildDrawing();
        auto opened = seam::WorkbenchDatabase::read(drawingFile_);
        ASSERT_TRUE(opened.ok()) << opened.message();
        session_.start(std::move(*opened));
        moduleState().classifier = test::readClassifier(classesFile_);
    }
    void TearDown() override { session_.finish(); }

    void buildDrawing() {
        seam::WorkbenchDatabase drawing{db::Database::createNew()};
        db::Database& raw = drawing.raw();
        for (const char* layer : {"Roads", "Other"})
            ASSERT_TRUE(db::writeLayer(raw, {layer}).ok());
        const std::unique_ptr<Classifier> classifier = test::readClassifier(classesFile_);
        const ClassIndex index(*classifier);
        const ObjectDataRecord road = test::makeRecord(*index.findTable(L"ROADS"), L"Road");
        ObjectDataRecord other{L"OTHER", {FieldValue::fromText(L"x")}};
        other.fields[0].setName(L"ID");
        ASSERT_EQ(createTableDefinition(drawing, L"ROADS", road), kOdOk);
        ASSERT_EQ(createTableDefinition(drawing, L"OTHER", other), kOdOk);

        auto add = [&](const char* name, db::TagList tags, const char* layer = "Roads",
                       const ObjectDataRecord* record = nullptr) {
            const ObjectId id{*raw.appendEntity(raw.modelSpace(), std::move(tags))};
            drawing.openEntity(id, host::OpenMode::kWrite)
                ->setProperty(host::EntityProperty::kLayer, host::fromUtf8(layer));
            if (record) {
                ASSERT_EQ(test::appendRecord(drawing, id, *record), kOdOk);
            }
            ids_[name] = id;
        };
        add("line", db::newLine(raw, {0, 0, 0}, {10, 0, 0}));
        add("lineBack", db::newLine(raw, {10, 0, 0}, {0, 0, 0}));
        add("lineOtherLayer", db::newLine(raw, {0, 0, 0}, {10, 0, 0}), "Other");
        add("circle", db::newCircle(raw, {50, 0, 0}, 5));
        add("circleNear", db::newCircle(raw, {50 + 5e-7, 0, 0}, 5 - 5e-7));
        add("circleFar", db::newCircle(raw, {50.00001, 0, 0}, 5));
        add("text", db::newText(raw, {0, 20, 0}, 2, "Main street"));
        add("textSame", db::newText(raw, {0, 20, 0}, 2, "Main street"));
        add("textOther", db::newText(raw, {0, 20, 0}, 2, "Side street"));
        add("poly", db::newLwpolyline(raw, {{{0, 40, 0}, 0.5, 1, 2}, {{10, 40, 0}}, {{10, 50, 0}}}, false));
        add("polyBack", db::newLwpolyline(raw, {{{10, 50, 0}}, {{10, 40, 0}, -0.5, 2, 1}, {{0, 40, 0}}}, false));
        add("polyBulgeNotNegated",
            db::newLwpolyline(raw, {{{10, 50, 0}}, {{10, 40, 0}, 0.5, 2, 1}, {{0, 40, 0}}}, false));
        // Model space's first of a group goes when a later twin carries data.
        add("roadPlain", db::newLine(raw, {0, 60, 0}, {10, 60, 0}));
        add("road", db::newLine(raw, {0, 60, 0}, {10, 60, 0}), "Roads", &road);
        // Records that disagree: neither goes.
        add("otherRecord", db::newLine(raw, {0, 70, 0}, {10, 70, 0}), "Roads", &other);
        add("roadRecord", db::newLine(raw, {0, 70, 0}, {10, 70, 0}), "Roads", &road);
        // The same records, and none: the first with data stays.
        add("otherA", db::newLine(raw, {0, 80, 0}, {10, 80, 0}), "Roads", &other);
        add("plainB", db::newLine(raw, {0, 80, 0}, {10, 80, 0}));
        add("otherC", db::newLine(raw, {0, 80, 0}, {10, 80, 0}), "Roads", &other);
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
    Names namesOf(const std::vector<ObjectId>& ids) const {
        Names out;
        for (ObjectId id : ids)
            for (const auto& [name, known] : ids_)
                if (known == id) out.push_back(name);
        std::sort(out.begin(), out.end());
        return out;
    }
    Names pickFirst() { return namesOf(session_.commandLine().pickFirst()); }
    // The entities of model space that can be opened, by name.
    Names present() {
        std::vector<ObjectId> open;
        for (const auto& [name, id] : ids_)
            if (drawing().openEntity(id, host::OpenMode::kRead)) open.push_back(id);
        return namesOf(open);
    }
    Names allBut(const Names& gone) const {
        Names out;
        for (const auto& [name, id] : ids_)
            if (std::find(gone.begin(), gone.end(), name) == gone.end()) out.push_back(name);
        return out;
    }
    host::Database& drawing() { return *session_.host().currentDrawing(); }

    testtools::TempFolder folder_;
    fs::path drawingFile_ = folder_ / "in.dxf";
    fs::path classesFile_ = folder_ / "classes.txt";
    std::wstring transcript_;
    cad::WorkbenchSession session_{[this](const std::wstring& text) { transcript_ += text; }, folder_ / "settings"};
    std::map<std::string, ObjectId> ids_;
};

const Names kDuplicates = {"circleNear", "lineBack", "otherC", "plainB", "polyBack", "roadPlain", "textSame"};

TEST_F(DuplicateCommands, SelectFindsWhatDeleteErasesAndUndoBringsItBack) {
    EXPECT_EQ(type(L"VELTARN_SEL_DUPLICATES\n\n\n"),
              L"Command: VELTARN_SEL_DUPLICATES\nTolerance<1e-06>: \nSelect objects: \nSelected: 7");
    EXPECT_EQ(pickFirst(), kDuplicates);

    // The pick-first set is what the next command works on: of the selected twins only plainB has
    // its twin with the same records (otherC) among them.
    EXPECT_EQ(type(L"VELTARN_DEL_DUPLICATES\n\n"),
              L"Command: VELTARN_DEL_DUPLICATES\nTolerance<1e-06>: \nCompleted: 1\n");
    EXPECT_EQ(present(), allBut({"plainB"}));
    session_.commandLine().setPickFirst({});
    EXPECT_EQ(type(L"VELTARN_DEL_DUPLICATES\n\n\n"),
              L"Command: VELTARN_DEL_DUPLICATES\nTolerance<1e-06>: \nSelect objects: \nCompleted: 6\n");
    EXPECT_EQ(present(), allBut(kDuplicates));

    // One undo step per command.
    type(L"U\n");
    EXPECT_EQ(present(), allBut({"plainB"}));
    type(L"U\n");
    EXPECT_EQ(present(), allBut({}));
    session_.commandLine().setPickFirst({});
    EXPECT_NE(type(L"VELTARN_SEL_DUPLICATES\n\n\n").find(L"Selected: 7"), std::wstring::npos);
}

TEST_F(DuplicateCommands, PickFirstSetAloneIsSearchedAndKeptOneIsTheOneWithData) {
    session_.commandLine().setPickFirst({ids_.at("road"), ids_.at("roadPlain"), ids_.at("line"),
                                         ids_.at("lineOtherLayer"), ids_.at("textOther"), ids_.at("text")});
    EXPECT_EQ(type(L"VELTARN_SEL_DUPLICATES\n\n"), L"Command: VELTARN_SEL_DUPLICATES\nTolerance<1e-06>: \nSelected: 1");
    EXPECT_EQ(pickFirst(), Names{"roadPlain"});

    // Without a classifier the one with data still stays.
    moduleState().classifier.reset();
    session_.commandLine().setPickFirst(
        {ids_.at("road"), ids_.at("roadPlain"), ids_.at("otherRecord"), ids_.at("roadRecord")});
    EXPECT_EQ(type(L"VELTARN_DEL_DUPLICATES\n\n"),
              L"Command: VELTARN_DEL_DUPLICATES\nTolerance<1e-06>: \nCompleted: 1\n");
    EXPECT_EQ(present(), allBut({"roadPlain"}));

    // Cancelled at the selection: nothing happens, nothing is said.
    session_.commandLine().setPickFirst({});
    EXPECT_EQ(type(L"VELTARN_DEL_DUPLICATES\n\n\x03"),
              L"Command: VELTARN_DEL_DUPLICATES\nTolerance<1e-06>: \nSelect objects: *Cancel*\n");
    EXPECT_EQ(present(), allBut({"roadPlain"}));
}

TEST_F(DuplicateCommands, ToleranceIsRememberedAcrossBothCommandsAndOnlyANumberReplacesIt) {
    Names wider = kDuplicates;
    wider.push_back("circleFar");
    std::sort(wider.begin(), wider.end());
    EXPECT_EQ(type(L"VELTARN_SEL_DUPLICATES\n1e-4\n\n"),
              L"Command: VELTARN_SEL_DUPLICATES\nTolerance<1e-06>: 1e-4\nSelect objects: \nSelected: 8");
    EXPECT_EQ(pickFirst(), wider);

    for (const wchar_t* kept : {L"x", L"-1"}) {
        session_.commandLine().setPickFirst({});
        EXPECT_EQ(type(L"VELTARN_SEL_DUPLICATES\n" + std::wstring(kept) + L"\n\n"),
                  L"Command: VELTARN_SEL_DUPLICATES\nTolerance<0.0001>: " + std::wstring(kept) +
                      L"\nSelect objects: \nSelected: 8");
    }
    // A tolerance of 0 asks for equal numbers: the circle half a millionth off is no twin.
    session_.commandLine().setPickFirst({});
    EXPECT_NE(type(L"VELTARN_DEL_DUPLICATES\n0\n\n").find(L"Tolerance<0.0001>: 0\nSelect objects: \nCompleted: 6\n"),
              std::wstring::npos);
    EXPECT_EQ(present(), allBut({"lineBack", "otherC", "plainB", "polyBack", "roadPlain", "textSame"}));
}

TEST_F(DuplicateCommands, SavedDrawingHoldsWhatIsLeftAsEzdxfReadsIt) {
    ASSERT_EQ(testtools::missingEzdxf(), "");
    EXPECT_NE(type(L"VELTARN_DEL_DUPLICATES\n\n\n").find(L"Completed: 7\n"), std::wstring::npos);
    const fs::path saved = folder_ / "out.dxf";
    auto written = session_.save(saved);
    ASSERT_TRUE(written.ok()) << written.message();
    EXPECT_EQ(testtools::audit(saved), "");

    std::vector<std::string> handles;
    for (const std::string& name : allBut(kDuplicates)) {
        char text[32];
        std::snprintf(text, sizeof text, "%llX", static_cast<unsigned long long>(ids_.at(name).handle));
        handles.push_back(text);
    }
    std::sort(handles.begin(), handles.end());
    std::string expected;
    for (const std::string& h : handles)
        expected += (expected.empty() ? "" : " ") + h;

    const fs::path script = folder_ / "handles.py";
    std::ofstream(script) << kHandles;
    std::string output;
    ASSERT_EQ(
        testtools::runPython(testtools::quoted(script.string()) + " " + testtools::quoted(saved.string()), &output), 0)
        << output;
    EXPECT_EQ(output, expected + "\n");
}

}  // namespace
}  // namespace veltarn
