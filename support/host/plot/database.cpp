// Plots the model space of a database.
#include "host/db/db.h"
#include "host/db/drawingsource.h"
#include "host/plot/plot.h"

namespace host {

std::wstring plotExtents(AcDbDatabase* database, const std::filesystem::path& path,
                         const PlotOptions& options) {
    const auto* space = peek<AcDbBlockTableRecord>(database->modelSpaceId());
    if (space == nullptr)
        return L"图形没有模型空间，未出图。";
    const std::unique_ptr<DrawingSource> source = drawingSource(*database);
    const auto draw = [&](Flattener& flattener) {
        for (AcDbStub* stub : drawOrder(*space)) {
            if (auto* entity = peek<AcDbEntity>(AcDbObjectId(stub))) { // erased ones are not seen
                const ReadAccess access(*entity);
                flattener.draw(*entity);
            }
        }
    };
    return plotDrawing(*source, draw, path, options);
}

} // namespace host
