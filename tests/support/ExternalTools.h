// The independent tools the tests run: our fixture generator and audit check under tests/tools,
// both Python 3 scripts over Debian's ezdxf. A missing tool fails the test that needs it, with a
// message naming the package; it never skips the test.
#pragma once

#include <filesystem>
#include <string>

namespace veltarn::testtools {

// tests/tools of this checkout.
std::filesystem::path toolsDir();

// Runs a shell command; its exit code (-1 when it did not exit normally), its standard output in
// `output` (standard error too when the command redirects it there).
int runCommand(const std::string& command, std::string* output = nullptr);
// Runs the system's python3 (the one that sees Debian's ezdxf) with `arguments`; its standard
// output and error together in `output`.
int runPython(const std::string& arguments, std::string* output = nullptr);

// Empty when python3 can import ezdxf; else what is missing and which package brings it.
std::string missingEzdxf();

// What is wrong with a written drawing: the workbench's own auditor's findings (it reads the file
// with the workbench's loader), then the audit check's (ezdxf's strict loader and auditor); empty
// when both find nothing. A missing tool is a finding too. Tests call it on every drawing they
// save, so that a command that writes a broken drawing fails a test.
std::string audit(const std::filesystem::path& file);
// The workbench's auditor alone, for drawings written where ezdxf's view is not wanted.
std::string workbenchAudit(const std::filesystem::path& file);

// A drawing made by the generator with `arguments` (see gen_dxf.py), cached per name in the build
// folder and made through a part file of this process's own, so that tests running side by side
// never read one half written. Fails the calling test and returns an empty path on an error.
std::filesystem::path generated(const std::string& name, const std::string& arguments);
// Runs `script` (arguments, then the output path appended) once to make `name`, cached like
// `generated`; `what` names the script in the failure message.
std::filesystem::path madeOnce(const std::string& name, const std::string& script, const std::string& what);

// `text` quoted for the shell.
std::string quoted(const std::string& text);

}  // namespace veltarn::testtools
