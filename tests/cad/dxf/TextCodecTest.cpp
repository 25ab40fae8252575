// Texts of drawings in every encoding reach the workbench as UTF-8 and go back as they came.
#include "cad/dxf/TagWriter.h"

#include <gtest/gtest.h>

namespace veltarn::dxf {
namespace {

// A drawing of that $ACADVER and $DWGCODEPAGE whose TEXT (tag 10) holds `raw`.
Result<TagFile> drawing(std::string_view version, std::string_view codePage, std::string_view raw) {
    std::string header = "  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\n" + std::string(version) +
                         "\n  9\n$DWGCODEPAGE\n  3\n" + std::string(codePage) + "\n  0\nENDSEC\n";
    return TagFile::parse(header + "  0\nSECTION\n  2\nENTITIES\n  0\nTEXT\n  1\n" + std::string(raw) +
                              "\n  0\nENDSEC\n  0\nEOF\n",
                          "text.dxf");
}

std::string decoded(std::string_view version, std::string_view codePage, std::string_view raw) {
    auto file = drawing(version, codePage, raw);
    return file ? file->text(10) : file.message();
}

// The bytes that a drawing of that version and code page holds for `text`.
std::string encoded(std::string_view version, std::string_view codePage, std::string_view text) {
    auto file = drawing(version, codePage, "x");
    StringSink sink;
    TagWriter(sink, WriteFormat::of(*file)).write(1, text);
    return sink.text().substr(4, sink.text().size() - 5);  // without "  1\n" and "\n"
}

struct CodePageCase {
    const char* codePage;
    const char* bytes;  // made with Python's codecs
    const char* utf8;
};

class CodePage : public testing::TestWithParam<CodePageCase> {};

TEST_P(CodePage, DecodesToUtf8AndEncodesBackToTheSameBytes) {
    const auto& [codePage, bytes, utf8] = GetParam();
    EXPECT_EQ(decoded("AC1015", codePage, bytes), utf8);
    EXPECT_EQ(encoded("AC1015", codePage, utf8), bytes);
    // From 2007 on texts are UTF-8, whatever $DWGCODEPAGE says.
    EXPECT_EQ(decoded("AC1021", codePage, utf8), utf8);
    EXPECT_EQ(encoded("AC1032", codePage, utf8), utf8);
}

INSTANTIATE_TEST_SUITE_P(
    PreR2007, CodePage,
    testing::Values(CodePageCase{"ANSI_1250", "\x8Elu\x9Dou\xE8k\xFD k\xF9\xF2", "Žluťoučký kůň"},
                    CodePageCase{"ANSI_1251", "\xCF\xF0\xE8\xE2\xE5\xF2, \xEC\xE8\xF0", "Привет, мир"},
                    CodePageCase{"ansi_1252", "Fa\xE7" "ade d\xE9j\xE0 vu \x80", "Façade déjà vu €"},
                    CodePageCase{"ANSI_932", "\x93\xFA\x96{\x8C\xEA\x82\xCC\x83" "e\x83L\x83X\x83g", "日本語のテキスト"},
                    CodePageCase{"ANSI_936", "\xD6\xD0\xCE\xC4\xCE\xC4\xB1\xBE", "中文文本"},
                    CodePageCase{"ANSI_949", "\xC7\xD1\xB1\xB9\xBE\xEE \xC5\xD8\xBD\xBA\xC6\xAE", "한국어 텍스트"},
                    CodePageCase{"ANSI_950", "\xC1" "c\xC5\xE9\xA4\xA4\xA4\xE5", "繁體中文"},
                    // Tone marks combine with the letter before them.
                    CodePageCase{"ANSI_1258", "Ti\xEA\xEC" "ng Vi\xEA\xF2t", "Tiếng Việt"},
                    // What DXF readers assume of an unknown or missing code page.
                    CodePageCase{"ANSI_99999", "d\xE9j\xE0", "déjà"}, CodePageCase{"", "d\xE9j\xE0", "déjà"}),
    [](const auto& info) { return info.index < 8 ? std::string(info.param.codePage) : "fallback" + std::to_string(info.index); });

TEST(TextCodec, ResolvesEscapesInEveryEncoding) {
    for (const char* version : {"AC1015", "AC1032"}) {
        EXPECT_EQ(decoded(version, "ANSI_1252", "\\U+03A9\\U+03a9 \\U+D83D\\U+DE00 \\M+182A0"), "ΩΩ 😀 あ") << version;
        // Half a surrogate pair is no character; what is no escape stays as written.
        EXPECT_EQ(decoded(version, "ANSI_1252", "\\U+D83D. \\U+12 \\u+0041 \\M+9ABCD C:\\Users"),
                  "\uFFFD. \\U+12 \\u+0041 \\M+9ABCD C:\\Users")
            << version;
    }
}

TEST(TextCodec, WritesWhatTheCodePageLacksAsEscapesThatReadBack) {
    std::string bytes = encoded("AC1015", "ANSI_1252", "Ω€中😀");
    EXPECT_EQ(bytes, "\\U+03A9\x80\\U+4E2D\\U+D83D\\U+DE00");
    EXPECT_EQ(decoded("AC1015", "ANSI_1252", bytes), "Ω€中😀");
}

TEST(TextCodec, BytesThatAreNoTextBecomeReplacementCharacters) {
    // A stray continuation byte, an overlong '/', an encoded surrogate, a cut-off sequence.
    EXPECT_EQ(decoded("AC1032", "", "a\x80" "b\xC0\xAF" "c\xED\xA0\x80" "d\xE4\xB8"),
              "a\uFFFDb\uFFFD\uFFFDc\uFFFD\uFFFD\uFFFDd\uFFFD\uFFFD");
    EXPECT_EQ(decoded("AC1015", "ANSI_1252", "a\x81z"), "a\uFFFDz");  // 0x81 is unassigned in 1252
}

}  // namespace
}  // namespace veltarn::dxf
