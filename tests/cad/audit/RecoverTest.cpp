// RECOVER's reading: drawings of the generator damaged the ways files get damaged (cut short, a
// section or EOF missing, an object broken), each with the findings it must give, and a recovered
// drawing that our strict loader and ezdxf's auditor accept once saved.
#include "cad/audit/Recover.h"

#include "ExternalTools.h"
#include "ScratchFiles.h"
#include "cad/dxf/NumberText.h"
#include "cad/dxf/TagFile.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace veltarn::audit {
namespace {

namespace fs = std::filesystem;

// A drawing's text as lines (line ends dropped), to damage and to find lines in.
struct Lines {
    std::vector<std::string> lines;

    explicit Lines(const std::string& text) {
        std::size_t pos = 0;
        while (pos < text.size()) {
            std::size_t end = text.find('\n', pos);
            if (end == std::string::npos) end = text.size();
            std::string line = text.substr(pos, end - pos);
            if (!line.empty() && line.back() == '\r') line.pop_back();
            lines.push_back(line);
            pos = end + 1;
        }
    }
    // The 1-based line of the value `value` after a group code 0, the n-th such (0-based) from `from`.
    std::size_t object(const std::string& value, int n = 0, std::size_t from = 1) const {
        for (std::size_t i = from; i < lines.size(); ++i) {
            if (lines[i] == value && i > 0 && dxf::trimSpaces(lines[i - 1]) == "0" && n-- == 0)
                return i;  // the code line, 1-based
        }
        ADD_FAILURE() << "no 0 " << value;
        return 0;
    }
    // The 1-based line of the "0" of the 0 SECTION that opens section `name`.
    std::size_t section(const std::string& name) const {
        for (std::size_t i = 3; i < lines.size(); ++i)
            if (lines[i] == name && dxf::trimSpaces(lines[i - 1]) == "2" && lines[i - 2] == "SECTION") return i - 2;
        ADD_FAILURE() << "no section " << name;
        return 0;
    }
    // The first line at or after `from` (1-based) whose group code is `code`; returns its 1-based line.
    std::size_t code(const std::string& code, std::size_t from) const {
        for (std::size_t i = from == 0 ? lines.size() : from - 1; i + 1 < lines.size(); i += 2)
            if (dxf::trimSpaces(lines[i]) == code) return i + 1;
        ADD_FAILURE() << "no code " << code;
        return 0;
    }
    std::string text(std::size_t firstLine = 1, std::size_t endLine = 0) const {
        if (endLine == 0) endLine = lines.size() + 1;
        std::string out;
        for (std::size_t i = firstLine - 1; i < endLine - 1; ++i)
            out += lines[i] + "\n";
        return out;
    }
};

const fs::path& drawing2018() {
    static const fs::path path = testtools::generated("recover-2018.dxf", "6 --seed 7 --layers 2");
    return path;
}

std::vector<std::string> codesOf(const std::vector<Finding>& findings) {
    std::vector<std::string> codes;
    for (const Finding& finding : findings)
        codes.push_back(finding.code);
    return codes;
}

std::size_t entitiesIn(const db::Database& db) { return db.entitiesOf(db.modelSpace()).size(); }

// What every recovered drawing must be: saved, it loads strictly and ezdxf's auditor finds nothing.
void expectSavesClean(const Recovery& recovery, const std::string& name) {
    // A folder of its own: ctest runs the tests side by side, and a scratch folder starts empty.
    const fs::path saved = testtools::scratchDir("recover-saved", name) / (name + ".dxf");
    auto written = recovery.drawing.save(saved);
    ASSERT_TRUE(written.ok()) << written.message();
    auto again = db::Database::load(saved);
    EXPECT_TRUE(again.ok()) << again.message();
    EXPECT_EQ(testtools::audit(saved), "") << name;
}

Recovery recovered(const std::string& bytes, const std::string& name) {
    auto recovery = recoverBytes(bytes, name);
    EXPECT_TRUE(recovery.ok()) << recovery.message();
    if (!recovery) return Recovery{db::Database::createNew(), {}, {}};
    return std::move(recovery).value();
}

TEST(Recover, TruncatedInsideATagDropsTheCutObjectAndClosesTheFile) {
    const Lines good(testtools::readBytes(drawing2018()));
    const std::size_t entities = good.section("ENTITIES");
    const std::size_t second = good.object("CIRCLE", 0, entities);
    const std::size_t x = good.code("10", second);
    // Cut in the middle of the value of the circle's 10, the second entity.
    std::string text = good.text(1, x + 1) + good.lines[x].substr(0, 3);
    auto intact = db::Database::parse(good.text(), "good.dxf");
    ASSERT_TRUE(intact.ok()) << intact.message();
    ASSERT_FALSE(db::Database::parse(text, "cut.dxf").ok());

    const Recovery recovery = recovered(text, "cut.dxf");
    EXPECT_EQ(codesOf(recovery.skipped), (std::vector<std::string>{"truncated", "section-not-closed", "missing-eof"}));
    ASSERT_EQ(recovery.skipped.size(), 3u);
    EXPECT_EQ(recovery.skipped[0].message,
              "cut.dxf:" + std::to_string(x) +
                  ": the file ends inside a tag (group code 10 with a value cut short, \"" +
                  good.lines[x].substr(0, 3) + "\"); CIRCLE at line " + std::to_string(second) + " dropped");
    EXPECT_EQ(recovery.skipped[1].message, "cut.dxf:" + std::to_string(x + 1) +
                                               ": the file ends inside section \"ENTITIES\" (opened at line " +
                                               std::to_string(entities) + "); closed");
    EXPECT_TRUE(
        std::all_of(recovery.skipped.begin(), recovery.skipped.end(), [](const Finding& f) { return f.fixed; }));
    // The entities before the cut are kept; the cut one is not.
    EXPECT_GE(entitiesIn(recovery.drawing), 1u);
    EXPECT_LT(entitiesIn(recovery.drawing), entitiesIn(intact.value()));
    expectSavesClean(recovery, "cut");
}

// Cut on a line boundary, the file ends in a table, a block or an entity that may lack tags its
// readers require: it is dropped, and the table or block is closed.
TEST(Recover, CutBetweenTagsInTablesAndBlocks) {
    const Lines good(testtools::readBytes(drawing2018()));
    for (const char* section : {"TABLES", "BLOCKS"}) {
        for (std::size_t lines : {60u, 200u, 400u}) {
            const std::string name = std::string(section) + "-" + std::to_string(lines);
            const Recovery recovery = recovered(good.text(1, good.section(section) + lines), name + ".dxf");
            std::vector<std::string> codes = codesOf(recovery.skipped);
            EXPECT_TRUE(std::find(codes.begin(), codes.end(), "truncated") != codes.end()) << name;
            EXPECT_EQ(codes.back(), "missing-eof") << name;
            expectSavesClean(recovery, name);
        }
    }
    // Cut before a block's ENDBLK: its last entity goes (it may be cut), the block is closed anew.
    const std::size_t solid = good.object("SOLID", 0, good.section("BLOCKS"));
    const std::size_t endblk = good.object("ENDBLK", 0, solid);
    const Recovery open = recovered(good.text(1, endblk), "endblk.dxf");
    EXPECT_EQ(codesOf(open.skipped),
              (std::vector<std::string>{"truncated", "block-not-closed", "section-not-closed", "missing-eof"}));
    EXPECT_EQ(open.skipped[0].message, "endblk.dxf:" + std::to_string(endblk) +
                                           ": the file ends inside SOLID, which may be incomplete; SOLID at line " +
                                           std::to_string(solid) + " dropped");
    expectSavesClean(open, "endblk");
}

// A polyline's vertices run up to a SEQEND: one the cut took is written anew.
TEST(Recover, CutPolylineGetsItsSeqend) {
    const fs::path r12 = testtools::generated("recover-r12.dxf", "6 --seed 3 --version R12");
    const Lines good(testtools::readBytes(r12));
    const std::size_t polyline = good.object("POLYLINE", 0, good.section("ENTITIES"));
    const std::size_t seqend = good.object("SEQEND", 0, polyline);
    const Recovery recovery = recovered(good.text(1, seqend), "polyline.dxf");
    EXPECT_EQ(codesOf(recovery.skipped),
              (std::vector<std::string>{"truncated", "sequence-not-closed", "section-not-closed", "missing-eof"}));
    ASSERT_EQ(recovery.skipped.size(), 4u);
    EXPECT_EQ(recovery.skipped[1].message, "polyline.dxf:" + std::to_string(seqend) + ": the POLYLINE at line " +
                                               std::to_string(polyline) + " has no SEQEND; added");
    expectSavesClean(recovery, "polyline");
}

// Wherever an R12 or 2018 file, ASCII or binary, is cut, what is recovered is a drawing both
// readers take.
TEST(Recover, CutAnywhereLeavesADrawingBothReadersTake) {
    for (const std::string form : {"--version R12", "--version R12 --binary", "--binary"}) {
        const std::string name = "recover-any" + std::to_string(form.size()) + ".dxf";
        const std::string bytes = testtools::readBytes(testtools::generated(name, "6 --seed 3 " + form));
        for (std::size_t tenths : {3u, 5u, 7u, 9u}) {
            const std::string cut = name + "-" + std::to_string(tenths);
            const Recovery recovery = recovered(bytes.substr(0, bytes.size() * tenths / 10), cut);
            ASSERT_FALSE(recovery.skipped.empty()) << cut;
            EXPECT_EQ(recovery.skipped.back().code, "missing-eof") << cut;
            expectSavesClean(recovery, cut);
        }
    }
}

TEST(Recover, SectionWithoutEndsecAndFileWithoutEof) {
    const Lines good(testtools::readBytes(drawing2018()));
    auto intact = db::Database::parse(good.text(), "good.dxf");
    ASSERT_TRUE(intact.ok()) << intact.message();
    const std::size_t objects = good.section("OBJECTS");
    ASSERT_EQ(good.lines[objects - 2], "ENDSEC");  // ENTITIES ends right before it

    const std::string noEndsec = good.text(1, objects - 2) + good.text(objects);
    Recovery open = recovered(noEndsec, "open.dxf");
    ASSERT_EQ(codesOf(open.skipped), std::vector<std::string>{"section-not-closed"});
    EXPECT_EQ(open.skipped[0].message,
              "open.dxf:" + std::to_string(objects - 2) + ": section \"ENTITIES\" (opened at line " +
                  std::to_string(good.section("ENTITIES")) + ") is not closed before 0 SECTION; closed");
    EXPECT_EQ(entitiesIn(open.drawing), entitiesIn(intact.value()));
    expectSavesClean(open, "open");

    const std::string noEof = good.text(1, good.lines.size() - 1);
    ASSERT_EQ(good.lines.back(), "EOF");
    Recovery ended = recovered(noEof, "ended.dxf");
    ASSERT_EQ(codesOf(ended.skipped), std::vector<std::string>{"missing-eof"});
    EXPECT_EQ(ended.skipped[0].message,
              "ended.dxf:" + std::to_string(good.lines.size() - 1) + ": the file ends without 0 EOF; added");
    EXPECT_EQ(entitiesIn(ended.drawing), entitiesIn(intact.value()));
    expectSavesClean(ended, "ended");
}

TEST(Recover, BrokenObjectsAreDroppedAndReadingGoesOn) {
    const Lines good(testtools::readBytes(drawing2018()));
    auto intact = db::Database::parse(good.text(), "good.dxf");
    ASSERT_TRUE(intact.ok()) << intact.message();
    const std::size_t entities = good.section("ENTITIES");
    const std::size_t line = good.object("LINE", 0, entities);

    // A number that is none.
    Lines number = good;
    const std::size_t x = number.code("10", line);
    number.lines[x] = "12,5";
    Recovery notNumber = recovered(number.text(), "number.dxf");
    // The line's object data (its extension dictionary, the records in it) goes with it.
    const std::string handle = good.lines[good.code("5", line)];
    ASSERT_EQ(codesOf(notNumber.skipped),
              (std::vector<std::string>{"bad-number", "owner-dropped", "owner-dropped", "owner-dropped"}));
    EXPECT_NE(notNumber.skipped[1].message.find(" belonged to " + handle + ", which was dropped; erased"),
              std::string::npos)
        << notNumber.skipped[1].message;
    EXPECT_EQ(notNumber.skipped[0].message, "number.dxf:" + std::to_string(x) +
                                                ": group code 10 holds \"12,5\", not a number; LINE at line " +
                                                std::to_string(line) + " dropped");
    EXPECT_EQ(entitiesIn(notNumber.drawing) + 1, entitiesIn(intact.value()));
    expectSavesClean(notNumber, "number");

    // A group code line that is none, as a bad edit leaves it: everything after it is read.
    Lines code = good;
    const std::size_t layer = code.code("8", line);
    code.lines[layer - 1] = "ABC";
    auto strict = db::Database::parse(code.text(), "code.dxf");
    ASSERT_FALSE(strict.ok());
    EXPECT_EQ(strict.message(), "code.dxf:" + std::to_string(layer) + ": expected a group code, found \"ABC\"");
    Recovery badCode = recovered(code.text(), "code.dxf");
    ASSERT_EQ(codesOf(badCode.skipped),
              (std::vector<std::string>{"bad-group-code", "owner-dropped", "owner-dropped", "owner-dropped"}));
    EXPECT_NE(badCode.skipped[0].message.find("code.dxf:" + std::to_string(layer) +
                                              ": expected a group code, found \"ABC\", reading resumed at line "),
              std::string::npos)
        << badCode.skipped[0].message;
    EXPECT_NE(badCode.skipped[0].message.find("; LINE at line " + std::to_string(line) + " dropped"),
              std::string::npos);
    EXPECT_EQ(entitiesIn(badCode.drawing) + 1, entitiesIn(intact.value()));
    expectSavesClean(badCode, "code");
}

TEST(Recover, BinaryFileCutShortStaysBinary) {
    const fs::path binary = testtools::generated("recover-2018-binary.dxf", "6 --seed 7 --layers 2 --binary");
    const std::string bytes = testtools::readBytes(binary);
    const std::string cut = bytes.substr(0, bytes.size() * 2 / 3);
    ASSERT_FALSE(db::Database::parse(cut, "cut.dxf").ok());

    const Recovery recovery = recovered(cut, "cut.dxf");
    ASSERT_FALSE(recovery.skipped.empty());
    EXPECT_EQ(recovery.skipped.front().code, "truncated");
    EXPECT_TRUE(recovery.skipped.front().message.starts_with("cut.dxf:@")) << recovery.skipped.front().message;
    EXPECT_EQ(recovery.skipped.back().code, "missing-eof");
    EXPECT_EQ(recovery.drawing.file().form(), dxf::FileForm::Binary);
    expectSavesClean(recovery, "binary-cut");
}

TEST(Recover, StrayTagsAndNothingReadable) {
    Recovery stray = recovered(
        "0\nLINE\n8\n0\n0\nSECTION\n2\nENTITIES\n0\nLINE\n8\n0\n10\n0\n20\n0\n30\n0\n11\n1\n21\n1\n31\n0\n0\nENDSEC\n0"
        "\nEOF\n",
        "r12.dxf");
    ASSERT_EQ(codesOf(stray.skipped), std::vector<std::string>{"stray-tags"});
    EXPECT_EQ(stray.skipped[0].message, "r12.dxf:1: 2 tags outside any section; dropped");
    EXPECT_EQ(entitiesIn(stray.drawing), 1u);

    for (const std::string& bytes : {std::string(), std::string("\x89PNG\r\n\x1A\n"), std::string("not a drawing\n")}) {
        auto none = recoverBytes(bytes, "none.dxf");
        ASSERT_FALSE(none.ok());
        EXPECT_TRUE(none.message().starts_with("none.dxf: ")) << none.message();
    }
}

}  // namespace
}  // namespace veltarn::audit
