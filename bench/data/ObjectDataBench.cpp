// Object-data records at scale: entities with one record each (1,000,000 unless
// VELTARN_BENCH_ENTITIES says otherwise); every record read, updated, a second one appended and
// removed again. Each pass runs once over all entities and reports records per second.
#include "BenchDrawing.h"

#include "data/ObjectData.h"
#include "data/ObjectDataTables.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

using namespace veltarn;

namespace {

constexpr FieldType kTypes[] = {FieldType::Character, FieldType::Integer, FieldType::Real, FieldType::Point};

std::size_t entityCount() {
    const char* text = std::getenv("VELTARN_BENCH_ENTITIES");
    return text ? std::strtoull(text, nullptr, 10) : 1000000;
}

ObjectDataRecord road(std::size_t i) {
    return {L"ROADS", {FieldValue::fromText(L"Road " + std::to_wstring(i)),
                       FieldValue::fromInteger(static_cast<std::int32_t>(i % 6)),
                       FieldValue::fromReal(3.5), FieldValue::fromPoint({1, 2, 3})}};
}

// The drawing all passes share, built on first use: a table and one record per entity.
struct Drawing {
    std::unique_ptr<bench::BenchDrawing> drawing = bench::BenchDrawing::createNew();
    std::vector<host::ObjectId> entities;

    Drawing() {
        host::Database& db = drawing->db();
        ObjectDataRecord definition = road(0);
        const wchar_t* names[] = {L"NAME", L"LANES", L"WIDTH", L"AXIS"};
        for (std::size_t f = 0; f < definition.fields.size(); ++f) definition.fields[f].setName(names[f]);
        if (createTableDefinition(db, L"ROADS", definition) != kOdOk) throw std::runtime_error("no table");
        std::size_t count = entityCount();
        entities.reserve(count);
        for (std::size_t i = 0; i < count; ++i) {
            auto line = db.appendEntity(db.modelSpace(), host::EntityClass::kLine);
            if (!line) throw std::runtime_error("no entity");
            entities.push_back(line->id());
        }
        for (std::size_t i = 0; i < count; ++i) {
            if (ObjectData::append(db, entities[i], road(i), kTypes) != kOdOk) throw std::runtime_error("no append");
        }
    }
};

Drawing& shared() {
    static Drawing drawing;
    return drawing;
}

void report(benchmark::State& state, std::size_t records) {
    state.counters["records/s"] = benchmark::Counter(static_cast<double>(records), benchmark::Counter::kIsRate);
    state.counters["records"] = static_cast<double>(records);
}

void BM_ReadEveryRecord(benchmark::State& state) {
    Drawing& d = shared();
    ObjectData cursor(d.drawing->db());
    ObjectDataRecord record;
    std::size_t records = 0;
    for (auto _ : state) {
        for (host::ObjectId id : d.entities) {
            for (int rc = cursor.open(id); rc == kOdOk && !cursor.atEnd(); cursor.next()) {
                if (cursor.read(record) != kOdOk) break;
                ++records;
            }
        }
        benchmark::DoNotOptimize(record);
    }
    report(state, records);
}

void BM_UpdateEveryRecord(benchmark::State& state) {
    Drawing& d = shared();
    ObjectData cursor(d.drawing->db());
    ObjectDataRecord record;
    std::size_t records = 0;
    for (auto _ : state) {
        for (host::ObjectId id : d.entities) {
            if (cursor.open(id) != kOdOk || cursor.read(record) != kOdOk) continue;
            record.fields[2].setReal(4.25);
            if (cursor.update(record) == kOdOk) ++records;
        }
    }
    report(state, records);
}

void BM_AppendASecondRecord(benchmark::State& state) {
    Drawing& d = shared();
    host::Database& db = d.drawing->db();
    ObjectDataRecord record = road(7);
    std::size_t records = 0;
    for (auto _ : state) {
        for (host::ObjectId id : d.entities) {
            if (ObjectData::append(db, id, record, kTypes) == kOdOk) ++records;
        }
    }
    report(state, records);
}

void BM_RemoveTheSecondRecord(benchmark::State& state) {
    Drawing& d = shared();
    ObjectData cursor(d.drawing->db());
    ObjectDataRecord record;
    std::size_t records = 0;
    for (auto _ : state) {
        for (host::ObjectId id : d.entities) {
            if (cursor.open(id) != kOdOk) continue;
            cursor.next();
            if (cursor.read(record) == kOdOk && cursor.remove() == kOdOk) ++records;
        }
    }
    report(state, records);
}

// Once each, in this order: the append adds the record that the removal takes away again.
BENCHMARK(BM_ReadEveryRecord)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_UpdateEveryRecord)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_AppendASecondRecord)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_RemoveTheSecondRecord)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
