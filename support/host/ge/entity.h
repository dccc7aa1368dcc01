// AcGeEntity2d and AcGeEntity3d: the common base of curves and planes. Each offers its own copy(); the caller
// owns what it returns.
#pragma once

#include "host/ge/matrix3d.h"

class AcGeEntity2d {
public:
    virtual ~AcGeEntity2d() = default;

    virtual AcGe::EntityId type() const = 0;
    virtual bool isKindOf(AcGe::EntityId entityType) const { return entityType == AcGe::kEntity2d; }
    virtual AcGeEntity2d* copy() const = 0;
    virtual AcGeEntity2d& transformBy(const AcGeMatrix2d& matrix) = 0;
    virtual bool isOn(const AcGePoint2d& point, const AcGeTol& tolerance = AcGeContext::gTol) const = 0;

    AcGeEntity2d& translateBy(const AcGeVector2d& vector) {
        return transformBy(AcGeMatrix2d::translation(vector));
    }
    AcGeEntity2d& rotateBy(double angle, const AcGePoint2d& center = AcGePoint2d::kOrigin) {
        return transformBy(AcGeMatrix2d::rotation(angle, center));
    }
    AcGeEntity2d& mirror(const AcGeLine2d& line) { return transformBy(AcGeMatrix2d::mirroring(line)); }
    AcGeEntity2d& scaleBy(double factor, const AcGePoint2d& center = AcGePoint2d::kOrigin) {
        return transformBy(AcGeMatrix2d::scaling(factor, center));
    }

protected:
    AcGeEntity2d() = default;
    AcGeEntity2d(const AcGeEntity2d&) = default;
    AcGeEntity2d& operator=(const AcGeEntity2d&) = default;
};

class AcGeEntity3d {
public:
    virtual ~AcGeEntity3d() = default;

    virtual AcGe::EntityId type() const = 0;
    virtual bool isKindOf(AcGe::EntityId entityType) const { return entityType == AcGe::kEntity3d; }
    virtual AcGeEntity3d* copy() const = 0;
    virtual AcGeEntity3d& transformBy(const AcGeMatrix3d& matrix) = 0;
    virtual bool isOn(const AcGePoint3d& point, const AcGeTol& tolerance = AcGeContext::gTol) const = 0;

    AcGeEntity3d& translateBy(const AcGeVector3d& vector) {
        return transformBy(AcGeMatrix3d::translation(vector));
    }
    AcGeEntity3d& rotateBy(double angle, const AcGeVector3d& axis,
                           const AcGePoint3d& center = AcGePoint3d::kOrigin) {
        return transformBy(AcGeMatrix3d::rotation(angle, axis, center));
    }
    AcGeEntity3d& mirror(const AcGePlane& plane) { return transformBy(AcGeMatrix3d::mirroring(plane)); }
    AcGeEntity3d& scaleBy(double factor, const AcGePoint3d& center = AcGePoint3d::kOrigin) {
        return transformBy(AcGeMatrix3d::scaling(factor, center));
    }

protected:
    AcGeEntity3d() = default;
    AcGeEntity3d(const AcGeEntity3d&) = default;
    AcGeEntity3d& operator=(const AcGeEntity3d&) = default;
};
