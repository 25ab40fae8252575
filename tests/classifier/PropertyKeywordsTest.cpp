#include "classifier/PropertyKeywords.h"
#include "classifier/PropertyWords.h"

#include <gtest/gtest.h>

#include <string>

namespace veltarn {
namespace {

std::wstring joined(const std::vector<std::wstring>& texts) {
    std::wstring all;
    for (const auto& text : texts) all += (all.empty() ? L"" : L"|") + text;
    return all;
}

// One "obj_prop" line and what it must leave: the property's texts joined by "|", or nothing
// stored when refused.
struct PropertyCase {
    const char* name;
    const wchar_t* keyword;
    const wchar_t* value;
    const wchar_t* value2;
    bool accepted;
    const wchar_t* stored;
};

class PropertyLine : public testing::TestWithParam<PropertyCase> {};

TEST_P(PropertyLine, StoresWhatTheKeywordAccepts) {
    const PropertyCase& c = GetParam();
    ObjectProperties properties;
    EXPECT_EQ(parseProperty(properties, c.keyword, c.value, c.value2), c.accepted);
    std::wstring keyword = c.keyword;
    for (auto& ch : keyword) ch = static_cast<wchar_t>(towlower(ch));
    EXPECT_EQ(joined(propertyTexts(properties, keyword, 2)), c.stored);
    if (!c.accepted) {
        EXPECT_EQ(properties, ObjectProperties{});
    }
}

const PropertyCase kPropertyCases[] = {
    // colours
    {"ColorTriple", L"color", L"(255 0 0)", L"", true, L"(255 0 0)"},
    {"ColorTripleExtraBlanks", L"color", L"(  1   2 3 )", L"", true, L"(1 2 3)"},
    {"ColorByLayerAnyCase", L"color", L"ByLAYER", L"", true, L"ByLayer"},
    {"ColorByBlock", L"color", L"byblock", L"", true, L"ByBlock"},
    {"ColorIndex", L"color", L"7", L"", true, L"7"},
    {"ColorAlternativesAtCommas", L"color", L"1", L"2,3", true, L"1|2|3"},
    {"ColorAlternativesAtColonKeepTriples", L"color", L"1", L"(1 2 3):4", true, L"1|(1 2 3)|4"},
    {"ColorAskedFirst", L"color", L"?", L"5", true, L"?|5"},
    {"ColorTripleOfTwo", L"color", L"(1 2)", L"", false, L""},
    {"ColorTripleOfFour", L"color", L"(1 2 3 4)", L"", false, L""},
    {"ColorTripleUnclosed", L"color", L"(1 2 3", L"", false, L""},
    {"ColorTripleClosedBeforeOpened", L"color", L")1 2 3(", L"", false, L""},
    {"ColorTripleNotNumbers", L"color", L"(a b c)", L"", false, L""},
    {"ColorWord", L"color", L"red", L"", false, L""},
    {"ColorNoneOnlyForBackground", L"color", L"none", L"", false, L""},
    {"ColorIndexPastByLayer", L"color", L"257", L"", false, L""},
    {"ColorComponentPast255", L"color", L"(256 0 0)", L"", false, L""},
    {"ColorBadAlternativeRefusesLine", L"color", L"1", L"2,x", false, L""},
    {"BackgroundNone", L"backgroundcolor", L"None", L"", true, L"None"},
    {"PatternColorByBlock", L"patterncolor", L"BYBLOCK", L"", true, L"ByBlock"},
    // weights
    {"LineWeightByBlock", L"lineweight", L"ByBlock", L"", true, L"ByBlock"},
    {"LineWeightDefault", L"lineweight", L"DEFAULT", L"", true, L"Default"},
    {"LineWeightNumber", L"lineweight", L"25", L"", true, L"25"},
    {"LineWeightNotADrawingWeight", L"lineweight", L"17", L"", false, L""},
    // fixed word lists, stored lower-cased
    {"CircleModeCapitals", L"circlemode", L"CENTER", L"", true, L"center"},
    {"CircleMode2p", L"circlemode", L"2P", L"", true, L"2p"},
    {"CircleModeUnknown", L"circlemode", L"4p", L"", false, L""},
    {"MeshModeBox", L"meshmode", L"Box", L"", true, L"box"},
    {"MeshModePrism", L"meshmode", L"prism", L"", false, L""},
    {"DimensionModeJogged", L"dimensionmode", L"Jogged", L"", true, L"jogged"},
    {"EllipseModeArc", L"ellipsemode", L"Arc", L"", true, L"arc"},
    {"HatchModePoint", L"hatchmode", L"Point", L"", true, L"point"},
    {"HatchModeWordOfAnotherList", L"hatchmode", L"center", L"", false, L""},
    // names: lower-cased where matched without regard to case, else as written
    {"BlockNameLowered", L"blockname", L"Tree", L"", true, L"tree"},
    {"PatternLowered", L"pattern", L"ANSI31", L"", true, L"ansi31"},
    {"TextStyleLowered", L"textstyle", L"Standard", L"", true, L"standard"},
    {"LayerAsWrittenWithAlternatives", L"layer", L"Roads", L"Paths, *", true, L"Roads|Paths|*"},
    {"TextAsWritten", L"text", L"Hello World", L"", true, L"Hello World"},
    // numbers
    {"RadiusReal", L"circleradius", L"2.5", L"", true, L"2.50"},
    {"RadiusSignedFraction", L"circleradius", L"-.5", L"", true, L"-0.50"},
    {"RadiusTrailingPoint", L"circleradius", L"5.", L"", true, L"5.00"},
    {"RadiusExponentRefused", L"circleradius", L"1e3", L"", false, L""},
    {"RadiusWord", L"circleradius", L"abc", L"", false, L""},
    {"RadiusTwoPoints", L"circleradius", L"1.2.3", L"", false, L""},
    {"RadiusSignOnly", L"circleradius", L"-", L"", false, L""},
    {"RadiusTrailingGarbage", L"circleradius", L"12abc", L"", false, L""},
    {"RadiusAsked", L"circleradius", L"?", L"", true, L"?"},
    {"KeywordAnyCase", L"LineTypeScale", L"2", L"", true, L"2.00"},
    {"ValueTrimmed", L"textheight", L" 7 \r\n", L"", true, L"7.00"},
    {"BlankFirstValueSkipped", L"elevation", L"  ", L"3", true, L"3.00"},
    {"BlockScaleUniform", L"blockscale", L"2", L"", true, L"2.00"},
    {"BlockScaleThreeAxes", L"blockscale", L"(1 2 3)", L"", true, L"(1.00 2.00 3.00)"},
    {"BlockScaleTwoAxes", L"blockscale", L"(1 2)", L"", false, L""},
    {"ClosedNonZero", L"closed", L"5", L"", true, L"1"},
    {"ClosedZero", L"closed", L"0", L"", true, L"0"},
    {"ClosedWord", L"closed", L"yes", L"", false, L""},
    {"RotateClearOfAbsentMarker", L"rotate", L"-300", L"", true, L"-127"},
    // justifications
    {"MlineBottom", L"mlinejustification", L"Bottom", L"", true, L"Bottom"},
    {"MlineZero", L"mlinejustification", L"ZERO", L"", true, L"Zero"},
    {"MlineOtherWordIsTop", L"mlinejustification", L"middle", L"", true, L"Top"},
    {"AttachmentTopLeft", L"mtextattachmentpoint", L"TopLeft", L"", true, L"TopLeft"},
    {"AttachmentBaseAlign", L"mtextattachmentpoint", L"basealign", L"", true, L"BaseAlign"},
    {"AttachmentUnknown", L"mtextattachmentpoint", L"left", L"", false, L""},
    {"TextJustificationMiddleCenter", L"textjustification", L"middlecenter", L"", true, L"MiddleCenter"},
    {"TextJustificationFit", L"textjustification", L"FIT", L"", true, L"Fit"},
    {"TextJustificationAttachmentWord", L"textjustification", L"basealign", L"", false, L""},
    // no value, unknown keyword
    {"EmptyValue", L"layer", L"", L"", false, L""},
    {"UnknownKeyword", L"colour", L"1", L"", false, L""},
};

INSTANTIATE_TEST_SUITE_P(Keywords, PropertyLine, testing::ValuesIn(kPropertyCases),
                         [](const testing::TestParamInfo<PropertyCase>& info) { return info.param.name; });

TEST(PropertyKeywords, RefusedLineKeepsWhatThePropertyHeldAndALaterLineReplacesIt) {
    ObjectProperties properties;
    ASSERT_TRUE(parseProperty(properties, L"color", L"1", L"2"));
    EXPECT_FALSE(parseProperty(properties, L"color", L"x", L""));
    EXPECT_EQ(joined(propertyTexts(properties, L"color", 2)), L"1|2");
    ASSERT_TRUE(parseProperty(properties, L"color", L"3", L""));
    EXPECT_EQ(joined(propertyTexts(properties, L"color", 2)), L"3");
}

TEST(PropertyKeywords, ExplodeIsOnOnlyForAPositiveInteger) {
    ObjectProperties properties;
    ASSERT_TRUE(parseProperty(properties, L"explode", L"2", L""));
    EXPECT_TRUE(properties.explode);
    ASSERT_TRUE(parseProperty(properties, L"explode", L"0", L""));
    EXPECT_FALSE(properties.explode);
    ASSERT_TRUE(parseProperty(properties, L"explode", L"2", L""));
    ASSERT_TRUE(parseProperty(properties, L"explode", L"-1", L""));
    EXPECT_FALSE(properties.explode);
    EXPECT_FALSE(parseProperty(properties, L"explode", L"many", L""));
}

TEST(PropertyKeywords, AskedValueIsOpenUntilCleared) {
    ObjectProperties properties;
    ASSERT_TRUE(parseProperty(properties, L"circleradius", L"?", L""));
    EXPECT_TRUE(isPropertyOpen(properties, L"circleradius"));
    EXPECT_FALSE(properties.circleRadius.isSet());
    EXPECT_EQ(properties.circleRadius.valueOr(kAbsentReal), kAbsentReal);

    clearProperty(properties, L"circleradius");
    EXPECT_FALSE(properties.circleRadius.present());
    ASSERT_TRUE(parseProperty(properties, L"circleradius", L"4", L""));
    EXPECT_FALSE(isPropertyOpen(properties, L"circleradius"));
    EXPECT_EQ(properties.circleRadius.value(), 4.0);
}

// These codes go into drawings as the host numbers them; a shifted table would rotate every text.
TEST(PropertyKeywords, JustificationWordsGiveTheHostCodes) {
    ObjectProperties properties;
    ASSERT_TRUE(parseProperty(properties, L"mtextattachmentpoint", L"middlecenter", L""));
    EXPECT_EQ(properties.mtextAttachmentPoint.value(), MTextAttachment{5});
    ASSERT_TRUE(parseProperty(properties, L"mtextattachmentpoint", L"basemid", L""));
    EXPECT_EQ(properties.mtextAttachmentPoint.value(), MTextAttachment{21});
    ASSERT_TRUE(parseProperty(properties, L"mtextattachmentpoint", L"topmid", L""));
    EXPECT_EQ(properties.mtextAttachmentPoint.value(), MTextAttachment{24});
    ASSERT_TRUE(parseProperty(properties, L"textjustification", L"fit", L""));
    EXPECT_EQ(properties.textJustification.value(), TextJustification{5});
    ASSERT_TRUE(parseProperty(properties, L"textjustification", L"bottomright", L""));
    EXPECT_EQ(properties.textJustification.value(), TextJustification{14});
    ASSERT_TRUE(parseProperty(properties, L"mlinejustification", L"bottom", L""));
    EXPECT_EQ(properties.mlineJustification.value(), MlineJustification{2});
}

TEST(PropertyKeywords, ColorTextOfEveryShape) {
    EXPECT_EQ(colorText({kColorNone}), L"None");
    EXPECT_EQ(colorText({0}), L"ByBlock");
    EXPECT_EQ(colorText({256}), L"ByLayer");
    EXPECT_EQ(colorText({42}), L"42");
    EXPECT_EQ(colorText({10, 20, 30}), L"(10 20 30)");
    EXPECT_EQ(colorText({}), L"");
    EXPECT_EQ(colorText({1, 2}), L"");
}

}  // namespace
}  // namespace veltarn
