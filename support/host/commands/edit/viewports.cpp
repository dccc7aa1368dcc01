#include "host/commands/edit/viewports.h"

#include "host/commands/edit/editing.h"
#include "host/db/dbents.h"

#include <algorithm>

namespace host {
namespace {

constexpr short statusCode = 68, numberCode = 69; // group codes
constexpr int sheetNumber = 1;

/// A viewport in no drawing yet, with what only files say.
std::unique_ptr<AcDbViewport> makeViewport(AcDbDatabase& database, int number, const Box2d& frame) {
    auto viewport = std::make_unique<AcDbViewport>();
    ResbufBuilder groups;
    groups.string(100, L"AcDbViewport");
    groups.integer(statusCode, number);
    groups.integer(numberCode, number);
    const ResbufList list = groups.release();
    ResbufDxfReader reader(&database, list.get());
    viewport->dxfInFields(&reader);
    viewport->setDatabaseDefaults(&database);
    viewport->setCenterPoint({frame.center().x, frame.center().y, 0.0});
    viewport->setWidth(frame.width());
    viewport->setHeight(frame.height());
    return viewport;
}

/// The greatest number of the sheet's viewports; 0 when there are none.
int lastNumber(AcDbObjectId sheet) {
    int last = 0;
    for (AcDbStub* stub : peek<AcDbBlockTableRecord>(sheet)->entities()) {
        if (const auto* viewport = peek<AcDbViewport>(stub)) {
            last = std::max<int>(last, viewport->data().number);
        }
    }
    return last;
}

} // namespace

Box2d printableArea(const AcDbDatabase& database) {
    const auto* block = peek<AcDbBlockTableRecord>(database.paperSpaceId());
    const auto* layout = block != nullptr ? peek<AcDbLayout>(block->getLayoutId()) : nullptr;
    double width = 0.0;
    double height = 0.0;
    if (layout != nullptr) {
        const ReadAccess access(*layout);
        double left = 0.0;
        double bottom = 0.0;
        double right = 0.0;
        double top = 0.0;
        layout->getPlotPaperSize(width, height);
        layout->getPlotPaperMargins(left, bottom, right, top);
        width -= left + right;
        height -= bottom + top;
    }
    constexpr double usualWidth = 420.0; // A3
    constexpr double usualHeight = 297.0;
    const bool hasPaper = width > 0.0 && height > 0.0;
    return {{0.0, 0.0}, {hasPaper ? width : usualWidth, hasPaper ? height : usualHeight}};
}

void showWholeModel(AcDbViewport& viewport, AcDbDatabase& database) {
    database.updateExt();
    const bool isEmpty = database.extmin().x > database.extmax().x;
    const AcGePoint3d low = isEmpty ? AcGePoint3d::kOrigin : database.extmin();
    const AcGePoint3d high =
        isEmpty ? AcGePoint3d(viewport.width(), viewport.height(), 0.0) : database.extmax();
    viewport.setViewDirection(AcGeVector3d::kZAxis);
    viewport.setViewTarget(AcGePoint3d::kOrigin);
    viewport.setTwistAngle(0.0);
    viewport.setViewCenter({(low.x + high.x) / 2.0, (low.y + high.y) / 2.0});
    const double height = std::max(high.y - low.y, (high.x - low.x) * viewport.height() / viewport.width());
    viewport.setViewHeight(height > 0.0 ? height : 1.0);
}

AcDbObjectId addViewport(AcDbDatabase& database, const Box2d& frame) {
    const AcDbObjectId sheet = database.paperSpaceId();
    int number = lastNumber(sheet);
    if (number == 0) {
        number = sheetNumber;
        const Box2d area = printableArea(database);
        auto whole = makeViewport(database, sheetNumber, area);
        whole->setViewCenter(area.center());
        whole->setViewHeight(area.height());
        appendTo(sheet, std::move(whole));
    }
    auto viewport = makeViewport(database, number + 1, frame);
    showWholeModel(*viewport, database);
    return appendTo(sheet, std::move(viewport));
}

std::vector<Box2d> splitFrame(const Box2d& area, int rows, int columns) {
    std::vector<Box2d> frames;
    const double width = area.width() / columns;
    const double height = area.height() / rows;
    for (int row = rows - 1; row >= 0; --row) {
        for (int column = 0; column < columns; ++column) {
            const AcGePoint2d corner(area.minimum.x + column * width, area.minimum.y + row * height);
            frames.push_back({corner, {corner.x + width, corner.y + height}});
        }
    }
    return frames;
}

} // namespace host
