// Round trips of real drawings that no one here wrote: LibreCAD's parts library and drawings that
// ezdxf generates in every version and form. Written unchanged, a drawing must come back byte for
// byte; rewritten tag by tag through decoding and encoding, ezdxf must read the same tags and its
// auditor must find nothing new.
#include "TempFolder.h"
#include "TestFiles.h"

#include "cad/dxf/TagWriter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>

namespace veltarn::dxf {
namespace {

namespace fs = std::filesystem;
using test::TempFolder;

const std::string kPython = "/usr/bin/python3";  // Debian's, which sees Debian's ezdxf
const fs::path kTools = fs::path(VELTARN_SOURCE_DIR) / ".." / "shared" / "tools";
const fs::path kTagChecker = fs::path(VELTARN_SOURCE_DIR) / "tests" / "cad" / "dxf" / "dxf_tags.py";

// Why the ezdxf checks cannot run here, or empty when they can.
std::string missingTools() {
    if (!fs::exists(kPython)) return kPython + " is missing";
    if (test::runCommand(kPython + " -c 'import ezdxf' 2>/dev/null").exitCode != 0)
        return "ezdxf is missing for " + kPython + " (Debian package python3-ezdxf)";
    if (!fs::exists(kTools / "gen_dxf.py") || !fs::exists(kTools / "audit_dxf.py"))
        return "the drawing tools are missing in " + kTools.string();
    return {};
}

std::string rewriteTagByTag(const TagFile& file) {
    StringSink sink;
    TagWriter writer(sink, WriteFormat::of(file));
    writer.begin();
    for (std::size_t i = 0; i < file.size(); ++i) writer.write(file.code(i), file.text(i));
    EXPECT_TRUE(writer.status().ok()) << file.name() << ": " << writer.status().message();
    return sink.take();
}

// Loads each drawing, checks that the unchanged write is the input byte for byte, and writes the
// tag-by-tag rewrite into `folder`. Returns the lines "original<TAB>rewritten" for the checker.
std::string roundTrip(const std::vector<fs::path>& drawings, const fs::path& folder) {
    std::string pairs;
    int serial = 0;
    for (const fs::path& drawing : drawings) {
        auto file = TagFile::load(drawing);
        if (!file) {
            ADD_FAILURE() << file.message();
            continue;
        }
        StringSink unchanged;
        TagWriter writer(unchanged, WriteFormat::of(*file));
        writeUnchanged(*file, writer);
        EXPECT_TRUE(unchanged.text() == file->bytes()) << drawing << " changed in an unchanged write";

        fs::path rewritten = folder / (std::to_string(serial++) + "-" + drawing.filename().string());
        test::writeBytes(rewritten, rewriteTagByTag(*file));
        pairs += drawing.string() + "\t" + rewritten.string() + "\n";
    }
    return pairs;
}

// Runs the ezdxf checker over the pairs; `inherit` lets a rewrite keep its original's findings.
void expectEzdxfAgrees(const std::string& pairs, const TempFolder& folder, bool inherit) {
    fs::path list = folder / "pairs.txt";
    test::writeBytes(list, pairs);
    auto run = test::runCommand(kPython + " " + test::quoteForShell(kTagChecker.string()) + " check " +
                                test::quoteForShell(list.string()) + " " +
                                test::quoteForShell((kTools / "audit_dxf.py").string()) + (inherit ? " --inherit" : "") +
                                " 2>&1");
    EXPECT_EQ(run.exitCode, 0) << run.output;
    std::cout << "  " << run.output;
}

TEST(RoundTrip, LibreCadPartsLibrary) {
    const fs::path library = "/usr/share/librecad";
    std::vector<fs::path> drawings;
    if (fs::is_directory(library))
        for (const auto& entry : fs::recursive_directory_iterator(library)) {
            std::string extension = entry.path().extension().string();
            std::transform(extension.begin(), extension.end(), extension.begin(), ::tolower);
            if (entry.is_regular_file() && extension == ".dxf") drawings.push_back(entry.path());
        }
    if (drawings.empty()) GTEST_SKIP() << "no drawings in " << library << " (Debian package librecad)";
    std::sort(drawings.begin(), drawings.end());

    TempFolder folder;
    std::string pairs = roundTrip(drawings, folder.path());
    if (std::string missing = missingTools(); !missing.empty()) GTEST_SKIP() << "byte-for-byte checks done; " << missing;
    // Some of the library's drawings have faults of their own (owner handles, unknown styles):
    // what matters is that a rewrite adds none.
    expectEzdxfAgrees(pairs, folder, true);
}

struct Generated {
    const char* version;
    bool binary;
};

class GeneratedDrawing : public testing::TestWithParam<Generated> {};

TEST_P(GeneratedDrawing, RoundTripsAndAuditsClean) {
    if (std::string missing = missingTools(); !missing.empty()) GTEST_SKIP() << missing;
    const Generated& kind = GetParam();
    TempFolder folder;
    fs::path drawing = folder / (std::string(kind.version) + (kind.binary ? "-binary" : "") + ".dxf");
    // Every entity kind of the version, object data in extension dictionaries and xrecords, and a
    // draw order table.
    auto made = test::runCommand(kPython + " " + test::quoteForShell((kTools / "gen_dxf.py").string()) + " 60 " +
                                 test::quoteForShell(drawing.string()) + " --kinds all --sortents 10 --version " +
                                 kind.version + (kind.binary ? " --binary" : "") + " 2>&1");
    ASSERT_EQ(made.exitCode, 0) << made.output;

    auto file = TagFile::load(drawing);
    ASSERT_TRUE(file.ok()) << file.message();
    EXPECT_EQ(file->form(), kind.binary ? FileForm::Binary : FileForm::Ascii);
    EXPECT_EQ(file->codec().isUtf8(), std::string(kind.version) >= "R2007");

    fs::path rewritten = folder / "rewritten";
    fs::create_directory(rewritten);
    expectEzdxfAgrees(roundTrip({drawing}, rewritten), folder, false);
}

INSTANTIATE_TEST_SUITE_P(EveryVersionAndForm, GeneratedDrawing,
                         testing::Values(Generated{"R12", false}, Generated{"R12", true}, Generated{"R2000", false},
                                         Generated{"R2000", true}, Generated{"R2004", false}, Generated{"R2004", true},
                                         Generated{"R2007", false}, Generated{"R2007", true}, Generated{"R2010", false},
                                         Generated{"R2010", true}, Generated{"R2013", false}, Generated{"R2013", true},
                                         Generated{"R2018", false}, Generated{"R2018", true}),
                         [](const testing::TestParamInfo<Generated>& info) {
                             return std::string(info.param.version) + (info.param.binary ? "_binary" : "_ascii");
                         });

}  // namespace
}  // namespace veltarn::dxf
