// AcGeMatrix3d: an affine map of space, entry[row][column], applied to column vectors.
#pragma once

#include "host/ge/matrix2d.h"
#include "host/ge/point3d.h"

class AcGeMatrix3d {
public:
    // The identity.
    constexpr AcGeMatrix3d() = default;

    static const AcGeMatrix3d kIdentity;

    AcGeMatrix3d& setToIdentity() { return *this = AcGeMatrix3d(); }
    AcGeMatrix3d operator*(const AcGeMatrix3d& other) const;
    AcGeMatrix3d& operator*=(const AcGeMatrix3d& other) { return *this = *this * other; }
    AcGeMatrix3d& preMultBy(const AcGeMatrix3d& left) { return *this = left * *this; }
    AcGeMatrix3d& postMultBy(const AcGeMatrix3d& right) { return *this = *this * right; }
    AcGeMatrix3d& setToProduct(const AcGeMatrix3d& left, const AcGeMatrix3d& right) {
        return *this = left * right;
    }

    // A singular matrix is left (returned) as it is.
    AcGeMatrix3d& invert();
    AcGeMatrix3d inverse() const {
        AcGeMatrix3d copy(*this);
        return copy.invert();
    }
    AcGeMatrix3d inverse(const AcGeTol& tolerance) const;
    // False, and result untouched, when the matrix is singular within the tolerance.
    bool inverse(AcGeMatrix3d& result, double tolerance) const;
    bool isSingular(const AcGeTol& tolerance = AcGeContext::gTol) const;
    AcGeMatrix3d& transposeIt();
    AcGeMatrix3d transpose() const {
        AcGeMatrix3d copy(*this);
        return copy.transposeIt();
    }
    bool operator==(const AcGeMatrix3d& other) const { return isEqualTo(other); }
    bool isEqualTo(const AcGeMatrix3d& other, const AcGeTol& tolerance = AcGeContext::gTol) const;
    // Rotation or mirroring with one scale factor.
    bool isUniScaledOrtho(const AcGeTol& tolerance = AcGeContext::gTol) const;
    // Columns at right angles.
    bool isScaledOrtho(const AcGeTol& tolerance = AcGeContext::gTol) const;
    double det() const;
    // The length of the longest column of the linear part.
    double scale() const;
    // The largest absolute entry of the linear part.
    double norm() const;

    AcGeMatrix3d& setTranslation(const AcGeVector3d& vector);
    AcGeVector3d translation() const { return {entry[0][3], entry[1][3], entry[2][3]}; }

    AcGeMatrix3d& setCoordSystem(const AcGePoint3d& origin, const AcGeVector3d& xAxis,
                                 const AcGeVector3d& yAxis, const AcGeVector3d& zAxis);
    void getCoordSystem(AcGePoint3d& origin, AcGeVector3d& xAxis, AcGeVector3d& yAxis,
                        AcGeVector3d& zAxis) const;

    AcGeMatrix3d& setToTranslation(const AcGeVector3d& vector);
    AcGeMatrix3d& setToRotation(double angle, const AcGeVector3d& axis,
                                const AcGePoint3d& center = AcGePoint3d::kOrigin);
    AcGeMatrix3d& setToScaling(double factor, const AcGePoint3d& center = AcGePoint3d::kOrigin);
    AcGeMatrix3d& setToMirroring(const AcGePlane& plane);
    AcGeMatrix3d& setToMirroring(const AcGePoint3d& point);
    AcGeMatrix3d& setToMirroring(const AcGeLine3d& line);
    // Projection onto the plane along a direction; the identity when the direction lies in the plane.
    AcGeMatrix3d& setToProjection(const AcGePlane& plane, const AcGeVector3d& direction);
    // Takes the first coordinate system to the second.
    AcGeMatrix3d& setToAlignCoordSys(const AcGePoint3d& fromOrigin, const AcGeVector3d& fromXAxis,
                                     const AcGeVector3d& fromYAxis, const AcGeVector3d& fromZAxis,
                                     const AcGePoint3d& toOrigin, const AcGeVector3d& toXAxis,
                                     const AcGeVector3d& toYAxis, const AcGeVector3d& toZAxis);
    // With a normal: the axes of the arbitrary axis rule at the world origin (object to world coordinates).
    // With a plane: its own coordinate system.
    AcGeMatrix3d& setToPlaneToWorld(const AcGeVector3d& normal);
    AcGeMatrix3d& setToPlaneToWorld(const AcGePlane& plane);
    AcGeMatrix3d& setToWorldToPlane(const AcGeVector3d& normal);
    AcGeMatrix3d& setToWorldToPlane(const AcGePlane& plane);

