// Tolerances and the enumerations of the geometry interface.
#pragma once

#include "host/ge/adesk.h"

// Two points are equal within equalPoint (a distance), two vectors within equalVector (the length of their
// difference; for directions the sine of the angle, nearly).
class AcGeTol {
public:
    constexpr AcGeTol() = default;
    constexpr double equalPoint() const { return m_equalPoint; }
    constexpr double equalVector() const { return m_equalVector; }
    constexpr AcGeTol& setEqualPoint(double value) {
        m_equalPoint = value;
        return *this;
    }
    constexpr AcGeTol& setEqualVector(double value) {
        m_equalVector = value;
        return *this;
    }

private:
    double m_equalPoint = 1e-10;
    double m_equalVector = 1e-10;
};

// Published as a struct with the default tolerance of every call that is given none.
struct AcGeContext {
    static AcGeTol gTol;
};
inline constinit AcGeTol AcGeContext::gTol{};

struct AcGe {
    enum EntityId {
        kEntity2d,
        kEntity3d,
        kPointEnt2d,
        kPointEnt3d,
        kPosition2d,
        kPosition3d,
        kCurve2d,
        kCurve3d,
        kBoundBlock2d,
        kBoundBlock3d,
        kLinearEnt2d,
        kLinearEnt3d,
        kLine2d,
        kLine3d,
        kRay2d,
        kRay3d,
        kLineSeg2d,
        kLineSeg3d,
        kPlanarEnt,
        kPlane,
        kCircArc2d,
        kCircArc3d,
        kEllipArc2d,
        kEllipArc3d,
        kSplineEnt2d,
        kSplineEnt3d,
        kPolyline2d,
        kPolyline3d,
        kNurbCurve2d,
        kNurbCurve3d,
        kCompositeCrv2d,
        kCompositeCrv3d
    };
    enum ErrorCondition {
        kOk,
        k0This,
        k0Arg1,
        k0Arg2,
        kPerpendicularArg1Arg2,
        kEqualArg1Arg2,
        kEqualArg1Arg3,
        kEqualArg2Arg3,
        kLinearlyDependentArg1Arg2Arg3,
        kArg1TooBig,
        kArg1OnThis,
        kArg1InsideThis
    };
    enum PointContainment { kInside, kOutside, kOnBoundary };
    enum OffsetCrvExtType { kFillet, kChamfer, kExtend };
    enum AcGeXConfig {
        kUnknown,
        kLeftRight,
        kRightLeft,
        kLeftLeft,
        kRightRight,
        kPointLeft,
        kPointRight,
        kLeftOverlap,
        kOverlapLeft,
        kRightOverlap,
        kOverlapRight,
        kOverlapStart,
        kOverlapEnd,
        kOverlapOverlap
    };
};
using AcGeError = AcGe::ErrorCondition;
