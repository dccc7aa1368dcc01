// How long reading, writing and comparing the sample route map takes inside the program, and how much memory
// entities take that drawings have by the hundred thousand.
#include "app/startup.h"

#include "host/formats/formats.h"

#include <benchmark/benchmark.h>
#include <fstream>
#include <iterator>
#include <malloc.h>
#include <memory>

namespace {

const std::string& routeMap() {
    static const std::string bytes = [] {
        std::ifstream file(QDV_SOURCE_DIR "/samples/route-map.dxf", std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }();
    return bytes;
}

std::int64_t bytesDone(const benchmark::State& state) {
    return static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(routeMap().size());
}

void readRouteMap(benchmark::State& state) {
    for (auto step : state) {
        AcDbDatabase database(false, true);
        benchmark::DoNotOptimize(host::readDxfText(database, routeMap()).status);
    }
    state.SetBytesProcessed(bytesDone(state));
}
BENCHMARK(readRouteMap)->Unit(benchmark::kMillisecond);

void writeRouteMap(benchmark::State& state) {
    AcDbDatabase database(false, true);
    host::readDxfText(database, routeMap());
    for (auto step : state) {
        benchmark::DoNotOptimize(host::writeDxfText(database));
    }
    state.SetBytesProcessed(bytesDone(state));
}
BENCHMARK(writeRouteMap)->Unit(benchmark::kMillisecond);

void dumpRouteMap(benchmark::State& state) {
    AcDbDatabase database(false, true);
    host::readDxfText(database, routeMap());
    for (auto step : state) {
        benchmark::DoNotOptimize(host::dumpDrawing(database));
    }
}
BENCHMARK(dumpRouteMap)->Unit(benchmark::kMillisecond);

std::size_t heapInUse() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

/// Reads so many entities of the given groups; the counter is the heap that one takes.
void memoryOf(benchmark::State& state, const std::string& kind, const std::string& groups) {
    const std::int64_t count = state.range(0);
    std::string text = "0\nSECTION\n2\nENTITIES\n";
    for (std::int64_t index = 0; index < count; ++index) {
        text += "0\n" + kind + "\n8\n0\n" + groups;
    }
    text += "0\nENDSEC\n0\nEOF\n";
    for (auto step : state) {
        auto database = std::make_unique<AcDbDatabase>(false, true);
        const std::size_t before = heapInUse();
        host::readDxfText(*database, text);
        state.counters["bytes"] = static_cast<double>(heapInUse() - before) / static_cast<double>(count);
        state.PauseTiming();
        database.reset();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(text.size()));
}

void memoryOfLines(benchmark::State& state) {
    memoryOf(state, "LINE", "10\n1.5\n20\n2.5\n30\n0.0\n11\n3.5\n21\n4.5\n31\n0.0\n");
}
BENCHMARK(memoryOfLines)->Arg(1000000)->Unit(benchmark::kMillisecond);

/// Of ten vertices each.
void memoryOfPolylines(benchmark::State& state) {
    std::string groups = "90\n10\n70\n0\n43\n0.0\n";
    for (int vertex = 0; vertex < 10; ++vertex) {
        groups += "10\n" + std::to_string(vertex) + ".5\n20\n2.5\n";
    }
    memoryOf(state, "LWPOLYLINE", groups);
}
BENCHMARK(memoryOfPolylines)->Arg(1000000)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    app::initializeHost({});
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
