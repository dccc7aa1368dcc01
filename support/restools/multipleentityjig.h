// A jig that drags several entities together.
#pragma once

#include "host/arx.h"

#include <span>
#include <vector>

/// Moves or turns entities that are in no database, or open for write; they stay their owner's.
class QDV_EXPORT CMutipleEntityJig : public AcEdJig {
public:
    enum Mode { kMove = 1, kRotate = 2 };

    explicit CMutipleEntityJig(std::span<AcDbEntity* const> entities);
    ~CMutipleEntityJig() override;

    /// Mode kMove drags the entities by the base point, which goes along; kRotate turns them about it. Points
    /// are in world coordinates, the turn is about the Z axis. Nonzero when the user ends without an answer;
    /// the entities then stand where they were dragged last.
    int DoProcess(int mode, AcGePoint3d& base, const ACHAR* prompt);

    DragStatus sampler() override;
    Adesk::Boolean update() override;
    AcDbEntity* entity() const override { return mPreview; }

private:
    void Transform(const AcGeMatrix3d& transform);

    std::vector<AcDbEntity*> mEntities;
    AcDbEntity* mPreview; ///< draws all of them
    int mMode = kMove;
    AcGePoint3d mBase;
    AcGePoint3d mPoint;
    double mAngle = 0.0;    ///< of the entities, against how they were
    double mNewAngle = 0.0; ///< where the cursor is
};
