// Inputs the fuzzer found that broke a promise of the tag layer, kept as plain regression tests.
#include "BinaryDxf.h"

#include "cad/dxf/TagWriter.h"

#include <gtest/gtest.h>

namespace veltarn::dxf {
namespace {

TEST(FuzzRegression, GroupCodeMinus32768SurvivesConversionToAscii) {
    // Binary DXF stores group codes in 16 bits; the ASCII reader refused the lowest one.
    test::BinaryDxf dxf;
    dxf.text(0, "SECTION").text(2, "ENTITIES").text(-32768, "x").text(0, "ENDSEC").text(0, "EOF");
    auto file = TagFile::parse(dxf.bytes(), "fuzz.dxf");
    ASSERT_TRUE(file.ok()) << file.message();
    StringSink sink;
    TagWriter writer(sink, WriteFormat{});
    writer.copy(*file, 0, file->size());
    auto ascii = TagFile::parse(sink.take(), "rewritten.dxf");
    ASSERT_TRUE(ascii.ok()) << ascii.message();
    EXPECT_EQ(ascii->code(2), -32768);
}

TEST(FuzzRegression, TextInCodePage1258KeepsItsLastCharacter) {
    // The converter holds a letter back to compose it with a tone mark that may follow, and gave
    // it out only when asked to flush.
    test::BinaryDxf dxf(true);
    dxf.text(0, "SECTION").text(2, "HEADER").text(9, "$DWGCODEPAGE").text(3, "ANSI_1258").text(0, "ENDSEC");
    auto file = TagFile::parse(dxf.text(0, "SECTION").text(2, "ENTITIES").text(1, "\xC0 LINE").text(0, "ENDSEC").bytes(), "fuzz.dxf");
    ASSERT_TRUE(file.ok()) << file.message();
    EXPECT_EQ(file->text(7), "À LINE");
}

TEST(FuzzRegression, CodePageIsReadOnlyFromAText) {
    // The eight bytes of a real after $DWGCODEPAGE read "ANSI_950" in binary, and a number in ASCII.
    test::BinaryDxf dxf(true);
    dxf.text(0, "SECTION").text(2, "HEADER").text(9, "$DWGCODEPAGE").groupCode(20).append("ANSI_950");
    auto file = TagFile::parse(dxf.text(0, "ENDSEC").text(0, "EOF").bytes(), "fuzz.dxf");
    ASSERT_TRUE(file.ok()) << file.message();
    EXPECT_EQ(file->codec().codePage(), "ANSI_1252");
}

TEST(FuzzRegression, BackslashOfJohabStartsEscapes) {
    // glibc reads byte 0x5C of code page 1361 as the won sign, so the escapes written for what the
    // code page lacks did not read back.
    test::BinaryDxf dxf(true);
    dxf.text(0, "SECTION").text(2, "HEADER").text(9, "$DWGCODEPAGE").text(3, "ANSI_1361").text(0, "ENDSEC");
    auto file = TagFile::parse(dxf.text(0, "EOF").bytes(), "fuzz.dxf");
    ASSERT_TRUE(file.ok()) << file.message();
    const std::string text = "\uFFFD C:\\plans ₩ \\U+";
    EXPECT_EQ(file->codec().decode(file->codec().encode(text)), text);
}

TEST(FuzzRegression, TextThatLooksLikeAnEscapeReadsBackAsWritten) {
    // "\M+166" stayed as written, "\M+16661" became "fa": written back, the two formed a new escape.
    auto file = TagFile::parse("999\n.;1\n0\nSECTION\n2\nDt\n1\n2?\\M+166\\M+16661\n0\nEND61\n0\nENDSEC", "fuzz.dxf");
    ASSERT_TRUE(file.ok()) << file.message();
    for (const TextCodec& codec : {file->codec(), TextCodec()}) {
        for (std::string text : {file->text(3), std::string("\\U+0041 \\M+182A0 \\U+00")})
            EXPECT_EQ(codec.decode(codec.encode(text)), text) << codec.codePage();
    }
}

TEST(FuzzRegression, CombiningMarkAfterAnEscapeStaysApart) {
    // Code page 1258 composed a hook above (byte 0xD2) with the last hex digit of the escape before
    // it: a line break and a hook, written as "\U+000A" and 0xD2, read back as "\U+000Ả".
    auto file = TagFile::parse("0\nSECTION\n2\nHEADER\n9\n$DWGCODEPAGE\n3\nANSI_1258\n0\nENDSEC\n0\nEOF\n", "fuzz.dxf");
    ASSERT_TRUE(file.ok()) << file.message();
    for (std::string text : {"9\n\u0309", "\u03AA\u0309\u0301 and \u1EA2"}) {
        StringSink sink;
        TagWriter writer(sink, WriteFormat::of(*file));
        writer.copy(*file, 0, 4);
        writer.write(1, text);
        writer.copy(*file, 4, 6);
        auto back = TagFile::parse(sink.take(), "back.dxf");
        ASSERT_TRUE(back.ok()) << back.message();
        EXPECT_EQ(back->text(4), text);
    }
}

}  // namespace
}  // namespace veltarn::dxf
