// Fuzz target for loading a drawing into the database, which indexes the tags while the file is
// read. Besides crashes and hangs it checks that a drawing is refused exactly when the tag layer
// refuses it, with its message, and that one loaded is written back as the tag layer writes it
// unchanged (unless its $HANDSEED is raised above the handles it holds, or objects that shared a
// handle were given new ones), and reads again; the auditor checks and repairs what loaded, and
// the repaired drawing reads again.
#include "cad/audit/Auditor.h"
#include "cad/db/Database.h"
#include "cad/dxf/TagWriter.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

using namespace veltarn;

namespace {

void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string input(reinterpret_cast<const char*>(data), size);
    auto file = dxf::TagFile::parse(input, "fuzz.dxf");
    auto db = db::Database::parse(input, "fuzz.dxf");
    require(db.ok() == file.ok(), "the database and the tag layer disagree on whether a drawing reads");
    if (!file) {
        require(db.message() == file.message(), "the database refuses a drawing with another message");
        return 0;
    }
    auto text = db->toText();
    require(text.ok(), "a loaded drawing cannot be written");
    // Objects that shared a handle get new ones when read, by design: such a drawing changes.
    if (input.find("$HANDSEED") == std::string::npos && db->duplicateHandles().empty()) {
        dxf::StringSink unchanged;
        dxf::TagWriter writer(unchanged, dxf::WriteFormat::of(*file));
        dxf::writeUnchanged(*file, writer);
        require(*text == unchanged.text(), "a loaded drawing is not written back as it was read");
    }
    require(db::Database::parse(*text, "again.dxf").ok(), "a written drawing does not read again");

    // The auditor runs on whatever loads: checking never changes the drawing, and what fixing
    // leaves is written and read again.
    (void)audit::auditDrawing(*db);
    require(db->toText().value() == *text, "checking a drawing changed it");
    db->beginCommand("AUDIT");
    (void)audit::auditAndFix(*db);
    db->endCommand();
    auto fixed = db->toText();
    require(fixed.ok(), "an audited drawing cannot be written");
    require(db::Database::parse(*fixed, "fixed.dxf").ok(), "an audited drawing does not read again");
    return 0;
}
