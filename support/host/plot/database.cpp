// Plots the model space of a database.
#include "host/db/db.h"
#include "host/db/drawingsource.h"
#include "host/plot/plot.h"

namespace host {

std::wstring plotExtents(AcDbDatabase* database, const std::filesystem::path& path,
                         const PlotOptions& options) {
    auto* const space = peek<AcDbBlockTableRecord>(database->modelSpaceId());
    if (space == nullptr)
        return L"图形没有模型空间，未出图。";
    const std::unique_ptr<DrawingSource> source = drawingSource(*database);
    const auto draw = [&](Flattener& flattener) { // in drawing order, without what is erased
        const ReadAccess access(*space);
        space->worldDraw(&flattener.worldDraw());
    };
    return plotDrawing(*source, draw, path, options);
}

} // namespace host
