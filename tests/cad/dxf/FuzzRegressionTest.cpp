// Inputs the fuzzer found that once broke a promise of the tag layer, kept with their bytes.
#include "BinaryDxf.h"

#include "cad/dxf/TagWriter.h"

#include <gtest/gtest.h>

namespace veltarn::dxf {
namespace {

using test::BinaryDxf;

// Rewrites every tag of `file` in `form` and reads the result back.
Result<TagFile> rewrittenAs(const TagFile& file, FileForm form) {
    StringSink sink;
    WriteFormat format = WriteFormat::of(file);
    format.form = form;
    format.oneByteGroupCodes.reset();
    TagWriter writer(sink, format);
    writer.begin();
    for (std::size_t i = 0; i < file.size(); ++i) writer.write(file.code(i), file.text(i));
    if (!writer.status()) return writer.status().error();
    return TagFile::parse(sink.take(), "rewritten.dxf");
}

TEST(FuzzRegression, GroupCodeMinus32768SurvivesAsciiDxf) {
    // Binary DXF stores group codes in 16 bits; ASCII DXF refused the lowest one.
    BinaryDxf dxf;
    dxf.text(0, "SECTION").text(2, "ENTITIES").text(-32768, "x").text(0, "ENDSEC").text(0, "EOF");
    auto file = TagFile::parse(dxf.bytes(), "fuzz.dxf");
    ASSERT_TRUE(file.ok()) << file.message();
    auto ascii = rewrittenAs(*file, FileForm::Ascii);
    ASSERT_TRUE(ascii.ok()) << ascii.message();
    EXPECT_EQ(ascii->code(2), -32768);
}

}  // namespace
}  // namespace veltarn::dxf
