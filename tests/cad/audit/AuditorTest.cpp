// The auditor on one broken drawing per fault: the finding it must give, the repair, and that a
// repaired drawing saves clean for ezdxf and for a second audit. Faults without a safe repair are
// reported and leave the drawing as it was.
#include "cad/audit/Auditor.h"

#include "ExternalTools.h"
#include "ScratchFiles.h"
#include "cad/db/Dictionary.h"
#include "cad/db/ExtensionDictionary.h"
#include "cad/db/SymbolTables.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace veltarn::audit {
namespace {

namespace fs = std::filesystem;
using db::Database;
using db::Handle;

fs::path fixture(const std::string& fault) {
    return fs::path(VELTARN_SOURCE_DIR) / "tests/cad/audit/data" / ("bad_" + fault + ".dxf");
}

Database loadOrFail(const fs::path& file) {
    auto loaded = Database::load(file);
    EXPECT_TRUE(loaded.ok()) << loaded.message();
    return loaded ? std::move(*loaded) : Database::createNew();
}

std::string listing(const std::vector<Finding>& findings) {
    std::string out;
    for (const Finding& f : findings)
        out += f.code + (f.fixed ? " (fixed): " : ": ") + f.message + "\n";
    return out;
}

const Finding* findCode(const std::vector<Finding>& findings, const std::string& code) {
    auto it = std::find_if(findings.begin(), findings.end(), [&](const Finding& f) { return f.code == code; });
    return it == findings.end() ? nullptr : &*it;
}

std::string withoutSeed(std::string text) {
    const std::size_t at = text.find("$HANDSEED");
    if (at == std::string::npos) return text;
    const std::size_t value = text.find('\n', text.find('\n', at) + 1);  // past the variable and the code lines
    return text.erase(value + 1, text.find('\n', value + 1) - value);
}

struct Fault {
    std::string name;  // bad_<name>.dxf
    std::string code;  // the finding it must give
    bool repairable;
};

void PrintTo(const Fault& fault, std::ostream* out) { *out << fault.name; }

class EachFault : public testing::TestWithParam<Fault> {};

TEST_P(EachFault, IsFoundThenRepairedOrKept) {
    const Fault& fault = GetParam();
    Database drawing = loadOrFail(fixture(fault.name));
    const std::string before = drawing.toText().value();

    const std::vector<Finding> found = auditDrawing(drawing);
    const Finding* finding = findCode(found, fault.code);
    ASSERT_NE(finding, nullptr) << listing(found);
    EXPECT_FALSE(finding->message.empty());
    // Checking alone changes nothing; only what reading or saving repairs counts as fixed then.
    EXPECT_TRUE(drawing.toText().value() == before) << "the drawing changed";
    const bool repairedByReading = fault.code == "duplicate-handle" || fault.code == "handseed-too-low";
    EXPECT_EQ(finding->fixed, repairedByReading) << listing(found);

    drawing.beginCommand("AUDIT");
    const std::vector<Finding> fixing = auditAndFix(drawing);
    drawing.endCommand();
    ASSERT_NE(findCode(fixing, fault.code), nullptr) << listing(fixing);
    const fs::path saved = testtools::scratchDir("audit", fault.name) / "fixed.dxf";
    ASSERT_TRUE(drawing.save(saved).ok());
    const std::vector<Finding> after = auditDrawing(loadOrFail(saved));

    if (fault.repairable) {
        for (const Finding& f : fixing)
            EXPECT_TRUE(f.fixed) << f.code << ": " << f.message;
        EXPECT_TRUE(after.empty()) << listing(after);
        EXPECT_EQ(testtools::audit(saved), "");
        // The repairs were one step of the command: undone, the drawing is what was read (but
        // for $HANDSEED: handles a repair took are not handed out again).
        if (!repairedByReading) {
            ASSERT_TRUE(drawing.undo());
            EXPECT_TRUE(withoutSeed(drawing.toText().value()) == withoutSeed(before)) << "undo left a change";
        }
    } else {
        // Nothing is deleted to make a finding go away.
        EXPECT_TRUE(drawing.toText().value() == before) << "the drawing changed";
        EXPECT_NE(findCode(after, fault.code), nullptr) << listing(after);
        for (const Finding& f : fixing) {
            if (f.code == fault.code) {
                EXPECT_FALSE(f.fixed) << f.message;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Audit, EachFault,
    testing::Values(Fault{"duplicate_handle", "duplicate-handle", true}, Fault{"missing_owner", "missing-owner", true},
                    Fault{"entity_owner_not_block", "entity-owner-not-block", true},
                    Fault{"missing_xdictionary", "missing-xdictionary", true},
                    Fault{"xdictionary_owner", "xdictionary-owner", true},
                    Fault{"missing_layer", "missing-layer", true}, Fault{"handseed_too_low", "handseed-too-low", true},
                    Fault{"missing_dictionary_entry", "missing-dictionary-entry", true},
                    Fault{"missing_sortents_entity", "missing-sortents-entity", true},
                    Fault{"missing_class", "missing-class", true}, Fault{"recursive_block", "recursive-block", false},
                    Fault{"dictionary_cycle", "dictionary-cycle", false},
                    Fault{"od_table_definition", "od-table-definition", false},
                    Fault{"od_record_length", "od-record-length", false},
                    Fault{"od_value_type", "od-value-type", false}),
    [](const testing::TestParamInfo<Fault>& info) { return info.param.name; });

// The repairs themselves, on the objects they are about.
TEST(AuditRepairs, PutTheDrawingBackTogether) {
    {
        Database drawing = loadOrFail(fixture("missing_layer"));
        const std::vector<Finding> findings = auditAndFix(drawing);
        const Finding* finding = findCode(findings, "missing-layer");
        ASSERT_NE(finding, nullptr);
        EXPECT_NE(drawing.findRecord("LAYER", "GHOST"), db::kNoHandle);
        EXPECT_EQ(drawing.typeName(finding->handle), "LINE");
    }
    {
        Database drawing = loadOrFail(fixture("xdictionary_owner"));
        const std::vector<Finding> findings = auditAndFix(drawing);
        const Finding* finding = findCode(findings, "xdictionary-owner");
        ASSERT_NE(finding, nullptr);
        // The dictionary is the LINE's again, and keeps its entries.
        const Handle line = drawing.ownerOf(finding->handle);
        EXPECT_EQ(drawing.typeName(line), "LINE");
        EXPECT_EQ(db::extensionDictionary(drawing, line), finding->handle);
        EXPECT_FALSE(db::dictionaryEntries(drawing, finding->handle).empty());
    }
    {
        Database drawing = loadOrFail(fixture("entity_owner_not_block"));
        const std::vector<Finding> findings = auditAndFix(drawing);
        const Finding* finding = findCode(findings, "entity-owner-not-block");
        ASSERT_NE(finding, nullptr);
        EXPECT_EQ(drawing.ownerOf(finding->handle), drawing.blockOf(finding->handle));
        EXPECT_EQ(drawing.typeName(drawing.ownerOf(finding->handle)), "BLOCK_RECORD");
    }
    {
        Database drawing = loadOrFail(fixture("missing_class"));
        EXPECT_FALSE(drawing.hasClass("SORTENTSTABLE"));
        (void)auditAndFix(drawing);  // the finding is checked above; here its effect
        EXPECT_TRUE(drawing.hasClass("SORTENTSTABLE"));
    }
}

// Two entities pointing at one extension dictionary: re-owning it to one would take it from the
// other, so it is reported and left with the owner it has.
TEST(AuditRepairs, LeaveASharedExtensionDictionaryWithItsOwner) {
    Database made = Database::createNew();
    const Handle first = made.appendEntity(made.modelSpace(), db::TagList{{0, "LINE"}, {8, "0"}}).value();
    const Handle second = made.appendEntity(made.modelSpace(), db::TagList{{0, "LINE"}, {8, "0"}}).value();
    const Handle dictionary = db::createExtensionDictionary(made, first).value();
    {
        db::ObjectWriter writer = made.openForWrite(second);
        writer.tags().insert(2, 102, "{ACAD_XDICTIONARY");
        writer.tags().insert(3, 360, db::formatHandle(dictionary));
        writer.tags().insert(4, 102, "}");
    }
    for (int run = 0; run < 2; ++run) {  // a second AUDIT finds the same: nothing moved
        const std::vector<Finding> findings = auditAndFix(made);
        ASSERT_EQ(findings.size(), 1u) << listing(findings);
        EXPECT_EQ(findings[0].code, "xdictionary-owner");
        EXPECT_FALSE(findings[0].fixed);
        EXPECT_EQ(made.ownerOf(dictionary), first);
    }
}

// A sound drawing of every kind gives nothing to report, in the versions that differ most.
TEST(AuditSoundDrawings, GiveNoFindings) {
    for (const auto& [name, arguments] : std::vector<std::pair<std::string, std::string>>{
             {"audit-all-2018.dxf", "60 --kinds all"},
             {"audit-sortents-2000.dxf", "60 --kinds all --version R2000 --sortents 10 --tables 3"},
             {"audit-r12.dxf", "60 --kinds all --version R12"}}) {
        const fs::path file = testtools::generated(name, arguments);
        ASSERT_FALSE(file.empty());
        Database drawing = loadOrFail(file);
        EXPECT_EQ(listing(auditDrawing(drawing)), "") << name;
        const std::string before = drawing.toText().value();
        EXPECT_TRUE(auditAndFix(drawing).empty()) << name;
        EXPECT_TRUE(drawing.toText().value() == before) << name << ": the drawing changed";
    }
    // A new drawing, and one given object data and draw order by the database itself.
    Database made = Database::createNew();
    const Handle line = made.appendEntity(made.modelSpace(), db::TagList{{0, "LINE"}, {8, "0"}}).value();
    ASSERT_TRUE(db::addXrecord(made, db::createExtensionDictionary(made, line).value(), "ROADS", {}).ok());
    EXPECT_EQ(listing(auditDrawing(made)), "");
}

TEST(AuditSummary, CountsFindingsAndFixes) {
    EXPECT_EQ(summary({}), "0 errors found, 0 fixed");
    EXPECT_EQ(summary({{"a", "x", 1, true}, {"b", "y", 2, false}, {"c", "z", 3, true}}), "3 errors found, 2 fixed");
}

}  // namespace
}  // namespace veltarn::audit
