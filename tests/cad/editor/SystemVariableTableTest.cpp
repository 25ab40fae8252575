#include "cad/editor/SystemVariableTable.h"

#include <gtest/gtest.h>

using namespace veltarn;
using editor::SystemVariableTable;
using host::VariableType;
using host::VariableValue;

TEST(SystemVariableTable, knowsTheVariablesTheModuleReadsWithTheirTypes) {
    SystemVariableTable table;
    const std::pair<const wchar_t*, VariableType> expected[] = {
        {L"CMDECHO", VariableType::kShort},  {L"CMDNAMES", VariableType::kString}, {L"SORTENTS", VariableType::kShort},
        {L"INSUNITS", VariableType::kShort}, {L"LUPREC", VariableType::kShort},    {L"CLAYER", VariableType::kString},
        {L"CECOLOR", VariableType::kString}, {L"TILEMODE", VariableType::kShort},  {L"FILEDIA", VariableType::kShort},
        {L"DWGNAME", VariableType::kString}, {L"DWGPREFIX", VariableType::kString}};
    for (auto [name, type] : expected) {
        auto value = table.get(name);
        ASSERT_TRUE(value) << name;
        EXPECT_EQ(value->type, type) << name;
    }
    EXPECT_TRUE(table.get(L"sortents"));  // any case
    EXPECT_FALSE(table.get(L"NOSUCHVAR"));
}

TEST(SystemVariableTable, setRefusesWrongTypesRangesAndReadOnlyVariables) {
    SystemVariableTable table;
    EXPECT_TRUE(table.set(L"sortents", VariableValue::ofShort(96)));
    EXPECT_EQ(table.get(L"SORTENTS")->integer, 96);
    EXPECT_TRUE(table.set(L"SORTENTS", VariableValue::ofLong(127)));  // short and long mix
    EXPECT_FALSE(table.set(L"SORTENTS", VariableValue::ofShort(128)));
    EXPECT_FALSE(table.set(L"CMDECHO", VariableValue::ofShort(-1)));
    EXPECT_FALSE(table.set(L"CMDECHO", VariableValue::ofString(L"0")));
    EXPECT_FALSE(table.set(L"DWGNAME", VariableValue::ofString(L"x.dxf")));
    EXPECT_FALSE(table.set(L"NOSUCHVAR", VariableValue::ofShort(1)));
    EXPECT_EQ(table.get(L"CMDECHO")->integer, 1);
    EXPECT_TRUE(table.set(L"LIMMAX", VariableValue::ofPoint2d(10, 20)));
    EXPECT_EQ(table.get(L"LIMMAX")->point, (host::Point3d{10, 20, 0}));
}

TEST(SystemVariableTable, typedAnswersAreReadWhole) {
    using T = VariableType;
    EXPECT_EQ(SystemVariableTable::parse(T::kShort, L" 12 ")->integer, 12);
    EXPECT_FALSE(SystemVariableTable::parse(T::kShort, L"12abc"));
    EXPECT_FALSE(SystemVariableTable::parse(T::kShort, L"1.5"));
    EXPECT_FALSE(SystemVariableTable::parse(T::kShort, L""));
    EXPECT_DOUBLE_EQ(SystemVariableTable::parse(T::kReal, L"-1.5e2")->real, -150);
    EXPECT_DOUBLE_EQ(SystemVariableTable::parse(T::kReal, L".5")->real, 0.5);
    for (const wchar_t* bad : {L"1-2", L"e5", L".", L"1e", L"1,5", L"nan", L"1e999"})
        EXPECT_FALSE(SystemVariableTable::parse(T::kReal, bad)) << bad;
    EXPECT_EQ(SystemVariableTable::parse(T::kPoint3d, L"1,2")->point, (host::Point3d{1, 2, 0}));
    EXPECT_EQ(SystemVariableTable::parse(T::kPoint3d, L"1,2,3")->point, (host::Point3d{1, 2, 3}));
    EXPECT_FALSE(SystemVariableTable::parse(T::kPoint2d, L"1,2,3"));
    EXPECT_FALSE(SystemVariableTable::parse(T::kPoint3d, L"1,,3"));
    EXPECT_EQ(SystemVariableTable::parse(T::kString, L"a b")->text, L"a b");
}

TEST(SystemVariableTable, displayFollowsLuprecForReals) {
    SystemVariableTable table;
    EXPECT_EQ(table.display(*table.get(L"LTSCALE")), L"1.0000");
    table.set(L"LUPREC", VariableValue::ofShort(2));
    EXPECT_EQ(table.display(*table.get(L"LIMMAX")), L"420.00,297.00");
    EXPECT_EQ(table.display(*table.get(L"CLAYER")), L"\"0\"");
}
