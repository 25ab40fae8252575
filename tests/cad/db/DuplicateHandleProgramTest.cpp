// The veltarn program on a drawing that gives one handle to two entities: it says so on standard
// error, and both entities are there for the commands.
#include "TestSupport.h"
#include "VeltarnRun.h"

#include "cad/db/EntityFactory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

namespace veltarn::db {
namespace {

namespace fs = std::filesystem;

TEST(DuplicateHandleProgram, TellsTheUserAndKeepsBothEntities) {
    fs::path folder = test::scratchDir("duplicate-handle-program");
    Database made = Database::createNew();
    Handle first = made.appendEntity(made.modelSpace(), newLine(made, {0, 0, 0}, {1, 0, 0})).value();
    Handle second = made.appendEntity(made.modelSpace(), newCircle(made, {0, 0, 0}, 2)).value();
    std::string text = made.toText().value();
    // The circle's handle becomes the line's.
    std::size_t at = text.find("\n" + formatHandle(second) + "\n", text.find("\nCIRCLE\n"));
    ASSERT_NE(at, std::string::npos);
    text.replace(at + 1, formatHandle(second).size(), formatHandle(first));
    std::ofstream(folder / "twice.dxf", std::ios::binary) << text;
    // The handle's tag starts on the line whose end is at `at`.
    const std::size_t line = std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(at), '\n') + 1;

    auto run = test::runVeltarn({(folder / "twice.dxf").string(), "--command", "LIST\nall\n\n", "--save-as", (folder / "out.dxf").string()});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    auto saved = Database::load(folder / "out.dxf");
    ASSERT_TRUE(saved.ok()) << saved.message();
    std::vector<Handle> entities = saved->entitiesOf(saved->modelSpace());
    ASSERT_EQ(entities.size(), 2u);
    EXPECT_EQ(entities[0], first);
    EXPECT_EQ(saved->typeName(entities[1]), "CIRCLE");
    EXPECT_EQ(run.err, "veltarn: " + (folder / "twice.dxf").string() + ":" + std::to_string(line) + ": handle " + formatHandle(first) +
                           " is used twice; the second object (CIRCLE) gets handle " + formatHandle(entities[1]) + "\n");
    // LIST all shows both, each under its own handle.
    EXPECT_NE(run.out.find("LINE"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("CIRCLE"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find(formatHandle(entities[1])), std::string::npos) << run.out;
}

}  // namespace
}  // namespace veltarn::db
