// What we write must open in another CAD program: LibreCAD renders our drawings to PDF headless.
// LibreCAD hangs on a file it cannot read (it waits on a dialog), so a time-out is a failure.
#include "TestSupport.h"
#include "ExternalTools.h"

#include "cad/db/EntityFactory.h"
#include "cad/db/ExtensionDictionary.h"
#include "cad/db/Xrecord.h"
#include "cad/db/kinds/Multileader.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace veltarn::db {
namespace {

namespace fs = std::filesystem;

constexpr const char* kLibreCad = "/usr/bin/librecad";

// Renders `drawing` to `pdf`; true when LibreCAD finished in time and wrote a page.
bool rendersInLibreCad(const fs::path& drawing, const fs::path& pdf) {
    fs::path runtime = drawing.parent_path() / "runtime";
    fs::create_directories(runtime);
    fs::permissions(runtime, fs::perms::owner_all, fs::perm_options::replace);
    std::string command = "QT_QPA_PLATFORM=offscreen XDG_RUNTIME_DIR='" + runtime.string() + "' timeout 120 " + kLibreCad +
                          " dxf2pdf -a -o '" + pdf.string() + "' '" + drawing.string() + "' > '" +
                          (drawing.parent_path() / "librecad.log").string() + "' 2>&1";
    return std::system(command.c_str()) == 0 && fs::exists(pdf) && fs::file_size(pdf) > 0;
}

ResultBuffer recordOf(int serial) {
    return {TypedValue::ofText(1, "pipe-" + std::to_string(serial)), TypedValue::ofReal(40, 0.3 * serial),
            TypedValue::ofInteger(90, serial)};
}

TEST(LibreCad, OpensANewDrawingWithEntitiesAndObjectData) {
    ASSERT_TRUE(fs::exists(kLibreCad)) << "LibreCAD is not installed (Debian package librecad)";
    auto dir = test::scratchDir("librecad-new");

    Database empty = Database::createNew();
    ASSERT_TRUE(empty.save(dir / "empty.dxf").ok());
    ASSERT_TRUE(rendersInLibreCad(dir / "empty.dxf", dir / "empty.pdf")) << "LibreCAD could not open a new drawing";

    Database db = Database::createNew();
    const Handle model = db.modelSpace();
    std::vector<TagList> entities = {
        newLine(db, {0, 0, 0}, {100, 50, 0}),
        newCircle(db, {50, 50, 0}, 20),
        newArc(db, {20, 80, 0}, 10, 0, 270),
        newLwpolyline(db, {{{0, 0, 0}, 0.5}, {{40, 0, 0}}, {{40, 30, 0}}}, true),
        newText(db, {10, 10, 0}, 2.5, "Grüße"),
        newMtext(db, {60, 10, 0}, 2.5, "two\\Plines"),
        newHatch(db, "SOLID", {{{70, 70, 0}}, {{90, 70, 0}}, {{90, 90, 0}}}),
        newMline(db, {{0, 60, 0}, {30, 60, 0}, {30, 90, 0}}, false),
        newMultileader(db, {110, 60, 0}, 2.5, "note", {{100, 40, 0}}).value(),
    };
    int serial = 0;
    for (TagList& entity : entities) {
        auto added = appendEntityWithXrecord(db, model, std::move(entity), "PIPES", recordOf(++serial));
        ASSERT_TRUE(added.ok()) << added.message();
    }
    ASSERT_TRUE(db.save(dir / "drawn.dxf").ok());
    EXPECT_EQ(test::audit(dir / "drawn.dxf"), "");
    ASSERT_TRUE(rendersInLibreCad(dir / "drawn.dxf", dir / "drawn.pdf")) << "LibreCAD could not open our drawing";
    // The entities reached the page: it holds more than the empty drawing's.
    EXPECT_GT(fs::file_size(dir / "drawn.pdf"), fs::file_size(dir / "empty.pdf"));
    fs::remove(dir / "drawn.pdf");  // the solid fill makes it large
}

TEST(LibreCad, OpensAnR12DrawingConvertedForObjectData) {
    ASSERT_TRUE(fs::exists(kLibreCad)) << "LibreCAD is not installed (Debian package librecad)";
    auto source = test::generated("all-r12.dxf", "40 --kinds all --version R12");
    Database db = test::loadOrFail(source);
    ASSERT_TRUE(db.isR12());
    auto xdictionary = createExtensionDictionary(db, db.entitiesOf(db.modelSpace()).front());
    ASSERT_TRUE(xdictionary.ok()) << xdictionary.message();
    ASSERT_TRUE(addXrecord(db, *xdictionary, "PIPES", recordOf(1)).ok());
    ASSERT_FALSE(db.isR12());

    auto dir = test::scratchDir("librecad-r12");
    ASSERT_TRUE(db.save(dir / "converted.dxf").ok());
    EXPECT_EQ(test::audit(dir / "converted.dxf"), "");
    EXPECT_TRUE(rendersInLibreCad(dir / "converted.dxf", dir / "converted.pdf")) << "LibreCAD could not open the converted drawing";
}

}  // namespace
}  // namespace veltarn::db
