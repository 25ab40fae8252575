// Reading through a TagSink: every tag the scanner finds, handed on while the file is read, with the
// bytes it covers; the same checks and the same messages as reading into a tag vector.
#include "BinaryDxf.h"
#include "TestFiles.h"

#include <gtest/gtest.h>

#include <vector>

namespace veltarn::dxf {
namespace {

using namespace std::string_literals;

struct CollectingSink : TagSink {
    std::vector<ScannedTag> tags;
    std::vector<std::string> names;  // code-2 values, decoded as they came
    std::size_t windows = 0;

    void take(const TagFile& file, std::span<const ScannedTag> window) override {
        ++windows;
        for (const ScannedTag& tag : window) {
            tags.push_back(tag);
            if (tag.code == code::kName) names.push_back(file.textOf(tag.code, file.bytes().substr(tag.value, tag.length)));
        }
    }
};

// Reads `bytes` both ways; the sink must see the vector's tags, each covering its span, no gaps.
void expectSameTags(const std::string& bytes, const std::string& name, std::size_t minWindows = 1) {
    auto kept = TagFile::parse(bytes, name);
    ASSERT_TRUE(kept.ok()) << kept.message();
    CollectingSink sink;
    auto streamed = TagFile::parse(bytes, name, sink);
    ASSERT_TRUE(streamed.ok()) << streamed.message();
    EXPECT_EQ(streamed->size(), 0u) << name << ": a sink's file keeps no tags";
    EXPECT_GE(sink.windows, minWindows) << name;
    ASSERT_EQ(sink.tags.size(), kept->size()) << name;
    std::size_t start = kept->form() == FileForm::Binary ? kBinarySentinel.size() : 0;
    for (std::size_t i = 0; i < kept->size(); ++i) {
        const ScannedTag& tag = sink.tags[i];
        ASSERT_EQ(tag.code, kept->code(i)) << name << ": tag " << i;
        ASSERT_EQ(bytes.substr(tag.value, tag.length), kept->raw(i)) << name << ": tag " << i;
        ASSERT_EQ(tag.start, start) << name << ": tag " << i;
        ASSERT_EQ(std::string_view(bytes).substr(tag.start, tag.end - tag.start), kept->span(i, i + 1)) << name << ": tag " << i;
        start = tag.end;
    }
    EXPECT_EQ(streamed->trailer(), kept->trailer()) << name;
    EXPECT_EQ(streamed->version(), kept->version()) << name;
    EXPECT_EQ(streamed->missingEof(), kept->missingEof()) << name;
}

TEST(TagSink, TakesTheScannersTagsWithTheBytesEachCovers) {
    // A byte-order mark (it goes with the first tag), CR-LF and padding after EOF.
    expectSameTags("\xEF\xBB\xBF  0\r\nSECTION\r\n  2\r\nENTITIES\r\n  0\r\nENDSEC\r\n  0\r\nEOF\r\n\x1A\0\0"s, "marked.dxf");
    // Comments, stray tags between sections, blank lines and no EOF at the end.
    const std::string quirks = VELTARN_SOURCE_DIR "/tests/cad/dxf/data/good_tolerated_quirks.dxf";
    expectSameTags(test::readBytes(quirks), quirks);

    // More tags than one window holds, in each form.
    std::string ascii = "0\nSECTION\n2\nENTITIES\n";
    test::BinaryDxf wide, narrow(true);
    for (auto* binary : {&wide, &narrow}) binary->text(0, "SECTION").text(2, "ENTITIES");
    for (int i = 0; i < 3000; ++i) {
        ascii += "0\nPOINT\n8\n0\n 10\n" + std::to_string(i) + "\n";
        for (auto* binary : {&wide, &narrow}) binary->text(0, "POINT").text(8, "0").real(10, i).int16(1070, 7);
    }
    ascii += "0\nENDSEC\n0\nEOF\n";
    for (auto* binary : {&wide, &narrow}) binary->text(0, "ENDSEC").text(0, "EOF");
    expectSameTags(ascii, "points.dxf", 2);
    expectSameTags(wide.bytes(), "points-two-byte-codes.dxf", 2);
    expectSameTags(narrow.bytes(), "points-one-byte-codes.dxf", 2);
}

TEST(TagSink, ReadsTextsInTheCodePageOfTheHeaderFromTheFirstTag) {
    auto file = [](std::string_view codePage) {
        return "  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\nAC1015\n  9\n$DWGCODEPAGE\n  3\n" + std::string(codePage) +
               "\n  0\nENDSEC\n  0\nSECTION\n  2\nTABLES\n  0\nTABLE\n  2\nLAYER\n  0\nLAYER\n  2\n\xCF\xE8\n  0\nENDTAB\n"
               "  0\nENDSEC\n  0\nEOF\n";
    };
    CollectingSink sink;
    auto cyrillic = TagFile::parse(file("ANSI_1251"), "t.dxf", sink);
    ASSERT_TRUE(cyrillic.ok()) << cyrillic.message();
    EXPECT_EQ(sink.names, (std::vector<std::string>{"HEADER", "TABLES", "LAYER", "\xD0\x9F\xD0\xB8"}));
    CollectingSink western;
    ASSERT_TRUE(TagFile::parse(file("ANSI_1252"), "t.dxf", western).ok());
    EXPECT_EQ(western.names.back(), "\xC3\x8F\xC3\xA8");
}

TEST(TagSink, RefusesWhatTheTagVectorRefusesWithTheSameMessage) {
    std::vector<std::string> inputs = {"", "\n \r\n\t\n", "0\nSECTION\n2\nENTITIES\n-32769\nx\n", "0\nSECTION\n",
                                       "0\nSECTION\n2\nHEADER\n0\nSECTION\n2\nENTITIES\n0\nENDSEC\n",
                                       "0\nSECTION\n2\nENTITIES\n0\nENDSEC\n0\nENDSEC\n0\nLINE\n0\nEOF\n",
                                       std::string(kBinarySentinel) + "\x01\x02\x03"};
    test::BinaryDxf unclosed;
    inputs.push_back(unclosed.text(0, "SECTION").text(2, "ENTITIES").text(0, "LINE").real(10, 1).text(0, "EOF").bytes());
    for (const char* fixture : {"truncated", "odd_line_count", "group_code", "section_never_ends", "tag_outside_sections",
                                "section_without_name"})
        inputs.push_back(test::readBytes(VELTARN_SOURCE_DIR "/tests/cad/dxf/data/bad_" + std::string(fixture) + ".dxf"));
    for (const std::string& bytes : inputs) {
        auto kept = TagFile::parse(bytes, "x.dxf");
        ASSERT_FALSE(kept.ok()) << testing::PrintToString(bytes);
        CollectingSink sink;
        auto streamed = TagFile::parse(bytes, "x.dxf", sink);
        ASSERT_FALSE(streamed.ok()) << testing::PrintToString(bytes);
        EXPECT_EQ(streamed.message(), kept.message());
    }

    // Section rules are checked while scanning, but a fault of the scanner further on is the one told.
    CollectingSink sink;
    auto both = TagFile::parse("0\nSECTION\n2\nA\n0\nSECTION\n2\nB\n0\nENDSEC\nxyz\n0\n", "x.dxf", sink);
    ASSERT_FALSE(both.ok());
    EXPECT_EQ(both.message(), "x.dxf:11: expected a group code, found \"xyz\"");
}

}  // namespace
}  // namespace veltarn::dxf
