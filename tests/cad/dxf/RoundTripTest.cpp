// Round trips of drawings no one here wrote: LibreCAD's parts library, and drawings of every entity
// kind that ezdxf makes in every version and form. Written unchanged, a drawing must come back byte
// for byte; rewritten tag by tag through decoding and encoding, ezdxf must read the same tags in
// it and its auditor must find nothing new.
#include "ExternalTools.h"
#include "TestFiles.h"

#include "cad/dxf/TagWriter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>

namespace veltarn::dxf {
namespace {

namespace fs = std::filesystem;
using test::quoted;

const std::string kPython = "/usr/bin/python3";  // Debian's, which sees Debian's ezdxf
const fs::path kTools = testtools::toolsDir();

// Checks that each drawing's unchanged write is the drawing itself, and writes its tag-by-tag
// rewrite into `folder`. Returns the lines "original<TAB>rewrite" for dxf_tags.py.
std::string roundTrip(const std::vector<fs::path>& drawings, const fs::path& folder) {
    std::string pairs;
    for (std::size_t n = 0; n < drawings.size(); ++n) {
        auto file = TagFile::load(drawings[n]);
        if (!file) {
            ADD_FAILURE() << file.message();
            continue;
        }
        StringSink same, rewritten;
        TagWriter unchanged(same, WriteFormat::of(*file)), writer(rewritten, WriteFormat::of(*file));
        writeUnchanged(*file, unchanged);
        EXPECT_TRUE(same.text() == file->bytes()) << drawings[n] << " changed in an unchanged write";
        writer.begin();
        for (std::size_t i = 0; i < file->size(); ++i) writer.write(file->code(i), file->text(i));
        EXPECT_TRUE(writer.status().ok()) << drawings[n] << ": " << writer.status().message();
        fs::path copy = folder / (std::to_string(n) + "-" + drawings[n].filename().string());
        test::writeBytes(copy, rewritten.text());
        pairs += drawings[n].string() + "\t" + copy.string() + "\n";
    }
    return pairs;
}

void expectEzdxfAgrees(const std::string& pairs, const test::TempFolder& folder, bool inherit) {
    test::writeBytes(folder / "pairs.txt", pairs);
    auto run = test::runCommand(kPython + " " + quoted(VELTARN_SOURCE_DIR "/tests/cad/dxf/dxf_tags.py") + " " +
                                quoted((folder / "pairs.txt").string()) + " " + quoted((kTools / "audit_dxf.py").string()) +
                                (inherit ? " --inherit" : "") + " 2>&1");
    EXPECT_EQ(run.exitCode, 0) << run.output;
    std::cout << "  " << run.output;
}

TEST(RoundTrip, LibreCadPartsLibrary) {
    std::vector<fs::path> drawings;
    if (fs::is_directory("/usr/share/librecad"))
        for (const auto& entry : fs::recursive_directory_iterator("/usr/share/librecad")) {
            std::string name = entry.path().filename().string();
            std::transform(name.begin(), name.end(), name.begin(), ::tolower);
            if (entry.is_regular_file() && name.ends_with(".dxf")) drawings.push_back(entry.path());
        }
    ASSERT_FALSE(drawings.empty()) << "no drawings in /usr/share/librecad (Debian package librecad)";
    std::sort(drawings.begin(), drawings.end());
    test::TempFolder folder;
    std::string pairs = roundTrip(drawings, folder.path());
    ASSERT_EQ(testtools::missingEzdxf(), "");
    // Some of the library's drawings have faults of their own (owner handles, unknown styles).
    expectEzdxfAgrees(pairs, folder, true);
}

class GeneratedDrawing : public testing::TestWithParam<std::tuple<const char*, bool>> {};

TEST_P(GeneratedDrawing, RoundTripsAndAuditsClean) {
    ASSERT_EQ(testtools::missingEzdxf(), "");
    const auto& [version, binary] = GetParam();
    test::TempFolder folder;
    fs::path drawing = folder / "drawing.dxf", rewritten = folder / "rewritten";
    // Every entity kind of the version, object data in extension dictionaries and xrecords, a draw order table.
    auto made = test::runCommand(kPython + " " + quoted((kTools / "gen_dxf.py").string()) + " 60 " + quoted(drawing.string()) +
                                 " --kinds all --sortents 10 --version " + version + (binary ? " --binary" : "") + " 2>&1");
    ASSERT_EQ(made.exitCode, 0) << made.output;
    fs::create_directory(rewritten);
    expectEzdxfAgrees(roundTrip({drawing}, rewritten), folder, false);
}

INSTANTIATE_TEST_SUITE_P(EveryVersionAndForm, GeneratedDrawing,
                         testing::Combine(testing::Values("R12", "R2000", "R2004", "R2007", "R2010", "R2013", "R2018"),
                                          testing::Bool()),
                         [](const auto& info) {
                             return std::string(std::get<0>(info.param)) + (std::get<1>(info.param) ? "_binary" : "_ascii");
                         });

}  // namespace
}  // namespace veltarn::dxf
