// AcGePlanarEnt and AcGePlane: an unbounded plane with an origin and two orthonormal axes of its own.
#pragma once

#include "host/ge/entity.h"

class AcGeLinearEnt3d;

class AcGePlanarEnt : public AcGeEntity3d {
public:
    bool isKindOf(AcGe::EntityId entityType) const override {
        return entityType == AcGe::kPlanarEnt || AcGeEntity3d::isKindOf(entityType);
    }

    // A point and the two axes.
    void get(AcGePoint3d& point, AcGeVector3d& uAxis, AcGeVector3d& vAxis) const {
        getCoordSystem(point, uAxis, vAxis);
    }
    // Three points: on the u axis, the origin, on the v axis.
    void get(AcGePoint3d& uPoint, AcGePoint3d& origin, AcGePoint3d& vPoint) const;
    void getCoordSystem(AcGePoint3d& origin, AcGeVector3d& uAxis, AcGeVector3d& vAxis) const {
        origin = m_origin;
        uAxis = m_uAxis;
        vAxis = m_vAxis;
    }
    AcGePoint3d pointOnPlane() const { return m_origin; }
    AcGeVector3d normal() const { return m_uAxis.crossProduct(m_vAxis); }
    // a x + b y + c z + d = 0 with (a, b, c) the unit normal.
    void getCoefficients(double& a, double& b, double& c, double& d) const;

    AcGePoint3d closestPointTo(const AcGePoint3d& point) const;
    double distanceTo(const AcGePoint3d& point) const { return point.distanceTo(closestPointTo(point)); }
    AcGePoint3d project(const AcGePoint3d& point, const AcGeVector3d& direction) const;
    bool isOn(const AcGePoint3d& point, const AcGeTol& tolerance = AcGeContext::gTol) const override;
    // The point of intersection with a line, ray or segment, when there is exactly one.
    bool intersectWith(const AcGeLinearEnt3d& line, AcGePoint3d& point,
                       const AcGeTol& tolerance = AcGeContext::gTol) const;
    bool isParallelTo(const AcGePlanarEnt& other, const AcGeTol& tolerance = AcGeContext::gTol) const;
    bool isParallelTo(const AcGeLinearEnt3d& line, const AcGeTol& tolerance = AcGeContext::gTol) const;
    bool isPerpendicularTo(const AcGePlanarEnt& other, const AcGeTol& tolerance = AcGeContext::gTol) const;
    bool isPerpendicularTo(const AcGeLinearEnt3d& line, const AcGeTol& tolerance = AcGeContext::gTol) const;
    bool isCoplanarTo(const AcGePlanarEnt& other, const AcGeTol& tolerance = AcGeContext::gTol) const;

protected:
    AcGePlanarEnt() = default;

    void assign(const AcGePoint3d& origin, const AcGeVector3d& normal);
    void assign(const AcGePoint3d& origin, const AcGeVector3d& uAxis, const AcGeVector3d& vAxis);

    AcGePoint3d m_origin;
    AcGeVector3d m_uAxis = AcGeVector3d::kXAxis;
    AcGeVector3d m_vAxis = AcGeVector3d::kYAxis;
};

class AcGePlane : public AcGePlanarEnt {
public:
    // The XY plane.
    AcGePlane() = default;
    // The axes follow the arbitrary axis rule.
    AcGePlane(const AcGePoint3d& origin, const AcGeVector3d& normal) { assign(origin, normal); }
    AcGePlane(const AcGePoint3d& uPoint, const AcGePoint3d& origin, const AcGePoint3d& vPoint) {
        assign(origin, uPoint - origin, vPoint - origin);
    }
    // vAxis is made orthogonal to uAxis; both get unit length.
    AcGePlane(const AcGePoint3d& origin, const AcGeVector3d& uAxis, const AcGeVector3d& vAxis) {
        assign(origin, uAxis, vAxis);
    }
    AcGePlane(double a, double b, double c, double d) { set(a, b, c, d); }

    static const AcGePlane kXYPlane;
    static const AcGePlane kYZPlane;
    static const AcGePlane kZXPlane;

    AcGe::EntityId type() const override { return AcGe::kPlane; }
    bool isKindOf(AcGe::EntityId entityType) const override {
        return entityType == AcGe::kPlane || AcGePlanarEnt::isKindOf(entityType);
    }
    AcGePlane* copy() const override { return new AcGePlane(*this); }
    AcGePlane& transformBy(const AcGeMatrix3d& matrix) override;

    AcGePlane& set(const AcGePoint3d& point, const AcGeVector3d& normal) {
        assign(point, normal);
        return *this;
    }
    AcGePlane& set(const AcGePoint3d& uPoint, const AcGePoint3d& origin, const AcGePoint3d& vPoint) {
        return *this = AcGePlane(uPoint, origin, vPoint);
    }
    AcGePlane& set(double a, double b, double c, double d);
    AcGePlane& set(const AcGePoint3d& origin, const AcGeVector3d& uAxis, const AcGeVector3d& vAxis) {
        assign(origin, uAxis, vAxis);
        return *this;
    }
    AcGePlane& reverseNormal();
    // Positive on the side of the normal.
    double signedDistanceTo(const AcGePoint3d& point) const {
        return (point - m_origin).dotProduct(normal());
    }
    using AcGePlanarEnt::intersectWith;
    // The line of intersection; false for parallel planes.
    bool intersectWith(const AcGePlane& other, AcGeLine3d& line,
                       const AcGeTol& tolerance = AcGeContext::gTol) const;
    bool isEqualTo(const AcGePlane& other, const AcGeTol& tolerance = AcGeContext::gTol) const;
};

inline const AcGePlane AcGePlane::kXYPlane{AcGePoint3d::kOrigin, AcGeVector3d::kXAxis, AcGeVector3d::kYAxis};
inline const AcGePlane AcGePlane::kYZPlane{AcGePoint3d::kOrigin, AcGeVector3d::kYAxis, AcGeVector3d::kZAxis};
inline const AcGePlane AcGePlane::kZXPlane{AcGePoint3d::kOrigin, AcGeVector3d::kZAxis, AcGeVector3d::kXAxis};
