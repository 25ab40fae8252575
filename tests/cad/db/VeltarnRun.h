// Runs the veltarn program from a database test: the shared runner under the names these tests use.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "ProgramRunner.h"

namespace veltarn::db::test {

using VeltarnRun = testtools::ProgramRun;

using testtools::runVeltarn;

}  // namespace veltarn::db::test
