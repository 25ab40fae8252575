// The drawing database under the load the module puts on it: N new entities, each with an
// extension dictionary holding one xrecord of object data; save; reload. Prints the time of each
// step and the memory per entity. Usage: db_bench [N] [folder for the file]
#include "cad/db/Database.h"
#include "cad/db/Dictionary.h"
#include "cad/db/EntityFactory.h"
#include "cad/db/ExtensionDictionary.h"
#include "cad/db/Xrecord.h"

#include <chrono>
#include <cstdio>
#include <ctime>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

using namespace veltarn::db;

namespace {

// Resident and peak memory of this process, in bytes (Linux).
std::size_t memoryOf(const char* field) {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind(field, 0) == 0) return std::strtoull(line.c_str() + std::char_traits<char>::length(field), nullptr, 10) * 1024;
    return 0;
}

double seconds(std::chrono::steady_clock::time_point since) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

// Processor time of this process: on a shared machine, wall time also measures the neighbours.
double cpuSeconds() { return double(std::clock()) / CLOCKS_PER_SEC; }

}  // namespace

int main(int argc, char** argv) {
    const std::size_t n = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 1000000;
    std::filesystem::path folder = argc > 2 ? argv[2] : std::filesystem::temp_directory_path();
    std::filesystem::path file = folder / "veltarn-db-bench.dxf";
    const std::size_t baseline = memoryOf("VmRSS:");
    auto start = std::chrono::steady_clock::now();
    const double cpuStart = cpuSeconds();
    double cpuCreate, cpuSave, cpuLoad;

    auto t = std::chrono::steady_clock::now();
    double createTime, saveTime, loadTime, readTime;
    std::size_t peakAfterCreate, fileSize, afterLoad;
    {
        Database db = Database::createNew();
        Handle model = db.modelSpace();
        for (std::size_t i = 0; i < n; ++i) {
            double x = static_cast<double>(i % 1000), y = static_cast<double>(i / 1000);
            ResultBuffer values{TypedValue::ofText(1, "road-" + std::to_string(i)), TypedValue::ofReal(40, 5.5), TypedValue::ofInteger(90, static_cast<std::int64_t>(i))};
            auto added = appendEntityWithXrecord(db, model, newLine(db, {x, y, 0}, {x + 0.5, y + 0.5, 0}), "ROADS", values);
            if (!added) {
                std::fprintf(stderr, "%s\n", added.message().c_str());
                return 1;
            }
        }
        createTime = seconds(t);
        cpuCreate = cpuSeconds() - cpuStart;
        peakAfterCreate = memoryOf("VmRSS:");
        t = std::chrono::steady_clock::now();
        if (auto saved = db.save(file); !saved) {
            std::fprintf(stderr, "%s\n", saved.message().c_str());
            return 1;
        }
        saveTime = seconds(t);
        cpuSave = cpuSeconds() - cpuStart - cpuCreate;
    }
    fileSize = std::filesystem::file_size(file);
    const std::size_t beforeLoad = memoryOf("VmRSS:");
    t = std::chrono::steady_clock::now();
    auto loaded = Database::load(file);
    if (!loaded) {
        std::fprintf(stderr, "%s\n", loaded.message().c_str());
        return 1;
    }
    loadTime = seconds(t);
    cpuLoad = cpuSeconds() - cpuStart - cpuCreate - cpuSave;
    afterLoad = memoryOf("VmRSS:");
    // Reading the data back proves the reload is usable: every entity's xrecord, spot-checked.
    t = std::chrono::steady_clock::now();
    const Database& db = *loaded;
    auto entities = db.entitiesOf(db.modelSpace());
    std::size_t checked = 0;
    for (std::size_t i = 0; i < entities.size(); i += 1000) {
        auto values = readXrecord(db, findEntry(db, extensionDictionary(db, entities[i]), "ROADS"));
        if (values && values->size() == 3 && values->at(2).integer == static_cast<std::int64_t>(i)) ++checked;
    }
    readTime = seconds(t);
    double total = seconds(start);
    double cpuTotal = cpuSeconds() - cpuStart;

    std::printf("entities                 %zu (LINE + extension dictionary + XRECORD each)\n", n);
    std::printf("create                   %.3f s  (processor %.3f s)\n", createTime, cpuCreate);
    std::printf("save                     %.3f s  (processor %.3f s; %.1f MB, %.0f bytes per entity)\n", saveTime, cpuSave, fileSize / 1e6,
                double(fileSize) / double(n));
    std::printf("reload                   %.3f s  (processor %.3f s)\n", loadTime, cpuLoad);
    std::printf("read back (1 in 1000)    %.3f s  (%zu of %zu checked)\n", readTime, checked, (entities.size() + 999) / 1000);
    std::printf("whole cycle              %.3f s  (processor %.3f s)\n", total, cpuTotal);
    std::printf("memory after creating    %.0f bytes per entity (resident, no file yet)\n", double(peakAfterCreate - baseline) / double(n));
    std::printf("memory after reloading   %.0f bytes per entity beyond the file's %.0f (index %.0f)\n",
                (double(afterLoad) - double(beforeLoad) - double(fileSize)) / double(n), double(fileSize) / double(n),
                double(db.memoryBeyondFile()) / double(n));
    std::filesystem::remove(file);
    return checked * 1000 >= entities.size() ? 0 : 1;
}
