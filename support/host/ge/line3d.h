// Straight curves of space: the unbounded line, the ray and the segment.
#pragma once

#include "host/ge/curve3d.h"

// A point and a vector; parameter t is the point plus t times the vector.
class AcGeLinearEnt3d : public AcGeCurve3d {
public:
    using AcGeCurve3d::closestPointTo;

    bool isKindOf(AcGe::EntityId entityType) const override {
        return entityType == AcGe::kLinearEnt3d || AcGeCurve3d::isKindOf(entityType);
    }
    AcGeLinearEnt3d* copy() const override = 0;
    AcGeLinearEnt3d& transformBy(const AcGeMatrix3d& matrix) override;
    void getInterval(AcGeInterval& interval) const override = 0;
    AcGePoint3d evaluate(double parameter, int derivativeCount, AcGeVector3d* derivatives) const override;
    double closestParameter(const AcGePoint3d& point) const override;
    double length(double from, double to, double tolerance = 1e-10) const override;
    double paramAtLength(double datum, double distance, bool forward = true,
                         double tolerance = 1e-10) const override;
    AcGeBoundBlock3d orthoBoundBlock(const AcGeInterval& range) const override;
    using AcGeCurve3d::orthoBoundBlock;
    std::vector<double> sampleParameters(double from, double to) const override { return {from, to}; }
    bool isPlanar(AcGePlane& plane, const AcGeTol& tolerance = AcGeContext::gTol) const override;
    bool isLinear(AcGeLine3d& line, const AcGeTol& tolerance = AcGeContext::gTol) const override;
    bool getTrimmedOffset(double distance, const AcGeVector3d& planeNormal, AcGeVoidPointerArray& offsets,
                          AcGe::OffsetCrvExtType extension = AcGe::kFillet,
                          const AcGeTol& tolerance = AcGeContext::gTol) const override;

    AcGePoint3d pointOnLine() const { return m_point; }
    // Of unit length.
    AcGeVector3d direction() const { return m_vector.normal(); }
    void getLine(AcGeLine3d& line) const;

    // The single common point; false for skew and for parallel lines, and where an end comes before it.
    bool intersectWith(const AcGeLinearEnt3d& other, AcGePoint3d& point,
                       const AcGeTol& tolerance = AcGeContext::gTol) const;
    bool intersectWith(const AcGePlanarEnt& plane, AcGePoint3d& point,
                       const AcGeTol& tolerance = AcGeContext::gTol) const;
    // The common stretch of two lines in one; a new entity owned by the caller.
    bool overlap(const AcGeLinearEnt3d& other, AcGeLinearEnt3d*& common,
                 const AcGeTol& tolerance = AcGeContext::gTol) const;
    bool isParallelTo(const AcGeLinearEnt3d& other, const AcGeTol& tolerance = AcGeContext::gTol) const {
        return m_vector.isParallelTo(other.m_vector, tolerance);
    }
    bool isParallelTo(const AcGePlanarEnt& plane, const AcGeTol& tolerance = AcGeContext::gTol) const {
        return m_vector.isPerpendicularTo(plane.normal(), tolerance);
    }
    bool isPerpendicularTo(const AcGeLinearEnt3d& other, const AcGeTol& tolerance = AcGeContext::gTol) const {
        return m_vector.isPerpendicularTo(other.m_vector, tolerance);
    }
    bool isPerpendicularTo(const AcGePlanarEnt& plane, const AcGeTol& tolerance = AcGeContext::gTol) const {
        return m_vector.isParallelTo(plane.normal(), tolerance);
    }
    bool isColinearTo(const AcGeLinearEnt3d& other, const AcGeTol& tolerance = AcGeContext::gTol) const;
    void getPerpPlane(const AcGePoint3d& point, AcGePlane& plane) const { plane.set(point, m_vector); }

protected:
    AcGeLinearEnt3d() = default;
    AcGeLinearEnt3d(const AcGePoint3d& point, const AcGeVector3d& vector)
        : m_point(point), m_vector(vector) {}

    AcGePoint3d m_point;
    AcGeVector3d m_vector = AcGeVector3d::kXAxis;
};

class AcGeLine3d : public AcGeLinearEnt3d {
public:
    // The X axis.
    AcGeLine3d() = default;
    AcGeLine3d(const AcGePoint3d& point, const AcGeVector3d& vector) : AcGeLinearEnt3d(point, vector) {}
    AcGeLine3d(const AcGePoint3d& first, const AcGePoint3d& second)
        : AcGeLinearEnt3d(first, second - first) {}

