// How long measuring and laying out short texts takes: a drawing has a million of them.
#include "app/startup.h"

#include "host/gi/gi.h"

#include <benchmark/benchmark.h>
#include <string>
#include <vector>

namespace {

constexpr std::size_t count = 1000;

std::vector<std::wstring> shortTexts() {
    std::vector<std::wstring> texts;
    for (std::size_t i = 0; i < count; ++i)
        texts.push_back(i % 3 == 0 ? L"砖" + std::to_wstring(i % 9) : L"N" + std::to_wstring(i) + L"%%d");
    return texts;
}

AcGiTextStyle style(const wchar_t* file) {
    AcGiTextStyle made;
    made.setFileName(file);
    made.setBigFontFileName(L"gbcbig.shx");
    made.setTextSize(2.5);
    return made;
}

void measureTexts(benchmark::State& state, const wchar_t* file) {
    const std::vector<std::wstring> texts = shortTexts();
    const AcGiTextStyle made = style(file);
    for (auto step : state)
        for (const std::wstring& text : texts)
            benchmark::DoNotOptimize(made.extents(text.c_str(), false, -1, false));
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(count));
}
BENCHMARK_CAPTURE(measureTexts, stroke, L"gbenor.shx");
BENCHMARK_CAPTURE(measureTexts, outline, L"arial.ttf");

void shapeTexts(benchmark::State& state) {
    const std::vector<std::wstring> texts = shortTexts();
    const AcGiTextStyle made = style(L"gbenor.shx");
    for (auto step : state)
        for (const std::wstring& text : texts)
            benchmark::DoNotOptimize(host::FontEngine::instance().shape(text, made.format()));
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(count));
}
BENCHMARK(shapeTexts);

} // namespace

int main(int argc, char** argv) {
    app::initializeHost({});
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
