#include "res/StringTable.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

using namespace veltarn;

namespace {

// Every format directive in `text`, so a typo such as "%d" or a stray "%" shows up.
std::set<std::wstring> directives(const std::wstring& text) {
    std::set<std::wstring> found;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != L'%') continue;
        found.insert(text.substr(i, 2));
        ++i;
    }
    return found;
}

}  // namespace

TEST(StringTable, everyIdUpToTheLastHoldsTextAndOthersAreEmpty) {
    for (int id = kFirstStringId; id < kLastStringId; ++id) EXPECT_TRUE(hasString(id)) << id;
    EXPECT_FALSE(hasString(kFirstStringId - 1));
    EXPECT_FALSE(hasString(kLastStringId + 1));
    EXPECT_EQ(loadString(99), L"");
    EXPECT_EQ(loadString(static_cast<StringId>(5000)), L"");
}

TEST(StringTable, textsUseOnlyTheModulesFormats) {
    const std::set<std::wstring> allowed = {L"%i", L"%s", L"%%"};
    for (int id = kFirstStringId; id <= kLastStringId; ++id)
        for (const std::wstring& directive : directives(loadString(id)))
            EXPECT_TRUE(allowed.count(directive)) << "id " << id;
}

TEST(StringTable, knownIdsKeepTheirTexts) {
    EXPECT_EQ(loadString(100), L"Error: no file loaded.\n");
    EXPECT_EQ(loadString(107), L"Mode [0 (properties)/1 (classes)]<%i>: ");
    EXPECT_EQ(loadString(190), L"Undrawable [0/1]<%i>: ");
}

TEST(StringTable, deliberateOddTextsStayAsTheyAre) {
    // Scripts and the palettes compare these byte for byte.
    EXPECT_EQ(loadString(StringId::kSelectedCount), L"Selected: %i");
    EXPECT_EQ(loadString(StringId::kPromptMatch), L"Match [0/1]<1>: ");
    EXPECT_EQ(loadString(StringId::kErrorUnableToLoadDependencies),
              L"error: unable to load dependecies for object '%s'\n");
    EXPECT_EQ(loadString(StringId::kErrorInvalidFormat),
              L"Error: invalid format (%%T/%%t, %%i are required).\n");
    EXPECT_EQ(loadString(StringId::kPromptRestoreModeStart) + L"1" +
                  loadString(StringId::kPromptRestoreModeEnd),
              L"Mode [0 (all)/1 (default)]<1>: ");
}
