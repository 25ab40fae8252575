// Loads one DXF file (and with --save, writes it back), then prints the time that took and the
// peak memory of the process, for scripts/bench.sh:
//   seconds=0.183 peak_kib=99384 tags=4590742 bytes=61931855
#include "cad/dxf/TagFile.h"
#include "cad/dxf/TagWriter.h"

#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <string>

using namespace veltarn::dxf;

int main(int argc, char** argv) {
    if (argc != 2 && !(argc == 4 && std::string(argv[2]) == "--save")) {
        std::fprintf(stderr, "usage: dxf_load_bench DRAWING [--save OUT]\n");
        return 2;
    }
    auto start = std::chrono::steady_clock::now();
    auto file = TagFile::load(argv[1]);
    if (!file) {
        std::fprintf(stderr, "dxf_load_bench: %s\n", file.message().c_str());
        return 1;
    }
    if (argc == 4) {
        if (auto saved = saveUnchanged(*file, argv[3]); !saved) {
            std::fprintf(stderr, "dxf_load_bench: %s\n", saved.message().c_str());
            return 1;
        }
    }
    std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    struct rusage usage {};
    ::getrusage(RUSAGE_SELF, &usage);
    std::printf("seconds=%.3f peak_kib=%ld tags=%zu bytes=%zu\n", elapsed.count(), usage.ru_maxrss, file->size(),
                file->bytes().size());
    return 0;
}
