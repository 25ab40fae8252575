#include "host/Utf8.h"

#include <gtest/gtest.h>

using namespace veltarn::host;

TEST(Utf8, roundTripsEveryPlane) {
    const std::wstring text = L"a\u00E9\u20AC\U0001F600z";  // 1-, 2-, 3- and 4-byte forms
    const std::string bytes = toUtf8(text);
    EXPECT_EQ(bytes, "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z");
    EXPECT_EQ(fromUtf8(bytes), text);
}

TEST(Utf8, badBytesBecomeReplacementCharactersAndDecodingGoesOn) {
    EXPECT_EQ(fromUtf8("a\x80" "b"), L"a\uFFFDb");              // stray continuation byte
    EXPECT_EQ(fromUtf8("\xC0\xAF"), L"\uFFFD\uFFFD");          // overlong "/"
    EXPECT_EQ(fromUtf8("\xED\xA0\x80"), L"\uFFFD\uFFFD\uFFFD");  // encoded surrogate
    EXPECT_EQ(fromUtf8("\xF4\x90\x80\x80"), L"\uFFFD\uFFFD\uFFFD\uFFFD");  // past U+10FFFF
    EXPECT_EQ(fromUtf8("x\xE2\x82"), L"x\uFFFD\uFFFD");        // cut short at the end
    EXPECT_EQ(fromUtf8(std::string("a\0b", 3)), std::wstring(L"a\0b", 3));
}

TEST(Utf8, unencodableValuesBecomeReplacementCharacters) {
    EXPECT_EQ(toUtf8(std::wstring(1, static_cast<wchar_t>(0xD800))), "\xEF\xBF\xBD");
    EXPECT_EQ(toUtf8(std::wstring(1, static_cast<wchar_t>(0x110000))), "\xEF\xBF\xBD");
}
