// Writing tags: new values in the file's form and encoding, conversion between the forms, and
// values that cannot be stored.
#include "BinaryDxf.h"

#include "cad/dxf/TagWriter.h"

#include <gtest/gtest.h>

#include <vector>

namespace veltarn::dxf {
namespace {

using namespace std::string_literals;

const std::string kAsciiDrawing =
    "  0\nSECTION\n  2\nENTITIES\n  0\nLINE\n  8\nW\xE4nde\n 10\n1.50\n 62\n  -3\n 90\n70000\n160\n4294967296\n"
    "290\n1\n310\n00ab\n  0\nENDSEC\n  0\nEOF\n";

TagFile parsed(std::string bytes) {
    auto file = TagFile::parse(std::move(bytes), "t.dxf");
    EXPECT_TRUE(file.ok()) << file.message();
    return file ? std::move(file).value() : TagFile::parse("0\nEOF\n", "empty.dxf").value();
}

std::string converted(const TagFile& file, WriteFormat format) {
    StringSink sink;
    TagWriter writer(sink, std::move(format));
    writer.begin();
    writer.copy(file, 0, file.size());
    EXPECT_TRUE(writer.status().ok()) << writer.status().message();
    return sink.take();
}

TEST(TagWriter, ConvertsBetweenAsciiAndBinaryKeepingEveryValue) {
    // A file without a header is R12 in code page 1252, and so is its binary copy.
    TagFile ascii = parsed(kAsciiDrawing);
    WriteFormat binaryFormat = WriteFormat::of(ascii);
    binaryFormat.form = FileForm::Binary;
    TagFile binary = parsed(converted(ascii, binaryFormat));
    ASSERT_EQ(binary.form(), FileForm::Binary);
    EXPECT_TRUE(binary.oneByteGroupCodes());
    ASSERT_EQ(binary.size(), ascii.size());
    EXPECT_EQ(binary.text(3), "Wände");
    EXPECT_EQ(binary.real(4), 1.5);
    EXPECT_EQ(binary.integer(5), -3);
    EXPECT_EQ(binary.integer(6), 70000);
    EXPECT_EQ(binary.integer(7), 4294967296);
    EXPECT_EQ(binary.integer(8), 1);
    EXPECT_EQ(binary.raw(9), "\x00\xAB"s);

    WriteFormat asciiFormat;  // UTF-8
    asciiFormat.lineEnd = "\n";
    // Numbers come back in their shortest form, chunks in upper case.
    EXPECT_EQ(converted(binary, asciiFormat),
              "  0\nSECTION\n  2\nENTITIES\n  0\nLINE\n  8\nWände\n 10\n1.5\n 62\n-3\n 90\n70000\n160\n4294967296\n"
              "290\n1\n310\n00AB\n  0\nENDSEC\n  0\nEOF\n");
}

TEST(TagWriter, BinaryR12WritesOneByteCodesAndLongOnesAfter255) {
    StringSink sink;
    WriteFormat format;
    format.form = FileForm::Binary;
    format.version = "AC1009";
    TagWriter writer(sink, format);
    writer.begin();
    writer.write(0, "SECTION");
    writer.write(1001, "APP");
    writer.writeInteger(1070, 7);
    EXPECT_EQ(sink.text(), std::string(kBinarySentinel) + "\0SECTION\0\xFF\xE9\x03" "APP\0\xFF\x2E\x04\x07\0"s);
}

TEST(TagWriter, NewTextsTakeTheFileEncodingAndLineEnds) {
    TagFile file = parsed("0\r\nSECTION\r\n2\r\nHEADER\r\n9\r\n$ACADVER\r\n1\r\nAC1015\r\n9\r\n$DWGCODEPAGE\r\n3\r\n"
                          "ANSI_1251\r\n0\r\nENDSEC\r\n0\r\nEOF\r\n");
    StringSink sink;
    TagWriter writer(sink, WriteFormat::of(file));
    writer.copy(file, 0, 6);
    writer.write(1, "Мир Ω");
    writer.writeReal(40, 0.1);
    EXPECT_EQ(sink.text(), "0\r\nSECTION\r\n2\r\nHEADER\r\n9\r\n$ACADVER\r\n1\r\nAC1015\r\n9\r\n$DWGCODEPAGE\r\n3\r\n"
                           "ANSI_1251\r\n  1\r\n\xCC\xE8\xF0 \\U+03A9\r\n 40\r\n0.1\r\n");
    // The same tags copied into a UTF-8 drawing are re-encoded, not copied as bytes.
    WriteFormat utf8;
    utf8.lineEnd = "\n";
    EXPECT_EQ(converted(parsed(sink.text() + "0\r\nENDSEC\r\n0\r\nEOF\r\n"), utf8),
              "  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\nAC1015\n  9\n$DWGCODEPAGE\n  3\nANSI_1251\n"
              "  1\nМир Ω\n 40\n0.1\n  0\nENDSEC\n  0\nEOF\n");
}

TEST(TagWriter, LineBreaksAndZeroBytesInTextsReadBack) {
    const std::string text = "two\nlines\r and a zero \0 byte"s;
    for (FileForm form : {FileForm::Ascii, FileForm::Binary}) {
        StringSink sink;
        WriteFormat format;
        format.form = form;
        TagWriter writer(sink, format);
        writer.begin();
        for (auto [code, value] : std::vector<std::pair<int, std::string>>{
                 {0, "SECTION"}, {2, "ENTITIES"}, {1, text}, {0, "ENDSEC"}, {0, "EOF"}})
            writer.write(code, value);
        ASSERT_TRUE(writer.status().ok()) << writer.status().message();
        EXPECT_EQ(parsed(sink.take()).text(2), text) << (form == FileForm::Ascii ? "ASCII" : "binary");
    }
}

TEST(TagWriter, RefusesValuesThatDoNotFitTheirGroupCode) {
    StringSink sink;
    WriteFormat format;
    format.form = FileForm::Binary;
    TagWriter writer(sink, format);
    writer.write(70, "abc");
    writer.write(70, "40000");   // past 16 bits
    writer.write(10, "1,5");
    writer.write(310, "ABC");    // half a byte
    writer.write(290, "256");
    EXPECT_EQ(writer.status().message(), "the value \"abc\" does not fit group code 70");  // the first one
    for (auto [code, value] : std::vector<std::pair<int, std::string>>{
             {70, "40000"}, {10, "1,5"}, {310, "ABC"}, {290, "256"}, {1071, "2147483648"}}) {
        StringSink alone;
        TagWriter one(alone, format);
        one.write(code, value);
        EXPECT_FALSE(one.status().ok()) << code << " " << value;
    }
}

}  // namespace
}  // namespace veltarn::dxf
