// The commands over drawings whose object data an independent library wrote (ezdxf, through
// tests/tools/gen_dxf.py), with the classifier the generator wrote beside them. What the commands
// should find is counted from the same file by a script over ezdxf and the generator's tables.
#include <gtest/gtest.h>

#include <sstream>

#include "CommandTestSupport.h"
#include "ExternalTools.h"
#include "ScratchFiles.h"
#include "cad/session/WorkbenchSession.h"
#include "classifier/ClassifierReader.h"
#include "host/Utf8.h"
#include "module/ModuleState.h"

namespace veltarn {
namespace {

namespace fs = std::filesystem;
using testtools::quoted;

// Prints: entities of model space, those with a record keyed to its class, those whose first
// such record of a table holds a value outside its list or range, and those with a ROADS record
// keyed to Roads.
constexpr const char* kCounter = R"(import sys
import ezdxf
sys.path.insert(0, sys.argv[1])
import gen_dxf

def keyed_rows(xdict, table):
    values, n = [tag.value for tag in xdict[table.name].tags], len(table.fields)
    rows = [values[i:i + n] for i in range(0, len(values), n)]
    return [row for row in rows if str(row[0]).lower() == gen_dxf.display_name(table).lower()]

def illegal(table, row):
    return any(isinstance(allowed, list) and value.lower() not in [a.lower() for a in allowed] or
               isinstance(allowed, tuple) and not allowed[0] <= value <= allowed[1]
               for (_, _, allowed), value in zip(table.fields[1:], row[1:]))

tables = gen_dxf.make_tables(int(sys.argv[3]))
msp = ezdxf.readfile(sys.argv[2]).modelspace()
found = [[(t, keyed_rows(e.get_extension_dict(), t)) for t in tables if t.name in e.get_extension_dict()]
         if e.has_extension_dict else [] for e in msp]
found = [[(t, rows[0]) for t, rows in entity if rows] for entity in found]
print(len(msp), sum(1 for entity in found if entity), sum(any(illegal(t, row) for t, row in entity) for entity in found),
      sum(any(t.name == "ROADS" for t, _ in entity) for entity in found))
)";

class GeneratedDrawingCommands : public ::testing::Test {
protected:
    void SetUp() override {
        test::resetModuleState();
        ASSERT_EQ(testtools::missingEzdxf(), "");
    }
    void TearDown() override { session_.finish(); }

    // Writes the drawing and its classifier with `options`, opens the drawing and loads the
    // classifier as a user does, or without the command (which checks the classifier's tables
    // against the drawing, and so gives it the data dictionary).
    void generateAndOpen(const std::string& options, bool loadCommand = true) {
        std::string output;
        ASSERT_EQ(testtools::runPython(quoted((testtools::toolsDir() / "gen_dxf.py").string()) + " 90 " +
                                           quoted(drawingFile_.string()) + " " + options + " --classifier " +
                                           quoted(classesFile_.string()),
                                       &output),
                  0)
            << output;
        auto opened = seam::WorkbenchDatabase::read(drawingFile_);
        ASSERT_TRUE(opened.ok()) << opened.message();
        session_.start(std::move(*opened));
        if (!loadCommand) {
            moduleState().classifier = std::make_unique<Classifier>(
                ClassifierReader([](const std::wstring&) {}).read(host::fromUtf8(classesFile_.string())));
        }
        const std::wstring loaded =
            !loadCommand ? L"" : type(L"VELTARN_LOAD\n" + host::fromUtf8(classesFile_.string()) + L"\n");
        ASSERT_TRUE(moduleState().classifier) << host::toUtf8(loaded);
        ASSERT_EQ(moduleState().classifier->objectCount(), 3) << host::toUtf8(loaded);
    }

    std::wstring type(const std::wstring& input) {
        transcript_.clear();
        session_.commandLine().setPickFirst({});
        session_.commandLine().input().append(input);
        while (session_.step()) {
        }
        return transcript_;
    }
    // The count a selection command printed; -1 when it printed none.
    int selected(const std::wstring& input) {
        const std::wstring printed = type(input);
        const std::size_t at = printed.rfind(L"Selected: ");
        EXPECT_NE(at, std::wstring::npos) << host::toUtf8(printed);
        return at == std::wstring::npos ? -1 : std::stoi(printed.substr(at + 10));
    }

    testtools::TempFolder folder_;
    fs::path drawingFile_ = folder_ / "generated.dxf";
    fs::path classesFile_ = folder_ / "generated.txt";
    std::wstring transcript_;
    cad::WorkbenchSession session_{[this](const std::wstring& text) { transcript_ += text; }, folder_ / "settings"};
};

TEST_F(GeneratedDrawingCommands, SelectionsFindWhatTheGeneratorMadeValidAndFaulty) {
    generateAndOpen("--data all --tables 3 --faulty 0.2");
    testtools::writeBytes(folder_ / "count.py", kCounter);
    std::string counted;
    ASSERT_EQ(
        testtools::runPython(quoted((folder_ / "count.py").string()) + " " + quoted(testtools::toolsDir().string()) +
                                 " " + quoted(drawingFile_.string()) + " 3",
                             &counted),
        0)
        << counted;
    int entities = 0, classified = 0, faulty = 0, roads = 0;
    std::istringstream(counted) >> entities >> classified >> faulty >> roads;
    ASSERT_GT(faulty, 0) << "the generator's faults must give the value check something to find";
    ASSERT_LT(classified, entities) << "and some records must have lost their key";

    EXPECT_EQ(selected(L"VELTARN_SEL_CLASSIFIED\n1\n\n"), classified);
    EXPECT_EQ(selected(L"VELTARN_SEL_CLASSIFIED\n0\n\n"), entities - classified);
    EXPECT_EQ(selected(L"VELTARN_SEL\nRoads\n"), roads);
    EXPECT_EQ(selected(L"VELTARN_ASSERT\n0\n\n"), 0) << "the generator's classifier requires no field";
    EXPECT_EQ(selected(L"VELTARN_ASSERT\n1\n\n"), faulty);
}

TEST_F(GeneratedDrawingCommands, SelectionsLeaveADrawingWithoutObjectDataAsItWasRead) {
    // Reading records of a drawing without the data dictionary must not create it.
    generateAndOpen("--data none --tables 3", false);
    for (const wchar_t* input : {L"VELTARN_SEL\nRoads\n", L"VELTARN_SEL_CLASSIFIED\n1\n\n", L"VELTARN_SEL_NULL\n1\n\n",
                                 L"VELTARN_ASSERT\n1\n\n", L"VELTARN_SEL_ALL\n1\n1\n1\n\n"}) {
        EXPECT_EQ(selected(input), 0) << host::toUtf8(input);
    }
    auto saved = session_.save(folder_ / "out.dxf");
    ASSERT_TRUE(saved.ok()) << saved.message();
    EXPECT_TRUE(testtools::readBytes(folder_ / "out.dxf") == testtools::readBytes(drawingFile_));
}

}  // namespace
}  // namespace veltarn
