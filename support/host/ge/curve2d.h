// AcGeCurve2d: the base of the curves of the plane.
#pragma once

#include "host/ge/curve_base.h"
#include "host/ge/entity.h"

class AcGeCurve2d;

namespace host {

struct PlaneTraits {
    using Entity = AcGeEntity2d;
    using Curve = AcGeCurve2d;
    using Point = AcGePoint2d;
    using Vector = AcGeVector2d;
    using PointArray = AcGePoint2dArray;
    using VectorArray = AcGeVector2dArray;
    using BoundBlock = AcGeBoundBlock2d;
    static constexpr unsigned int dimension = 2;
};

} // namespace host

class AcGeCurve2d : public host::CurveBase<host::PlaneTraits> {
public:
    bool isKindOf(AcGe::EntityId entityType) const override {
        return entityType == AcGe::kCurve2d || AcGeEntity2d::isKindOf(entityType);
    }
    AcGeCurve2d* copy() const override = 0;
    AcGeCurve2d& transformBy(const AcGeMatrix2d& matrix) override = 0;

    virtual bool isLinear(AcGeLine2d& line, const AcGeTol& tolerance = AcGeContext::gTol) const;
    // Appends the curves at a distance to the right, seen along the curve; the caller owns them. False when
    // the curve has no such curve of its own kind.
    virtual bool getTrimmedOffset(double distance, AcGeVoidPointerArray& offsets,
                                  AcGe::OffsetCrvExtType extension = AcGe::kFillet,
                                  const AcGeTol& tolerance = AcGeContext::gTol) const;

protected:
    AcGeCurve2d() = default;
};
