// Record values to and from the typed values of a chain: the group code decides the type.
#include "data/ObjectDataRecord.h"
#include "data/RecordValues.h"

#include <gtest/gtest.h>

using namespace veltarn;
using host::TypedValue;

namespace {

struct StoredRow { const char* name; TypedValue stored; const wchar_t* expected; };

class StoredValue : public testing::TestWithParam<StoredRow> {};

TEST_P(StoredValue, typedByGroupCode) {
    FieldValue value(L"field");
    value.setText(L"stale");
    readStoredValue(GetParam().stored, value);
    EXPECT_EQ(std::wstring(fieldTypeName(value.type())) + L":" + value.displayText(), GetParam().expected);
    EXPECT_EQ(value.name(), L"field");
}

INSTANTIATE_TEST_SUITE_P(Codes, StoredValue, testing::Values(
    StoredRow{"text", TypedValue(1, std::wstring(L"Main street")), L"Character:Main street"},
    StoredRow{"point", TypedValue(10, host::Point3d{1, 2, 3}), L"Point:1.000000,2.000000,3.000000"},
    StoredRow{"real", TypedValue(40, 2.75), L"Real:2.75"},
    StoredRow{"integer", TypedValue(90, std::int32_t{-4}), L"Integer:-4"},
    StoredRow{"otherTextCode", TypedValue(2, std::wstring(L"x")), L"Unknown:"},
    StoredRow{"otherRealCode", TypedValue(41, 1.0), L"Unknown:"},
    StoredRow{"otherIntegerCode", TypedValue(70, std::int32_t{1}), L"Unknown:"},
    StoredRow{"textUnderIntegerCode", TypedValue(90, std::wstring(L"5")), L"Unknown:"},
    StoredRow{"wideIntegerUnderIntegerCode", TypedValue(90, std::int64_t{5}), L"Unknown:"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(StoredValue, writtenUnderTheCodeOfItsOwnType) {
    EXPECT_EQ(storedForm(FieldValue::fromInteger(7)), TypedValue(90, std::int32_t{7}));
    EXPECT_EQ(storedForm(FieldValue::fromReal(2.75)), TypedValue(40, 2.75));
    EXPECT_EQ(storedForm(FieldValue::fromText(L"a")), TypedValue(1, std::wstring(L"a")));
    EXPECT_EQ(storedForm(FieldValue::fromPoint({1, 2, 3})), TypedValue(10, host::Point3d{1, 2, 3}));
    EXPECT_EQ(storedForm(FieldValue()), TypedValue(1, std::wstring()));
}

}  // namespace
