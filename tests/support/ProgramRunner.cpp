#include "ProgramRunner.h"

#include "ExternalTools.h"
#include "ScratchFiles.h"

namespace veltarn::testtools {

namespace fs = std::filesystem;

fs::path veltarnProgram() { return fs::path(VELTARN_BINARY_DIR) / "bin" / "veltarn"; }

ProgramRun runVeltarn(const std::vector<std::string>& arguments, const std::string& input, const fs::path& workingDir) {
    TempFolder streams;
    writeBytes(streams / "in", input);
    std::string command;
    if (!workingDir.empty()) command = "cd " + quoted(workingDir.string()) + " && ";
    command += quoted(veltarnProgram().string());
    for (const std::string& argument : arguments) command += " " + quoted(argument);
    command += " <" + quoted((streams / "in").string()) + " >" + quoted((streams / "out").string()) + " 2>" +
               quoted((streams / "err").string());
    ProgramRun run;
    run.exitCode = runCommand(command);
    run.out = readBytes(streams / "out");
    run.err = readBytes(streams / "err");
    return run;
}

}  // namespace veltarn::testtools
