// Numbers as DXF text: what the workbench writes reads back exactly; what others write is read
// despite its padding.
#include "cad/dxf/NumberText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

namespace veltarn::dxf {
namespace {

struct ShortestCase {
    const char* name;
    double value;
    const char* text;
};

class ShortestReal : public testing::TestWithParam<ShortestCase> {};

TEST_P(ShortestReal, IsTheShortestTextThatReadsBackExactly) {
    const ShortestCase& c = GetParam();
    std::string text = formatReal(c.value);
    EXPECT_EQ(text, c.text);
    auto back = parseReal(text);
    ASSERT_TRUE(back.has_value()) << text;
    EXPECT_EQ(std::memcmp(&*back, &c.value, sizeof c.value), 0) << text << " reads back as " << *back;
}

INSTANTIATE_TEST_SUITE_P(
    Table, ShortestReal,
    testing::Values(ShortestCase{"tenth", 0.1, "0.1"}, ShortestCase{"sum_of_tenths", 0.1 + 0.2, "0.30000000000000004"},
                    ShortestCase{"zero", 0.0, "0"}, ShortestCase{"negative_zero", -0.0, "-0"},
                    ShortestCase{"whole", 100.0, "100"}, ShortestCase{"third", 1.0 / 3, "0.3333333333333333"},
                    ShortestCase{"tiny", 1e-300, "1e-300"}, ShortestCase{"subnormal", 5e-324, "5e-324"},
                    ShortestCase{"large", 1.5e300, "1.5e+300"}, ShortestCase{"beyond_int64", 1e19, "1e+19"},
                    ShortestCase{"coordinate", 4432.471622924606, "4432.471622924606"},
                    // The marker the module uses for an absent real.
                    ShortestCase{"lowest", std::numeric_limits<double>::lowest(), "-1.7976931348623157e+308"}),
    [](const testing::TestParamInfo<ShortestCase>& info) { return std::string(info.param.name); });

TEST(NumberText, ReadsPaddedAndLooselyWrittenNumbers) {
    EXPECT_EQ(parseReal("  1.5  "), 1.5);
    EXPECT_EQ(parseReal("1.5\r"), 1.5);
    EXPECT_EQ(parseReal("\t+2.25"), 2.25);
    EXPECT_EQ(parseReal("1."), 1.0);
    EXPECT_EQ(parseReal(".5"), 0.5);
    EXPECT_EQ(parseReal("1E+003"), 1000.0);
    EXPECT_EQ(parseReal("-0.0000000001"), -1e-10);
    EXPECT_EQ(parseInteger("   42 "), 42);
    EXPECT_EQ(parseInteger("+7"), 7);
    EXPECT_EQ(parseInteger("-32768"), -32768);
    EXPECT_EQ(parseInteger("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(parseInteger("1.0"), 1);  // integers some writers store as reals
    EXPECT_EQ(parseInteger(" 2e3 "), 2000);
}

TEST(NumberText, RejectsWhatIsNoNumber) {
    for (const char* text : {"", "   ", "1,5", "1.5.2", "abc", "1 2", "--1", "0x10", "1e999"})
        EXPECT_FALSE(parseReal(text).has_value()) << '"' << text << '"';
    for (const char* text : {"", "1.5", "12a", "9223372036854775808", "1e19", "nan", "inf", "- 1"})
        EXPECT_FALSE(parseInteger(text).has_value()) << '"' << text << '"';
}

TEST(NumberText, HexadecimalChunksRoundTrip) {
    std::string bytes("\x00\x7F\x80\xFF", 4);
    EXPECT_EQ(toHex(bytes), "007F80FF");
    EXPECT_EQ(fromHex("007f80FF"), bytes);
    EXPECT_FALSE(fromHex("ABC").has_value());
    EXPECT_FALSE(fromHex("GG").has_value());
}

}  // namespace
}  // namespace veltarn::dxf
