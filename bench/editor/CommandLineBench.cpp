// Command lines a second through the real program: a script of 100,000 lines (variables read and
// set, commands of the workbench and of the module, a lisp call, a selection, an unknown command)
// run by build/bin/veltarn on a new drawing, its transcript thrown away. The program is started
// afresh each time, so start-up and the module's load and unload are counted too.
#include <benchmark/benchmark.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr int kLines = 100000;

// One round of the mix; each entry is one line of the script.
const std::vector<std::string> kRound = {
    "GETVAR", "CLAYER", "SETVAR", "LUPREC", "3", "MyCommand", "(MyLispFunction)", "SELECT", "all", "",
    "VELTARN_TYPE", "INSUNITS", "", "CMDNAMES", "NOSUCHCOMMAND", "-LAYER", "N", "Roads", "", "U",
};

fs::path writeScript() {
    const fs::path script = fs::temp_directory_path() / ("veltarn_bench_" + std::to_string(::getpid()) + ".scr");
    std::ofstream out(script);
    for (int i = 0; i < kLines; ++i) out << kRound[static_cast<std::size_t>(i) % kRound.size()] << '\n';
    return script;
}

void BM_ScriptThroughProgram(benchmark::State& state) {
    const fs::path script = writeScript();
    const std::string command = std::string("'") + VELTARN_PROGRAM + "' --script '" + script.string() +
                                "' >/dev/null 2>&1 </dev/null";
    for (auto _ : state) {
        const int status = std::system(command.c_str());
        if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
            state.SkipWithError("the program failed");
            break;
        }
    }
    fs::remove(script);
    state.counters["lines/s"] = benchmark::Counter(static_cast<double>(kLines) * static_cast<double>(state.iterations()),
                                                   benchmark::Counter::kIsRate);
}
BENCHMARK(BM_ScriptThroughProgram)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2.0);

}  // namespace

BENCHMARK_MAIN();
