#include "host/ed/dragging.h"

#include "host/ed/runcontext.h"

#include <algorithm>

namespace host {
namespace {

/// More are not copied at every movement: the first ones show where all go.
constexpr int mostShown = 300;

} // namespace

Dragging::Dragging(const AcDbObjectIdArray& ids, Transform transform)
    : mIds(ids), mTransform(std::move(transform)), mOuter(runContext().dragging) {
    runContext().dragging = this;
}

Dragging::~Dragging() {
    runContext().dragging = mOuter;
}

std::vector<AcDbEntity*> Dragging::at(const AcGePoint3d& base, const AcGePoint3d& point) {
    const AcGeMatrix3d matrix = mTransform(base, point);
    std::vector<AcDbEntity*> shown;
    mShown.clear();
    for (int i = 0; i < std::min(mIds.length(), mostShown); ++i) {
        const Opened<AcDbEntity> entity(mIds[i], AcDb::kForRead);
        std::unique_ptr<AcDbEntity> copy(entity ? AcDbEntity::cast(entity->clone()) : nullptr);
        if (copy != nullptr && copy->transformBy(matrix) == Acad::eOk) {
            shown.push_back(copy.get());
            mShown.push_back(std::move(copy));
        }
    }
    return shown;
}

} // namespace host
