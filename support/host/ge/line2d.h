// Straight curves of the plane: the unbounded line, the ray and the segment.
#pragma once

#include "host/ge/curve2d.h"

// A point and a vector; parameter t is the point plus t times the vector.
class AcGeLinearEnt2d : public AcGeCurve2d {
public:
    bool isKindOf(AcGe::EntityId entityType) const override {
        return entityType == AcGe::kLinearEnt2d || AcGeCurve2d::isKindOf(entityType);
    }
    AcGeLinearEnt2d* copy() const override = 0;
    AcGeLinearEnt2d& transformBy(const AcGeMatrix2d& matrix) override;
    void getInterval(AcGeInterval& interval) const override = 0;
    AcGePoint2d evaluate(double parameter, int derivativeCount, AcGeVector2d* derivatives) const override;
    double closestParameter(const AcGePoint2d& point) const override;
    double length(double from, double to, double tolerance = 1e-10) const override;
    double paramAtLength(double datum, double distance, bool forward = true,
                         double tolerance = 1e-10) const override;
    AcGeBoundBlock2d orthoBoundBlock(const AcGeInterval& range) const override;
    using AcGeCurve2d::orthoBoundBlock;
    std::vector<double> sampleParameters(double from, double to) const override { return {from, to}; }
    bool isLinear(AcGeLine2d& line, const AcGeTol& tolerance = AcGeContext::gTol) const override;
    bool getTrimmedOffset(double distance, AcGeVoidPointerArray& offsets,
                          AcGe::OffsetCrvExtType extension = AcGe::kFillet,
                          const AcGeTol& tolerance = AcGeContext::gTol) const override;

    AcGePoint2d pointOnLine() const { return m_point; }
    // Of unit length.
    AcGeVector2d direction() const { return m_vector.normal(); }
    void getLine(AcGeLine2d& line) const;
    // The single common point; false for parallel lines, and where an end comes before it.
    bool intersectWith(const AcGeLinearEnt2d& other, AcGePoint2d& point,
                       const AcGeTol& tolerance = AcGeContext::gTol) const;
    bool isParallelTo(const AcGeLinearEnt2d& other, const AcGeTol& tolerance = AcGeContext::gTol) const {
        return m_vector.isParallelTo(other.m_vector, tolerance);
    }
    bool isPerpendicularTo(const AcGeLinearEnt2d& other, const AcGeTol& tolerance = AcGeContext::gTol) const {
        return m_vector.isPerpendicularTo(other.m_vector, tolerance);
    }
    bool isColinearTo(const AcGeLinearEnt2d& other, const AcGeTol& tolerance = AcGeContext::gTol) const;
    void getPerpLine(const AcGePoint2d& point, AcGeLine2d& line) const;

protected:
    AcGeLinearEnt2d() = default;
    AcGeLinearEnt2d(const AcGePoint2d& point, const AcGeVector2d& vector)
        : m_point(point), m_vector(vector) {}

    AcGePoint2d m_point;
    AcGeVector2d m_vector = AcGeVector2d::kXAxis;
};

class AcGeLine2d : public AcGeLinearEnt2d {
public:
    // The X axis.
    AcGeLine2d() = default;
    AcGeLine2d(const AcGePoint2d& point, const AcGeVector2d& vector) : AcGeLinearEnt2d(point, vector) {}
    AcGeLine2d(const AcGePoint2d& first, const AcGePoint2d& second)
        : AcGeLinearEnt2d(first, second - first) {}

    static const AcGeLine2d kXAxis;
    static const AcGeLine2d kYAxis;

    AcGe::EntityId type() const override { return AcGe::kLine2d; }
    bool isKindOf(AcGe::EntityId entityType) const override {
        return entityType == AcGe::kLine2d || AcGeLinearEnt2d::isKindOf(entityType);
    }
    AcGeLine2d* copy() const override { return new AcGeLine2d(*this); }
    void getInterval(AcGeInterval& interval) const override { interval.set(); }
    AcGeLine2d& reverseParam() override {
        m_vector.negate();
        return *this;
    }
    AcGeLine2d& set(const AcGePoint2d& point, const AcGeVector2d& vector) {
        return *this = AcGeLine2d(point, vector);
    }
    AcGeLine2d& set(const AcGePoint2d& first, const AcGePoint2d& second) {
        return *this = AcGeLine2d(first, second);
    }
};

inline const AcGeLine2d AcGeLine2d::kXAxis{AcGePoint2d::kOrigin, AcGeVector2d::kXAxis};
inline const AcGeLine2d AcGeLine2d::kYAxis{AcGePoint2d::kOrigin, AcGeVector2d::kYAxis};

// Parameters from 0 upward.
class AcGeRay2d : public AcGeLinearEnt2d {
public:
    AcGeRay2d() = default;
    AcGeRay2d(const AcGePoint2d& point, const AcGeVector2d& vector) : AcGeLinearEnt2d(point, vector) {}
    AcGeRay2d(const AcGePoint2d& first, const AcGePoint2d& second) : AcGeLinearEnt2d(first, second - first) {}

    AcGe::EntityId type() const override { return AcGe::kRay2d; }
    bool isKindOf(AcGe::EntityId entityType) const override {
        return entityType == AcGe::kRay2d || AcGeLinearEnt2d::isKindOf(entityType);
    }
    AcGeRay2d* copy() const override { return new AcGeRay2d(*this); }
    void getInterval(AcGeInterval& interval) const override { interval = AcGeInterval(true, 0.0); }
    // A ray points the other way afterwards; it keeps its start.
    AcGeRay2d& reverseParam() override {
        m_vector.negate();
        return *this;
    }
};

// Parameters from 0 to 1.
class AcGeLineSeg2d : public AcGeLinearEnt2d {
public:
    using AcGeLinearEnt2d::length;

    AcGeLineSeg2d() = default;
    AcGeLineSeg2d(const AcGePoint2d& point, const AcGeVector2d& vector) : AcGeLinearEnt2d(point, vector) {}
    AcGeLineSeg2d(const AcGePoint2d& start, const AcGePoint2d& end) : AcGeLinearEnt2d(start, end - start) {}

    AcGe::EntityId type() const override { return AcGe::kLineSeg2d; }
    bool isKindOf(AcGe::EntityId entityType) const override {
        return entityType == AcGe::kLineSeg2d || AcGeLinearEnt2d::isKindOf(entityType);
    }
    AcGeLineSeg2d* copy() const override { return new AcGeLineSeg2d(*this); }
    void getInterval(AcGeInterval& interval) const override { interval = AcGeInterval(0.0, 1.0); }
    bool setInterval(const AcGeInterval& range) override;
    AcGeLineSeg2d& reverseParam() override { return set(endPoint(), startPoint()); }
    AcGeLineSeg2d& set(const AcGePoint2d& point, const AcGeVector2d& vector) {
        return *this = AcGeLineSeg2d(point, vector);
    }
    AcGeLineSeg2d& set(const AcGePoint2d& start, const AcGePoint2d& end) {
        return *this = AcGeLineSeg2d(start, end);
    }

    AcGePoint2d startPoint() const { return m_point; }
    AcGePoint2d endPoint() const { return m_point + m_vector; }
    AcGePoint2d midPoint() const { return m_point + m_vector * 0.5; }
    double length() const { return m_vector.length(); }
    void getBisector(AcGeLine2d& line) const { line.set(midPoint(), m_vector.perpVector()); }
    AcGePoint2d baryComb(double fraction) const { return m_point + m_vector * fraction; }
};
