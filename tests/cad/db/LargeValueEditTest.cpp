// Drawings holding very long texts, saved after an edit: the file on disk is what the drawing
// writes, and it reads back with every value, in our loader and in ezdxf.
#include "TestSupport.h"
#include "ExternalTools.h"

#include "cad/db/Dictionary.h"
#include "cad/db/EntityFactory.h"
#include "cad/db/SymbolTables.h"
#include "cad/db/Xrecord.h"

#include "ScratchFiles.h"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <sstream>

namespace veltarn::db {
namespace {

namespace fs = std::filesystem;

std::string bytesOf(const fs::path& file) { return testtools::readBytes(file); }

Handle xrecordOf(const Database& db) { return findEntry(db, db.namedObjectsDictionary(), "LONG_VALUES"); }

// A drawing, as read from a file, with two lines and one xrecord holding `values` (group 1).
Database drawingWith(const std::vector<std::string>& values) {
    Database made = Database::createNew();
    ResultBuffer buffer;
    for (const auto& value : values) buffer.push_back(TypedValue::ofText(1, value));
    EXPECT_TRUE(addXrecord(made, made.namedObjectsDictionary(), "LONG_VALUES", buffer).ok());
    for (double y : {0.0, 1.0}) EXPECT_TRUE(made.appendEntity(made.modelSpace(), newLine(made, {0, y, 0}, {1, y, 0})).ok());
    return test::parseOrFail(made.toText().value());
}

// The edits that once scrambled such a save; each is what a command does to the drawing.
struct Edit {
    const char* name;
    std::function<void(Database&)> apply;
};

const std::vector<Edit>& edits() {
    static const std::vector<Edit> all = {
        {"ERASE", [](Database& db) { EXPECT_EQ(db.erase(db.entitiesOf(db.modelSpace()).front()), OpenStatus::Ok); }},
        {"-LAYER New", [](Database& db) { EXPECT_TRUE(writeLayer(db, Layer{.name = "Walls"}).ok()); }},
        {"SETVAR", [](Database& db) { EXPECT_TRUE(db.setHeaderVariable("$LTSCALE", 40, "2.5").ok()); }},
        {"xrecord value", [](Database& db) {
             auto values = readXrecord(db, xrecordOf(db)).value();
             values.push_back(TypedValue::ofText(1, "one more"));
             EXPECT_TRUE(replaceXrecord(db, xrecordOf(db), values).ok());
         }},
    };
    return all;
}

// Counts the bytes of each write.
class PieceSizes final : public dxf::OutputSink {
public:
    void write(std::string_view bytes) override { sizes.push_back(bytes.size()); }
    std::vector<std::size_t> sizes;
};

std::vector<std::size_t> pieceSizes(const Edit& edit, std::size_t valueLength) {
    Database db = drawingWith({std::string(valueLength, 'v')});
    edit.apply(db);
    PieceSizes sink;
    EXPECT_TRUE(db.write(sink).ok());
    return sink.sizes;
}

// The bytes of the saved drawing's piece that holds the long value, beyond the value itself: the
// value lengths of the test are chosen so that this piece falls on each side of each limit.
std::size_t pieceOverhead(const Edit& edit) {
    auto shorter = pieceSizes(edit, 1000), longer = pieceSizes(edit, 2000);
    EXPECT_EQ(shorter.size(), longer.size());
    for (std::size_t i = 0; i < shorter.size() && i < longer.size(); ++i)
        if (longer[i] == shorter[i] + 1000) return shorter[i] - 1000;
    ADD_FAILURE() << edit.name << ": no piece holds the value";
    return 0;
}

// Saves after the edit; the file must be the drawing's text and read back with `values` and `extra`.
void checkSave(const std::vector<std::string>& values, const Edit& edit, const fs::path& file, const std::string& what) {
    Database db = drawingWith(values);
    edit.apply(db);
    ASSERT_TRUE(db.save(file).ok()) << what;
    EXPECT_EQ(testtools::workbenchAudit(file), "") << what;
    const std::string text = db.toText().value();
    std::string saved = bytesOf(file);
    ASSERT_EQ(saved.size(), text.size()) << what;
    EXPECT_TRUE(saved == text) << what << ": the saved file is not what the drawing writes";

    auto reloaded = Database::load(file);
    ASSERT_TRUE(reloaded.ok()) << what << ": " << reloaded.message();
    auto read = readXrecord(*reloaded, xrecordOf(*reloaded));
    ASSERT_TRUE(read.ok()) << what << ": " << read.message();
    EXPECT_EQ(*read, readXrecord(db, xrecordOf(db)).value()) << what;
    EXPECT_EQ(reloaded->entitiesOf(reloaded->modelSpace()).size(), db.entitiesOf(db.modelSpace()).size()) << what;
}

TEST(LargeValueEdit, SavesAfterAnEditWithAValueAroundEveryBufferLimit) {
    fs::path folder = test::scratchDir("large-value-edit");
    for (const Edit& edit : edits()) {
        const std::size_t overhead = pieceOverhead(edit);
        for (std::size_t limit : {dxf::kSaveBufferSize / 2, dxf::kSaveBufferSize}) {
            for (std::size_t piece : {limit - 1, limit, limit + 1}) {
                std::string what = std::string(edit.name) + ", a piece of " + std::to_string(piece) + " bytes";
                checkSave({std::string(piece - overhead, 'v')}, edit, folder / "saved.dxf", what);
            }
        }
    }
}

TEST(LargeValueEdit, SavesAfterAnEditWithManyLongValues) {
    fs::path folder = test::scratchDir("many-long-values");
    std::vector<std::string> values;
    for (int i = 0; i < 300; ++i) values.push_back(std::to_string(i) + std::string(3000, 'a' + i % 26));
    for (const Edit& edit : edits()) checkSave(values, edit, folder / "saved.dxf", std::string(edit.name) + ", 300 values");
}

// What another reader finds: the value whole, and the header where a drawing has it.
TEST(LargeValueEdit, AnotherReaderReadsTheSavedFile) {
    fs::path folder = test::scratchDir("large-value-ezdxf");
    std::string files;
    for (std::size_t e = 0; e < edits().size(); ++e) {
        fs::path file = folder / ("edit" + std::to_string(e) + ".dxf");
        checkSave({std::string(600000, 'v')}, edits()[e], file, edits()[e].name);
        files += " '" + file.string() + "'";
    }
    const std::string script =
        "import sys, ezdxf\n"
        "for name in sys.argv[1:]:\n"
        "    doc = ezdxf.readfile(name)\n"
        "    record = doc.rootdict['LONG_VALUES']\n"
        "    print(doc.dxfversion, len(record.tags[0].value), len(doc.modelspace()))\n";
    std::string output;
    ASSERT_EQ(test::runPython("-c \"" + script + "\"" + files, &output), 0) << output;
    EXPECT_EQ(output, "AC1032 600000 1\nAC1032 600000 2\nAC1032 600000 2\nAC1032 600000 2\n");
}

}  // namespace
}  // namespace veltarn::db
