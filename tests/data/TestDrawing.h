// A real workbench drawing, seen through the seam, for the object-data tests and benchmark.
#pragma once

#include "host/Database.h"

#include <filesystem>
#include <memory>
#include <string>

namespace veltarn::test {

class TestDrawing {
public:
    virtual ~TestDrawing() = default;

    // A fixture of tests/data/data, read from a private copy so that tests may change it.
    static std::unique_ptr<TestDrawing> load(const std::string& fixture);
    // A drawing file read where it is (not copied): for drawings a test made itself.
    static std::unique_ptr<TestDrawing> read(const std::filesystem::path& path);
    // A new, empty drawing.
    static std::unique_ptr<TestDrawing> createNew();

    virtual host::Database& db() = 0;
    // Writes the drawing; fails the calling test on an error.
    virtual void save(const std::filesystem::path& path) = 0;

    // The changes between begin and end are one step of the drawing's undo, as a command's are.
    virtual void beginCommand(const std::string& name) = 0;
    virtual void endCommand() = 0;
    virtual bool undo() = 0;
    virtual bool redo() = 0;

    // The first model-space entity on `layer`; null when there is none.
    host::ObjectId entityOnLayer(const std::wstring& layer);
    // A new line in model space on layer "0".
    host::ObjectId addLine();
};

// Folder for one test's files, emptied first.
std::filesystem::path scratchDir(const std::string& name);

// Runs /usr/bin/python3 with `arguments`; its exit code, its output added to `output`.
int runPython(const std::string& arguments, std::string* output);
// True when /usr/bin/python3 can import ezdxf.
bool haveEzdxf();

}  // namespace veltarn::test
