// The progress line of veltarn check: what a person watching a long run reads.
#include "CheckProgress.h"

#include <gtest/gtest.h>

namespace {

using veltarn::app::progressLine;

TEST(CheckProgress, TheLineShowsDrawingsObjectsAndTimeLeftWithinTheTerminal) {
    const std::string line = progressLine(25, 100, 1234567, 65, 100);
    EXPECT_TRUE(line.starts_with("[#")) << line;
    EXPECT_LE(line.size(), 100u);
    EXPECT_NE(line.find("  25/100 drawings  1,234,567 objects  1:05 left"), std::string::npos) << line;
    // A quarter done fills a quarter of the bar, and the bar keeps its length as counts grow.
    const std::size_t bar = line.find(']') - 1;
    EXPECT_EQ(line.substr(1, bar).find('.'), bar / 4) << line;
    EXPECT_EQ(progressLine(99, 100, 99999999, 3 * 3600 + 61, 100).find(']'), line.find(']'));
    EXPECT_NE(progressLine(99, 100, 0, 3 * 3600 + 61, 100).find("3:01:01 left"), std::string::npos);
}

TEST(CheckProgress, UnknownTimeAndNarrowTerminals) {
    EXPECT_NE(progressLine(0, 8, 0, -1, 80).find("0/8 drawings  0 objects  --:-- left"), std::string::npos);
    // Too narrow for a bar: the counts alone, cut to the width, never wrapping onto a new line.
    const std::string narrow = progressLine(3, 8, 4000, 5, 30);
    EXPECT_EQ(narrow.find('['), std::string::npos) << narrow;
    EXPECT_LT(narrow.size(), 30u);
    EXPECT_TRUE(narrow.starts_with("3/8 drawings")) << narrow;
    EXPECT_EQ(progressLine(8, 8, 4000, 0, 80).find('.'), std::string::npos) << "all done fills the bar";
}

}  // namespace
