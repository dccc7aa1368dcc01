// A jig that lets one entity follow the cursor.
#include "restools/movejig.h"

AcEdJig::DragStatus AcEdJigExMove::sampler() {
    setUserInputControls(kAccept3dCoordinates | kNullResponseAccepted);
    AcGePoint3d point;
    const DragStatus status = acquirePoint(point);
    if (status != kNormal) {
        return status;
    }
    if (mHasPoint && point.isEqualTo(mPoint)) {
        return kNoChange;
    }
    mPoint = point;
    mHasPoint = true;
    return kNormal;
}

Adesk::Boolean AcEdJigExMove::update() {
    if (!mHasPoint) {
        return Adesk::kFalse;
    }
    mMove(mPoint);
    return Adesk::kTrue;
}
