// How long reading, writing and comparing the sample route map takes inside the program.
#include "app/startup.h"

#include "host/formats/formats.h"

#include <benchmark/benchmark.h>
#include <fstream>
#include <iterator>

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

} // namespace

int main(int argc, char** argv) {
    app::initializeHost({});
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
