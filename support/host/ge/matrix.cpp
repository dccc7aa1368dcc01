// Matrices of the plane and of space.
#include "host/ge/plane.h"

#include <algorithm>
#include <cstdlib>

namespace {

// Gauss-Jordan inversion of the n x n upper left part with full row pivoting; false when singular.
template <int n>
bool invertEntries(double (&a)[n][n], double smallestPivot) {
    double result[n][n] = {};
    for (int i = 0; i < n; ++i)
        result[i][i] = 1.0;
    for (int column = 0; column < n; ++column) {
        int pivot = column;
        for (int row = column + 1; row < n; ++row)
            if (std::fabs(a[row][column]) > std::fabs(a[pivot][column]))
                pivot = row;
        if (!(std::fabs(a[pivot][column]) > smallestPivot))
            return false;
        for (int k = 0; k < n; ++k) {
            std::swap(a[pivot][k], a[column][k]);
            std::swap(result[pivot][k], result[column][k]);
        }
        const double factor = 1.0 / a[column][column];
        for (int k = 0; k < n; ++k) {
            a[column][k] *= factor;
            result[column][k] *= factor;
        }
        for (int row = 0; row < n; ++row) {
            const double multiple = a[row][column];
            if (row == column || multiple == 0.0)
                continue;
            for (int k = 0; k < n; ++k) {
                a[row][k] -= multiple * a[column][k];
                result[row][k] -= multiple * result[column][k];
            }
        }
    }
    std::copy(&result[0][0], &result[0][0] + n * n, &a[0][0]);
    return true;
}

template <int n>
void multiply(const double (&a)[n][n], const double (&b)[n][n], double (&result)[n][n]) {
    for (int row = 0; row < n; ++row)
        for (int column = 0; column < n; ++column) {
            double sum = 0.0;
            for (int k = 0; k < n; ++k)
                sum += a[row][k] * b[k][column];
            result[row][column] = sum;
        }
}

template <int n>
void transposeEntries(double (&a)[n][n]) {
    for (int row = 0; row < n; ++row)
        for (int column = row + 1; column < n; ++column)
            std::swap(a[row][column], a[column][row]);
}

template <int n>
bool equalEntries(const double (&a)[n][n], const double (&b)[n][n], double tolerance) {
    for (int row = 0; row < n; ++row)
        for (int column = 0; column < n; ++column)
            if (!(std::fabs(a[row][column] - b[row][column]) <= tolerance))
                return false;
    return true;
}

// Pivots below this are rounding noise of entries of any usual size.
constexpr double smallestPivot = 1e-300;

AcGeVector3d column(const AcGeMatrix3d& m, int index) {
    return {m.entry[0][index], m.entry[1][index], m.entry[2][index]};
}
AcGeVector2d column(const AcGeMatrix2d& m, int index) {
    return {m.entry[0][index], m.entry[1][index]};
}

} // namespace

AcGeMatrix2d AcGeMatrix2d::operator*(const AcGeMatrix2d& other) const {
    AcGeMatrix2d result;
    multiply(entry, other.entry, result.entry);
    return result;
}

AcGeMatrix2d& AcGeMatrix2d::invert() {
    AcGeMatrix2d copy(*this);
    return invertEntries(copy.entry, smallestPivot) ? *this = copy : *this;
}

AcGeMatrix2d& AcGeMatrix2d::transposeIt() {
    transposeEntries(entry);
    return *this;
}

double AcGeMatrix2d::det() const {
    return column(*this, 0).crossProduct(column(*this, 1));
}

bool AcGeMatrix2d::isSingular(const AcGeTol& tolerance) const {
    const double product = column(*this, 0).length() * column(*this, 1).length();
    return std::fabs(det()) <= tolerance.equalVector() * product || product == 0.0;
}

bool AcGeMatrix2d::isEqualTo(const AcGeMatrix2d& other, const AcGeTol& tolerance) const {
    return equalEntries(entry, other.entry, tolerance.equalVector());
}

bool AcGeMatrix2d::isScaledOrtho(const AcGeTol& tolerance) const {
    return column(*this, 0).isPerpendicularTo(column(*this, 1), tolerance);
}

bool AcGeMatrix2d::isUniScaledOrtho(const AcGeTol& tolerance) const {
    const double size = column(*this, 0).length();
    return isScaledOrtho(tolerance) &&
           std::fabs(size - column(*this, 1).length()) <= tolerance.equalVector() * std::max(1.0, size);
}

