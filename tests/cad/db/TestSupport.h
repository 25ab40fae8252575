// Helpers shared by the database tests: scratch files, the independent checker, fixture drawings.
#pragma once

#include "cad/db/Database.h"

#include <filesystem>
#include <string>

namespace veltarn::db::test {

// A fresh folder for one test's files.
std::filesystem::path scratchDir(const std::string& name);

// The shared tools folder (gen_dxf.py, audit_dxf.py); empty when it is missing.
std::filesystem::path toolsDir();
bool haveChecker();

// Runs /usr/bin/python3 with `arguments`; returns its exit code and puts its output in `output`.
int runPython(const std::string& arguments, std::string* output = nullptr);

// Runs the independent auditor on a written file; empty when it found nothing, else its report.
std::string audit(const std::filesystem::path& file);

// A drawing made by the independent writer (gen_dxf.py), cached per argument set.
std::filesystem::path generated(const std::string& name, const std::string& arguments);
// A drawing made by one of the scripts in tests/cad/db/data (given the output path), made once.
std::filesystem::path madeByScript(const std::string& script);

// The drawing as text, with $HANDSEED left out: handles taken by an undone command are not
// handed out again, so the seed stays where it went.
std::string withoutSeed(const Database& db);

// Loads a drawing or fails the test.
Database loadOrFail(const std::filesystem::path& file);
Database parseOrFail(const std::string& text);

}  // namespace veltarn::db::test
