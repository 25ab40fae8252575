// A walk over many records of one entity: the cursor reads the records xrecord once per walk,
// so what it reads must still follow the updates made through it and the appends made between walks.
#include "TestDrawing.h"

#include "data/ObjectData.h"
#include "data/ObjectDataTables.h"

#include <gtest/gtest.h>

using namespace veltarn;
using host::ObjectId;
using test::TestDrawing;

namespace {

class RecordWalk : public testing::Test {
protected:
    void SetUp() override {
        drawing_ = TestDrawing::createNew();
        ObjectDataRecord definition{L"", {FieldValue(L"NAME"), FieldValue(L"LANES")}};
        definition.fields[0].setText(L"");
        definition.fields[1].setInteger(0);
        ASSERT_EQ(createTableDefinition(db(), L"ROADS", definition), kOdOk);
        line_ = drawing_->addLine();
        for (int i = 0; i < kRecords; ++i) append(i);
    }
    host::Database& db() { return drawing_->db(); }
    void append(int i) {
        ObjectDataRecord record{L"ROADS", {FieldValue::fromText(L"Road " + std::to_wstring(i)), FieldValue::fromInteger(i)}};
        ASSERT_EQ(ObjectData::append(db(), line_, record), kOdOk);
    }
    // The LANES of every record, in order.
    std::vector<std::int32_t> lanes() {
        std::vector<std::int32_t> out;
        ObjectData cursor(db());
        ObjectDataRecord record;
        for (int rc = cursor.open(line_); rc == kOdOk && !cursor.atEnd(); cursor.next()) {
            if (cursor.read(record) != kOdOk) break;
            out.push_back(record.fields[1].integerValue());
        }
        return out;
    }

    static constexpr int kRecords = 3000;
    std::unique_ptr<TestDrawing> drawing_;
    ObjectId line_;
};

TEST_F(RecordWalk, ReadsEveryRecordInOrderAndSeesItsOwnUpdates) {
    std::vector<std::int32_t> expected(kRecords);
    for (int i = 0; i < kRecords; ++i) expected[static_cast<std::size_t>(i)] = i;
    EXPECT_EQ(lanes(), expected);

    // Every tenth record doubled during one walk; the reads after each update go on in step.
    ObjectData cursor(db());
    ObjectDataRecord record;
    std::vector<std::int32_t> seen;
    for (int rc = cursor.open(line_); rc == kOdOk && !cursor.atEnd(); cursor.next()) {
        ASSERT_EQ(cursor.read(record), kOdOk);
        seen.push_back(record.fields[1].integerValue());
        if (seen.size() % 10 == 1) {
            record.fields[1] = FieldValue::fromInteger(2 * record.fields[1].integerValue());
            ASSERT_EQ(cursor.update(record), kOdOk);
            ASSERT_EQ(cursor.read(record), kOdOk);
            EXPECT_EQ(record.fields[1].integerValue(), 2 * seen.back()) << "the update reads back at once";
        }
    }
    EXPECT_EQ(seen, expected);
    for (std::size_t i = 0; i < expected.size(); i += 10) expected[i] *= 2;
    EXPECT_EQ(lanes(), expected) << "a new walk reads what the updates wrote";

    append(kRecords);
    expected.push_back(kRecords);
    EXPECT_EQ(lanes(), expected) << "a record appended between walks is read by the next one";
}

}  // namespace
