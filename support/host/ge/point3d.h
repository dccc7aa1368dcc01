// AcGePoint3d and AcGeVector3d: small value types, kept trivially copyable for loops over many points.
#pragma once

#include "host/ge/point2d.h"

#include <cassert>
#include <cmath>

class AcGeMatrix3d;
class AcGePoint3d;
class AcGePlane;
class AcGePlanarEnt;
class AcGeLine3d;

class AcGeVector3d {
public:
    constexpr AcGeVector3d() = default;
    constexpr AcGeVector3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}
    // A vector given in the plane's own axes.
    AcGeVector3d(const AcGePlanarEnt& plane, const AcGeVector2d& vector) { set(plane, vector); }

    static const AcGeVector3d kIdentity; // (0, 0, 0)
    static const AcGeVector3d kXAxis;
    static const AcGeVector3d kYAxis;
    static const AcGeVector3d kZAxis;

    friend AcGeVector3d operator*(const AcGeMatrix3d& matrix, const AcGeVector3d& vector);
    friend constexpr AcGeVector3d operator*(double factor, const AcGeVector3d& vector) {
        return vector * factor;
    }
    constexpr AcGeVector3d operator*(double factor) const { return {x * factor, y * factor, z * factor}; }
    constexpr AcGeVector3d operator/(double divisor) const { return {x / divisor, y / divisor, z / divisor}; }
    constexpr AcGeVector3d operator+(const AcGeVector3d& other) const {
        return {x + other.x, y + other.y, z + other.z};
    }
    constexpr AcGeVector3d operator-(const AcGeVector3d& other) const {
        return {x - other.x, y - other.y, z - other.z};
    }
    constexpr AcGeVector3d operator-() const { return {-x, -y, -z}; }
    constexpr AcGeVector3d& operator*=(double factor) { return *this = *this * factor; }
    constexpr AcGeVector3d& operator/=(double divisor) { return *this = *this / divisor; }
    constexpr AcGeVector3d& operator+=(const AcGeVector3d& other) { return *this = *this + other; }
    constexpr AcGeVector3d& operator-=(const AcGeVector3d& other) { return *this = *this - other; }
    AcGeVector3d& setToProduct(const AcGeMatrix3d& matrix, const AcGeVector3d& vector);
    constexpr AcGeVector3d& setToProduct(const AcGeVector3d& vector, double factor) {
        return *this = vector * factor;
    }
    constexpr AcGeVector3d& setToSum(const AcGeVector3d& first, const AcGeVector3d& second) {
        return *this = first + second;
    }
    constexpr AcGeVector3d& negate() { return *this = -*this; }

    AcGeVector3d& transformBy(const AcGeMatrix3d& matrix);
    // Turns about the axis through the origin, counterclockwise seen against the axis.
    AcGeVector3d& rotateBy(double angle, const AcGeVector3d& axis);
    AcGeVector3d& mirror(const AcGeVector3d& normalToPlane);

    // Coordinates in the plane's own axes; the part along the normal is lost.
    AcGeVector2d convert2d(const AcGePlanarEnt& plane) const;
    // A unit vector at right angles: Y x this when this is nearly along Z (both |x| and |y| of the unit
    // vector below 1/64), else Z x this: the X axis of the arbitrary axis rule.
    AcGeVector3d perpVector() const;

    // The smaller angle between the two, in [0, pi].
    double angleTo(const AcGeVector3d& other) const {
        return std::atan2(crossProduct(other).length(), dotProduct(other));
    }
    // The angle from this to other seen against the reference vector, in [0, 2 pi).
    double angleTo(const AcGeVector3d& other, const AcGeVector3d& reference) const {
        const double value = angleTo(other);
        if (value == 0.0 || reference.dotProduct(crossProduct(other)) >= 0.0)
            return value;
        return 6.283185307179586476925 - value;
    }
    // The angle of the vector's projection from the plane's own X axis, in [0, 2 pi).
    double angleOnPlane(const AcGePlanarEnt& plane) const;

    // A vector of zero length stays as it is.
    AcGeVector3d normal(const AcGeTol& tolerance = AcGeContext::gTol) const {
        AcGeVector3d copy(*this);
        return copy.normalize(tolerance);
    }
    AcGeVector3d& normalize(const AcGeTol& tolerance = AcGeContext::gTol) {
        AcGeError flag;
        return normalize(tolerance, flag);
    }
    // flag: k0This when the length is within the tolerance of zero.
    AcGeVector3d& normalize(const AcGeTol& tolerance, AcGeError& flag) {
        const double size = length();
        flag = size <= tolerance.equalVector() ? AcGe::k0This : AcGe::kOk;
        return flag == AcGe::kOk ? *this /= size : *this;
    }

    double length() const { return std::sqrt(lengthSqrd()); }
    constexpr double lengthSqrd() const { return x * x + y * y + z * z; }
    bool isUnitLength(const AcGeTol& tolerance = AcGeContext::gTol) const {
        return std::fabs(length() - 1.0) <= tolerance.equalVector();
    }
    bool isZeroLength(const AcGeTol& tolerance = AcGeContext::gTol) const {
        return length() <= tolerance.equalVector();
    }
    // These three are false when either vector has zero length.
    bool isParallelTo(const AcGeVector3d& other, const AcGeTol& tolerance = AcGeContext::gTol) const;
    bool isParallelTo(const AcGeVector3d& other, const AcGeTol& tolerance, AcGeError& flag) const;
    bool isCodirectionalTo(const AcGeVector3d& other, const AcGeTol& tolerance = AcGeContext::gTol) const;
    bool isCodirectionalTo(const AcGeVector3d& other, const AcGeTol& tolerance, AcGeError& flag) const;
    bool isPerpendicularTo(const AcGeVector3d& other, const AcGeTol& tolerance = AcGeContext::gTol) const;
    bool isPerpendicularTo(const AcGeVector3d& other, const AcGeTol& tolerance, AcGeError& flag) const;

    constexpr double dotProduct(const AcGeVector3d& other) const {
        return x * other.x + y * other.y + z * other.z;
    }
    constexpr AcGeVector3d crossProduct(const AcGeVector3d& other) const {
        return {y * other.z - z * other.y, z * other.x - x * other.z, x * other.y - y * other.x};
    }
    // Index of the coordinate of largest magnitude.
    unsigned int largestElement() const;

    // The part of this at right angles to planeNormal.
    AcGeVector3d orthoProject(const AcGeVector3d& planeNormal) const;
    AcGeVector3d orthoProject(const AcGeVector3d& planeNormal, const AcGeTol& tolerance) const;
    AcGeVector3d orthoProject(const AcGeVector3d& planeNormal, const AcGeTol& tolerance,
                              AcGeError& flag) const;
    // The projection along a direction; unchanged when the direction lies in the plane.
    AcGeVector3d project(const AcGeVector3d& planeNormal, const AcGeVector3d& direction) const;
    AcGeVector3d project(const AcGeVector3d& planeNormal, const AcGeVector3d& direction,
                         const AcGeTol& tolerance) const;
    AcGeVector3d project(const AcGeVector3d& planeNormal, const AcGeVector3d& direction,
                         const AcGeTol& tolerance, AcGeError& flag) const;

    // Equal within the global tolerance, as isEqualTo.
    bool operator==(const AcGeVector3d& other) const { return isEqualTo(other); }
    bool isEqualTo(const AcGeVector3d& other, const AcGeTol& tolerance = AcGeContext::gTol) const {
        return (*this - other).length() <= tolerance.equalVector();
    }

    constexpr double operator[](unsigned int index) const { return index == 0 ? x : index == 1 ? y : z; }
    constexpr double& operator[](unsigned int index) { return index == 0 ? x : index == 1 ? y : z; }
    constexpr AcGeVector3d& set(double xx, double yy, double zz) {
        x = xx;
        y = yy;
        z = zz;
        return *this;
    }
    AcGeVector3d& set(const AcGePlanarEnt& plane, const AcGeVector2d& vector);
    // The translation by this vector.
    operator AcGeMatrix3d() const;

    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

