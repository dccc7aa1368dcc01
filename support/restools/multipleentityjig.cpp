// Each answer transforms the entities from where they stand.
#include "restools/multipleentityjig.h"

namespace {

class Preview : public AcDbEntity {
public:
    explicit Preview(const std::vector<AcDbEntity*>& entities) : mEntities(entities) {}

protected:
    Adesk::Boolean subWorldDraw(AcGiWorldDraw* draw) override {
        for (AcDbEntity* entity : mEntities) {
            draw->geometry().draw(entity);
        }
        return Adesk::kTrue;
    }

private:
    const std::vector<AcDbEntity*>& mEntities;
};

} // namespace

CMutipleEntityJig::CMutipleEntityJig(std::span<AcDbEntity* const> entities)
    : mEntities(entities.begin(), entities.end()), mPreview(new Preview(mEntities)) {}

CMutipleEntityJig::~CMutipleEntityJig() {
    delete mPreview;
}

int CMutipleEntityJig::DoProcess(int mode, AcGePoint3d& base, const ACHAR* prompt) {
    mMode = mode;
    mBase = mPoint = base;
    mAngle = mNewAngle = 0.0;
    setDispPrompt(L"%s", prompt);
    const DragStatus status = drag();
    base = mBase;
    return status == kNormal ? 0 : 1;
}

AcEdJig::DragStatus CMutipleEntityJig::sampler() {
    setUserInputControls(kAccept3dCoordinates | kNullResponseAccepted);
    if (mMode == kRotate) {
        double angle = 0.0;
        const DragStatus status = acquireAngle(angle, mBase);
        mNewAngle = status == kNormal ? angle : mNewAngle;
        return status;
    }
    AcGePoint3d point;
    const DragStatus status = acquirePoint(point);
    mPoint = status == kNormal ? point : mPoint;
    return status;
}

Adesk::Boolean CMutipleEntityJig::update() {
    if (mMode == kRotate) {
        Transform(AcGeMatrix3d::rotation(mNewAngle - mAngle, AcGeVector3d::kZAxis, mBase));
        mAngle = mNewAngle;
    } else {
        Transform(AcGeMatrix3d::translation(mPoint - mBase));
        mBase = mPoint;
    }
    return Adesk::kTrue;
}

void CMutipleEntityJig::Transform(const AcGeMatrix3d& transform) {
    for (AcDbEntity* entity : mEntities) {
        entity->transformBy(transform);
    }
}
