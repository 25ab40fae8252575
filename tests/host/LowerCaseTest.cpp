#include "host/LowerCase.h"

#include <gtest/gtest.h>

#include <clocale>

using namespace veltarn::host;

TEST(LowerCase, lowersAsciiAndBeyondWhateverTheProcessLocale) {
    std::setlocale(LC_CTYPE, "C");  // the default of a program that never set one
    EXPECT_EQ(toLower(L"Road_A1"), L"road_a1");
    EXPECT_EQ(toLower(L"\u00C4RGER \u0130"), L"\u00E4rger i");  // Ä and dotted capital I
    EXPECT_EQ(toLower(L"\u0416\u0414"), L"\u0436\u0434");        // Cyrillic
    EXPECT_EQ(toLower(L"\u00DF"), L"\u00DF");                    // no expansion
}

TEST(LowerCase, comparesWithoutRegardToCase) {
    EXPECT_TRUE(equalsIgnoringCase(L"ByLayer", L"BYLAYER"));
    EXPECT_TRUE(equalsIgnoringCase(L"\u00D6l", L"\u00F6L"));
    EXPECT_FALSE(equalsIgnoringCase(L"abc", L"abd"));
    EXPECT_FALSE(equalsIgnoringCase(L"abc", L"abcd"));
}
