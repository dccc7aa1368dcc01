// How long selecting by place takes in a drawing of a million entities, and how long moving many entities,
// undoing and redoing that takes.
#include "app/startup.h"

#include "host/db/dbents.h"
#include "host/ed/ed.h"

#include <benchmark/benchmark.h>
#include <random>

namespace {

constexpr int sideLength = 1000; ///< of a square of cells, one entity each
constexpr double cell = 10.0;

AcDbEntity* makeEntity(double x, double y, int kind) {
    switch (kind) {
    case 0:
        return new AcDbCircle(AcGePoint3d(x, y, 0), AcGeVector3d::kZAxis, 3.0);
    case 1: {
        auto* polyline = new AcDbPolyline;
        polyline->addVertexAt(0, AcGePoint2d(x, y), 0.5);
        polyline->addVertexAt(1, AcGePoint2d(x + 6, y + 2));
        polyline->addVertexAt(2, AcGePoint2d(x + 2, y + 7));
        return polyline;
    }
    default:
        return new AcDbLine(AcGePoint3d(x, y, 0), AcGePoint3d(x + 7, y + 5, 0));
    }
}

/// A million entities, side by side.
AcDbDatabase& drawing() {
    static AcDbDatabase& database = []() -> AcDbDatabase& {
        static host::Session session;
        AcDbDatabase& made = *session.newDrawing()->database();
        const host::UndoLog::Suspend suspend(made.undoLog());
        const host::Opened<AcDbBlockTableRecord> space(made.modelSpaceId(), AcDb::kForWrite);
        for (int row = 0; row < sideLength; ++row) {
            for (int column = 0; column < sideLength; ++column) {
                AcDbEntity* entity = makeEntity(column * cell, row * cell, (row + column) % 4);
                space->appendAcDbEntity(entity);
                entity->close();
            }
        }
        return made;
    }();
    return database;
}

AcGePoint3d somewhere(std::mt19937& random) {
    std::uniform_real_distribution<double> coordinate(0.0, sideLength * cell);
    return {coordinate(random), coordinate(random), 0.0};
}

void buildIndex(benchmark::State& state) {
    AcDbDatabase& database = drawing();
    for (auto step : state) {
        host::SpatialIndexes places(database);
        benchmark::DoNotOptimize(places.of(database.modelSpaceId()).size());
    }
}
BENCHMARK(buildIndex)->Unit(benchmark::kMillisecond)->Iterations(2);

void selectAtPoint(benchmark::State& state) {
    drawing();
    std::mt19937 random(1);
    host::entityAt(somewhere(random), 1.0);
    for (auto step : state) {
        benchmark::DoNotOptimize(host::entityAt(somewhere(random), 1.0));
    }
}
BENCHMARK(selectAtPoint)->Unit(benchmark::kMicrosecond);

void selectInWindow(benchmark::State& state) {
    drawing();
    const auto kind =
        state.range(0) == 0 ? host::SelectionShape::Kind::window : host::SelectionShape::Kind::crossing;
    std::mt19937 random(1);
    for (auto step : state) {
        const AcGePoint3d at = somewhere(random);
        const AcGePoint3d to = at + AcGeVector3d(50, 50, 0);
        benchmark::DoNotOptimize(
            host::entitiesIn({kind, {{at.x, at.y}, {to.x, at.y}, {to.x, to.y}, {at.x, to.y}}}));
    }
}
BENCHMARK(selectInWindow)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

/// The worst for the index: something changes before every question.
void selectAfterChange(benchmark::State& state) {
    AcDbDatabase& database = drawing();
    const auto* space = host::peek<AcDbBlockTableRecord>(database.modelSpaceId());
    const host::UndoLog::Suspend suspend(database.undoLog());
    std::mt19937 random(1);
    std::uniform_int_distribution<std::size_t> index(0, space->entities().size() - 1);
    for (auto step : state) {
        {
            const host::Opened<AcDbEntity> entity(space->entities()[index(random)], AcDb::kForWrite);
            entity->transformBy(AcGeMatrix3d::translation({0.1, 0.1, 0}));
        }
        benchmark::DoNotOptimize(host::entityAt(somewhere(random), 1.0));
    }
}
BENCHMARK(selectAfterChange)->Unit(benchmark::kMicrosecond);

// Moving a hundred thousand entities: 0 moves, 1 takes it back, 2 repeats it.
void moveMany(benchmark::State& state) {
    AcDbDatabase& database = drawing();
    constexpr std::size_t count = 100'000;
    const auto* space = host::peek<AcDbBlockTableRecord>(database.modelSpaceId());
    const AcGeMatrix3d shift = AcGeMatrix3d::translation({3, 4, 0});
    host::UndoLog& log = database.undoLog();
    const auto move = [&] {
        log.beginCommand(L"MOVE");
        for (std::size_t i = 0; i < count; ++i) {
            const host::Opened<AcDbEntity> entity(space->entities()[i], AcDb::kForWrite);
            entity->transformBy(shift);
        }
        log.endCommand();
    };
    for (auto step : state) {
        if (state.range(0) == 0) {
            move();
        }
        state.PauseTiming();
        if (state.range(0) != 0) {
            move();
        }
        if (state.range(0) == 2) {
            log.undo(1);
        }
        state.ResumeTiming();
        if (state.range(0) == 1) {
            log.undo(1);
        } else if (state.range(0) == 2) {
            log.redo(1);
        }
        state.PauseTiming();
        if (state.range(0) != 1) {
            log.undo(1);
        }
        log.clear();
        state.ResumeTiming();
    }
}
BENCHMARK(moveMany)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace

int main(int argc, char** argv) {
    app::initializeHost({});
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