    static const AcGeLine3d kXAxis;
    static const AcGeLine3d kYAxis;
    static const AcGeLine3d kZAxis;

    AcGe::EntityId type() const override { return AcGe::kLine3d; }
    bool isKindOf(AcGe::EntityId entityType) const override {
        return entityType == AcGe::kLine3d || AcGeLinearEnt3d::isKindOf(entityType);
    }
    AcGeLine3d* copy() const override { return new AcGeLine3d(*this); }
    void getInterval(AcGeInterval& interval) const override { interval.set(); }
    AcGeLine3d& reverseParam() override {
        m_vector.negate();
        return *this;
    }
    AcGeLine3d& set(const AcGePoint3d& point, const AcGeVector3d& vector) {
        return *this = AcGeLine3d(point, vector);
    }
    AcGeLine3d& set(const AcGePoint3d& first, const AcGePoint3d& second) {
        return *this = AcGeLine3d(first, second);
    }
};

inline const AcGeLine3d AcGeLine3d::kXAxis{AcGePoint3d::kOrigin, AcGeVector3d::kXAxis};
inline const AcGeLine3d AcGeLine3d::kYAxis{AcGePoint3d::kOrigin, AcGeVector3d::kYAxis};
inline const AcGeLine3d AcGeLine3d::kZAxis{AcGePoint3d::kOrigin, AcGeVector3d::kZAxis};

// Parameters from 0 upward.
class AcGeRay3d : public AcGeLinearEnt3d {
public:
    AcGeRay3d() = default;
    AcGeRay3d(const AcGePoint3d& point, const AcGeVector3d& vector) : AcGeLinearEnt3d(point, vector) {}
    AcGeRay3d(const AcGePoint3d& first, const AcGePoint3d& second) : AcGeLinearEnt3d(first, second - first) {}

    AcGe::EntityId type() const override { return AcGe::kRay3d; }
    bool isKindOf(AcGe::EntityId entityType) const override {
        return entityType == AcGe::kRay3d || AcGeLinearEnt3d::isKindOf(entityType);
    }
    AcGeRay3d* copy() const override { return new AcGeRay3d(*this); }
    void getInterval(AcGeInterval& interval) const override { interval = AcGeInterval(true, 0.0); }
    // A ray points the other way afterwards; it keeps its start.
    AcGeRay3d& reverseParam() override {
        m_vector.negate();
        return *this;
    }
    AcGeRay3d& set(const AcGePoint3d& point, const AcGeVector3d& vector) {
        return *this = AcGeRay3d(point, vector);
    }
    AcGeRay3d& set(const AcGePoint3d& first, const AcGePoint3d& second) {
        return *this = AcGeRay3d(first, second);
    }
};

// Parameters from 0 to 1.
class AcGeLineSeg3d : public AcGeLinearEnt3d {
public:
    using AcGeLinearEnt3d::length;

    AcGeLineSeg3d() = default;
    AcGeLineSeg3d(const AcGePoint3d& point, const AcGeVector3d& vector) : AcGeLinearEnt3d(point, vector) {}
    AcGeLineSeg3d(const AcGePoint3d& start, const AcGePoint3d& end) : AcGeLinearEnt3d(start, end - start) {}

    AcGe::EntityId type() const override { return AcGe::kLineSeg3d; }
    bool isKindOf(AcGe::EntityId entityType) const override {
        return entityType == AcGe::kLineSeg3d || AcGeLinearEnt3d::isKindOf(entityType);
    }
    AcGeLineSeg3d* copy() const override { return new AcGeLineSeg3d(*this); }
    void getInterval(AcGeInterval& interval) const override { interval = AcGeInterval(0.0, 1.0); }
    bool setInterval(const AcGeInterval& range) override;
    AcGeLineSeg3d& reverseParam() override { return set(endPoint(), startPoint()); }
    AcGeLineSeg3d& set(const AcGePoint3d& point, const AcGeVector3d& vector) {
        return *this = AcGeLineSeg3d(point, vector);
    }
    AcGeLineSeg3d& set(const AcGePoint3d& start, const AcGePoint3d& end) {
        return *this = AcGeLineSeg3d(start, end);
    }

    AcGePoint3d startPoint() const { return m_point; }
    AcGePoint3d endPoint() const { return m_point + m_vector; }
    AcGePoint3d midPoint() const { return m_point + m_vector * 0.5; }
    double length() const { return m_vector.length(); }
    // The plane of points equally far from both ends.
    void getBisector(AcGePlane& plane) const { plane.set(midPoint(), m_vector); }
    AcGePoint3d baryComb(double fraction) const { return m_point + m_vector * fraction; }
};
