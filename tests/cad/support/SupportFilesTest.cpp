// The three text formats as files write them: what is read, and how a broken definition is kept
// apart from the good ones around it.
#include "cad/support/LinetypeFile.h"
#include "cad/support/MlineStyleFile.h"
#include "cad/support/PatternFile.h"
#include "SupportScratch.h"

#include <gtest/gtest.h>

namespace veltarn::support {
namespace {

using test::kDataDir;
using test::kSupportDir;

SupportText text(std::string body) { return SupportText(std::move(body), "t.lin"); }

TEST(LinetypeFile, ReadsDashesTextsCommentsAndLineEnds) {
    auto file = SupportText::load(kDataDir / "good_utilities.lin");
    ASSERT_TRUE(file) << file.message();
    auto defs = parseLinetypes(*file);
    ASSERT_TRUE(defs) << defs.message();
    ASSERT_EQ(defs->size(), 4u);

    const LinetypeDefinition& fence = (*defs)[0];
    EXPECT_EQ(fence.name, "FENCE");
    EXPECT_EQ(fence.description, "Fence ---x---x---");
    EXPECT_EQ(fence.error, "");
    ASSERT_EQ(fence.elements.size(), 3u);
    EXPECT_DOUBLE_EQ(fence.elements[0].length, 0.5);
    EXPECT_DOUBLE_EQ(fence.elements[1].length, -0.25);  // "-.25"
    EXPECT_DOUBLE_EQ(fence.elements[2].length, 0);      // a dot
    EXPECT_DOUBLE_EQ(fence.patternLength(), 0.75);

    const LinetypeDefinition& sewer = (*defs)[1];
    ASSERT_EQ(sewer.elements.size(), 3u);
    const LinetypeElement& label = sewer.elements[1];  // the text rides on the gap before it
    EXPECT_EQ(label.shape, LinetypeShape::Text);
    EXPECT_EQ(label.text, "S, W");  // a comma inside quotes does not split
    EXPECT_EQ(label.styleName, "Standard");
    EXPECT_DOUBLE_EQ(label.scale, 0.1);
    EXPECT_DOUBLE_EQ(label.rotation, 90);  // "1.5707963267948966r"
    EXPECT_TRUE(label.absoluteRotation);
    EXPECT_DOUBLE_EQ(label.offsetX, -0.1);
    EXPECT_DOUBLE_EQ(label.offsetY, -0.05);

    EXPECT_EQ((*defs)[2].name, "NO_DESCRIPTION");
    EXPECT_EQ((*defs)[2].description, "");
    EXPECT_EQ((*defs)[3].name, "SOLID_RUN");  // "A," alone: a continuous line
    EXPECT_TRUE((*defs)[3].elements.empty());
    EXPECT_EQ((*defs)[3].error, "");
}

struct BrokenCase {
    const char* name;
    const char* body;
    const char* error;  // of the first definition; the second is always good
};

class BrokenLinetype : public testing::TestWithParam<BrokenCase> {};

TEST_P(BrokenLinetype, KeepsItsErrorAndLetsTheNextOneRead) {
    auto defs = parseLinetypes(text(std::string(GetParam().body) + "\n*GOOD,Good\nA,1,-1\n"));
    ASSERT_TRUE(defs) << defs.message();
    ASSERT_EQ(defs->size(), 2u);
    EXPECT_EQ(defs->at(0).error, GetParam().error);
    EXPECT_EQ(defs->at(1).error, "");
    EXPECT_EQ(defs->at(1).elements.size(), 2u);
}

const BrokenCase kBrokenLinetypes[] = {
    {"DashNotANumber", "*A,x\nA,.5,-abc", "t.lin:2: expected a dash length, found \"-abc\""},
    {"NoAlignment", "*A,x\n.5,-.25", "t.lin:2: a pattern line starts with the alignment \"A\""},
    {"NoPatternLine", "*A,x", "t.lin:1: linetype \"A\" has no pattern line"},
    {"UnterminatedBracket", "*A,x\nA,.5,[\"T\",Standard,S=1", "t.lin:2: unterminated \"[\" in the pattern line"},
    {"TextBeforeAnyDash", "*A,x\nA,[\"T\",Standard]", "t.lin:2: a text or shape element must follow a dash"},
    {"UnknownShapeItem", "*A,x\nA,.5,[\"T\",Standard,Q=1]",
     "t.lin:2: unknown or malformed item \"Q=1\" in a linetype element"},
    {"HeaderWithoutName", "* ,x\nA,1", "t.lin:1: a linetype header without a name"},
};
INSTANTIATE_TEST_SUITE_P(Cases, BrokenLinetype, testing::ValuesIn(kBrokenLinetypes),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(LinetypeFile, TextOutsideAnyDefinitionFailsTheFile) {
    auto defs = parseLinetypes(text(";; comment\nA,1,-1\n"));
    ASSERT_FALSE(defs);
    EXPECT_EQ(defs.message(), "t.lin:2: expected a linetype header \"*NAME,description\", found \"A,1,-1\"");
    EXPECT_FALSE(parseLinetypes(text("*A,x\nA,1\nA,2\n")));  // a second pattern line
}

TEST(PatternFile, KeepsEachDefinitionsTextAndReadsItsDescriptors) {
    auto defs = parsePatterns(SupportText("\xEF\xBB\xBF;; header\r\n*Brick_Wall , Bricks ; note\r\n"
                                          "0, 0,0, 0,.25\r\n\r\n90, 0,0, .25,.25, .25,-.25 ; half\r\n*NEXT\n45,0,0,0,1\n",
                                          "b.pat"));
    ASSERT_TRUE(defs) << defs.message();
    ASSERT_EQ(defs->size(), 2u);
    const PatternDefinition& brick = (*defs)[0];
    EXPECT_EQ(brick.name, "Brick_Wall");
    EXPECT_EQ(brick.description, "Bricks");
    EXPECT_EQ(brick.text, "*Brick_Wall , Bricks\n0, 0,0, 0,.25\n90, 0,0, .25,.25, .25,-.25");
    ASSERT_EQ(brick.lines.size(), 2u);
    EXPECT_DOUBLE_EQ(brick.lines[1].angle, 90);
    EXPECT_DOUBLE_EQ(brick.lines[1].deltaX, 0.25);
    EXPECT_EQ(brick.lines[1].dashes, (std::vector<double>{0.25, -0.25}));
    EXPECT_EQ((*defs)[1].text, "*NEXT\n45,0,0,0,1");
}

TEST(PatternFile, BrokenDefinitionsKeepTheirErrors) {
    auto defs = parsePatterns(SupportText("*EMPTY\n*SHORT\n0,0,0,1\n*WORD\n0,0,0,1,x\n*OK\n0,0,0,0,1\n", "p.pat"));
    ASSERT_TRUE(defs);
    ASSERT_EQ(defs->size(), 4u);
    EXPECT_EQ((*defs)[0].error, "p.pat:1: pattern \"EMPTY\" has no descriptor line");
    EXPECT_EQ((*defs)[1].error, "p.pat:3: a descriptor line needs angle, x-origin, y-origin, delta-x and delta-y");
    EXPECT_EQ((*defs)[2].error, "p.pat:5: expected a number, found \"x\"");
    EXPECT_EQ((*defs)[3].error, "");
    EXPECT_FALSE(parsePatterns(SupportText("0,0,0,0,1\n", "p.pat")));
}

TEST(MlineStyleFile, ReadsStylesWithFillAndElementColours) {
    auto file = SupportText::load(kDataDir / "good_roads.mln");
    ASSERT_TRUE(file) << file.message();
    auto styles = parseMlineStyles(*file);
    ASSERT_TRUE(styles) << styles.message();
    ASSERT_EQ(styles->size(), 2u);
    const MlineStyleDefinition& road = (*styles)[0];
    EXPECT_EQ(road.name, "ROAD_2LANE");
    EXPECT_EQ(road.description, "Two-lane road");
    EXPECT_EQ(road.flags, 272);
    EXPECT_EQ(road.fillColor, 8);
    EXPECT_DOUBLE_EQ(road.startAngle, 90);
    ASSERT_EQ(road.elements.size(), 3u);
    EXPECT_DOUBLE_EQ(road.elements[0].offset, 3.5);
    EXPECT_EQ(road.elements[0].color, 7);
    EXPECT_EQ(road.elements[1].linetype, "DASHED");
    EXPECT_EQ(road.elements[2].color, 256);  // not given: ByLayer
    EXPECT_EQ((*styles)[1].name, "WALL");
    EXPECT_EQ((*styles)[1].description, "");  // an empty value line
}

TEST(MlineStyleFile, MalformedFilesNameTheLine) {
    auto parse = [](std::string body) { return parseMlineStyles(SupportText(std::move(body), "m.mln")); };
    EXPECT_EQ(parse("MLSTYLE\n2\nA\n71\n2\n49\n1\n0\n").message(), "m.mln:1: multiline style \"A\" declares 2 elements and gives 1");
    EXPECT_EQ(parse("MLSTYLE\n70\n0\n0\n").message(), "m.mln:1: a multiline style without a name (code 2)");
    EXPECT_EQ(parse("MLSTYLE\n2\nA\n49\nwide\n").message(), "m.mln:5: expected a number, found \"wide\"");
    EXPECT_EQ(parse("2\nA\n").message(), "m.mln:1: group code 2 outside a multiline style");
    EXPECT_EQ(parse("MLSTYLE\n2\n").message(), "m.mln:2: group code 2 without a value");
    EXPECT_EQ(parse("MLSTYLE\nname\nA\n").message(), "m.mln:2: expected a group code or \"MLSTYLE\", found \"name\"");
}

// The files the workbench ships must read without a single broken definition.
TEST(ShippedSupportFolder, EveryDefinitionReads) {
    for (const char* name : {"acad.pat", "acadiso.pat"}) {
        auto file = SupportText::load(kSupportDir / name);
        ASSERT_TRUE(file) << file.message();
        auto defs = parsePatterns(*file);
        ASSERT_TRUE(defs) << defs.message();
        EXPECT_GE(defs->size(), 5u);
        EXPECT_EQ(defs->front().name, "SOLID");
        for (const auto& def : *defs) EXPECT_EQ(def.error, "") << name;
    }
    auto lin = SupportText::load(kSupportDir / "acad.lin");
    ASSERT_TRUE(lin) << lin.message();
    auto linetypes = parseLinetypes(*lin);
    ASSERT_TRUE(linetypes) << linetypes.message();
    EXPECT_GE(linetypes->size(), 5u);
    for (const auto& def : *linetypes) EXPECT_EQ(def.error, "") << def.name;
}

}  // namespace
}  // namespace veltarn::support
