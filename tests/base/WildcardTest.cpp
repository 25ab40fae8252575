// The one wild-card matcher, over the cases its three users (file names, layer names, support-file
// definitions) rely on.
#include "base/Wildcard.h"

#include <gtest/gtest.h>

#include <clocale>
#include <string>

namespace veltarn {
namespace {

struct Case {
    const char* name;
    const wchar_t* pattern;
    const wchar_t* text;
    bool ignoringCase;
    bool withCase;
};

class WildcardCases : public ::testing::TestWithParam<Case> {
protected:
    // Wide names fold with towlower under the UTF-8 locale the programs set at start-up.
    static void SetUpTestSuite() { std::setlocale(LC_CTYPE, "C.UTF-8"); }
};

TEST_P(WildcardCases, MatchesTheWholeName) {
    const Case& c = GetParam();
    EXPECT_EQ(wildcardMatch(std::wstring_view(c.pattern), std::wstring_view(c.text)), c.ignoringCase);
    EXPECT_EQ(wildcardMatch(std::wstring_view(c.pattern), std::wstring_view(c.text), LetterCase::kSensitive), c.withCase);
}

INSTANTIATE_TEST_SUITE_P(Table, WildcardCases,
                         ::testing::Values(Case{"exact", L"ROADS", L"ROADS", true, true},
                                           Case{"case", L"roads", L"ROADS", true, false},
                                           Case{"non_ascii_case", L"stra\u00DFe_\u00E4", L"STRA\u00DFE_\u00C4", true, false},
                                           Case{"star_any_run", L"SV_*", L"SV_WATER", true, true},
                                           Case{"star_empty_run", L"SV_*", L"SV_", true, true},
                                           Case{"star_alone", L"*", L"", true, true},
                                           Case{"question_one", L"LAYER_0?", L"LAYER_07", true, true},
                                           Case{"question_not_none", L"LAYER_0?", L"LAYER_0", false, false},
                                           Case{"prefix_only_is_not_whole", L"SV", L"SV_WATER", false, false},
                                           Case{"star_backtracks", L"*.pat", L"a.pat.pat", true, true},
                                           Case{"star_then_tail_missing", L"a*b", L"aaaa", false, false},
                                           Case{"empty_pattern", L"", L"x", false, false}),
                         [](const ::testing::TestParamInfo<Case>& info) { return std::string(info.param.name); });

TEST(Wildcard, NarrowTextFoldsAsciiOnlyAndManyStarsStayCheap) {
    EXPECT_TRUE(wildcardMatch(std::string_view("dash*"), std::string_view("DASHDOT")));
    EXPECT_FALSE(wildcardMatch(std::string_view("dash*"), std::string_view("DASHDOT"), LetterCase::kSensitive));
    EXPECT_FALSE(wildcardMatch(std::string_view("\xC3\xA4"), std::string_view("\xC3\x84")));  // bytes of UTF-8 are not letters
    // A recursive matcher takes exponential time on this; ours answers at once.
    const std::wstring text(4000, L'a');
    EXPECT_FALSE(wildcardMatch(std::wstring_view(L"*a*a*a*a*a*a*a*a*a*a*a*a*b"), std::wstring_view(text)));
}

}  // namespace
}  // namespace veltarn