double AcGeMatrix2d::scale() const {
    return std::max(column(*this, 0).length(), column(*this, 1).length());
}

AcGeMatrix2d& AcGeMatrix2d::setTranslation(const AcGeVector2d& vector) {
    entry[0][2] = vector.x;
    entry[1][2] = vector.y;
    return *this;
}

bool AcGeMatrix2d::isConformal(double& factor, double& angle, bool& mirror, AcGeVector2d& reflection) const {
    if (!isUniScaledOrtho())
        return false;
    factor = column(*this, 0).length();
    angle = column(*this, 0).angle();
    mirror = det() < 0.0;
    reflection =
        mirror ? AcGeVector2d(std::cos(angle / 2.0), std::sin(angle / 2.0)) : AcGeVector2d::kIdentity;
    return true;
}

AcGeMatrix2d& AcGeMatrix2d::setCoordSystem(const AcGePoint2d& origin, const AcGeVector2d& e0,
                                           const AcGeVector2d& e1) {
    setToIdentity();
    entry[0][0] = e0.x;
    entry[1][0] = e0.y;
    entry[0][1] = e1.x;
    entry[1][1] = e1.y;
    return setTranslation(origin.asVector());
}

void AcGeMatrix2d::getCoordSystem(AcGePoint2d& origin, AcGeVector2d& e0, AcGeVector2d& e1) const {
    origin = AcGePoint2d::kOrigin + translation();
    e0 = column(*this, 0);
    e1 = column(*this, 1);
}

AcGeMatrix2d& AcGeMatrix2d::setToTranslation(const AcGeVector2d& vector) {
    return setToIdentity().setTranslation(vector);
}

AcGeMatrix2d& AcGeMatrix2d::setToRotation(double angle, const AcGePoint2d& center) {
    const AcGeVector2d e0(std::cos(angle), std::sin(angle));
    setCoordSystem(AcGePoint2d::kOrigin, e0, e0.perpVector());
    return setTranslation(center - *this * center);
}

AcGeMatrix2d& AcGeMatrix2d::setToScaling(double factor, const AcGePoint2d& center) {
    setCoordSystem(AcGePoint2d::kOrigin, {factor, 0.0}, {0.0, factor});
    return setTranslation(center - *this * center);
}

AcGeMatrix2d& AcGeMatrix2d::setToMirroring(const AcGePoint2d& point) {
    return setToScaling(-1.0, point);
}

AcGeMatrix2d& AcGeMatrix2d::setToAlignCoordSys(const AcGePoint2d& fromOrigin, const AcGeVector2d& fromE0,
                                               const AcGeVector2d& fromE1, const AcGePoint2d& toOrigin,
                                               const AcGeVector2d& toE0, const AcGeVector2d& toE1) {
    AcGeMatrix2d from, to;
    from.setCoordSystem(fromOrigin, fromE0, fromE1);
    to.setCoordSystem(toOrigin, toE0, toE1);
    return *this = to * from.inverse();
}

AcGeMatrix3d AcGeMatrix3d::operator*(const AcGeMatrix3d& other) const {
    AcGeMatrix3d result;
    multiply(entry, other.entry, result.entry);
    return result;
}

AcGeMatrix3d& AcGeMatrix3d::invert() {
    AcGeMatrix3d copy(*this);
    return invertEntries(copy.entry, smallestPivot) ? *this = copy : *this;
}

AcGeMatrix3d AcGeMatrix3d::inverse(const AcGeTol& tolerance) const {
    return isSingular(tolerance) ? *this : inverse();
}

bool AcGeMatrix3d::inverse(AcGeMatrix3d& result, double tolerance) const {
    AcGeMatrix3d copy(*this);
    if (!invertEntries(copy.entry, std::max(tolerance, smallestPivot)))
        return false;
    result = copy;
    return true;
}

bool AcGeMatrix3d::isSingular(const AcGeTol& tolerance) const {
    const double product = column(*this, 0).length() * column(*this, 1).length() * column(*this, 2).length();
    return std::fabs(det()) <= tolerance.equalVector() * product || product == 0.0;
}

AcGeMatrix3d& AcGeMatrix3d::transposeIt() {
    transposeEntries(entry);
    return *this;
}

