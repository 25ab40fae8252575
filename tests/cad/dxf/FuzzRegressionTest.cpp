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

}  // namespace
}  // namespace veltarn::dxf
