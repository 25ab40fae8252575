// A save keeps the order of what is written, whatever the sizes of the pieces: a piece too large
// for the save's buffer must not overtake the smaller ones buffered before it.
#include "TestFiles.h"

#include "cad/dxf/OutputSink.h"
#include "cad/dxf/TagWriter.h"

#include <gtest/gtest.h>

#include <vector>

namespace veltarn::dxf {
namespace {

namespace fs = std::filesystem;

// Sizes on both sides of every limit the save's buffer has.
std::vector<std::size_t> sizesAroundTheBuffer() {
    std::vector<std::size_t> sizes;
    for (std::size_t limit : {kSaveBufferSize / 2, kSaveBufferSize})
        for (std::size_t size : {limit - 1, limit, limit + 1}) sizes.push_back(size);
    return sizes;
}

TEST(LargeValueSave, PiecesOfEverySizeKeepTheirOrder) {
    test::TempFolder folder;
    fs::path target = folder / "plan.dxf";
    for (std::size_t large : sizesAroundTheBuffer()) {
        // Small pieces before and after, and buffers that are nearly full when the large one comes.
        for (std::size_t before : {std::size_t{10}, kSaveBufferSize / 2 - 10, kSaveBufferSize - 10}) {
            const std::vector<std::string> pieces = {std::string(before, 'a'), std::string(large, 'b'), std::string(7, 'c'),
                                                     std::string(large, 'd'), std::string(3, 'e')};
            std::string expected;
            for (const auto& piece : pieces) expected += piece;
            auto saved = saveAtomically(target, [&](OutputSink& sink) -> Result<void> {
                for (const auto& piece : pieces) sink.write(piece);
                return {};
            });
            ASSERT_TRUE(saved.ok()) << saved.message();
            EXPECT_TRUE(test::readBytes(target) == expected) << "a piece of " << large << " bytes after " << before;
        }
    }
}

// A long text is one piece in either form; the file must read back as written.
TEST(LargeValueSave, LongTextsReadBackInBothForms) {
    test::TempFolder folder;
    fs::path target = folder / "long.dxf";
    for (FileForm form : {FileForm::Ascii, FileForm::Binary}) {
        for (std::size_t length : sizesAroundTheBuffer()) {
            const std::string value(length, 'x');
            WriteFormat format;
            format.form = form;
            auto saved = saveAtomically(target, [&](OutputSink& sink) -> Result<void> {
                TagWriter writer(sink, format);
                writer.begin();
                writer.write(0, "SECTION");
                writer.write(2, "OBJECTS");
                writer.write(0, "XRECORD");
                writer.write(1, value);
                writer.write(1, "after");
                writer.write(0, "ENDSEC");
                writer.write(0, "EOF");
                return writer.status();
            });
            ASSERT_TRUE(saved.ok()) << saved.message();
            auto file = TagFile::load(target);
            ASSERT_TRUE(file.ok()) << file.message();
            ASSERT_EQ(file->size(), 7u);
            EXPECT_EQ(file->text(1), "OBJECTS");
            EXPECT_TRUE(file->text(3) == value) << length << " characters";
            EXPECT_EQ(file->text(4), "after");
        }
    }
}

}  // namespace
}  // namespace veltarn::dxf
