// Reading tags: what real writers do that the reader must accept, values of every kind, and the
// unchanged write that gives back the file's own bytes.
#include "BinaryDxf.h"
#include "TestFiles.h"

#include "cad/dxf/TagWriter.h"

#include <gtest/gtest.h>

#include <vector>

namespace veltarn::dxf {
namespace {

using namespace std::string_literals;

std::string unchanged(const TagFile& file) {
    StringSink sink;
    TagWriter writer(sink, WriteFormat::of(file));
    writeUnchanged(file, writer);
    return sink.take();
}

TEST(TagFileReading, ToleratesWhatRealWritersDo) {
    const std::string path = VELTARN_SOURCE_DIR "/tests/cad/dxf/data/good_tolerated_quirks.dxf";
    auto file = TagFile::load(path);
    ASSERT_TRUE(file.ok()) << file.message();
    std::vector<int> codes;
    for (const Tag& tag : file->tags()) codes.push_back(tag.code);
    EXPECT_EQ(codes, (std::vector<int>{999, 999, 0, 2, 9, 1, 0, 9, 70, 0, 0, 2, 0, 8, 10, 0}));
    EXPECT_EQ(file->version(), "AC1015");  // the header is found after the comments
    EXPECT_EQ(file->raw(3), "HEADER");
    EXPECT_EQ(file->real(14), 1.5);
    EXPECT_TRUE(file->missingEof());
    // The missing EOF is added in the file's own line ends; the blank lines at the end are not kept.
    std::string bytes = test::readBytes(path);
    EXPECT_EQ(unchanged(*file), bytes.substr(0, bytes.size() - 4) + "  0\r\nEOF\r\n");
    auto cut = TagFile::parse("0\nSECTION\n2\nENTITIES\n0\nENDSEC", "cut.dxf");
    EXPECT_EQ(unchanged(*cut), "0\nSECTION\n2\nENTITIES\n0\nENDSEC\n  0\nEOF\n");
}

TEST(TagFileReading, UnchangedWriteGivesBackTheFileByteForByte) {
    for (const std::string& bytes : {"\xEF\xBB\xBF" "0\nSECTION\n2\nENTITIES\n0\nENDSEC\n0\nEOF\n"s,
                                     "0\r\nSECTION\r\n2\r\nENTITIES\r\n0\r\nENDSEC\r\n0\r\nEOF\r\n\x1A\0\0"s,  // padded
                                     "0\nSECTION\n2\nENTITIES\n0\nENDSEC\n0\nEOF"s}) {
        auto file = TagFile::parse(bytes, "t.dxf");
        ASSERT_TRUE(file.ok()) << file.message();
        EXPECT_EQ(file->raw(1), "ENTITIES");
        EXPECT_EQ(unchanged(*file), bytes);
    }
}

TEST(TagFileReading, BinaryValuesOfEveryKindAndBothCodeWidths) {
    test::BinaryDxf dxf;
    dxf.text(0, "SECTION").text(2, "ENTITIES").text(0, "LINE").real(10, -2.5).int16(62, -3).int32(90, 70000);
    dxf.groupCode(160).number(std::int64_t{1} << 32).groupCode(290).append("\x01").chunk(310, "\0\xAB"s);
    auto file = TagFile::parse(dxf.text(0, "ENDSEC").text(0, "EOF").bytes(), "t.dxf");
    ASSERT_TRUE(file.ok()) << file.message();
    const char* texts[] = {"-2.5", "-3", "70000", "4294967296", "1", "00AB"};
    for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(file->text(3 + i), texts[i]) << "tag " << 3 + i;
    EXPECT_EQ(file->integer(6), 4294967296);
    EXPECT_EQ(file->real(5), 70000.0);
    EXPECT_FALSE(file->integer(3).has_value());  // a real is no integer
    EXPECT_EQ(file->where(3), "t.dxf:@50");
    EXPECT_EQ(unchanged(*file), dxf.bytes());

    test::BinaryDxf r12(true);  // one-byte codes; 255 announces a two-byte one
    r12.text(0, "SECTION").text(2, "ENTITIES").text(1001, "APP").append("\xFF\x0A\x00"s).number(1.0).real(40, 5.0);
    file = TagFile::parse(r12.text(0, "ENDSEC").text(0, "EOF").bytes(), "t.dxf");
    ASSERT_TRUE(file.ok()) << file.message();
    EXPECT_EQ(file->code(2), 1001);
    EXPECT_EQ(file->code(3), 10);  // a small code written long
    EXPECT_EQ(file->real(4), 5.0);
    EXPECT_EQ(file->span(3, 4).substr(0, 3), "\xFF\x0A\x00"s);
    EXPECT_EQ(unchanged(*file), r12.bytes());
}

TEST(TagFileReading, ValuesLongerThanATagCanMeasure) {
    const std::string value(70000, 'x');
    auto ascii = TagFile::parse("0\nSECTION\n2\nENTITIES\n1\n" + value + "\r\n0\nENDSEC\n0\nEOF\n", "t.dxf");
    ASSERT_TRUE(ascii.ok()) << ascii.message();
    EXPECT_EQ(ascii->raw(2), value);
    EXPECT_EQ(ascii->span(2, 4), "1\n" + value + "\r\n0\nENDSEC\n");
    test::BinaryDxf dxf;
    dxf.text(0, "SECTION").text(2, "ENTITIES").text(1, value).text(0, "ENDSEC").text(0, "EOF");
    auto binary = TagFile::parse(dxf.bytes(), "t.dxf");
    ASSERT_TRUE(binary.ok()) << binary.message();
    EXPECT_EQ(binary->raw(2), value);
    EXPECT_EQ(unchanged(*binary), dxf.bytes());
}

}  // namespace
}  // namespace veltarn::dxf
