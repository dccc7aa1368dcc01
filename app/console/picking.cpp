#include "app/console/picking.h"

#include "host/db/dbents.h"
#include "host/ed/acdocman.h"
#include "host/ed/aced.h"
#include "host/ed/acedreactor.h"
#include "host/ed/grips.h"
#include "host/ed/selection.h"
#include "host/ed/sysvars.h"

#include <algorithm>

namespace app {

bool Picking::hasSelection() const {
    return !host::impliedSelection().empty();
}

void Picking::cancel() {
    mCorner.reset();
    mCanvas.setSelecting(std::nullopt);
}

std::wstring Picking::pressed(const Aimed& aimed, Qt::KeyboardModifiers modifiers, bool released) {
    const bool remove = modifiers.testFlag(Qt::ShiftModifier);
    if (mCorner) {
        select(aimed.point, mRemovesByRectangle);
        return {};
    }
    if (released || curDoc() == nullptr) {
        return {};
    }
    if (const std::optional<std::size_t> grip =
            remove ? std::nullopt : mCanvas.gripAt({aimed.point.x, aimed.point.y})) {
        host::setHotGrips(host::gripsAt(host::shownGrips()[*grip].point));
        return L"GRIP_STRETCH\n";
    }
    if (host::systemVariableInteger(L"PICKFIRST") == 0) {
        return {};
    }
    if (const AcDbObjectId id = host::entityAt(aimed.point, host::pickAperture()); !id.isNull()) {
        std::vector<AcDbObjectId> ids{id};
        host::addGroupMembers(ids);
        change(ids, remove);
        return {};
    }
    mCorner = aimed.point;
    mRemovesByRectangle = remove;
    mCanvas.setSelecting(mCorner);
    return {};
}

std::wstring Picking::doubleClicked(const Aimed& aimed) {
    cancel();
    const AcDbObjectId id = host::entityAt(aimed.point, host::pickAperture());
    const auto* entity = host::peek<AcDbEntity>(id);
    if (entity == nullptr) {
        return {};
    }
    const std::string& kind = entity->dxfRecordName();
    host::impliedSelection().clear();
    change({id}, false);
    if (kind == "TEXT" || kind == "MTEXT" || kind == "ATTDEF") {
        return L"V7_EditText\n";
    }
    return kind == "LWPOLYLINE" || kind == "POLYLINE" ? L"_.PEDIT\n" : L"";
}

void Picking::select(const AcGePoint3d& corner, bool remove) {
    using host::SelectionShape;
    const AcGePoint3d from = host::worldToUcs(*mCorner);
    const AcGePoint3d to = host::worldToUcs(corner);
    cancel();
    const auto kind = to.x >= from.x ? SelectionShape::Kind::window : SelectionShape::Kind::crossing;
    std::vector<AcDbObjectId> ids =
        host::entitiesIn(SelectionShape::through(kind, host::rectangleCorners(from, to)));
    host::addGroupMembers(ids);
    change(ids, remove);
}

void Picking::change(const std::vector<AcDbObjectId>& ids, bool remove) {
    host::PickSet& set = host::impliedSelection();
    if (remove) {
        set.removeAll(ids);
    } else {
        if (host::systemVariableInteger(L"PICKADD") == 0 && !ids.empty()) {
            set.clear();
        }
        for (const AcDbObjectId id : ids) {
            set.add(id);
        }
    }
    follow(true);
    acedEditor->notify([](AcEditorReactor& reactor) { reactor.pickfirstModified(); });
}

void Picking::follow(bool atCommandPrompt) {
    if (curDoc() == nullptr) {
        mShown.clear();
        showGrips(false);
        return;
    }
    host::PickSet& set = host::impliedSelection();
    std::vector<AcDbObjectId> gone;
    std::copy_if(set.ids.begin(), set.ids.end(), std::back_inserter(gone),
                 [](AcDbObjectId id) { return host::peek<AcDbEntity>(id) == nullptr; });
    if (!gone.empty()) {
        set.removeAll(gone);
    }
    if (mShown != set.ids) {
        const std::vector<AcDbObjectId> before = std::exchange(mShown, set.ids);
        std::vector<AcDbObjectId> left;
        std::copy_if(before.begin(), before.end(), std::back_inserter(left),
                     [&](AcDbObjectId id) { return !set.contains(id); });
        mCanvas.highlight(left, false);
        mCanvas.highlight(mShown, true);
        mGeneration = 0;
    }
    showGrips(atCommandPrompt);
}

void Picking::showGrips(bool visible) {
    AcApDocument* document = curDoc();
    const bool shows =
        visible && document != nullptr && !mShown.empty() && host::systemVariableInteger(L"GRIPS") != 0 &&
        mShown.size() <= static_cast<std::size_t>(std::max(host::systemVariableInteger(L"GRIPOBJLIMIT"), 1));
    const Adesk::UInt64 generation =
        document != nullptr ? document->database()->impl().places.generation() + 1 : 0;
    if (shows == mShowsGrips && (!shows || generation == mGeneration)) {
        return;
    }
    mShowsGrips = shows;
    mGeneration = generation;
    host::showGrips(shows ? mShown : std::vector<AcDbObjectId>());
    std::vector<GripMark> marks;
    for (const host::EntityGrip& grip : host::shownGrips()) {
        marks.push_back({grip.point, false});
    }
    mCanvas.setGrips(std::move(marks));
}

} // namespace app
