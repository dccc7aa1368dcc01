// AcGePoint2d and AcGeVector2d: small value types, kept trivially copyable for loops over many points.
#pragma once

#include "host/ge/tolerance.h"

#include <cassert>
#include <cmath>

class AcGeMatrix2d;
class AcGePoint2d;
class AcGeLine2d;

class AcGeVector2d {
public:
    constexpr AcGeVector2d() = default;
    constexpr AcGeVector2d(double xx, double yy) : x(xx), y(yy) {}

    static const AcGeVector2d kIdentity; // (0, 0)
    static const AcGeVector2d kXAxis;
    static const AcGeVector2d kYAxis;

    friend constexpr AcGeVector2d operator*(double factor, const AcGeVector2d& vector) {
        return vector * factor;
    }
    friend AcGeVector2d operator*(const AcGeMatrix2d& matrix, const AcGeVector2d& vector);
    constexpr AcGeVector2d operator*(double factor) const { return {x * factor, y * factor}; }
    constexpr AcGeVector2d operator/(double divisor) const { return {x / divisor, y / divisor}; }
    constexpr AcGeVector2d operator+(const AcGeVector2d& other) const { return {x + other.x, y + other.y}; }
    constexpr AcGeVector2d operator-(const AcGeVector2d& other) const { return {x - other.x, y - other.y}; }
    constexpr AcGeVector2d operator-() const { return {-x, -y}; }
    constexpr AcGeVector2d& operator*=(double factor) { return set(x * factor, y * factor); }
    constexpr AcGeVector2d& operator/=(double divisor) { return set(x / divisor, y / divisor); }
    constexpr AcGeVector2d& operator+=(const AcGeVector2d& other) { return set(x + other.x, y + other.y); }
    constexpr AcGeVector2d& operator-=(const AcGeVector2d& other) { return set(x - other.x, y - other.y); }
    AcGeVector2d& setToProduct(const AcGeMatrix2d& matrix, const AcGeVector2d& vector);
    constexpr AcGeVector2d& setToProduct(const AcGeVector2d& vector, double factor) {
        return *this = vector * factor;
    }
    constexpr AcGeVector2d& setToSum(const AcGeVector2d& first, const AcGeVector2d& second) {
        return *this = first + second;
    }
    constexpr AcGeVector2d& negate() { return set(-x, -y); }

    AcGeVector2d& transformBy(const AcGeMatrix2d& matrix);
    AcGeVector2d& rotateBy(double angle) {
        const double c = std::cos(angle), s = std::sin(angle);
        return set(x * c - y * s, x * s + y * c);
    }
    AcGeVector2d& mirror(const AcGeVector2d& line);

    // The vector turned by +90 degrees, of the same length.
    constexpr AcGeVector2d perpVector() const { return {-y, x}; }
    // Angle from the X axis, in [0, 2 pi).
    double angle() const {
        const double value = std::atan2(y, x);
        return value < 0.0 ? value + 6.283185307179586476925 : value;
    }
    // The smaller angle between the two, in [0, pi].
    double angleTo(const AcGeVector2d& other) const {
        return std::atan2(std::fabs(crossProduct(other)), dotProduct(other));
    }
    // A vector of zero length stays as it is.
    AcGeVector2d normal(const AcGeTol& tolerance = AcGeContext::gTol) const {
        AcGeVector2d copy(*this);
        return copy.normalize(tolerance);
    }
    AcGeVector2d& normalize(const AcGeTol& tolerance = AcGeContext::gTol) {
        AcGeError flag;
        return normalize(tolerance, flag);
    }
    // flag: k0This when the length is within the tolerance of zero.
    AcGeVector2d& normalize(const AcGeTol& tolerance, AcGeError& flag) {
        const double size = length();
        flag = size <= tolerance.equalVector() ? AcGe::k0This : AcGe::kOk;
        return flag == AcGe::kOk ? *this /= size : *this;
    }

    double length() const { return std::sqrt(lengthSqrd()); }
    constexpr double lengthSqrd() const { return x * x + y * y; }
    bool isUnitLength(const AcGeTol& tolerance = AcGeContext::gTol) const {
        return std::fabs(length() - 1.0) <= tolerance.equalVector();
    }
    bool isZeroLength(const AcGeTol& tolerance = AcGeContext::gTol) const {
        return length() <= tolerance.equalVector();
    }
    // These three are false when either vector has zero length.
    bool isParallelTo(const AcGeVector2d& other, const AcGeTol& tolerance = AcGeContext::gTol) const;
    bool isParallelTo(const AcGeVector2d& other, const AcGeTol& tolerance, AcGeError& flag) const;
    bool isCodirectionalTo(const AcGeVector2d& other, const AcGeTol& tolerance = AcGeContext::gTol) const;
    bool isCodirectionalTo(const AcGeVector2d& other, const AcGeTol& tolerance, AcGeError& flag) const;
    bool isPerpendicularTo(const AcGeVector2d& other, const AcGeTol& tolerance = AcGeContext::gTol) const;
    bool isPerpendicularTo(const AcGeVector2d& other, const AcGeTol& tolerance, AcGeError& flag) const;

