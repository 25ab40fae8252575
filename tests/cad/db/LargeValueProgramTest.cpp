// The veltarn program saving a drawing with a very long text after a command changed it: the
// saved file reads back whole in our loader and in ezdxf.
#include "TestSupport.h"
#include "VeltarnRun.h"

#include "cad/db/Dictionary.h"
#include "cad/db/EntityFactory.h"
#include "cad/db/SymbolTables.h"
#include "cad/db/Xrecord.h"

#include <gtest/gtest.h>

#include <fstream>

namespace veltarn::db {
namespace {

namespace fs = std::filesystem;

TEST(LargeValueProgram, SavesAfterEachCommandThatChangesTheDrawing) {
    fs::path folder = test::scratchDir("large-value-program");
    const std::string value(600000, 'v');
    Database made = Database::createNew();
    ASSERT_TRUE(addXrecord(made, made.namedObjectsDictionary(), "LONG_VALUES", {TypedValue::ofText(1, value)}).ok());
    auto line = made.appendEntity(made.modelSpace(), newLine(made, {0, 0, 0}, {1, 0, 0}));
    ASSERT_TRUE(line.ok());
    ASSERT_TRUE(made.appendEntity(made.modelSpace(), newLine(made, {0, 1, 0}, {1, 1, 0})).ok());
    std::ofstream(folder / "in.dxf", std::ios::binary) << made.toText().value();

    const std::pair<const char*, std::string> commands[] = {
        {"erase", "ERASE\n" + formatHandle(*line) + "\n\n"},
        {"layer", "-LAYER\nNew\nWalls\n\n"},
        {"setvar", "SETVAR\nLTSCALE\n2.5\n"},
    };
    std::string files;
    for (const auto& [name, command] : commands) {
        fs::path out = folder / (std::string(name) + ".dxf");
        auto run = test::runVeltarn({(folder / "in.dxf").string(), "--command", command, "--save-as", out.string()});
        ASSERT_EQ(run.exitCode, 0) << name << ": " << run.err;
        EXPECT_EQ(run.err, "") << name;

        auto saved = Database::load(out);
        ASSERT_TRUE(saved.ok()) << name << ": " << saved.message();
        auto values = readXrecord(*saved, findEntry(*saved, saved->namedObjectsDictionary(), "LONG_VALUES"));
        ASSERT_TRUE(values.ok()) << name << ": " << values.message();
        ASSERT_EQ(values->size(), 1u) << name;
        EXPECT_TRUE(values->front().text == value) << name;
        EXPECT_EQ(saved->headerVariable("$ACADVER"), "AC1032") << name;
        files += " '" + out.string() + "'";
    }
    auto erased = Database::load(folder / "erase.dxf");
    ASSERT_TRUE(erased.ok());
    EXPECT_EQ(erased->entitiesOf(erased->modelSpace()).size(), 1u);
    auto layered = Database::load(folder / "layer.dxf");
    ASSERT_TRUE(layered.ok());
    EXPECT_TRUE(readLayer(*layered, "Walls").has_value());

    // The script goes through the shell in double quotes: "\\$" keeps its "$".
    const std::string script =
        "import sys, ezdxf\n"
        "for name in sys.argv[1:]:\n"
        "    doc = ezdxf.readfile(name)\n"
        "    record = doc.rootdict['LONG_VALUES']\n"
        "    print(len(record.tags[0].value), len(doc.modelspace()), 'Walls' in doc.layers, doc.header['\\$LTSCALE'])\n";
    std::string output;
    ASSERT_EQ(test::runPython("-c \"" + script + "\"" + files, &output), 0) << output;
    EXPECT_EQ(output, "600000 1 False 1.0\n600000 2 True 1.0\n600000 2 False 2.5\n");
}

}  // namespace
}  // namespace veltarn::db
