// AcGeCurve3d: the base of the curves of space.
#pragma once

#include "host/ge/curve_base.h"
#include "host/ge/plane.h"

class AcGeCurve3d;

namespace host {

struct SpaceTraits {
    using Entity = AcGeEntity3d;
    using Curve = AcGeCurve3d;
    using Point = AcGePoint3d;
    using Vector = AcGeVector3d;
    using PointArray = AcGePoint3dArray;
    using VectorArray = AcGeVector3dArray;
    using BoundBlock = AcGeBoundBlock3d;
    static constexpr unsigned int dimension = 3;
};

} // namespace host

class AcGeCurve3d : public host::CurveBase<host::SpaceTraits> {
public:
    using host::CurveBase<host::SpaceTraits>::closestPointTo;
    using host::CurveBase<host::SpaceTraits>::distanceTo;

    bool isKindOf(AcGe::EntityId entityType) const override {
        return entityType == AcGe::kCurve3d || AcGeEntity3d::isKindOf(entityType);
    }
    AcGeCurve3d* copy() const override = 0;
    AcGeCurve3d& transformBy(const AcGeMatrix3d& matrix) override = 0;

    // The closest points of two curves; the one on the other curve is put into pointOnOther.
    AcGePoint3d closestPointTo(const AcGeCurve3d& other, AcGePoint3d& pointOnOther,
                               const AcGeTol& tolerance = AcGeContext::gTol) const;
    double distanceTo(const AcGeCurve3d& other, const AcGeTol& tolerance = AcGeContext::gTol) const;
    // A plane the curve lies in. For a straight curve one of many.
    virtual bool isPlanar(AcGePlane& plane, const AcGeTol& tolerance = AcGeContext::gTol) const;
    virtual bool isLinear(AcGeLine3d& line, const AcGeTol& tolerance = AcGeContext::gTol) const;
    bool isCoplanarWith(const AcGeCurve3d& other, AcGePlane& plane,
                        const AcGeTol& tolerance = AcGeContext::gTol) const;
    // Appends the curves at a distance to the right, seen along the curve and against the normal; the caller
    // owns them. False when the curve has no such curve of its own kind.
    virtual bool getTrimmedOffset(double distance, const AcGeVector3d& planeNormal,
                                  AcGeVoidPointerArray& offsets,
                                  AcGe::OffsetCrvExtType extension = AcGe::kFillet,
                                  const AcGeTol& tolerance = AcGeContext::gTol) const;

protected:
    AcGeCurve3d() = default;
};
