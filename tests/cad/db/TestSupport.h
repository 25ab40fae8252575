// Helpers shared by the database tests: scratch files, the independent checker, fixture drawings.
#pragma once

#include "ExternalTools.h"
#include "cad/db/Database.h"

#include <filesystem>
#include <string>

namespace veltarn::db::test {

// A fresh folder for one test's files.
std::filesystem::path scratchDir(const std::string& name);

// The independent tools (tests/tools): python3 runs, the audit check and generated drawings.
using testtools::audit;
using testtools::generated;
using testtools::runPython;
// A drawing made by one of the scripts in tests/cad/db/data (given the output path), made once.
std::filesystem::path madeByScript(const std::string& script);

// The drawing as text, with $HANDSEED left out: handles taken by an undone command are not
// handed out again, so the seed stays where it went.
std::string withoutSeed(const Database& db);

// Loads a drawing or fails the test.
Database loadOrFail(const std::filesystem::path& file);
Database parseOrFail(const std::string& text);

}  // namespace veltarn::db::test
