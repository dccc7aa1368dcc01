// Pieces that the transformations of several entities have in common.
#pragma once

#include "host/db/dbentity.h"
#include "host/db/entities/fields.h"

namespace host {

/// A transform within the object coordinates of a planar entity.
struct PlanarTransform {
    AcGeMatrix2d local;       ///< of object coordinates of the old normal into those of the new one
    AcGeVector3d normal;      ///< new normal
    double elevation = 0.0;   ///< new elevation
    bool isSingular = false;  ///< the plane collapses
    bool isUniform = false;   ///< lengths in the plane all grow by one factor, angles stay
    bool isMirrored = false;  ///< counterclockwise becomes clockwise
    double scale = 1.0;       ///< the factor of lengths, when uniform
    double normalScale = 1.0; ///< factor of heights above the plane, signed

    PlanarTransform(const AcGeMatrix3d& transform, const AcGeVector3d& oldNormal, double oldElevation);
    AcGePoint2d operator()(const AcGePoint2d& point) const { return local * point; }
};

/// Calls change(point) for every grip point named by the indices, out of the count; eInvalidIndex for a bad
/// one before anything was changed.
template <class Change>
Acad::ErrorStatus forGrips(const AcDbIntArray& indices, int count, Change&& change) {
    for (const int index : indices) {
        if (index < 0 || index >= count) {
            return Acad::eInvalidIndex;
        }
    }
    for (const int index : indices) {
        change(index);
    }
    return Acad::eOk;
}

/// A new entity of type T with the properties of another.
template <class T>
std::unique_ptr<T> newLike(const AcDbEntity& source) {
    auto made = std::make_unique<T>();
    made->setPropertiesFrom(&source);
    return made;
}

inline bool isFinite(const AcGePoint3d& point) {
    return std::isfinite(point.x + point.y + point.z);
}
inline bool isFinite(const AcGeVector3d& vector) {
    return std::isfinite(vector.x + vector.y + vector.z);
}

/// How far a point may be from a curve and still count as on it.
inline double onCurveTolerance(const AcGePoint3d& point) {
    return 1e-6 + 1e-12 * (std::fabs(point.x) + std::fabs(point.y) + std::fabs(point.z));
}

} // namespace host