    constexpr double dotProduct(const AcGeVector2d& other) const { return x * other.x + y * other.y; }
    // The z of the cross product: positive when other lies counterclockwise.
    constexpr double crossProduct(const AcGeVector2d& other) const { return x * other.y - y * other.x; }

    // Equal within the global tolerance, as isEqualTo.
    bool operator==(const AcGeVector2d& other) const { return isEqualTo(other); }
    bool isEqualTo(const AcGeVector2d& other, const AcGeTol& tolerance = AcGeContext::gTol) const {
        return (*this - other).length() <= tolerance.equalVector();
    }

    constexpr double operator[](unsigned int index) const { return index == 0 ? x : y; }
    constexpr double& operator[](unsigned int index) { return index == 0 ? x : y; }
    constexpr AcGeVector2d& set(double xx, double yy) {
        x = xx;
        y = yy;
        return *this;
    }
    // The translation by this vector.
    operator AcGeMatrix2d() const;

    double x = 0.0;
    double y = 0.0;
};

class AcGePoint2d {
public:
    constexpr AcGePoint2d() = default;
    constexpr AcGePoint2d(double xx, double yy) : x(xx), y(yy) {}

    static const AcGePoint2d kOrigin;

    friend AcGePoint2d operator*(const AcGeMatrix2d& matrix, const AcGePoint2d& point);
    friend constexpr AcGePoint2d operator*(double factor, const AcGePoint2d& point) { return point * factor; }
    constexpr AcGePoint2d operator*(double factor) const { return {x * factor, y * factor}; }
    constexpr AcGePoint2d operator/(double divisor) const { return {x / divisor, y / divisor}; }
    constexpr AcGePoint2d operator+(const AcGeVector2d& vector) const { return {x + vector.x, y + vector.y}; }
    constexpr AcGePoint2d operator-(const AcGeVector2d& vector) const { return {x - vector.x, y - vector.y}; }
    constexpr AcGeVector2d operator-(const AcGePoint2d& other) const { return {x - other.x, y - other.y}; }
    constexpr AcGePoint2d& operator*=(double factor) { return set(x * factor, y * factor); }
    constexpr AcGePoint2d& operator/=(double divisor) { return set(x / divisor, y / divisor); }
    constexpr AcGePoint2d& operator+=(const AcGeVector2d& vector) { return set(x + vector.x, y + vector.y); }
    constexpr AcGePoint2d& operator-=(const AcGeVector2d& vector) { return set(x - vector.x, y - vector.y); }
    AcGePoint2d& setToProduct(const AcGeMatrix2d& matrix, const AcGePoint2d& point);
    constexpr AcGePoint2d& setToSum(const AcGePoint2d& point, const AcGeVector2d& vector) {
        return *this = point + vector;
    }
    constexpr AcGeVector2d asVector() const { return {x, y}; }

    AcGePoint2d& transformBy(const AcGeMatrix2d& matrix);
    AcGePoint2d& rotateBy(double angle, const AcGePoint2d& center = AcGePoint2d::kOrigin);
    AcGePoint2d& mirror(const AcGeLine2d& line);
    AcGePoint2d& scaleBy(double factor, const AcGePoint2d& center = AcGePoint2d::kOrigin) {
        return *this = center + (*this - center) * factor;
    }

    double distanceTo(const AcGePoint2d& other) const { return (*this - other).length(); }
    constexpr double distanceSqrdTo(const AcGePoint2d& other) const { return (*this - other).lengthSqrd(); }
    // Equal within the global tolerance, as isEqualTo.
    bool operator==(const AcGePoint2d& other) const { return isEqualTo(other); }
    bool isEqualTo(const AcGePoint2d& other, const AcGeTol& tolerance = AcGeContext::gTol) const {
        return distanceTo(other) <= tolerance.equalPoint();
    }

    constexpr double operator[](unsigned int index) const { return index == 0 ? x : y; }
    constexpr double& operator[](unsigned int index) { return index == 0 ? x : y; }
    constexpr AcGePoint2d& set(double xx, double yy) {
        x = xx;
        y = yy;
        return *this;
    }

    double x = 0.0;
    double y = 0.0;
};

inline constexpr AcGeVector2d AcGeVector2d::kIdentity{0.0, 0.0};
inline constexpr AcGeVector2d AcGeVector2d::kXAxis{1.0, 0.0};
inline constexpr AcGeVector2d AcGeVector2d::kYAxis{0.0, 1.0};
inline constexpr AcGePoint2d AcGePoint2d::kOrigin{0.0, 0.0};

inline AcGePoint2d& AcGePoint2d::rotateBy(double angle, const AcGePoint2d& center) {
    AcGeVector2d arm = *this - center;
    return *this = center + arm.rotateBy(angle);
}
