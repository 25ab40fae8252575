// Texts of drawings in every encoding reach the workbench as UTF-8 and go back as they came.
#include "cad/dxf/TagFile.h"
#include "cad/dxf/TagWriter.h"

#include <gtest/gtest.h>

namespace veltarn::dxf {
namespace {

constexpr std::size_t kTextTag = 10;  // the TEXT's value in drawingWithText()

std::string drawingWithText(std::string_view version, std::string_view codePage, std::string_view rawText) {
    std::string bytes = "  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\n";
    bytes += version;
    bytes += "\n  9\n$DWGCODEPAGE\n  3\n";
    bytes += codePage;
    bytes += "\n  0\nENDSEC\n  0\nSECTION\n  2\nENTITIES\n  0\nTEXT\n  1\n";
    bytes += rawText;
    return bytes + "\n  0\nENDSEC\n  0\nEOF\n";
}

// The UTF-8 text of the TEXT in a drawing of that version and code page holding `rawText`.
std::string decoded(std::string_view version, std::string_view codePage, std::string_view rawText) {
    auto file = TagFile::parse(drawingWithText(version, codePage, rawText), "text.dxf");
    if (!file) return "error: " + file.message();
    return file->text(kTextTag);
}

// The bytes that the drawing's codec writes for `text`.
std::string encoded(std::string_view version, std::string_view codePage, std::string_view text) {
    auto file = TagFile::parse(drawingWithText(version, codePage, "x"), "text.dxf");
    if (!file) return "error: " + file.message();
    StringSink sink;
    WriteFormat format = WriteFormat::of(*file);
    format.lineEnd = "\n";
    TagWriter writer(sink, format);
    writer.write(1, text);
    return sink.text().substr(4, sink.text().size() - 5);  // without "  1\n" and the line end
}

struct CodePageCase {
    const char* codePage;
    const char* bytes;
    const char* utf8;
};

class CodePage : public testing::TestWithParam<CodePageCase> {};

TEST_P(CodePage, DecodesToUtf8AndEncodesBackToTheSameBytes) {
    const CodePageCase& c = GetParam();
    EXPECT_EQ(decoded("AC1015", c.codePage, c.bytes), c.utf8);
    EXPECT_EQ(encoded("AC1015", c.codePage, c.utf8), c.bytes);
    // From 2007 on texts are UTF-8 whatever $DWGCODEPAGE says.
    EXPECT_EQ(decoded("AC1021", c.codePage, c.utf8), c.utf8);
    EXPECT_EQ(encoded("AC1032", c.codePage, c.utf8), c.utf8);
}

// Bytes made with Python's code-page codecs.
INSTANTIATE_TEST_SUITE_P(PreR2007, CodePage,
                         testing::Values(CodePageCase{"ANSI_1250", "\x8Elu\x9Dou\xE8k\xFD k\xF9\xF2", "Žluťoučký kůň"},
                                         CodePageCase{"ANSI_1251", "\xCF\xF0\xE8\xE2\xE5\xF2, \xEC\xE8\xF0", "Привет, мир"},
                                         CodePageCase{"ANSI_1252", "Fa\xE7" "ade d\xE9j\xE0 vu \x80", "Façade déjà vu €"},
                                         CodePageCase{"ANSI_932", "\x93\xFA\x96{\x8C\xEA\x82\xCC\x83" "e\x83L\x83X\x83g",
                                                      "日本語のテキスト"},
                                         CodePageCase{"ANSI_936", "\xD6\xD0\xCE\xC4\xCE\xC4\xB1\xBE", "中文文本"},
                                         CodePageCase{"ANSI_949", "\xC7\xD1\xB1\xB9\xBE\xEE \xC5\xD8\xBD\xBA\xC6\xAE",
                                                      "한국어 텍스트"},
                                         CodePageCase{"ANSI_950", "\xC1" "c\xC5\xE9\xA4\xA4\xA4\xE5", "繁體中文"}),
                         [](const testing::TestParamInfo<CodePageCase>& info) { return std::string(info.param.codePage); });

TEST(TextCodec, ResolvesEscapesInEveryEncoding) {
    for (const char* version : {"AC1015", "AC1032"}) {
        SCOPED_TRACE(version);
        EXPECT_EQ(decoded(version, "ANSI_1252", "\\U+03A9 \\U+03a9"), "Ω Ω");
        EXPECT_EQ(decoded(version, "ANSI_1252", "\\U+D83D\\U+DE00"), "😀");  // a UTF-16 surrogate pair
        EXPECT_EQ(decoded(version, "ANSI_1252", "\\M+182A0"), "あ");        // two bytes of code page 932
        // Half a surrogate pair is no character; what is no escape stays as written.
        EXPECT_EQ(decoded(version, "ANSI_1252", "\\U+D83D."), "\uFFFD.");
        EXPECT_EQ(decoded(version, "ANSI_1252", "\\U+12 \\U+XYZW \\u+0041 \\M+9ABCD C:\\Users"),
                  "\\U+12 \\U+XYZW \\u+0041 \\M+9ABCD C:\\Users");
    }
}

TEST(TextCodec, WritesWhatTheCodePageLacksAsEscapesThatReadBack) {
    const std::string text = "Ω€中😀";
    std::string bytes = encoded("AC1015", "ANSI_1252", text);
    EXPECT_EQ(bytes, "\\U+03A9\x80\\U+4E2D\\U+D83D\\U+DE00");
    EXPECT_EQ(decoded("AC1015", "ANSI_1252", bytes), text);
}

TEST(TextCodec, ReplacesBytesThatAreNoTextWithTheReplacementCharacter) {
    // A stray continuation byte, an overlong '/', an encoded surrogate, a cut-off sequence.
    std::string text = decoded("AC1032", "", "a\x80" "b\xC0\xAF" "c\xED\xA0\x80" "d\xE4\xB8");
    EXPECT_EQ(text, "a\uFFFDb\uFFFD\uFFFDc\uFFFD\uFFFD\uFFFDd\uFFFD\uFFFD");
    EXPECT_TRUE(isValidUtf8(text));
    // 0x81 is unassigned in code page 1252.
    EXPECT_EQ(decoded("AC1015", "ANSI_1252", "a\x81z"), "a\uFFFDz");
}

TEST(TextCodec, CodePageFollowsTheHeader) {
    struct Case {
        const char* version;
        const char* codePage;
        const char* expected;  // "" for UTF-8
    };
    for (const Case& c : {Case{"AC1009", "ansi_1251", "ANSI_1251"}, Case{"AC1018", "ANSI_936", "ANSI_936"},
                          Case{"AC1015", "", "ANSI_1252"}, Case{"AC1015", "ANSI_99999", "ANSI_1252"},
                          Case{"AC1021", "ANSI_1251", ""}, Case{"AC1032", "ANSI_932", ""}}) {
        auto file = TagFile::parse(drawingWithText(c.version, c.codePage, "x"), "text.dxf");
        ASSERT_TRUE(file.ok()) << file.message();
        EXPECT_EQ(file->version(), c.version);
        EXPECT_EQ(file->codec().codePage(), c.expected) << c.version << " " << c.codePage;
    }
    // Minimal R12 files have no header at all.
    auto bare = TagFile::parse("  0\nSECTION\n  2\nENTITIES\n  0\nENDSEC\n  0\nEOF\n", "bare.dxf");
    ASSERT_TRUE(bare.ok()) << bare.message();
    EXPECT_EQ(bare->version(), "AC1009");
    EXPECT_EQ(bare->codec().codePage(), "ANSI_1252");
}

}  // namespace
}  // namespace veltarn::dxf