bool AcGeMatrix3d::isEqualTo(const AcGeMatrix3d& other, const AcGeTol& tolerance) const {
    return equalEntries(entry, other.entry, tolerance.equalVector());
}

bool AcGeMatrix3d::isScaledOrtho(const AcGeTol& tolerance) const {
    const AcGeVector3d x = column(*this, 0), y = column(*this, 1), z = column(*this, 2);
    return x.isPerpendicularTo(y, tolerance) && y.isPerpendicularTo(z, tolerance) &&
           z.isPerpendicularTo(x, tolerance);
}

bool AcGeMatrix3d::isUniScaledOrtho(const AcGeTol& tolerance) const {
    if (!isScaledOrtho(tolerance))
        return false;
    const double size = column(*this, 0).length(), slack = tolerance.equalVector() * std::max(1.0, size);
    return std::fabs(size - column(*this, 1).length()) <= slack &&
           std::fabs(size - column(*this, 2).length()) <= slack;
}

double AcGeMatrix3d::det() const {
    return column(*this, 0).crossProduct(column(*this, 1)).dotProduct(column(*this, 2));
}

double AcGeMatrix3d::scale() const {
    return std::max({column(*this, 0).length(), column(*this, 1).length(), column(*this, 2).length()});
}

double AcGeMatrix3d::norm() const {
    double largest = 0.0;
    for (int row = 0; row < 3; ++row)
        for (int index = 0; index < 3; ++index)
            largest = std::max(largest, std::fabs(entry[row][index]));
    return largest;
}

AcGeMatrix3d& AcGeMatrix3d::setTranslation(const AcGeVector3d& vector) {
    entry[0][3] = vector.x;
    entry[1][3] = vector.y;
    entry[2][3] = vector.z;
    return *this;
}

AcGeMatrix3d& AcGeMatrix3d::setCoordSystem(const AcGePoint3d& origin, const AcGeVector3d& xAxis,
                                           const AcGeVector3d& yAxis, const AcGeVector3d& zAxis) {
    setToIdentity();
    for (unsigned int row = 0; row < 3; ++row) {
        entry[row][0] = xAxis[row];
        entry[row][1] = yAxis[row];
        entry[row][2] = zAxis[row];
    }
    return setTranslation(origin.asVector());
}

void AcGeMatrix3d::getCoordSystem(AcGePoint3d& origin, AcGeVector3d& xAxis, AcGeVector3d& yAxis,
                                  AcGeVector3d& zAxis) const {
    origin = AcGePoint3d::kOrigin + translation();
    xAxis = column(*this, 0);
    yAxis = column(*this, 1);
    zAxis = column(*this, 2);
}

AcGeMatrix3d& AcGeMatrix3d::setToTranslation(const AcGeVector3d& vector) {
    return setToIdentity().setTranslation(vector);
}

AcGeMatrix3d& AcGeMatrix3d::setToRotation(double angle, const AcGeVector3d& axis, const AcGePoint3d& center) {
    // Rodrigues' formula, applied to the three axes.
    const AcGeVector3d unit = axis.normal();
    const double c = std::cos(angle), s = std::sin(angle);
    const auto turned = [&](const AcGeVector3d& v) {
        return v * c + unit.crossProduct(v) * s + unit * (unit.dotProduct(v) * (1.0 - c));
    };
    setCoordSystem(AcGePoint3d::kOrigin, turned(AcGeVector3d::kXAxis), turned(AcGeVector3d::kYAxis),
                   turned(AcGeVector3d::kZAxis));
    return setTranslation(center - *this * center);
}

AcGeMatrix3d& AcGeMatrix3d::setToScaling(double factor, const AcGePoint3d& center) {
    setCoordSystem(AcGePoint3d::kOrigin, {factor, 0.0, 0.0}, {0.0, factor, 0.0}, {0.0, 0.0, factor});
    return setTranslation(center - *this * center);
}

AcGeMatrix3d& AcGeMatrix3d::setToMirroring(const AcGePlane& plane) {
    const AcGeVector3d normal = plane.normal();
    const auto mirrored = [&](const AcGeVector3d& v) { return v - normal * (2.0 * normal.dotProduct(v)); };
    const AcGePoint3d origin = plane.pointOnPlane();
    setCoordSystem(AcGePoint3d::kOrigin, mirrored(AcGeVector3d::kXAxis), mirrored(AcGeVector3d::kYAxis),
                   mirrored(AcGeVector3d::kZAxis));
    return setTranslation(origin - *this * origin);
}

