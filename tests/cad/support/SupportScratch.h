// Scratch folders and the independent DXF reader for the support-file tests.
#pragma once

#include <filesystem>
#include <string>

namespace veltarn::support::test {

// An empty folder for one test's files under the build tree.
std::filesystem::path scratchDir(const std::string& name);
void writeFile(const std::filesystem::path& path, const std::string& text);
std::string readFile(const std::filesystem::path& path);

// Runs a Python script with `drawing` as its argument under /usr/bin/python3; returns what it
// printed, or "exit N: ..." when it failed.
std::string runPython(const std::string& script, const std::filesystem::path& drawing);
// True when /usr/bin/python3 can import ezdxf.
bool haveEzdxf();

const std::filesystem::path kSupportDir = VELTARN_SOURCE_DIR "/support";
const std::filesystem::path kDataDir = VELTARN_SOURCE_DIR "/tests/cad/support/data";

}  // namespace veltarn::support::test
