// Writing tags: conversion between the forms, texts that hold what a line cannot, and values that
// cannot be stored.
#include "cad/dxf/TagWriter.h"

#include <gtest/gtest.h>

namespace veltarn::dxf {
namespace {

using namespace std::string_literals;

std::string converted(const TagFile& file, WriteFormat format) {
    StringSink sink;
    TagWriter writer(sink, std::move(format));
    writer.begin();
    writer.copy(file, 0, file.size());
    EXPECT_TRUE(writer.status().ok()) << writer.status().message();
    return sink.take();
}

TEST(TagWriter, ConvertsBetweenAsciiAndBinaryKeepingEveryValue) {
    // No header: R12 in code page 1252, as its binary copy (one-byte group codes) is too.
    auto ascii = TagFile::parse("  0\nSECTION\n  2\nENTITIES\n  0\nLINE\n  8\nW\xE4nde\n 10\n1.50\n 62\n  -3\n 90\n70000\n"
                                "160\n4294967296\n290\n1\n310\n00ab\n1001\nAPP\n  0\nENDSEC\n  0\nEOF\n",
                                "t.dxf");
    ASSERT_TRUE(ascii.ok()) << ascii.message();
    WriteFormat binaryForm = WriteFormat::of(*ascii);
    binaryForm.form = FileForm::Binary;
    auto binary = TagFile::parse(converted(*ascii, binaryForm), "t.dxf");
    ASSERT_TRUE(binary.ok()) << binary.message();
    EXPECT_TRUE(binary->oneByteGroupCodes());
    EXPECT_EQ(binary->raw(3), "W\xE4nde");
    EXPECT_EQ(binary->real(4), 1.5);
    EXPECT_EQ(binary->integer(5), -3);
    EXPECT_EQ(binary->integer(7), 4294967296);
    EXPECT_EQ(binary->raw(9), "\x00\xAB"s);
    EXPECT_EQ(binary->code(10), 1001);

    WriteFormat utf8;
    utf8.lineEnd = "\n";
    // Numbers come back in their shortest form, chunks in upper case, texts in UTF-8.
    EXPECT_EQ(converted(*binary, utf8), "  0\nSECTION\n  2\nENTITIES\n  0\nLINE\n  8\nWände\n 10\n1.5\n 62\n-3\n 90\n70000\n"
                                        "160\n4294967296\n290\n1\n310\n00AB\n1001\nAPP\n  0\nENDSEC\n  0\nEOF\n");
}

TEST(TagWriter, LineBreaksAndZeroBytesInTextsReadBack) {
    const std::string text = "two\nlines\r and a zero \0 byte"s;
    for (FileForm form : {FileForm::Ascii, FileForm::Binary}) {
        StringSink sink;
        WriteFormat format;
        format.form = form;
        TagWriter writer(sink, format);
        writer.begin();
        writer.write(0, "SECTION");
        writer.write(2, "ENTITIES");
        writer.write(1, text);
        writer.write(0, "ENDSEC");
        writer.write(0, "EOF");
        auto file = TagFile::parse(sink.take(), "t.dxf");
        ASSERT_TRUE(file.ok()) << file.message();
        EXPECT_EQ(file->text(2), text);
    }
}

TEST(TagWriter, RefusesValuesThatDoNotFitTheirGroupCode) {
    WriteFormat binary;
    binary.form = FileForm::Binary;
    StringSink sink;
    TagWriter writer(sink, binary);
    writer.write(70, "abc");
    writer.write(10, "1,5");
    EXPECT_EQ(writer.status().message(), "the value \"abc\" does not fit group code 70");  // the first one
    for (auto [code, value] : std::initializer_list<std::pair<int, const char*>>{
             {70, "40000"}, {310, "ABC"}, {290, "256"}, {1071, "2147483648"}}) {
        TagWriter one(sink, binary);
        one.write(code, value);
        EXPECT_FALSE(one.status().ok()) << code << " " << value;
    }
}

}  // namespace
}  // namespace veltarn::dxf