AcGeMatrix3d& AcGeMatrix3d::setToMirroring(const AcGePoint3d& point) {
    return setToScaling(-1.0, point);
}

AcGeMatrix3d& AcGeMatrix3d::setToProjection(const AcGePlane& plane, const AcGeVector3d& direction) {
    const AcGeVector3d normal = plane.normal();
    const auto projected = [&](const AcGeVector3d& v) { return v.project(normal, direction); };
    setToIdentity();
    if (normal.isPerpendicularTo(direction))
        return *this;
    setCoordSystem(AcGePoint3d::kOrigin, projected(AcGeVector3d::kXAxis), projected(AcGeVector3d::kYAxis),
                   projected(AcGeVector3d::kZAxis));
    const AcGePoint3d origin = plane.pointOnPlane();
    return setTranslation(origin - *this * origin);
}

AcGeMatrix3d& AcGeMatrix3d::setToAlignCoordSys(const AcGePoint3d& fromOrigin, const AcGeVector3d& fromXAxis,
                                               const AcGeVector3d& fromYAxis, const AcGeVector3d& fromZAxis,
                                               const AcGePoint3d& toOrigin, const AcGeVector3d& toXAxis,
                                               const AcGeVector3d& toYAxis, const AcGeVector3d& toZAxis) {
    AcGeMatrix3d from, to;
    from.setCoordSystem(fromOrigin, fromXAxis, fromYAxis, fromZAxis);
    to.setCoordSystem(toOrigin, toXAxis, toYAxis, toZAxis);
    return *this = to * from.inverse();
}

AcGeMatrix3d& AcGeMatrix3d::setToPlaneToWorld(const AcGeVector3d& normal) {
    return *this = host::arbitraryAxes(normal);
}

AcGeMatrix3d& AcGeMatrix3d::setToPlaneToWorld(const AcGePlane& plane) {
    AcGePoint3d origin;
    AcGeVector3d uAxis, vAxis;
    plane.getCoordSystem(origin, uAxis, vAxis);
    return setCoordSystem(origin, uAxis, vAxis, plane.normal());
}

AcGeMatrix3d& AcGeMatrix3d::setToWorldToPlane(const AcGeVector3d& normal) {
    return setToPlaneToWorld(normal).transposeIt(); // orthonormal and without translation
}

AcGeMatrix3d& AcGeMatrix3d::setToWorldToPlane(const AcGePlane& plane) {
    return setToPlaneToWorld(plane).invert();
}

AcGeMatrix2d AcGeMatrix3d::convertToLocal(AcGeVector3d& normal, double& elevation) const {
    const AcGeMatrix3d toWorld = host::arbitraryAxes(normal);
    const AcGeVector3d u = *this * column(toWorld, 0), v = *this * column(toWorld, 1);
    const AcGePoint3d origin = *this * (toWorld * AcGePoint3d(0.0, 0.0, elevation));
    AcGeVector3d image = u.crossProduct(v);
    // The image keeps the sense of the old normal, so that a mirroring shows in the plane's own map.
    if (image.dotProduct(*this * normal) < 0.0)
        image.negate();
    if (image.lengthSqrd() > 0.0)
        normal = image / image.length();
    const AcGeMatrix3d toPlane = worldToPlane(normal);
    const AcGePoint3d localOrigin = toPlane * origin;
    const AcGeVector3d localU = toPlane * u, localV = toPlane * v;
    elevation = localOrigin.z;
    return AcGeMatrix2d().setCoordSystem({localOrigin.x, localOrigin.y}, {localU.x, localU.y},
                                         {localV.x, localV.y});
}

AcGeMatrix3d host::arbitraryAxes(const AcGeVector3d& normal) {
    if (normal.x == 0.0 && normal.y == 0.0 && normal.z >= 0.0)
        return AcGeMatrix3d();
    const AcGeVector3d zAxis = normal / normal.length();
    const AcGeVector3d xAxis = zAxis.perpVector();
    return AcGeMatrix3d().setCoordSystem(AcGePoint3d::kOrigin, xAxis, zAxis.crossProduct(xAxis), zAxis);
}
