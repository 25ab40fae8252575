// Loads one DXF drawing as the workbench opens it (and with --save, writes it back), then prints
// the time that took and the peak memory of the process, for scripts/bench.sh:
//   seconds=0.098 peak_kib=76596 index_kib=12744 bytes=61931855
#include "cad/db/Database.h"

#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <string>

using namespace veltarn;

int main(int argc, char** argv) {
    if (argc != 2 && !(argc == 4 && std::string(argv[2]) == "--save")) {
        std::fprintf(stderr, "usage: dxf_load_bench DRAWING [--save OUT]\n");
        return 2;
    }
    auto start = std::chrono::steady_clock::now();
    auto db = db::Database::load(argv[1]);
    if (!db) {
        std::fprintf(stderr, "dxf_load_bench: %s\n", db.message().c_str());
        return 1;
    }
    if (argc == 4) {
        if (auto saved = db->save(argv[3]); !saved) {
            std::fprintf(stderr, "dxf_load_bench: %s\n", saved.message().c_str());
            return 1;
        }
    }
    std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    struct rusage usage {};
    ::getrusage(RUSAGE_SELF, &usage);
    std::printf("seconds=%.3f peak_kib=%ld index_kib=%zu bytes=%zu\n", elapsed.count(), usage.ru_maxrss, db->memoryBeyondFile() / 1024,
                db->file().bytes().size());
    return 0;
}
