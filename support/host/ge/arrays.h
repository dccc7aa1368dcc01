// The named arrays of the geometry interface and the views between points and plain double arrays.
#pragma once

#include "host/ge/acarray.h"
#include "host/ge/point3d.h"

using AcGePoint2dArray = AcArray<AcGePoint2d>;
using AcGePoint3dArray = AcArray<AcGePoint3d>;
using AcGeVector2dArray = AcArray<AcGeVector2d>;
using AcGeVector3dArray = AcArray<AcGeVector3d>;
using AcGeDoubleArray = AcArray<double>;
using AcGeIntArray = AcArray<int>;
using AcGeVoidPointerArray = AcArray<void*>;

// An array of doubles seen as a point or vector and back; no copy is made.
inline AcGePoint2d& asPnt2d(double point[2]) {
    return *reinterpret_cast<AcGePoint2d*>(point);
}
inline const AcGePoint2d& asPnt2d(const double point[2]) {
    return *reinterpret_cast<const AcGePoint2d*>(point);
}
inline AcGeVector2d& asVec2d(double vector[2]) {
    return *reinterpret_cast<AcGeVector2d*>(vector);
}
inline const AcGeVector2d& asVec2d(const double vector[2]) {
    return *reinterpret_cast<const AcGeVector2d*>(vector);
}
inline AcGePoint3d& asPnt3d(double point[3]) {
    return *reinterpret_cast<AcGePoint3d*>(point);
}
inline const AcGePoint3d& asPnt3d(const double point[3]) {
    return *reinterpret_cast<const AcGePoint3d*>(point);
}
inline AcGeVector3d& asVec3d(double vector[3]) {
    return *reinterpret_cast<AcGeVector3d*>(vector);
}
inline const AcGeVector3d& asVec3d(const double vector[3]) {
    return *reinterpret_cast<const AcGeVector3d*>(vector);
}
inline double* asDblArray(AcGePoint2d& point) {
    return &point.x;
}
inline const double* asDblArray(const AcGePoint2d& point) {
    return &point.x;
}
inline double* asDblArray(AcGeVector2d& vector) {
    return &vector.x;
}
inline const double* asDblArray(const AcGeVector2d& vector) {
    return &vector.x;
}
inline double* asDblArray(AcGePoint3d& point) {
    return &point.x;
}
inline const double* asDblArray(const AcGePoint3d& point) {
    return &point.x;
}
inline double* asDblArray(AcGeVector3d& vector) {
    return &vector.x;
}
inline const double* asDblArray(const AcGeVector3d& vector) {
    return &vector.x;
}
