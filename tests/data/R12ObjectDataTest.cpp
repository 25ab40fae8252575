// Object data in R12 drawings, written by an independent library in ASCII and binary form: reads
// leave the drawing R12 and untouched; the first table and record make it a 2018 drawing that the
// other library reads back with the data; undoing that command leaves a drawing that still audits.
#include "ExternalTools.h"
#include "TestDrawing.h"

#include "data/ObjectData.h"
#include "data/ObjectDataListing.h"
#include "data/ObjectDataTables.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

using namespace veltarn;
using host::ObjectId;
using host::OpenMode;
using test::TestDrawing;

namespace {

const std::string kGenerator = testtools::quoted((testtools::toolsDir() / "gen_dxf.py").string()) + " ";
const std::string kDump = std::string(VELTARN_SOURCE_DIR) + "/tests/data/data/dump_object_data.py";

std::string readBytes(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

// What the independent library says of a written drawing: its version, then its object data.
std::string independentView(const std::filesystem::path& file) {
    std::string output;
    test::runPython("-c 'import sys, ezdxf; print(ezdxf.readfile(sys.argv[1]).dxfversion)' '" + file.string() + "'", &output);
    test::runPython(kDump + " '" + file.string() + "'", &output);
    return output;
}

using testtools::audit;

ObjectDataRecord roadsDefinition() {
    ObjectDataRecord definition{L"", {FieldValue(L"NAME"), FieldValue(L"LANES"), FieldValue(L"AXIS")}};
    definition.fields[0].setText(L"");
    definition.fields[1].setInteger(0);
    definition.fields[2].setPoint({});
    return definition;
}

// Defines ROADS and gives `entity` one record through the store, as a classify command does.
void classify(host::Database& db, ObjectId entity) {
    ASSERT_EQ(createTableDefinition(db, L"ROADS", roadsDefinition()), kOdOk);
    ObjectDataRecord road{L"ROADS", {FieldValue::fromText(L"Main"), FieldValue::fromInteger(2),
                                     FieldValue::fromPoint({1, 2, 3})}};
    const FieldType types[] = {FieldType::Character, FieldType::Integer, FieldType::Point};
    ASSERT_EQ(ObjectData::append(db, entity, road, types), kOdOk);
}

const std::vector<std::wstring> kListed{
    L"Object data table: ROADS",
    L"    NAME (Character): Main",
    L"    LANES (Integer): 2",
    L"    AXIS (Point): 1.000000,2.000000,3.000000",
};

struct Form {
    const char* name;
    const char* arguments;
};

class R12Drawing : public testing::TestWithParam<Form> {
protected:
    void SetUp() override {
        ASSERT_EQ(testtools::missingEzdxf(), "");
        // A folder per test, not per form: ctest runs the tests of one form side by side.
        const std::string test = ::testing::UnitTest::GetInstance()->current_test_info()->name();
        dir_ = test::scratchDir(std::string("r12-") + GetParam().name + "-" + test.substr(0, test.find('/')));
        source_ = dir_ / "r12.dxf";
        std::string output;
        ASSERT_EQ(test::runPython(kGenerator + "6 '" + source_.string() + "' --version R12 --layers 2 " +
                                      GetParam().arguments, &output), 0) << output;
    }

    std::filesystem::path dir_, source_;
};

TEST_P(R12Drawing, readingFindsNoDataAndChangesNothing) {
    auto drawing = TestDrawing::read(source_);
    host::Database& db = drawing->db();
    std::vector<std::wstring> tables;
    EXPECT_EQ(listTables(db, kListTablesMode, tables), kOdOk);
    EXPECT_TRUE(tables.empty());
    EXPECT_TRUE(findObjectDataDictionary(db).isNull());
    ObjectId line = drawing->entityOnLayer(L"LAYER_00");
    ObjectData cursor(db);
    EXPECT_EQ(cursor.open(line), kOdNoData);
    EXPECT_TRUE(listObjectData(db, line).empty());
    drawing->save(dir_ / "same.dxf");
    EXPECT_EQ(readBytes(dir_ / "same.dxf"), readBytes(source_)) << "saved as it was read";
}

TEST_P(R12Drawing, aTableAndARecordMakeIt2018WithTheDataAnotherReaderSees) {
    auto drawing = TestDrawing::read(source_);
    ObjectId line = drawing->entityOnLayer(L"LAYER_00");
    classify(drawing->db(), line);
    EXPECT_EQ(listObjectData(drawing->db(), line), kListed);

    const std::filesystem::path written = dir_ / "written.dxf";
    drawing->save(written);
    EXPECT_EQ(audit(written), "");
    EXPECT_EQ(independentView(written),
              "AC1032\n"
              "table ROADS 1=NAME 1= 1=LANES 90=0 1=AXIS 10=0.0,0.0,0.0\n"
              "LAYER_00 ROADS 1=Main 90=2 10=1.0,2.0,3.0\n");

    auto reread = TestDrawing::read(written);
    EXPECT_EQ(listObjectData(reread->db(), reread->entityOnLayer(L"LAYER_00")), kListed);
}

INSTANTIATE_TEST_SUITE_P(Forms, R12Drawing, testing::Values(Form{"ascii", ""}, Form{"binary", "--binary"}),
                         [](const testing::TestParamInfo<Form>& info) { return std::string(info.param.name); });

TEST(R12DrawingUndo, undoingTheCommandThatConvertedGivesBackTheR12Drawing) {
    ASSERT_EQ(testtools::missingEzdxf(), "");
    const std::filesystem::path dir = test::scratchDir("r12-undo");
    std::string output;
    ASSERT_EQ(test::runPython(kGenerator + "6 '" + (dir / "r12.dxf").string() + "' --version R12 --layers 2", &output), 0)
        << output;
    auto drawing = TestDrawing::read(dir / "r12.dxf");
    host::Database& db = drawing->db();
    ObjectId line = drawing->entityOnLayer(L"LAYER_00");

    drawing->beginCommand("VELTARN_CLASSIFY");
    classify(db, line);
    drawing->endCommand();
    ASSERT_TRUE(drawing->undo());
    EXPECT_TRUE(findObjectDataDictionary(db).isNull());
    EXPECT_TRUE(db.openObject(line, OpenMode::kRead)->extensionDictionary().isNull());
    EXPECT_TRUE(listObjectData(db, line).empty());
    drawing->save(dir / "undone.dxf");
    EXPECT_EQ(audit(dir / "undone.dxf"), "");
    EXPECT_EQ(independentView(dir / "undone.dxf"), "AC1009\n");
    EXPECT_TRUE(readBytes(dir / "undone.dxf") == readBytes(dir / "r12.dxf")) << "the R12 drawing as it was read";

    ASSERT_TRUE(drawing->redo());
    EXPECT_EQ(listObjectData(db, line), kListed);
    ASSERT_TRUE(drawing->undo());

    // The store starts afresh, converting again.
    drawing->beginCommand("VELTARN_CLASSIFY");
    classify(db, line);
    drawing->endCommand();
    EXPECT_EQ(listObjectData(db, line), kListed);
    drawing->save(dir / "again.dxf");
    EXPECT_EQ(audit(dir / "again.dxf"), "");
}

}  // namespace
