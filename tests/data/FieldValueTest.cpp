// Conversions and text forms of field values, as tables of cases: one named row per case.
#include "data/FieldValue.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>

using namespace veltarn;

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr std::int32_t kIntMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kIntMin = std::numeric_limits<std::int32_t>::min();

template <class Row>
std::string rowName(const testing::TestParamInfo<Row>& info) { return info.param.name; }

// Type and display text in one string, so a table row states both at once.
std::wstring describe(const FieldValue& v) {
    return std::wstring(fieldTypeName(v.type())) + L":" + v.displayText();
}

// ---- leading integer of a text ----

struct IntegerRow { const char* name; const wchar_t* text; std::int32_t expected; };

class LeadingInteger : public testing::TestWithParam<IntegerRow> {};

TEST_P(LeadingInteger, readsTheLeadingDecimalInteger) {
    EXPECT_EQ(FieldValue::fromText(GetParam().text).asInteger(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Texts, LeadingInteger, testing::Values(
    IntegerRow{"trailingGarbage", L"12abc", 12},
    IntegerRow{"noDigits", L"abc", 0},
    IntegerRow{"leadingSpaces", L"   42", 42},
    IntegerRow{"leadingTabAndNewline", L"\t\n-7", -7},
    IntegerRow{"minusZero", L"-0", 0},
    IntegerRow{"spaceAfterSign", L"- 5", 0},
    IntegerRow{"decimalStopsAtPoint", L"2.99", 2},
    IntegerRow{"exponentNotRead", L"1e3", 1},
    IntegerRow{"overflowSaturates", L"2147483648", kIntMax},
    IntegerRow{"negativeOverflowSaturates", L"-2147483649", kIntMin}),
    rowName<IntegerRow>);

// ---- leading real of a text ----

struct RealRow { const char* name; const wchar_t* text; double expected; };

class LeadingReal : public testing::TestWithParam<RealRow> {};

TEST_P(LeadingReal, readsTheLeadingNumber) {
    double actual = FieldValue::fromText(GetParam().text).asReal();
    EXPECT_EQ(actual, GetParam().expected);
    EXPECT_EQ(std::signbit(actual), std::signbit(GetParam().expected)) << "sign of " << actual;
}

INSTANTIATE_TEST_SUITE_P(Texts, LeadingReal, testing::Values(
    RealRow{"leadingSpaces", L"  3.25", 3.25},
    RealRow{"trailingGarbage", L"12abc", 12},
    RealRow{"noDigits", L"abc", 0},
    RealRow{"signAlone", L"-", 0},
    RealRow{"fractionOnly", L"-.5", -0.5},
    RealRow{"minusZeroKeepsSign", L"-0", -0.0},
    RealRow{"exponent", L"1e3", 1000},
    RealRow{"upperCaseNegativeExponent", L"1.5E-2", 0.015},
    RealRow{"exponentWithoutDigitsNotRead", L"1e", 1},
    RealRow{"stopsAtSecondPoint", L"1.2.3", 1.2},
    RealRow{"hexadecimal", L"0x10", 16},
    RealRow{"infinity", L"inf", kInf},
    RealRow{"overflowIsInfinite", L"1e400", kInf},
    RealRow{"underflowIsZero", L"1e-400", 0},
    RealRow{"manyDigitsUnderflow", L"0.000001e-320", 0}),
    rowName<RealRow>);

// ---- real to integer ----

struct TruncationRow { const char* name; double value; std::int32_t expected; };

class RealToInteger : public testing::TestWithParam<TruncationRow> {};

TEST_P(RealToInteger, truncatesTowardZero) {
    EXPECT_EQ(FieldValue::fromReal(GetParam().value).asInteger(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Values, RealToInteger, testing::Values(
    TruncationRow{"positive", 2.99, 2},
    TruncationRow{"negative", -2.99, -2},
    TruncationRow{"aboveMinusOne", -0.5, 0},
    TruncationRow{"largestFitting", 2147483647.9, kIntMax},
    TruncationRow{"tooLarge", 1e10, kIntMin},
    TruncationRow{"notANumber", std::nan(""), kIntMin}),
    rowName<TruncationRow>);

// ---- text forms ----

struct TextRow { const char* name; FieldValue value; const wchar_t* stored; const wchar_t* display; };

class TextForms : public testing::TestWithParam<TextRow> {};

TEST_P(TextForms, storedAndDisplayForms) {
    EXPECT_EQ(GetParam().value.asText(), GetParam().stored);
    EXPECT_EQ(GetParam().value.displayText(), GetParam().display);
}

INSTANTIATE_TEST_SUITE_P(Values, TextForms, testing::Values(
    TextRow{"integer", FieldValue::fromInteger(-3), L"-3", L"-3"},
    TextRow{"realFraction", FieldValue::fromReal(2.5), L"2.500000", L"2.5"},
    TextRow{"realWhole", FieldValue::fromReal(3.0), L"3.000000", L"3.0"},
    TextRow{"realMinusZero", FieldValue::fromReal(-0.0), L"-0.000000", L"-0.0"},
    TextRow{"realSumShowsNoNoise", FieldValue::fromReal(0.1 + 0.2), L"0.300000", L"0.3"},
    TextRow{"realThird", FieldValue::fromReal(1.0 / 3), L"0.333333", L"0.333333333333"},
    TextRow{"realBelowTwelveDecimals", FieldValue::fromReal(4e-13), L"0.000000", L"0.0"},
    TextRow{"realRoundsInDisplay", FieldValue::fromReal(0.9999999999996), L"1.000000", L"1.0"},
    TextRow{"realHuge", FieldValue::fromReal(1e20), L"100000000000000000000.000000",
            L"100000000000000000000.0"},
    TextRow{"point", FieldValue::fromPoint({1, 2, 3}), L"1.000000,2.000000,3.000000",
            L"1.000000,2.000000,3.000000"},
    TextRow{"pointNegative", FieldValue::fromPoint({-0.5, 0, 1e-7}), L"-0.500000,0.000000,0.000000",
            L"-0.500000,0.000000,0.000000"}),
    rowName<TextRow>);

TEST(TextForms, noneDisplaysEmptyButHasNoStoredForm) {
    FieldValue none;
    EXPECT_EQ(none.displayText(), L"");
    EXPECT_THROW(none.asText(), int);
}

TEST(TextForms, trimKeepsOneDigitAfterThePointAndLeavesTextsWithoutOne) {
    EXPECT_EQ(trimRealText(L"2.500000000000"), L"2.5");
    EXPECT_EQ(trimRealText(L"20.000000000000"), L"20.0");
    EXPECT_EQ(trimRealText(L"100"), L"100");
    EXPECT_EQ(trimRealText(L"5."), L"5.");
    EXPECT_EQ(trimRealText(L"nan"), L"nan");
}

// ---- point parsing ----

struct PointRow { const char* name; const wchar_t* text; std::optional<FieldPoint> expected; };

class PointText : public testing::TestWithParam<PointRow> {};

TEST_P(PointText, splitsAtFirstAndLastComma) {
    const auto& row = GetParam();
    if (!row.expected) {
        try {
            parsePoint(row.text);
            ADD_FAILURE() << "no error";
        } catch (int code) {
            EXPECT_EQ(code, kMalformedPointText);
        }
        return;
    }
    FieldPoint p = parsePoint(row.text);
    EXPECT_EQ(p.x, row.expected->x);
    EXPECT_EQ(p.y, row.expected->y);
    EXPECT_EQ(p.z, row.expected->z);
}

INSTANTIATE_TEST_SUITE_P(Texts, PointText, testing::Values(
    PointRow{"three", L"1,2,3", FieldPoint{1, 2, 3}},
    PointRow{"fourTakesLastAsZ", L"1,2,3,4", FieldPoint{1, 2, 4}},
    PointRow{"garbageMiddle", L" 5 ,x,7", FieldPoint{5, 0, 7}},
    PointRow{"spacesAfterCommas", L"1.5, -2, 3e2", FieldPoint{1.5, -2, 300}},
    PointRow{"twoParts", L"1,2", std::nullopt},
    PointRow{"onePart", L"123", std::nullopt},
    PointRow{"commaOnly", L",", std::nullopt}),
    rowName<PointRow>);

// ---- rounding ----

struct RoundRow { const char* name; double value; int decimals; double expected; };

class Rounding : public testing::TestWithParam<RoundRow> {};

TEST_P(Rounding, roundsAsPrintfDoes) {
    double actual = roundReal(GetParam().value, GetParam().decimals);
    EXPECT_EQ(actual, GetParam().expected);
    EXPECT_EQ(std::signbit(actual), std::signbit(GetParam().expected));
}

// Ties are decided on the exact binary value: a true half goes to even, and a decimal half that
// is stored slightly low or high goes down or up.
INSTANTIATE_TEST_SUITE_P(Values, Rounding, testing::Values(
    RoundRow{"twoDecimals", 3.14159, 2, 3.14},
    RoundRow{"exactHalfToEven", 2.5, 0, 2},
    RoundRow{"exactQuarterTie", 0.125, 2, 0.12},
    RoundRow{"storedBelowHalf", 1.005, 2, 1.0},
    RoundRow{"storedAboveHalf", 2.345, 2, 2.35},
    RoundRow{"negative", -2.678, 2, -2.68},
    RoundRow{"negativeToMinusZero", -0.4, 0, -0.0},
    RoundRow{"negativeDecimalsAsZero", 123.456, -1, 123},
    RoundRow{"manyDecimalsKeepValue", 0.1, 5000, 0.1}),
    rowName<RoundRow>);

// ---- assignment between types ----

struct AssignRow {
    const char* name;
    FieldValue target;
    FieldValue source;
    const wchar_t* expected;  // describe() of the target afterwards
    int error;                // code thrown, 0 for none; the target must then be unchanged
};

class Assign : public testing::TestWithParam<AssignRow> {};

TEST_P(Assign, convertsIntoTheTargetType) {
    const auto& row = GetParam();
    FieldValue target = row.target;
    target.setName(L"field");
    int thrown = 0;
    try {
        target.assign(row.source);
    } catch (int code) {
        thrown = code;
    }
    EXPECT_EQ(thrown, row.error);
    EXPECT_EQ(describe(target), row.expected);
    EXPECT_EQ(target.name(), L"field");
}

const FieldValue kNone;
const FieldValue kPoint = FieldValue::fromPoint({1, 2, 3});

INSTANTIATE_TEST_SUITE_P(Pairs, Assign, testing::Values(
    AssignRow{"noneTakesInteger", kNone, FieldValue::fromInteger(5), L"Integer:5", 0},
    AssignRow{"noneTakesPoint", kNone, kPoint, L"Point:1.000000,2.000000,3.000000", 0},
    AssignRow{"noneFromNone", kNone, kNone, L"Unknown:", 0},
    AssignRow{"typedFromNoneUnchanged", FieldValue::fromInteger(7), kNone, L"Integer:7", 0},
    AssignRow{"integerFromText", FieldValue::fromInteger(7), FieldValue::fromText(L"12abc"), L"Integer:12", 0},
    AssignRow{"integerFromReal", FieldValue::fromInteger(7), FieldValue::fromReal(2.99), L"Integer:2", 0},
    AssignRow{"integerFromPoint", FieldValue::fromInteger(7), kPoint, L"Integer:7", kConversionNotAllowed},
    AssignRow{"realFromInteger", FieldValue::fromReal(1), FieldValue::fromInteger(3), L"Real:3.0", 0},
    AssignRow{"realFromText", FieldValue::fromReal(1), FieldValue::fromText(L"2.5e1m"), L"Real:25.0", 0},
    AssignRow{"realFromPoint", FieldValue::fromReal(1.5), kPoint, L"Real:1.5", kConversionNotAllowed},
    AssignRow{"textFromInteger", FieldValue::fromText(L"t"), FieldValue::fromInteger(-5), L"Character:-5", 0},
    AssignRow{"textFromReal", FieldValue::fromText(L"t"), FieldValue::fromReal(2.5), L"Character:2.500000", 0},
    AssignRow{"textFromPoint", FieldValue::fromText(L"t"), kPoint,
              L"Character:1.000000,2.000000,3.000000", 0},
    AssignRow{"pointFromText", FieldValue::fromPoint({}), FieldValue::fromText(L"4,5,6"),
              L"Point:4.000000,5.000000,6.000000", 0},
    AssignRow{"pointFromShortText", kPoint, FieldValue::fromText(L"4,5"),
              L"Point:1.000000,2.000000,3.000000", kMalformedPointText},
    AssignRow{"pointFromInteger", kPoint, FieldValue::fromInteger(4),
              L"Point:1.000000,2.000000,3.000000", kConversionNotAllowed},
    AssignRow{"pointFromReal", kPoint, FieldValue::fromReal(4),
              L"Point:1.000000,2.000000,3.000000", kConversionNotAllowed}),
    rowName<AssignRow>);

TEST(Conversions, refusedBetweenPointsAndNumbers) {
    EXPECT_THROW(kPoint.asInteger(), int);
    EXPECT_THROW(kPoint.asReal(), int);
    EXPECT_THROW(FieldValue::fromInteger(1).asPoint(), int);
    EXPECT_THROW(FieldValue::fromReal(1).asPoint(), int);
    EXPECT_THROW(kNone.asReal(), int);
    EXPECT_THROW(kNone.asPoint(), int);
    EXPECT_EQ(kNone.asInteger(), 0);
    FieldPoint p = FieldValue::fromText(L"7,8,9").asPoint();
    EXPECT_EQ(p.y, 8);
}

}  // namespace
