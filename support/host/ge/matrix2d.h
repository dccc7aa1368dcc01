// AcGeMatrix2d: an affine map of the plane, entry[row][column], applied to column vectors.
#pragma once

#include "host/ge/point2d.h"

#include <utility>

class AcGeMatrix2d {
public:
    // The identity.
    constexpr AcGeMatrix2d() = default;

    static const AcGeMatrix2d kIdentity;

    AcGeMatrix2d& setToIdentity() { return *this = AcGeMatrix2d(); }
    AcGeMatrix2d operator*(const AcGeMatrix2d& other) const;
    AcGeMatrix2d& operator*=(const AcGeMatrix2d& other) { return *this = *this * other; }
    AcGeMatrix2d& preMultBy(const AcGeMatrix2d& left) { return *this = left * *this; }
    AcGeMatrix2d& postMultBy(const AcGeMatrix2d& right) { return *this = *this * right; }
    AcGeMatrix2d& setToProduct(const AcGeMatrix2d& left, const AcGeMatrix2d& right) {
        return *this = left * right;
    }

    // A singular matrix is left (returned) as it is.
    AcGeMatrix2d& invert();
    AcGeMatrix2d inverse() const {
        AcGeMatrix2d copy(*this);
        return copy.invert();
    }
    bool isSingular(const AcGeTol& tolerance = AcGeContext::gTol) const;
    AcGeMatrix2d& transposeIt();
    AcGeMatrix2d transpose() const {
        AcGeMatrix2d copy(*this);
        return copy.transposeIt();
    }
    bool operator==(const AcGeMatrix2d& other) const { return isEqualTo(other); }
    bool isEqualTo(const AcGeMatrix2d& other, const AcGeTol& tolerance = AcGeContext::gTol) const;
    // Rotation (or mirroring) with one scale factor.
    bool isUniScaledOrtho(const AcGeTol& tolerance = AcGeContext::gTol) const;
    // Columns at right angles.
    bool isScaledOrtho(const AcGeTol& tolerance = AcGeContext::gTol) const;
    double scale() const;
    double det() const;

    AcGeMatrix2d& setTranslation(const AcGeVector2d& vector);
    AcGeVector2d translation() const { return {entry[0][2], entry[1][2]}; }
    // The angle of a conformal matrix; mirror tells whether it reverses orientation.
    bool isConformal(double& factor, double& angle, bool& mirror, AcGeVector2d& reflection) const;

    AcGeMatrix2d& setCoordSystem(const AcGePoint2d& origin, const AcGeVector2d& e0, const AcGeVector2d& e1);
    void getCoordSystem(AcGePoint2d& origin, AcGeVector2d& e0, AcGeVector2d& e1) const;
    AcGeMatrix2d& setToTranslation(const AcGeVector2d& vector);
    AcGeMatrix2d& setToRotation(double angle, const AcGePoint2d& center = AcGePoint2d::kOrigin);
    AcGeMatrix2d& setToScaling(double factor, const AcGePoint2d& center = AcGePoint2d::kOrigin);
    AcGeMatrix2d& setToMirroring(const AcGePoint2d& point);
    AcGeMatrix2d& setToMirroring(const AcGeLine2d& line);
    AcGeMatrix2d& setToAlignCoordSys(const AcGePoint2d& fromOrigin, const AcGeVector2d& fromE0,
                                     const AcGeVector2d& fromE1, const AcGePoint2d& toOrigin,
                                     const AcGeVector2d& toE0, const AcGeVector2d& toE1);

    static AcGeMatrix2d translation(const AcGeVector2d& vector) {
        return AcGeMatrix2d().setToTranslation(vector);
    }
    static AcGeMatrix2d rotation(double angle, const AcGePoint2d& center = AcGePoint2d::kOrigin) {
        return AcGeMatrix2d().setToRotation(angle, center);
    }
    static AcGeMatrix2d scaling(double factor, const AcGePoint2d& center = AcGePoint2d::kOrigin) {
        return AcGeMatrix2d().setToScaling(factor, center);
    }
    static AcGeMatrix2d mirroring(const AcGePoint2d& point) { return AcGeMatrix2d().setToMirroring(point); }
    static AcGeMatrix2d mirroring(const AcGeLine2d& line) { return AcGeMatrix2d().setToMirroring(line); }
    static AcGeMatrix2d alignCoordSys(const AcGePoint2d& fromOrigin, const AcGeVector2d& fromE0,
                                      const AcGeVector2d& fromE1, const AcGePoint2d& toOrigin,
                                      const AcGeVector2d& toE0, const AcGeVector2d& toE1) {
        return AcGeMatrix2d().setToAlignCoordSys(fromOrigin, fromE0, fromE1, toOrigin, toE0, toE1);
    }

    double operator()(unsigned int row, unsigned int column) const { return entry[row][column]; }
    double& operator()(unsigned int row, unsigned int column) { return entry[row][column]; }

    double entry[3][3] = {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
};

inline constexpr AcGeMatrix2d AcGeMatrix2d::kIdentity{};

inline AcGePoint2d operator*(const AcGeMatrix2d& m, const AcGePoint2d& p) {
    return {m.entry[0][0] * p.x + m.entry[0][1] * p.y + m.entry[0][2],
            m.entry[1][0] * p.x + m.entry[1][1] * p.y + m.entry[1][2]};
}
inline AcGeVector2d operator*(const AcGeMatrix2d& m, const AcGeVector2d& v) {
    return {m.entry[0][0] * v.x + m.entry[0][1] * v.y, m.entry[1][0] * v.x + m.entry[1][1] * v.y};
}
inline AcGePoint2d& AcGePoint2d::transformBy(const AcGeMatrix2d& matrix) {
    return *this = matrix * *this;
}
inline AcGeVector2d& AcGeVector2d::transformBy(const AcGeMatrix2d& matrix) {
    return *this = matrix * *this;
}
inline AcGePoint2d& AcGePoint2d::setToProduct(const AcGeMatrix2d& matrix, const AcGePoint2d& point) {
    return *this = matrix * point;
}
inline AcGeVector2d& AcGeVector2d::setToProduct(const AcGeMatrix2d& matrix, const AcGeVector2d& vector) {
    return *this = matrix * vector;
}
inline AcGeVector2d::operator AcGeMatrix2d() const {
    return AcGeMatrix2d::translation(*this);
}
