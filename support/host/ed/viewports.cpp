#include "host/ed/viewports.h"

#include "host/db/dbents.h"
#include "host/ed/documentstate.h"
#include "host/ed/ed.h"

#include <algorithm>
#include <cmath>

namespace host {
namespace {

constexpr int sheetNumber = 1;
constexpr int modelTabNumber = 2;

/// What a viewport shows, in the model.
ShownView viewOf(const AcDbViewport& viewport) {
    return {viewport.modelToPaper().inverse() * viewport.centerPoint(), viewport.viewHeight()};
}

} // namespace

std::vector<AcDbObjectId> layoutViewports(const AcDbDatabase& database) {
    std::vector<AcDbObjectId> found;
    const auto* sheet = database.tilemode() ? nullptr : peek<AcDbBlockTableRecord>(database.paperSpaceId());
    for (AcDbStub* stub : sheet != nullptr ? drawOrder(*sheet) : std::vector<AcDbStub*>()) {
        if (const auto* viewport = peek<AcDbViewport>(AcDbObjectId(stub))) {
            const ReadAccess access(*viewport);
            if (!viewport->isSheet()) {
                found.emplace_back(stub);
            }
        }
    }
    return found;
}

Adesk::Int16 freeViewportNumber(const AcDbDatabase& database) {
    int last = sheetNumber;
    for (const AcDbObjectId id : layoutViewports(database)) {
        const ReadAccess access(*peek<AcDbViewport>(id));
        last = std::max<int>(last, peek<AcDbViewport>(id)->number());
    }
    return static_cast<Adesk::Int16>(last + 1);
}

int activeViewportNumber(const AcDbDatabase& database) {
    if (database.tilemode()) {
        return modelTabNumber;
    }
    const auto* viewport = peek<AcDbViewport>(database.activeViewportId());
    if (viewport == nullptr) {
        return sheetNumber;
    }
    const ReadAccess access(*viewport);
    return viewport->number();
}

bool enterViewport(AcDbObjectId id) {
    AcApDocument* document = curDoc();
    AcDbDatabase* database = document != nullptr ? document->database() : nullptr;
    if (database == nullptr || database->tilemode()) {
        return false;
    }
    const AcDbObjectId now = database->activeViewportId();
    if (now == id) {
        return !id.isNull();
    }
    keepViewportView();
    const std::optional<ShownView> sheet = now.isNull() ? shownView() : document->state().sheetView;
    const Adesk::Int16 number = freeViewportNumber(*database);
    if (id.isNull() || database->setActiveViewport(id) != Acad::eOk) {
        return false;
    }
    document->state().sheetView = sheet;
    const Opened<AcDbViewport> viewport(id, AcDb::kForWrite);
    if (viewport) {
        if (viewport->number() <= sheetNumber) { // files do not number those of layouts that are not shown
            viewport->setNumber(number);
        }
        showView(viewOf(*viewport.get()));
    }
    return true;
}

bool leaveViewport() {
    AcApDocument* document = curDoc();
    AcDbDatabase* database = document != nullptr ? document->database() : nullptr;
    if (database == nullptr || database->activeViewportId().isNull()) {
        return false;
    }
    keepViewportView();
    database->setActiveViewport({});
    if (const std::optional<ShownView> sheet = std::exchange(document->state().sheetView, std::nullopt)) {
        showView(*sheet);
    }
    return true;
}

void keepViewportView() {
    AcApDocument* document = curDoc();
    const AcDbObjectId id = document != nullptr ? document->database()->activeViewportId() : AcDbObjectId();
    const auto* shown = peek<AcDbViewport>(id);
    if (shown == nullptr) {
        return;
    }
    const ShownView view = shownView();
    constexpr double same = 1e-9; // of the height
    {
        const ReadAccess access(*shown);
        const ShownView own = viewOf(*shown);
        const double slack = same * own.height;
        const bool isSame = std::abs(view.height - own.height) <= slack &&
                            std::hypot(view.centre.x - own.centre.x, view.centre.y - own.centre.y) <= slack;
        if (shown->isLocked() || isSame || !(view.height > 0.0)) {
            return;
        }
    }
    const Opened<AcDbViewport> viewport(id, AcDb::kForWrite);
    if (viewport) {
        const AcGeVector3d off = viewport->modelToPaper() * view.centre - viewport->centerPoint();
        viewport->setViewCenter(viewport->viewCenter() + to2d(off) / viewport->customScale());
        viewport->setViewHeight(view.height);
    }
}

} // namespace host
