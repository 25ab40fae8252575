// Inputs whose cost once grew faster than their size, through the real program: LIST of an entity
// whose object-data xrecord holds 20,000 values (5,000 records), and the check of a classifier
// whose one table has 500,000 fields. Both were quadratic (5,000 records took 17 s to LIST); both
// now grow linearly. The program is started afresh each time.
#include <benchmark/benchmark.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace {

namespace fs = std::filesystem;

fs::path scratch(const std::string& name) {
    return fs::temp_directory_path() / ("veltarn_bench_" + std::to_string(::getpid()) + "_" + name);
}

// The drawing of the object-data transcript, its last ROADS record followed by 5,000 more.
fs::path writeLargeXrecordDrawing() {
    std::ifstream in(VELTARN_SOURCE_DIR "/tests/e2e/cases/object_data_list.in.dxf", std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    std::string drawing = bytes.str();
    const std::string lastRecord = "  1\nSide road\n 90\n1\n 40\n3.25\n 10\n5.0\n 20\n6.0\n 30\n7.0\n";
    std::string records;
    for (int i = 0; i < 5000; ++i)
        records += "  1\nRoad " + std::to_string(i) + "\n 90\n" + std::to_string(i) + "\n 40\n1.5\n 10\n1.0\n 20\n2.0\n 30\n0.0\n";
    const std::size_t at = drawing.find(lastRecord);
    if (at != std::string::npos) drawing.insert(at + lastRecord.size(), records);
    const fs::path path = scratch("xrecord.dxf");
    std::ofstream(path, std::ios::binary) << drawing;
    return path;
}

fs::path writeWideTableClassifier() {
    const fs::path path = scratch("wide.txt");
    std::ofstream out(path, std::ios::binary);
    out << "class\tA\t1\n\tobj_name\tB\t1\t1\n\t\tobj_type\tLine\n\t\tod_name\tWIDE\n\t\t\tod_key\tid\n";
    for (int i = 0; i < 500000; ++i) out << "\t\t\tod_fld\tf" << i << "\tField " << i << "\tinteger\t" << i << "\n";
    out << "/class\n";
    return path;
}

void runEach(benchmark::State& state, const std::string& arguments, int expectedStatus) {
    const std::string command = std::string("'") + VELTARN_PROGRAM + "' " + arguments + " >/dev/null 2>&1 </dev/null";
    for (auto _ : state) {
        const int status = std::system(command.c_str());
        if (!WIFEXITED(status) || WEXITSTATUS(status) != expectedStatus) {
            state.SkipWithError("the program failed");
            break;
        }
    }
}

void BM_ListXrecordOf20000Values(benchmark::State& state) {
    const fs::path drawing = writeLargeXrecordDrawing();
    runEach(state, "'" + drawing.string() + "' --command 'LIST\\n33\\n\\n'", 0);
    fs::remove(drawing);
}
BENCHMARK(BM_ListXrecordOf20000Values)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(1.0);

void BM_CheckClassifierTableOf500000Fields(benchmark::State& state) {
    const fs::path classifier = writeWideTableClassifier();
    runEach(state, "--check-classifier '" + classifier.string() + "'", 0);
    fs::remove(classifier);
}
BENCHMARK(BM_CheckClassifierTableOf500000Fields)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(1.0);

}  // namespace

BENCHMARK_MAIN();