    static AcGeMatrix3d translation(const AcGeVector3d& vector) {
        return AcGeMatrix3d().setToTranslation(vector);
    }
    static AcGeMatrix3d rotation(double angle, const AcGeVector3d& axis,
                                 const AcGePoint3d& center = AcGePoint3d::kOrigin) {
        return AcGeMatrix3d().setToRotation(angle, axis, center);
    }
    static AcGeMatrix3d scaling(double factor, const AcGePoint3d& center = AcGePoint3d::kOrigin) {
        return AcGeMatrix3d().setToScaling(factor, center);
    }
    static AcGeMatrix3d mirroring(const AcGePlane& plane) { return AcGeMatrix3d().setToMirroring(plane); }
    static AcGeMatrix3d mirroring(const AcGePoint3d& point) { return AcGeMatrix3d().setToMirroring(point); }
    static AcGeMatrix3d mirroring(const AcGeLine3d& line) { return AcGeMatrix3d().setToMirroring(line); }
    static AcGeMatrix3d projection(const AcGePlane& plane, const AcGeVector3d& direction) {
        return AcGeMatrix3d().setToProjection(plane, direction);
    }
    static AcGeMatrix3d alignCoordSys(const AcGePoint3d& fromOrigin, const AcGeVector3d& fromXAxis,
                                      const AcGeVector3d& fromYAxis, const AcGeVector3d& fromZAxis,
                                      const AcGePoint3d& toOrigin, const AcGeVector3d& toXAxis,
                                      const AcGeVector3d& toYAxis, const AcGeVector3d& toZAxis) {
        return AcGeMatrix3d().setToAlignCoordSys(fromOrigin, fromXAxis, fromYAxis, fromZAxis, toOrigin,
                                                 toXAxis, toYAxis, toZAxis);
    }
    static AcGeMatrix3d planeToWorld(const AcGeVector3d& normal) {
        return AcGeMatrix3d().setToPlaneToWorld(normal);
    }
    static AcGeMatrix3d planeToWorld(const AcGePlane& plane) {
        return AcGeMatrix3d().setToPlaneToWorld(plane);
    }
    static AcGeMatrix3d worldToPlane(const AcGeVector3d& normal) {
        return AcGeMatrix3d().setToWorldToPlane(normal);
    }
    static AcGeMatrix3d worldToPlane(const AcGePlane& plane) {
        return AcGeMatrix3d().setToWorldToPlane(plane);
    }

    // The map within object coordinates of an entity with this normal and elevation. Both become those of the
    // transformed entity.
    AcGeMatrix2d convertToLocal(AcGeVector3d& normal, double& elevation) const;

    double operator()(unsigned int row, unsigned int column) const { return entry[row][column]; }
    double& operator()(unsigned int row, unsigned int column) { return entry[row][column]; }

    double entry[4][4] = {
        {1.0, 0.0, 0.0, 0.0}, {0.0, 1.0, 0.0, 0.0}, {0.0, 0.0, 1.0, 0.0}, {0.0, 0.0, 0.0, 1.0}};
};

inline constexpr AcGeMatrix3d AcGeMatrix3d::kIdentity{};

inline AcGePoint3d operator*(const AcGeMatrix3d& m, const AcGePoint3d& p) {
    const auto row = [&](int i) {
        return m.entry[i][0] * p.x + m.entry[i][1] * p.y + m.entry[i][2] * p.z + m.entry[i][3];
    };
    return {row(0), row(1), row(2)};
}
inline AcGeVector3d operator*(const AcGeMatrix3d& m, const AcGeVector3d& v) {
    const auto row = [&](int i) { return m.entry[i][0] * v.x + m.entry[i][1] * v.y + m.entry[i][2] * v.z; };
    return {row(0), row(1), row(2)};
}
inline AcGePoint3d& AcGePoint3d::transformBy(const AcGeMatrix3d& matrix) {
    return *this = matrix * *this;
}
inline AcGeVector3d& AcGeVector3d::transformBy(const AcGeMatrix3d& matrix) {
    return *this = matrix * *this;
}
inline AcGePoint3d& AcGePoint3d::setToProduct(const AcGeMatrix3d& matrix, const AcGePoint3d& point) {
    return *this = matrix * point;
}
inline AcGeVector3d& AcGeVector3d::setToProduct(const AcGeMatrix3d& matrix, const AcGeVector3d& vector) {
    return *this = matrix * vector;
}
inline AcGeVector3d::operator AcGeMatrix3d() const {
    return AcGeMatrix3d::translation(*this);
}

namespace host {

// The arbitrary axis rule: the matrix from object coordinates with this normal to world coordinates. The
// normal need not have unit length; a zero normal counts as the Z axis.
AcGeMatrix3d arbitraryAxes(const AcGeVector3d& normal);

} // namespace host
