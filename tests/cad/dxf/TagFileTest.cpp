// Reading tags: what real files do that the reader must accept, values of every kind, and the
// unchanged write that gives back the file's own bytes.
#include "BinaryDxf.h"
#include "TestFiles.h"

#include "cad/dxf/TagWriter.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace veltarn::dxf {
namespace {

using test::BinaryDxf;
using namespace std::string_literals;

std::string bytesOf(double value) {
    std::string bytes(sizeof value, '\0');
    std::memcpy(bytes.data(), &value, sizeof value);
    return bytes;
}

TagFile parsed(std::string bytes) {
    auto file = TagFile::parse(std::move(bytes), "t.dxf");
    if (!file) {
        ADD_FAILURE() << file.message();
        return TagFile::parse("0\nEOF\n", "empty.dxf").value();
    }
    return std::move(file).value();
}

std::string writtenUnchanged(const TagFile& file) {
    StringSink sink;
    TagWriter writer(sink, WriteFormat::of(file));
    writeUnchanged(file, writer);
    EXPECT_TRUE(writer.status().ok());
    return sink.take();
}

std::vector<int> codesOf(const TagFile& file) {
    std::vector<int> codes;
    for (std::size_t i = 0; i < file.size(); ++i) codes.push_back(file.code(i));
    return codes;
}

TEST(TagFileReading, ToleratesWhatRealWritersDo) {
    const std::string path = VELTARN_SOURCE_DIR "/tests/cad/dxf/data/good_tolerated_quirks.dxf";
    auto file = TagFile::load(path);
    ASSERT_TRUE(file.ok()) << file.message();
    EXPECT_EQ(codesOf(*file), (std::vector<int>{999, 999, 0, 2, 9, 1, 0, 9, 70, 0, 0, 2, 0, 8, 10, 0}));
    EXPECT_EQ(file->version(), "AC1015");  // the header is found after the comments
    EXPECT_EQ(file->raw(3), "HEADER");     // no CR in values
    EXPECT_EQ(file->real(14), 1.5);
    EXPECT_EQ(file->lineEnd(), "\r\n");
    EXPECT_TRUE(file->missingEof());
    // The missing EOF is added in the file's own line ends; the blank lines are not kept.
    std::string bytes = test::readBytes(path);
    std::string expected = bytes.substr(0, bytes.size() - 4) + "  0\r\nEOF\r\n";
    EXPECT_EQ(writtenUnchanged(*file), expected);
}

TEST(TagFileReading, UnchangedWriteGivesBackTheFileByteForByte) {
    const std::string bom = "\xEF\xBB\xBF";
    for (const std::string& bytes : std::vector<std::string>{bom + "0\nSECTION\n2\nENTITIES\n0\nENDSEC\n0\nEOF\n",
                              // Bytes after EOF, as some writers pad files, stay.
                              "  0\r\nSECTION\r\n  2\r\nENTITIES\r\n  0\r\nENDSEC\r\n  0\r\nEOF\r\n\x1A\0\0"s,
                              // No line end after the last value.
                              "0\nSECTION\n2\nENTITIES\n0\nENDSEC\n0\nEOF"}) {
        TagFile file = parsed(bytes);
        EXPECT_EQ(file.raw(1), "ENTITIES");
        EXPECT_FALSE(file.missingEof());
        EXPECT_EQ(writtenUnchanged(file), bytes);
    }
    // Without EOF and without a final line end, the line end comes before the added EOF.
    EXPECT_EQ(writtenUnchanged(parsed("0\nSECTION\n2\nENTITIES\n0\nENDSEC")),
              "0\nSECTION\n2\nENTITIES\n0\nENDSEC\n  0\nEOF\n");
}

TEST(TagFileReading, BinaryValuesOfEveryKind) {
    BinaryDxf dxf;
    dxf.text(0, "SECTION").text(2, "ENTITIES").text(0, "LINE").real(10, -2.5).int16(62, -3).int32(90, 70000);
    dxf.groupCode(160).append(std::string("\x00\x00\x00\x00\x01\x00\x00\x00", 8));  // 2^32
    dxf.groupCode(290).append("\x01").chunk(310, std::string("\x00\xAB", 2)).text(1, "Ü");
    dxf.text(0, "ENDSEC").text(0, "EOF");
    TagFile file = parsed(dxf.bytes());
    ASSERT_EQ(file.size(), 12u);
    EXPECT_EQ(file.form(), FileForm::Binary);
    EXPECT_FALSE(file.oneByteGroupCodes());
    const std::vector<std::string> texts = {"-2.5", "-3", "70000", "4294967296", "1", "00AB"};
    for (std::size_t i = 0; i < texts.size(); ++i) EXPECT_EQ(file.text(3 + i), texts[i]) << "tag " << 3 + i;
    EXPECT_EQ(file.real(3), -2.5);
    EXPECT_EQ(file.integer(4), -3);
    EXPECT_EQ(file.integer(6), 4294967296);
    EXPECT_EQ(file.real(5), 70000.0);
    EXPECT_FALSE(file.integer(3).has_value());  // a real is no integer
    EXPECT_EQ(file.raw(8), std::string("\x00\xAB", 2));
    EXPECT_EQ(file.where(3), "t.dxf:@" + std::to_string(22 + 10 + 11 + 7));
    EXPECT_EQ(writtenUnchanged(file), dxf.bytes());
}

TEST(TagFileReading, BinaryR12HasOneByteGroupCodes) {
    BinaryDxf dxf(true);
    dxf.text(0, "SECTION").text(2, "ENTITIES").text(0, "LINE").text(8, "0");
    // Extended data takes 255 and a two-byte code; so may a small code written long.
    dxf.text(1001, "APP").append("\xFF\x0A\x00"s + bytesOf(1.0)).append("\xFF\x28\x00"s + bytesOf(5.0));
    dxf.text(0, "ENDSEC").text(0, "EOF");
    TagFile file = parsed(dxf.bytes());
    EXPECT_TRUE(file.oneByteGroupCodes());
    EXPECT_EQ(codesOf(file), (std::vector<int>{0, 2, 0, 8, 1001, 10, 40, 0, 0}));
    EXPECT_EQ(file.real(6), 5.0);
    EXPECT_EQ(file.raw(4), "APP");
    EXPECT_EQ(writtenUnchanged(file), dxf.bytes());
    // A copy of the long-form tags alone starts exactly at their group codes.
    EXPECT_EQ(file.span(5, 7).substr(0, 3), "\xFF\x0A\x00"s);
}

TEST(TagFileReading, ValuesLongerThanATagCanMeasure) {
    const std::string longValue(70000, 'x');
    TagFile ascii = parsed("0\nSECTION\n2\nENTITIES\n1\n" + longValue + "\r\n0\nENDSEC\n0\nEOF\n");
    EXPECT_EQ(ascii.raw(2), longValue);
    EXPECT_EQ(ascii.code(3), 0);
    EXPECT_EQ(ascii.span(2, 3), "1\n" + longValue + "\r\n");

    BinaryDxf dxf;
    dxf.text(0, "SECTION").text(2, "ENTITIES").text(1, longValue).text(0, "ENDSEC").text(0, "EOF");
    TagFile binary = parsed(dxf.bytes());
    EXPECT_EQ(binary.raw(2), longValue);
    EXPECT_EQ(writtenUnchanged(binary), dxf.bytes());
}

}  // namespace
}  // namespace veltarn::dxf
