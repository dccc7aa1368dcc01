// AcGeScale2d and AcGeScale3d: scale factors along the axes.
#pragma once

#include "host/ge/matrix3d.h"

class AcGeScale2d {
public:
    constexpr AcGeScale2d() = default;
    constexpr explicit AcGeScale2d(double factor) : sx(factor), sy(factor) {}
    constexpr AcGeScale2d(double factorX, double factorY) : sx(factorX), sy(factorY) {}

    static const AcGeScale2d kIdentity;

    constexpr AcGeScale2d operator*(const AcGeScale2d& other) const { return {sx * other.sx, sy * other.sy}; }
    constexpr AcGeScale2d operator*(double factor) const { return {sx * factor, sy * factor}; }
    friend constexpr AcGeScale2d operator*(double factor, const AcGeScale2d& scale) { return scale * factor; }
    constexpr AcGeVector2d operator*(const AcGeVector2d& vector) const {
        return {sx * vector.x, sy * vector.y};
    }
    constexpr AcGeScale2d& operator*=(const AcGeScale2d& other) { return *this = *this * other; }
    constexpr AcGeScale2d& operator*=(double factor) { return *this = *this * factor; }
    // No factor may be zero.
    constexpr AcGeScale2d inverse() const { return {1.0 / sx, 1.0 / sy}; }
    constexpr AcGeScale2d& invert() { return *this = inverse(); }
    bool isProportional(const AcGeTol& tolerance = AcGeContext::gTol) const {
        return std::fabs(sx - sy) <= tolerance.equalVector();
    }
    bool operator==(const AcGeScale2d& other) const { return isEqualTo(other); }
    bool isEqualTo(const AcGeScale2d& other, const AcGeTol& tolerance = AcGeContext::gTol) const {
        return std::fabs(sx - other.sx) <= tolerance.equalVector() &&
               std::fabs(sy - other.sy) <= tolerance.equalVector();
    }
    constexpr double operator[](unsigned int index) const { return index == 0 ? sx : sy; }
    constexpr double& operator[](unsigned int index) { return index == 0 ? sx : sy; }
    constexpr AcGeScale2d& set(double factorX, double factorY) { return *this = {factorX, factorY}; }
    void getMatrix(AcGeMatrix2d& matrix) const {
        matrix.setToIdentity();
        matrix.entry[0][0] = sx;
        matrix.entry[1][1] = sy;
    }
    operator AcGeMatrix2d() const {
        AcGeMatrix2d matrix;
        getMatrix(matrix);
        return matrix;
    }

    double sx = 1.0;
    double sy = 1.0;
};

class AcGeScale3d {
public:
    constexpr AcGeScale3d() = default;
    constexpr AcGeScale3d(double factor) : sx(factor), sy(factor), sz(factor) {}
    constexpr AcGeScale3d(double factorX, double factorY, double factorZ)
        : sx(factorX), sy(factorY), sz(factorZ) {}

    static const AcGeScale3d kIdentity;

    constexpr AcGeScale3d operator*(const AcGeScale3d& other) const {
        return {sx * other.sx, sy * other.sy, sz * other.sz};
    }
    constexpr AcGeScale3d operator*(double factor) const { return {sx * factor, sy * factor, sz * factor}; }
    friend constexpr AcGeScale3d operator*(double factor, const AcGeScale3d& scale) { return scale * factor; }
    constexpr AcGeVector3d operator*(const AcGeVector3d& vector) const {
        return {sx * vector.x, sy * vector.y, sz * vector.z};
    }
    constexpr AcGeScale3d& operator*=(const AcGeScale3d& other) { return *this = *this * other; }
    constexpr AcGeScale3d& operator*=(double factor) { return *this = *this * factor; }
    constexpr AcGeScale3d& setToProduct(const AcGeScale3d& scale, double factor) {
        return *this = scale * factor;
    }
    constexpr AcGeScale3d& setToProduct(const AcGeScale3d& first, const AcGeScale3d& second) {
        return *this = first * second;
    }
    // No factor may be zero.
    constexpr AcGeScale3d inverse() const { return {1.0 / sx, 1.0 / sy, 1.0 / sz}; }
    constexpr AcGeScale3d& invert() { return *this = inverse(); }
    // All three factors have the same magnitude.
    bool isProportional(const AcGeTol& tolerance = AcGeContext::gTol) const {
        return std::fabs(std::fabs(sx) - std::fabs(sy)) <= tolerance.equalVector() &&
               std::fabs(std::fabs(sx) - std::fabs(sz)) <= tolerance.equalVector();
    }
    bool operator==(const AcGeScale3d& other) const { return isEqualTo(other); }
    bool isEqualTo(const AcGeScale3d& other, const AcGeTol& tolerance = AcGeContext::gTol) const {
        return std::fabs(sx - other.sx) <= tolerance.equalVector() &&
               std::fabs(sy - other.sy) <= tolerance.equalVector() &&
               std::fabs(sz - other.sz) <= tolerance.equalVector();
    }
    constexpr double operator[](unsigned int index) const { return index == 0 ? sx : index == 1 ? sy : sz; }
    constexpr double& operator[](unsigned int index) { return index == 0 ? sx : index == 1 ? sy : sz; }
    constexpr AcGeScale3d& set(double factorX, double factorY, double factorZ) {
        return *this = {factorX, factorY, factorZ};
    }
    void getMatrix(AcGeMatrix3d& matrix) const {
        matrix.setToIdentity();
        matrix.entry[0][0] = sx;
        matrix.entry[1][1] = sy;
        matrix.entry[2][2] = sz;
    }
    operator AcGeMatrix3d() const {
        AcGeMatrix3d matrix;
        getMatrix(matrix);
        return matrix;
    }

    double sx = 1.0;
    double sy = 1.0;
    double sz = 1.0;
};

inline constexpr AcGeScale2d AcGeScale2d::kIdentity{};
inline constexpr AcGeScale3d AcGeScale3d::kIdentity{};
