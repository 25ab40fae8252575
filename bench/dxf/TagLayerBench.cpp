// The tag layer's inner loops on drawings made in memory: scanning ASCII and binary files, and
// writing every tag anew through decoding and encoding (the path of changed objects).
#include "cad/dxf/TagFile.h"
#include "cad/dxf/TagWriter.h"

#include <benchmark/benchmark.h>

#include <string>

using namespace veltarn::dxf;

namespace {

// An R2000 drawing in code page 1252 of `lines` LINE entities, with a non-ASCII layer name.
std::string asciiDrawing(int lines) {
    std::string dxf = "  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\nAC1015\n  9\n$DWGCODEPAGE\n  3\nANSI_1252\n"
                      "  0\nENDSEC\n  0\nSECTION\n  2\nENTITIES\n";
    for (int i = 0; i < lines; ++i) {
        std::string x = std::to_string(1000 + i * 0.123456789), y = std::to_string(2000 - i * 0.987654321);
        dxf += "  0\nLINE\n  5\n" + std::to_string(0x100 + i) + "\n330\n1F\n100\nAcDbEntity\n  8\nW\xE4nde\n100\nAcDbLine\n";
        dxf += " 10\n" + x + "\n 20\n" + y + "\n 30\n0.0\n 11\n" + y + "\n 21\n" + x + "\n 31\n0.0\n";
    }
    return dxf + "  0\nENDSEC\n  0\nEOF\n";
}

const TagFile& sampleFile() {
    static const TagFile file = TagFile::parse(asciiDrawing(100000), "bench.dxf").value();
    return file;
}

std::string binaryDrawing() {
    StringSink sink;
    WriteFormat format = WriteFormat::of(sampleFile());
    format.form = FileForm::Binary;
    TagWriter writer(sink, format);
    writeUnchanged(sampleFile(), writer);
    return sink.take();
}

void parse(benchmark::State& state, const std::string& bytes) {
    for (auto _ : state) {
        state.PauseTiming();
        std::string copy = bytes;
        state.ResumeTiming();
        auto file = TagFile::parse(std::move(copy), "bench.dxf");
        benchmark::DoNotOptimize(file.ok());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes.size()));
}

void BM_ParseAscii(benchmark::State& state) {
    std::string bytes(sampleFile().bytes());
    parse(state, bytes);
}
BENCHMARK(BM_ParseAscii)->Unit(benchmark::kMillisecond);

void BM_ParseBinary(benchmark::State& state) {
    std::string bytes = binaryDrawing();
    parse(state, bytes);
}
BENCHMARK(BM_ParseBinary)->Unit(benchmark::kMillisecond);

// Every tag decoded to UTF-8 and encoded back to code page 1252.
void BM_RewriteTagByTag(benchmark::State& state) {
    const TagFile& file = sampleFile();
    for (auto _ : state) {
        StringSink sink;
        TagWriter writer(sink, WriteFormat::of(file));
        for (std::size_t i = 0; i < file.size(); ++i) writer.write(file.code(i), file.text(i));
        benchmark::DoNotOptimize(sink.text().size());
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * file.size()));
}
BENCHMARK(BM_RewriteTagByTag)->Unit(benchmark::kMillisecond);

}  // namespace
