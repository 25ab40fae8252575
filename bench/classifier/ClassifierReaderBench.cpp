// The classifier reader on a generated classifier the size of a large organisation's: 1,000
// classes of 10 object definitions each, every one with types, properties and an object-data
// table (about 100,000 lines). Prints the best of several reads and the lines per second.
// Usage: classifier_bench [CLASSES] [OBJECTS PER CLASS] [RUNS]
#include "cad/editor/SystemVariableTable.h"
#include "classifier/ClassifierReader.h"
#include "host/Utf8.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

// Writes the classifier; returns its line count.
long writeClassifier(const std::filesystem::path& path, int classes, int perClass) {
    std::ofstream out(path, std::ios::binary);
    long lines = 0;
    auto line = [&](const std::string& text) {
        out << text << '\n';
        ++lines;
    };
    line("# generated for the reader benchmark");
    line("define\tOWNERS\tCouncil,Water board,Private,Unknown");
    line("define\tCONDITIONS\tGood,Fair,Poor");
    for (int c = 0; c < classes; ++c) {
        line("class\tClass " + std::to_string(c) + "\t1\tgenerated class");
        for (int o = 0; o < perClass; ++o) {
            std::string name = "Object " + std::to_string(c) + "." + std::to_string(o);
            line("\tobj_name\t" + name + "\t1\t" + std::to_string(c * perClass + o) + "\tIcons/Line.png");
            line("\t\tobj_type\tLine,Polyline,Arc");
            line("\t\tobj_prop\tlayer\tLAYER_" + std::to_string(o) + "\t*");
            line("\t\tobj_prop\tcolor\t" + std::to_string(1 + o % 255));
            line("\t\tobj_prop\tlinetypescale\t0.5");
            line("\t\tod_name\tAsset");
            line("\t\t\tod_key\tid");
            line("\t\t\tod_fld\towner\tOwner\trequired character\tCouncil\t$(OWNERS)");
            line("\t\t\tod_fld\tcondition\tCondition\tcharacter\tGood\t$(CONDITIONS)");
            line("\t\t\tod_fld\twidth\tWidth (m)\treal\t1\t0:100");
        }
        line("/class");
    }
    return lines;
}

}  // namespace

int main(int argc, char** argv) {
    const int classes = argc > 1 ? std::atoi(argv[1]) : 1000;
    const int perClass = argc > 2 ? std::atoi(argv[2]) : 10;
    const int runs = argc > 3 ? std::max(1, std::atoi(argv[3])) : 5;
    std::filesystem::path file = std::filesystem::temp_directory_path() / "veltarn-classifier-bench.txt";
    const long lines = writeClassifier(file, classes, perClass);

    veltarn::editor::SystemVariableTable variables;
    std::wstring messages;
    veltarn::ClassifierReader reader([&](const std::wstring& text) { messages += text; }, &variables);
    const std::wstring path = veltarn::host::fromUtf8(file.string());
    double best = 1e9;
    int objects = 0;
    for (int run = 0; run < runs; ++run) {
        auto start = std::chrono::steady_clock::now();
        veltarn::Classifier classifier = reader.read(path);
        best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        objects = classifier.objectCount();
    }
    std::filesystem::remove(file);
    if (reader.failed() || !messages.empty()) {
        std::fprintf(stderr, "the generated classifier did not read cleanly: %s\n", veltarn::host::toUtf8(messages).c_str());
        return 1;
    }
    std::printf("classifier read: %ld lines, %d classes, %d objects: best of %d %.3f s, %.0f lines/s\n", lines, classes,
                objects, runs, best, lines / best);
    return 0;
}
