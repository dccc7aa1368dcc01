// A jig that lets one entity follow the cursor.
#pragma once

#include "host/arx.h"

#include <functional>

/// Gives each dragged point to a function that moves the entity there. The entity stays its owner's until
/// append() puts it into the drawing.
class QDV_EXPORT AcEdJigExMove : public AcEdJig {
public:
    using Move = std::function<void(const AcGePoint3d& point)>;
    AcEdJigExMove(AcDbEntity* entity, Move move) : mEntity(entity), mMove(std::move(move)) {}

    DragStatus sampler() override;
    Adesk::Boolean update() override;
    AcDbEntity* entity() const override { return mEntity; }
    const AcGePoint3d& Point() const { return mPoint; }

private:
    AcDbEntity* mEntity;
    Move mMove;
    AcGePoint3d mPoint;
    bool mHasPoint = false;
};
