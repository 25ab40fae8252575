// Damaged files are refused with one message that names the file, the line (or byte offset of a
// binary file) and what was expected there.
#include "BinaryDxf.h"

#include <gtest/gtest.h>

namespace veltarn::dxf {
namespace {

using namespace std::string_literals;

struct BadFile {
    const char* fixture;  // data/bad_<fixture>.dxf, whose first comment says what is wrong
    const char* message;  // after "<path>:"
};

class BadAsciiFile : public testing::TestWithParam<BadFile> {};

TEST_P(BadAsciiFile, IsRefusedSayingWhereAndWhat) {
    std::string path = VELTARN_SOURCE_DIR "/tests/cad/dxf/data/bad_" + std::string(GetParam().fixture) + ".dxf";
    auto file = TagFile::load(path);
    ASSERT_FALSE(file.ok());
    EXPECT_EQ(file.message(), path + ":" + GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    Fixtures, BadAsciiFile,
    testing::Values(
        BadFile{"truncated", "28: expected 0 ENDSEC closing section \"ENTITIES\" (opened at line 13), found the end of the file"},
        BadFile{"odd_line_count", "14: expected the value of group code 0, found the end of the file"},
        BadFile{"group_code", "11: expected a group code, found \"ABC\""},
        BadFile{"section_never_ends", "11: expected 0 ENDSEC closing section \"HEADER\" (opened at line 3), found 0 \"SECTION\""},
        BadFile{"tag_outside_sections", "3: expected 0 SECTION or 0 EOF, found 0 \"LINE\""},
        BadFile{"section_without_name", "5: expected the section name (group code 2) after 0 SECTION, found 8 \"0\""}),
    [](const auto& info) { return std::string(info.param.fixture); });

std::string messageFor(const std::string& bytes) {
    auto file = TagFile::parse(bytes, "x.dxf");
    return file ? "loaded" : file.message();
}

TEST(MalformedInput, EmptyFilesAndGarbage) {
    EXPECT_EQ(messageFor(""), "x.dxf: the file is empty, expected DXF tags");
    EXPECT_EQ(messageFor("\n \r\n\t\n"), "x.dxf: expected DXF tags, found none");
    // A PNG image: bytes that are no text are shown escaped.
    EXPECT_EQ(messageFor("\x89PNG\r\n\x1A\n\0\0\0\rIHDR"s), "x.dxf:1: expected a group code, found \"\\x89PNG\\x0D\"");
    EXPECT_EQ(messageFor("0\nSECTION\n2\nENTITIES\n-32769\nx\n"), "x.dxf:5: expected a group code, found \"-32769\"");
    EXPECT_EQ(messageFor(std::string(kBinarySentinel) + "\x01\x02\x03"),
              "x.dxf:@24: expected a zero byte ending the text of group code 513, found the end of the file");
}

TEST(MalformedInput, TruncatedBinaryValues) {
    test::BinaryDxf start;
    start.text(0, "SECTION").text(2, "ENTITIES").text(0, "LINE");
    const std::string at = "x.dxf:@" + std::to_string(start.bytes().size() + 2) + ": ";  // where the cut value starts
    EXPECT_EQ(messageFor(test::BinaryDxf(start).groupCode(10).append("\x01\x02\x03").bytes()),
              at + "expected 8 bytes for the value of group code 10, found 3");
    EXPECT_EQ(messageFor(test::BinaryDxf(start).groupCode(8).append("Wal").bytes()),
              at + "expected a zero byte ending the text of group code 8, found the end of the file");
    EXPECT_EQ(messageFor(test::BinaryDxf(start).groupCode(310).append("\x10" "abc").bytes()),
              "x.dxf:@" + std::to_string(start.bytes().size() + 3) + ": expected 16 bytes of binary data for group code 310, found 3");
    EXPECT_EQ(messageFor(test::BinaryDxf(start).append("\x08").bytes()),
              "x.dxf:@" + std::to_string(start.bytes().size()) + ": expected a two-byte group code, found the end of the file");
    EXPECT_EQ(messageFor(test::BinaryDxf(start).text(0, "EOF").bytes()),
              "x.dxf:@" + std::to_string(start.bytes().size()) +
                  ": expected 0 ENDSEC closing section \"ENTITIES\" (opened at @22), found 0 \"EOF\"");
}

}  // namespace
}  // namespace veltarn::dxf