class AcGePoint3d {
public:
    constexpr AcGePoint3d() = default;
    constexpr AcGePoint3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}
    // A point given in the plane's own coordinate system.
    AcGePoint3d(const AcGePlanarEnt& plane, const AcGePoint2d& point) { set(plane, point); }

    static const AcGePoint3d kOrigin;

    friend AcGePoint3d operator*(const AcGeMatrix3d& matrix, const AcGePoint3d& point);
    friend constexpr AcGePoint3d operator*(double factor, const AcGePoint3d& point) { return point * factor; }
    constexpr AcGePoint3d operator*(double factor) const { return {x * factor, y * factor, z * factor}; }
    constexpr AcGePoint3d operator/(double divisor) const { return {x / divisor, y / divisor, z / divisor}; }
    constexpr AcGePoint3d operator+(const AcGeVector3d& vector) const {
        return {x + vector.x, y + vector.y, z + vector.z};
    }
    constexpr AcGePoint3d operator-(const AcGeVector3d& vector) const {
        return {x - vector.x, y - vector.y, z - vector.z};
    }
    constexpr AcGeVector3d operator-(const AcGePoint3d& other) const {
        return {x - other.x, y - other.y, z - other.z};
    }
    constexpr AcGePoint3d& operator*=(double factor) { return *this = *this * factor; }
    constexpr AcGePoint3d& operator/=(double divisor) { return *this = *this / divisor; }
    constexpr AcGePoint3d& operator+=(const AcGeVector3d& vector) { return *this = *this + vector; }
    constexpr AcGePoint3d& operator-=(const AcGeVector3d& vector) { return *this = *this - vector; }
    AcGePoint3d& setToProduct(const AcGeMatrix3d& matrix, const AcGePoint3d& point);
    constexpr AcGePoint3d& setToSum(const AcGePoint3d& point, const AcGeVector3d& vector) {
        return *this = point + vector;
    }
    constexpr AcGeVector3d asVector() const { return {x, y, z}; }

    AcGePoint3d& transformBy(const AcGeMatrix3d& matrix);
    AcGePoint3d& rotateBy(double angle, const AcGeVector3d& axis,
                          const AcGePoint3d& center = AcGePoint3d::kOrigin);
    AcGePoint3d& mirror(const AcGePlane& plane);
    AcGePoint3d& scaleBy(double factor, const AcGePoint3d& center = AcGePoint3d::kOrigin) {
        return *this = center + (*this - center) * factor;
    }
    // Coordinates in the plane's own system; the distance from the plane is lost.
    AcGePoint2d convert2d(const AcGePlanarEnt& plane) const;

    double distanceTo(const AcGePoint3d& other) const { return (*this - other).length(); }
    constexpr double distanceSqrdTo(const AcGePoint3d& other) const { return (*this - other).lengthSqrd(); }

    AcGePoint3d orthoProject(const AcGePlane& plane) const;
    // Unchanged when the direction lies in the plane.
    AcGePoint3d project(const AcGePlane& plane, const AcGeVector3d& direction) const;

    // Equal within the global tolerance, as isEqualTo.
    bool operator==(const AcGePoint3d& other) const { return isEqualTo(other); }
    bool isEqualTo(const AcGePoint3d& other, const AcGeTol& tolerance = AcGeContext::gTol) const {
        return distanceTo(other) <= tolerance.equalPoint();
    }

    constexpr double operator[](unsigned int index) const { return index == 0 ? x : index == 1 ? y : z; }
    constexpr double& operator[](unsigned int index) { return index == 0 ? x : index == 1 ? y : z; }
    constexpr AcGePoint3d& set(double xx, double yy, double zz) {
        x = xx;
        y = yy;
        z = zz;
        return *this;
    }
    AcGePoint3d& set(const AcGePlanarEnt& plane, const AcGePoint2d& point);

    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

inline constexpr AcGeVector3d AcGeVector3d::kIdentity{0.0, 0.0, 0.0};
inline constexpr AcGeVector3d AcGeVector3d::kXAxis{1.0, 0.0, 0.0};
inline constexpr AcGeVector3d AcGeVector3d::kYAxis{0.0, 1.0, 0.0};
inline constexpr AcGeVector3d AcGeVector3d::kZAxis{0.0, 0.0, 1.0};
inline constexpr AcGePoint3d AcGePoint3d::kOrigin{0.0, 0.0, 0.0};
