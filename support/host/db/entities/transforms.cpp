// Transformations within a plane.
#include "host/db/entities/transforms.h"

namespace host {

PlanarTransform::PlanarTransform(const AcGeMatrix3d& transform, const AcGeVector3d& oldNormal,
                                 double oldElevation)
    : normal(oldNormal), elevation(oldElevation) {
    if (isWorldNormal(oldNormal) && transform.entry[0][2] == 0.0 && transform.entry[1][2] == 0.0 &&
        transform.entry[2][0] == 0.0 && transform.entry[2][1] == 0.0 && transform.entry[2][2] == 1.0) {
        // Within the world's plane, the usual case: exactly the matrix given.
        for (unsigned int row = 0; row < 2; ++row) {
            local.entry[row][0] = transform.entry[row][0];
            local.entry[row][1] = transform.entry[row][1];
            local.entry[row][2] = transform.entry[row][3];
        }
        elevation += transform.entry[2][3];
    } else {
        local = transform.convertToLocal(normal, elevation);
        normalScale = (transform * oldNormal).dotProduct(normal);
    }
    const AcGeVector2d x(local.entry[0][0], local.entry[1][0]);
    const AcGeVector2d y(local.entry[0][1], local.entry[1][1]);
    const double det = x.crossProduct(y);
    scale = x.length();
    isMirrored = det < 0.0;
    isSingular = !(std::fabs(det) > 1e-20 * std::max(x.lengthSqrd(), y.lengthSqrd()));
    isUniform = !isSingular && std::fabs(scale - y.length()) <= 1e-10 * scale &&
                std::fabs(x.dotProduct(y)) <= 1e-10 * scale * scale;
}

} // namespace host
