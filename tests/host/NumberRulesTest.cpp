#include "host/NumberRules.h"

#include <gtest/gtest.h>

#include <climits>
#include <clocale>
#include <cmath>
#include <string>

using namespace veltarn::host;

namespace {

struct IntCase {
    const char* name;
    std::wstring text;
    int expected;
};

class Wtoi : public testing::TestWithParam<IntCase> {};

TEST_P(Wtoi, readsTheLeadingInteger) { EXPECT_EQ(wtoi(GetParam().text), GetParam().expected); }

INSTANTIATE_TEST_SUITE_P(
    Cases, Wtoi,
    testing::Values(IntCase{"plain", L"42", 42}, IntCase{"negative", L"-17", -17}, IntCase{"plusSign", L"+8", 8},
                    IntCase{"leadingBlanks", L" \t\n 12", 12}, IntCase{"trailingGarbage", L"12abc", 12},
                    IntCase{"noDigits", L"abc", 0}, IntCase{"empty", L"", 0}, IntCase{"signOnly", L"-", 0},
                    IntCase{"spaceAfterSign", L"- 5", 0}, IntCase{"decimalStopsAtPoint", L"2.99", 2},
                    IntCase{"exponentIgnored", L"1e3", 1}, IntCase{"leadingZeros", L"007", 7},
                    IntCase{"overflowSaturates", L"99999999999", INT_MAX},
                    IntCase{"underflowSaturates", L"-99999999999", INT_MIN},
                    IntCase{"minimum", L"-2147483648", INT_MIN}, IntCase{"hexIsNotRead", L"0x1F", 0},
                    IntCase{"wideDigitsAreNotDigits", L"\uFF11", 0}),
    [](const auto& info) { return std::string(info.param.name); });

struct RealCase {
    const char* name;
    std::wstring text;
    double expected;
};

class Wtof : public testing::TestWithParam<RealCase> {};

TEST_P(Wtof, readsTheLeadingReal) { EXPECT_DOUBLE_EQ(wtof(GetParam().text), GetParam().expected); }

INSTANTIATE_TEST_SUITE_P(
    Cases, Wtof,
    testing::Values(RealCase{"plain", L"2.5", 2.5}, RealCase{"negative", L"-0.125", -0.125},
                    RealCase{"leadingBlanks", L"  3", 3}, RealCase{"trailingGarbage", L"1.5mm", 1.5},
                    RealCase{"noNumber", L"x", 0}, RealCase{"empty", L"", 0},
                    RealCase{"exponent", L"1.5e3", 1500}, RealCase{"capitalExponent", L"2E-2", 0.02},
                    RealCase{"exponentWithoutDigitsStops", L"4e", 4}, RealCase{"pointFirst", L".5", 0.5},
                    RealCase{"pointLast", L"5.", 5}, RealCase{"commaStops", L"1,5", 1},
                    RealCase{"hexFloat", L"0x1p4", 16}, RealCase{"nonAsciiStops", L"7\u00B0", 7}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(Wtof, specialValuesAndRangeFollowWcstod) {
    EXPECT_TRUE(std::isinf(wtof(L"inf")));
    EXPECT_TRUE(std::isnan(wtof(L"nan")));
    EXPECT_TRUE(std::isinf(wtof(L"1e999")));
    EXPECT_EQ(wtof(L"1e-999"), 0.0);
    EXPECT_TRUE(std::signbit(wtof(L"-0")));
}

TEST(Wtof, processLocaleWithDecimalCommaDoesNotChangeTheResult) {
    const char* chosen = std::setlocale(LC_NUMERIC, "de_DE.UTF-8");
    EXPECT_DOUBLE_EQ(wtof(L"2.5"), 2.5);
    if (chosen) std::setlocale(LC_NUMERIC, "C");
}

}  // namespace
