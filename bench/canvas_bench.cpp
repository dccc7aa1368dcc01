// What it costs to show drawings of so many entities in the window: building what is kept, pictures of all of
// it and of a part, panning, and bytes an entity.
#include "app/canvas/renderer.h"
#include "app/startup.h"

#include "host/db/dbents.h"
#include "host/ed/ed.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <filesystem>
#include <malloc.h>

namespace {

/// The drawing named by QDV_DRAWING (see make_drawing.py).
AcDbDatabase& drawing() {
    static host::Session session;
    static AcApDocument* document = [] {
        const char* file = std::getenv("QDV_DRAWING");
        return file != nullptr ? session.openDrawing(file) : session.newDrawing();
    }();
    return *document->database();
}

app::Scene& scene() {
    static app::Scene kept(drawing());
    return kept;
}

app::ViewMap viewOf(double share) {
    const host::Box2d box = scene().extents();
    app::ViewMap view{box.center(), 1, 1600, 900};
    view.unitsPerPixel = std::max(box.width() / view.width, box.height() / view.height) * share;
    return view;
}

void draw(const app::ViewMap& view, QImage& image, double seconds) {
    app::CanvasLook look;
    image.fill(look.background);
    app::Renderer(scene(), view, look).draw(image, image.rect(), seconds);
}

void buildScene(benchmark::State& state) {
    drawing().impl().places.of(drawing().currentSpaceId());
    for (auto step : state) {
        app::Scene built(drawing());
        state.counters["entities"] = static_cast<double>(built.items().size());
        benchmark::DoNotOptimize(built.items().size());
    }
}
BENCHMARK(buildScene)->Unit(benchmark::kMillisecond)->Iterations(1);

/// The share of the drawing's width that is seen, in ten-thousandths.
void firstPicture(benchmark::State& state) {
    QImage image(1600, 900, QImage::Format_RGB32);
    const app::ViewMap view = viewOf(static_cast<double>(state.range(0)) / 1e4);
    for (auto step : state) {
        draw(view, image, 1000);
    }
}
BENCHMARK(firstPicture)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->Arg(10000)
    ->Arg(5000)
    ->Arg(2500)
    ->Arg(500);

void picture(benchmark::State& state) {
    QImage image(1600, 900, QImage::Format_RGB32);
    const app::ViewMap view = viewOf(static_cast<double>(state.range(0)) / 1e4);
    draw(view, image, 1000);
    for (auto step : state) {
        draw(view, image, 1000);
    }
    state.counters["bytes_an_entity"] = static_cast<double>(scene().bytes()) /
                                        static_cast<double>(std::max<std::size_t>(scene().items().size(), 1));
}
BENCHMARK(picture)
    ->Unit(benchmark::kMillisecond)
    ->Arg(10000)
    ->Arg(5000)
    ->Arg(2500)
    ->Arg(1000)
    ->Arg(500)
    ->Arg(100);

} // namespace

int main(int argc, char** argv) {
    app::initializeHost({});
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
