// Numbers as DXF text: what the workbench writes reads back exactly; what others write is read
// despite its padding.
#include "cad/dxf/NumberText.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

namespace veltarn::dxf {
namespace {

struct Shortest {
    const char* name;
    double value;
    const char* text;
};

class ShortestReal : public testing::TestWithParam<Shortest> {};

TEST_P(ShortestReal, ReadsBackToTheSameDouble) {
    const auto& [name, value, text] = GetParam();
    EXPECT_EQ(formatReal(value), text);
    auto back = parseReal(formatReal(value));
    ASSERT_TRUE(back.has_value());
    EXPECT_EQ(std::memcmp(&*back, &value, sizeof value), 0) << "bit for bit, sign of zero included";
}

INSTANTIATE_TEST_SUITE_P(Table, ShortestReal,
                         testing::Values(Shortest{"tenth", 0.1, "0.1"}, Shortest{"sum", 0.1 + 0.2, "0.30000000000000004"},
                                         Shortest{"negative_zero", -0.0, "-0"}, Shortest{"whole", 100.0, "100"},
                                         Shortest{"tiny", 1e-300, "1e-300"}, Shortest{"subnormal", 5e-324, "5e-324"},
                                         Shortest{"large", 1.5e300, "1.5e+300"},
                                         Shortest{"coordinate", 4432.471622924606, "4432.471622924606"},
                                         Shortest{"lowest", std::numeric_limits<double>::lowest(), "-1.7976931348623157e+308"}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(NumberText, ReadsPaddedNumbersAndRefusesTheRest) {
    EXPECT_EQ(parseReal("  1.5\r"), 1.5);
    EXPECT_EQ(parseReal("\t+.5 "), 0.5);
    EXPECT_EQ(parseReal("1E+003"), 1000.0);
    EXPECT_EQ(parseInteger("  -42 "), -42);
    EXPECT_EQ(parseInteger("1.0"), 1);  // integers some writers store as reals
    EXPECT_EQ(parseInteger("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
    for (const char* text : {"", "1,5", "1.5.2", "1 2", "0x10", "1e999"}) EXPECT_FALSE(parseReal(text)) << text;
    for (const char* text : {"1.5", "12a", "9223372036854775808", "1e19", "nan"}) EXPECT_FALSE(parseInteger(text)) << text;
}

}  // namespace
}  // namespace veltarn::dxf
