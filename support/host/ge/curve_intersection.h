// AcGeCurveCurveInt2d and AcGeCurveCurveInt3d: the common points of any two curves, found by halving both
// until they are nearly straight and then by Newton's method.
#pragma once

#include "host/ge/curve2d.h"
#include "host/ge/curve3d.h"

#include <vector>

namespace host {

template <class Curve>
class CurveIntersection {
public:
    using Point = typename Curve::Point;

    CurveIntersection() = default;
    CurveIntersection(const Curve& first, const Curve& second, const AcGeTol& tolerance) {
        set(first, second, tolerance);
    }

    void set(const Curve& first, const Curve& second, const AcGeTol& tolerance = AcGeContext::gTol);
    // Single common points, in the order of the first curve until orderWrt2 is called.
    int numIntPoints() const { return static_cast<int>(m_points.size()); }
    Point intPoint(int index) const { return m_points[static_cast<std::size_t>(index)].point; }
    void getIntParams(int index, double& firstParameter, double& secondParameter) const {
        firstParameter = m_points[static_cast<std::size_t>(index)].first;
        secondParameter = m_points[static_cast<std::size_t>(index)].second;
    }
    // Stretches common to both curves, as ranges of either; their ends are no intersection points.
    int overlapCount() const { return static_cast<int>(m_overlaps.size()); }
    bool overlapRange(int index, AcGeInterval& firstRange, AcGeInterval& secondRange) const;
    CurveIntersection& orderWrt1();
    CurveIntersection& orderWrt2();

private:
    struct Common {
        double first;
        double second;
        Point point;
    };
    struct Overlap {
        AcGeInterval first, second;
    };
    template <class>
    friend class IntersectionSearch;

    std::vector<Common> m_points;
    std::vector<Overlap> m_overlaps;
};

extern template class CurveIntersection<AcGeCurve2d>;
extern template class CurveIntersection<AcGeCurve3d>;

} // namespace host

class AcGeCurveCurveInt2d : public host::CurveIntersection<AcGeCurve2d> {
public:
    AcGeCurveCurveInt2d() = default;
    AcGeCurveCurveInt2d(const AcGeCurve2d& first, const AcGeCurve2d& second,
                        const AcGeTol& tolerance = AcGeContext::gTol)
        : host::CurveIntersection<AcGeCurve2d>(first, second, tolerance) {}
};

class AcGeCurveCurveInt3d : public host::CurveIntersection<AcGeCurve3d> {
public:
    AcGeCurveCurveInt3d() = default;
    // The normal of the plane of plane curves may be given; it is not needed.
    AcGeCurveCurveInt3d(const AcGeCurve3d& first, const AcGeCurve3d& second,
                        const AcGeVector3d& = AcGeVector3d::kIdentity,
                        const AcGeTol& tolerance = AcGeContext::gTol)
        : host::CurveIntersection<AcGeCurve3d>(first, second, tolerance) {}
};
