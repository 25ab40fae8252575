// The database re-reads objects from their bytes: the stream must find exactly the tags the file's
// scanner found, and a drawing must still be written as the tag layer writes it unchanged.
#include "TestSupport.h"

#include "../dxf/BinaryDxf.h"
#include "cad/dxf/TagStream.h"
#include "cad/dxf/TagWriter.h"

#include <gtest/gtest.h>

namespace veltarn::db {
namespace {

std::string unchanged(const dxf::TagFile& file) {
    dxf::StringSink sink;
    dxf::TagWriter writer(sink, dxf::WriteFormat::of(file));
    dxf::writeUnchanged(file, writer);
    return sink.take();
}

// Streams the whole file and compares tag by tag with the scanner's vector, then checks that the
// database over the same bytes writes what the tag layer writes.
void expectSameAsScanner(const std::string& bytes, const std::string& name) {
    auto file = dxf::TagFile::parse(bytes, name);
    ASSERT_TRUE(file.ok()) << file.message();
    std::size_t i = 0;
    for (dxf::TagStream stream(*file, 0, file->bytes().size()); stream.next(); ++i) {
        ASSERT_LT(i, file->size()) << name << ": the stream found more tags than the scanner";
        ASSERT_EQ(stream.code(), file->code(i)) << name << ": tag " << i;
        ASSERT_EQ(stream.raw(), file->raw(i)) << name << ": tag " << i;
        ASSERT_EQ(stream.text(), file->text(i)) << name << ": tag " << i;
        ASSERT_EQ(stream.position(), static_cast<std::size_t>(file->span(i, i + 1).data() - file->bytes().data()) + file->span(i, i + 1).size())
            << name << ": tag " << i;
    }
    EXPECT_EQ(i, file->size()) << name;

    Database db = test::parseOrFail(bytes);
    auto text = db.toText();
    ASSERT_TRUE(text.ok()) << text.message();
    EXPECT_EQ(*text, unchanged(*file)) << name;
}

TEST(TagStream, FindsTheScannersTagsInEveryForm) {
    // Byte-order mark, CR-LF, spaces around codes, a value longer than a tag's 16-bit length, a
    // negative code, blank lines and no EOF at the end.
    std::string longText(70000, 'x');
    expectSameAsScanner("\xEF\xBB\xBF  0\r\nSECTION\r\n  2\r\nENTITIES\r\n 0 \r\nTEXT\r\n  5\r\n2A\r\n  1\r\n" + longText +
                            "\r\n-3\r\nvalue\r\n1071\r\n  12\r\n  0\r\nENDSEC\r\n\r\n\r\n",
                        "quirks.dxf");

    auto binary = [](bool oneByteCodes) {
        dxf::test::BinaryDxf dxf(oneByteCodes);
        dxf.text(0, "SECTION").text(2, "ENTITIES").text(0, "LINE").text(5, "1F").text(8, "").real(10, 1.5).int16(70, -3)
            .int32(90, 123456).groupCode(160).number(std::int64_t{1} << 40).groupCode(290).append(std::string(1, '\1'))
            .chunk(310, std::string("\0\x01\xFF", 3)).text(1000, "x").int32(1071, 7).text(0, "ENDSEC").text(0, "EOF");
        return dxf.bytes();
    };
    expectSameAsScanner(binary(false), "two-byte-codes.dxf");
    expectSameAsScanner(binary(true), "one-byte-codes.dxf");

    for (auto [name, arguments] : {std::pair{"all-r12.dxf", "40 --kinds all --version R12"},
                                   std::pair{"all-2000-bin.dxf", "40 --kinds all --version R2000 --binary"},
                                   std::pair{"all-2018.dxf", "60 --kinds all"}}) {
        auto path = test::generated(name, arguments);
        auto file = dxf::TagFile::load(path);
        ASSERT_TRUE(file.ok()) << file.message();
        expectSameAsScanner(std::string(file->bytes()), name);
    }
}

}  // namespace
}  // namespace veltarn::db
