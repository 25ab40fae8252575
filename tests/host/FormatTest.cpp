#include "host/Format.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <limits>
#include <string>

using namespace veltarn::host;

namespace {

std::wstring widen(const char* s) { return std::wstring(s, s + std::char_traits<char>::length(s)); }

// What C's printf writes, for comparison.
template <class T>
std::wstring cPrintf(const char* directive, T value) {
    char buffer[512];
    std::snprintf(buffer, sizeof buffer, directive, value);
    return widen(buffer);
}

}  // namespace

TEST(Format, realsMatchPrintfExactly) {
    const double values[] = {0.0, -0.0, 1.0, 2.5, -2.5, 0.1, 1.0 / 3.0, 0.0000005, 0.0000015,
                             2.0000005, 1e20, 1e-20, 123456789.123456789,
                             -std::numeric_limits<double>::max(), std::numeric_limits<double>::infinity()};
    const char* formats[] = {"%lf", "%.12lf", "%.0lf", "%.3lf", "%f", "%e", "%g", "%10.2f", "%-10.2f|", "%+f"};
    for (const char* directive : formats)
        for (double v : values) EXPECT_EQ(format(widen(directive), v), cPrintf(directive, v)) << directive << " " << v;
}

TEST(Format, integersMatchPrintfExactly) {
    const int values[] = {0, 1, -1, 42, 2147483647, -2147483647 - 1};
    const char* formats[] = {"%i", "%d", "%5i", "%-5i|", "%05i", "%+i", "%x", "%X", "%u", "%o"};
    for (const char* directive : formats)
        for (int v : values) EXPECT_EQ(format(widen(directive), v), cPrintf(directive, v)) << directive << " " << v;
}

TEST(Format, moduleMessagesComeOutAsPrintfWritesThem) {
    EXPECT_EQ(format(L"%i: error: invalid syntax: '%s'\n", 12, std::wstring(L"foo")),
              L"12: error: invalid syntax: 'foo'\n");
    EXPECT_EQ(format(L"%lf,%lf,%lf", 1.0, 2.0, 3.0), L"1.000000,2.000000,3.000000");
    EXPECT_EQ(format(L"Completed: %i/%i\n", 3, 7), L"Completed: 3/7\n");
    EXPECT_EQ(format(L"%s\t%i\n", L"Road", 5), L"Road\t5\n");
    // The format of a rounding is itself made by a format.
    EXPECT_EQ(format(L"%%.%ilf", 3), L"%.3lf");
    EXPECT_EQ(format(format(L"%%.%ilf", 3), 2.0005), cPrintf("%.3lf", 2.0005));
    EXPECT_EQ(format(L"Error: invalid format (%%T/%%t, %%i are required).\n"),
              L"Error: invalid format (%T/%t, %i are required).\n");
}

TEST(Format, textsTakeWidthAndPrecision) {
    EXPECT_EQ(format(L"[%5s]", L"ab"), L"[   ab]");
    EXPECT_EQ(format(L"[%-5s]", L"ab"), L"[ab   ]");
    EXPECT_EQ(format(L"[%.2s]", L"abcdef"), L"[ab]");
    EXPECT_EQ(format(L"[%*i]", 4, 7), L"[   7]");
    EXPECT_EQ(format(L"[%s]", L"\u00E9\U0001F600"), L"[\u00E9\U0001F600]");
}

TEST(Format, missingArgumentsAndBadDirectivesAreCopiedNotCrashed) {
    EXPECT_EQ(format(L"Error: unable to open '%s'.\n"), L"Error: unable to open '%s'.\n");
    EXPECT_EQ(format(L"%i and %i", 1), L"1 and %i");
    EXPECT_EQ(format(L"50%"), L"50%");
    EXPECT_EQ(format(L"%q", 1), L"%q");
    EXPECT_EQ(format(L"%99999999999i", 1).size(), 100000u);  // absurd width is capped, not a crash
}

TEST(Format, argumentsOfAnotherKindAreConverted) {
    EXPECT_EQ(format(L"%i", 2.99), L"2");
    EXPECT_EQ(format(L"%lf", 2), L"2.000000");
    EXPECT_EQ(format(L"%s", 12), L"12");
    EXPECT_EQ(format(L"%i", L"12"), L"0");
}

TEST(Format, processLocaleWithDecimalCommaDoesNotChangeTheResult) {
    const char* chosen = std::setlocale(LC_NUMERIC, "de_DE.UTF-8");
    EXPECT_EQ(format(L"%lf", 2.5), L"2.500000");
    if (chosen) std::setlocale(LC_NUMERIC, "C");
}
